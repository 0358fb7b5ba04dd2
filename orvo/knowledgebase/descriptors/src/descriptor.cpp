#include <orvo/core/exception.h>
#include <orvo/knowledgebase/descriptors/descriptor.h>

namespace orvo::knowledgebase::descriptors {

namespace {

constexpr const char* source_file = "knowledgebase/descriptors/src/descriptor.cpp";
constexpr int line_missing_property = 50;

// Only DataUnavailableException may leave get_property; a failure while
// building it (memory exhaustion) ends the process instead.
DataUnavailableException missing_property() noexcept {
    return DataUnavailableException(
        gen_ffl_string(source_file, "get_property", line_missing_property),
        "Tried to retrieve property for current descriptor which "
        "is not available");
}

} // namespace

Descriptor::Descriptor() = default;

Descriptor::~Descriptor() = default;

std::ostream& Descriptor::print(std::ostream& out) const {
    return out << "No description available!";
}

bool Descriptor::has_property(const std::string& id) const {
    return properties.find(id) != properties.end();
}

const Property& Descriptor::get_property(const std::string& id) const {
    // The key extractor copies ids, so the lookups may allocate; like the
    // message above, that must not surface as anything but a stop.
    const Property* found = [&]() noexcept -> const Property* {
        if (!has_property(id)) {
            return nullptr;
        }
        return &*properties.find(id);
    }();
    if (found == nullptr) {
        throw missing_property();
    }
    return *found;
}

bool Descriptor::add_property(const Property& property) {
    return properties.insert(property).second;
}

const Property_Set& Descriptor::get_properties() const {
    return properties;
}

} // namespace orvo::knowledgebase::descriptors
