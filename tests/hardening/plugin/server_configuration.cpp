// A team's configuration plug-in as the tests need it: the server's address
// comes from "./config/server.cfg" (host, port, run value), which each test
// writes for its own loopback server. It also brings the agent that every
// assembled framework must have.
#include <orvo/communication/configuration.h>
#include <orvo/core/agent.h>

#include <fstream>

namespace {

class ServerConfiguration : public orvo::communication::Configuration {
public:
    ServerConfiguration() {
        std::ifstream file("./config/server.cfg");
        file >> server_host >> server_port >> run_value;
    }
};

class IdleAgent : public orvo::Agent {
public:
    void link(orvo::Class_Map&) override {}
    void run() override {}
};

} // namespace

ORVO_COMPONENT_FACTORY(configuration, ServerConfiguration)
ORVO_COMPONENT_FACTORY(agent, IdleAgent)
