#ifndef ORVO_DEMO_TEAM_CONFIGURATION_H
#define ORVO_DEMO_TEAM_CONFIGURATION_H

#include "settings.h"

#include <orvo/communication/configuration.h>

namespace demo {

/// The "configuration" component: reads "config/server.cfg" when initialised
/// (before the messenger, whose name sorts later, connects with it) and hands
/// the messenger the server's host, port and third value. A missing file
/// leaves the defaults: the stand-in server on this machine.
class TeamConfiguration : public orvo::communication::Configuration {
public:
    static constexpr const char* file = "config/server.cfg";

    void init() override;

    Settings settings;
};

} // namespace demo

#endif
