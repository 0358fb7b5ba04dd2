#ifndef ORVO_FIELD_VIEW_DRAWING_STORE_H
#define ORVO_FIELD_VIEW_DRAWING_STORE_H

#include <orvo/protocol/drawing_wire.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace field_view {

/// Each agent's latest drawings, keyed by the header byte of its datagrams
/// (bit 7 the team, 0 left and 1 right; bits 0-6 the player number).
using Drawings = std::map<std::uint8_t, std::vector<orvo::protocol::drawing::Shape>>;

struct DrawingCounts {
    std::uint64_t datagrams = 0; ///< every datagram handed in, good or bad
    std::uint64_t batches = 0;   ///< opening datagrams
    std::uint64_t shapes = 0;    ///< shapes kept
    std::uint64_t malformed = 0; ///< datagrams dropped: short, oversize, unknown kind, ...
};

/// What the agents drew: a datagram at a time in, each agent's latest batch
/// out. An opening datagram starts the sender's new batch and so replaces its
/// previous drawings; every well-formed shape joins the batch of the header it
/// carries. Anything else is counted and dropped.
class DrawingStore {
public:
    /// More shapes in one batch than any agent sends per cycle: a sender that
    /// never opens a new batch cannot make the store grow without bound.
    static constexpr std::size_t max_batch = 1024;

    enum class Outcome { batch, shape, malformed };

    Outcome add(const unsigned char* data, std::size_t size);

    const Drawings& drawings() const { return latest; }
    const DrawingCounts& counts() const { return totals; }

private:
    Drawings latest;
    DrawingCounts totals;
};

} // namespace field_view

#endif
