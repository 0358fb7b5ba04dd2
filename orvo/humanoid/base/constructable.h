#ifndef ORVO_HUMANOID_BASE_CONSTRUCTABLE_H
#define ORVO_HUMANOID_BASE_CONSTRUCTABLE_H

#include <orvo/core/exception.h>
#include <orvo/core/export.h>

#include <map>
#include <string>

namespace orvo {

class Constructable;

/// Every component of an assembled framework under the name it reports,
/// ordered byte-wise. The Architect owns the components; the map only points.
using Class_Map = std::map<const std::string, Constructable*>;

/// Base of every component a plug-in library contributes. A component is
/// created by its library's factory, linked to its collaborators by name,
/// initialised, finalised and deleted through this interface.
class ORVO_API Constructable {
public:
    virtual ~Constructable();
    /// Looks up the collaborators the component needs and keeps pointers to them.
    virtual void link(Class_Map& classes) = 0;
    virtual void init();
    virtual void finalize();
    /// The name under which the component is registered.
    virtual std::string get_name() const = 0;
};

namespace detail {
// get_class reports from this header; its location is fixed so that traces
// read the same whatever directory the including code is compiled in.
constexpr const char* get_class_file = "humanoid/base/constructable.h";
constexpr int get_class_line = 119;
} // namespace detail

/// Finds the collaborator registered as `name` for `requester`. A name that is
/// registered with a null pointer or with a component of another class gives
/// null; an absent name raises a LinkException naming requester and name.
template <class T>
T* get_class(const Constructable& requester, const std::string& name, Class_Map& classes) {
    const auto entry = classes.find(name);
    if (entry == classes.end()) {
        throw LinkException(
            gen_ffl_string(detail::get_class_file, "get_class", detail::get_class_line),
            requester.get_name(), name);
    }
    if (entry->second == nullptr) {
        return nullptr;
    }
    return dynamic_cast<T*>(entry->second);
}

} // namespace orvo

extern "C" {
/// Deletes a component created by one of the library's factories; null is ignored.
ORVO_API void destroy(orvo::Constructable* component);
}

/// Defines the exported factory `create_<name>` of a component class with a
/// default constructor. `name` must be what the class's get_name() returns.
#define ORVO_COMPONENT_FACTORY(name, Class)                                                        \
    extern "C" ORVO_API ::orvo::Constructable* create_##name() {                                   \
        return new Class();                                                                        \
    }

#endif
