#ifndef ORVO_COMMUNICATION_CONFIGURATION_H
#define ORVO_COMMUNICATION_CONFIGURATION_H

#include <orvo/core/export.h>
#include <orvo/humanoid/base/constructable.h>

#include <string>

namespace orvo::communication {

/// Where the agent's server lives. The library only declares it: a team's
/// plug-in derives from it, fills the three values (in its constructor, or in
/// its own init, which runs before the Messenger's) and exports the factory
/// `create_configuration`, for example with
/// `ORVO_COMPONENT_FACTORY(configuration, TeamConfiguration)`. The Messenger
/// reads the values during its init and connects with them.
class ORVO_API Configuration : public Constructable {
public:
    ~Configuration() override;
    /// Needs no collaborators; a plug-in may override this.
    void link(Class_Map& classes) override;
    /// "configuration".
    std::string get_name() const override;

    /// Host name or dotted quad of the simulation server.
    std::string server_host = "localhost";
    /// TCP port the server accepts agents on.
    unsigned int server_port = 3100;
    /// Handed to CommUnit::configure_run as its third value, which the
    /// connection only stores for the server's side of the protocol.
    unsigned int run_value = 15096;
};

} // namespace orvo::communication

#endif
