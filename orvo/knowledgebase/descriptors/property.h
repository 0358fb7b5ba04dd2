#ifndef ORVO_KNOWLEDGEBASE_DESCRIPTORS_PROPERTY_H
#define ORVO_KNOWLEDGEBASE_DESCRIPTORS_PROPERTY_H

#include <orvo/core/export.h>

#include <boost/any.hpp>

#include <string>

namespace orvo {

/// A named value of any copyable type. Properties are values: copying one
/// clones the held value, so a descriptor's property set owns its copies.
class ORVO_API Property {
public:
    Property(const std::string& id, const boost::any& value);
    Property(const Property&) = default;
    Property(Property&&) = default;
    Property& operator=(const Property&) = default;
    Property& operator=(Property&&) = default;
    virtual ~Property();

    /// A copy of the name; the property set orders and keys its elements by it.
    const std::string get_id() const;
    /// The held value; read it with boost::any_cast.
    const boost::any& get_value() const;

private:
    std::string id;
    boost::any value;
};

} // namespace orvo

#endif
