#ifndef ORVO_CORE_ARCHITECT_H
#define ORVO_CORE_ARCHITECT_H

#include <orvo/core/agent.h>
#include <orvo/core/export.h>
#include <orvo/humanoid/base/constructable.h>

#include <boost/noncopyable.hpp>

#include <string>
#include <vector>

namespace orvo {

/// Brings a framework up and down: reads "./config/libraries.cfg" and
/// "./config/classes.cfg", opens the plug-in libraries, creates, registers,
/// links and initialises the components, and hands the host the "agent".
class ORVO_API Architect : private boost::noncopyable {
public:
    /// Keeps `args` by reference: it must stay alive and unchanged until
    /// construct() has run. Its first element names the plug-in tag.
    explicit Architect(std::vector<std::string>& args);
    /// Releases the map only; components are deleted by disassemble_framework().
    ~Architect();

    /// construct(), link(), init(), then the lookup of "agent". Returns null
    /// when the "agent" component is not an Agent.
    Agent* assemble_framework();
    /// Finalises every component (a failure stops finalisation silently), then
    /// deletes every component. The names stay in the map with null pointers,
    /// so a second call finds nothing left to finalise or delete.
    void disassemble_framework();

    void construct();
    void link();
    void init();
    void finalize();

    /// Appends one value per value line of the file at `path` to `values`.
    void parse_config_file(const std::string& path, std::vector<std::string>& values);

    /// The registered components by name.
    const Class_Map& get_classes() const { return classes; }

private:
    std::vector<std::string>& args;
    Class_Map classes;
    Class_Map::iterator cursor;
};

} // namespace orvo

#endif
