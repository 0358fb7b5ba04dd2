#ifndef ORVO_KNOWLEDGEBASE_DESCRIPTORS_DESCRIPTOR_H
#define ORVO_KNOWLEDGEBASE_DESCRIPTORS_DESCRIPTOR_H

#include <orvo/core/export.h>
#include <orvo/knowledgebase/descriptors/property.h>

#include <boost/multi_index/mem_fun.hpp>
#include <boost/multi_index/ordered_index.hpp>
#include <boost/multi_index_container.hpp>
#include <boost/noncopyable.hpp>

#include <ostream>
#include <string>

namespace orvo::knowledgebase::descriptors {

/// The properties of a descriptor: at most one per id, iterated in ascending
/// byte-wise id order.
using Property_Set = boost::multi_index_container<
    Property,
    boost::multi_index::indexed_by<boost::multi_index::ordered_unique<
        boost::multi_index::const_mem_fun<Property, const std::string, &Property::get_id>>>>;

/// Base of every knowledge-base record. Descriptors are shared, never copied:
/// the knowledge base passes and keeps them through boost::shared_ptr.
class ORVO_API Descriptor : private boost::noncopyable {
public:
    Descriptor();
    virtual ~Descriptor() = 0;

    /// Human-readable text. The base definition writes "No description
    /// available!" and is there for subclasses to fall back on explicitly.
    virtual std::ostream& print(std::ostream& out) const = 0;
    /// The descriptor as an s-expression.
    virtual std::string to_eval() const = 0;

    /// Whether a property with exactly this id (case and length included) is held.
    bool has_property(const std::string& id) const;
    /// The held property with this id; the reference lives as long as the
    /// descriptor. Raises DataUnavailableException when the id is absent.
    const Property& get_property(const std::string& id) const;
    /// Places a copy of `property`. A property whose id is already held is
    /// refused (false) and the held one, with its value, stays.
    bool add_property(const Property& property);
    const Property_Set& get_properties() const;

protected:
    Property_Set properties;
};

} // namespace orvo::knowledgebase::descriptors

#endif
