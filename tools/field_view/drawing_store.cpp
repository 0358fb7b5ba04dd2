#include "drawing_store.h"

namespace field_view {

DrawingStore::Outcome DrawingStore::add(const unsigned char* data, std::size_t size) {
    ++totals.datagrams;
    if (orvo::protocol::drawing::is_opening(data, size)) {
        ++totals.batches;
        latest[data[2]].clear();
        return Outcome::batch;
    }
    orvo::protocol::drawing::Shape shape;
    if (!orvo::protocol::drawing::decode(data, size, shape)) {
        ++totals.malformed;
        return Outcome::malformed;
    }
    auto& batch = latest[shape.header];
    if (batch.size() >= max_batch) {
        ++totals.malformed;
        return Outcome::malformed;
    }
    batch.push_back(std::move(shape));
    ++totals.shapes;
    return Outcome::shape;
}

} // namespace field_view
