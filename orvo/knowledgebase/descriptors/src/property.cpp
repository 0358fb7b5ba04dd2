#include <orvo/knowledgebase/descriptors/property.h>

namespace orvo {

Property::Property(const std::string& id, const boost::any& value) : id(id), value(value) {}

Property::~Property() = default;

const std::string Property::get_id() const {
    return id;
}

const boost::any& Property::get_value() const {
    return value;
}

} // namespace orvo
