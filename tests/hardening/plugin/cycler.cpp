// A team's plug-in as the assembly-cycle checks need it: a configuration that
// points the messenger at the test's loopback server ("./config/server.cfg":
// host, port, run value), an agent, and a component that holds a large block,
// so that a component left undeleted shows in the resident memory at once.
#include <orvo/communication/configuration.h>
#include <orvo/core/agent.h>

#include <fstream>
#include <vector>

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

class Ballast : public orvo::Constructable {
public:
    void link(orvo::Class_Map&) override {}
    std::string get_name() const override { return "ballast"; }

private:
    std::vector<char> block = std::vector<char>(256 * 1024, 'b');
};

} // namespace

ORVO_COMPONENT_FACTORY(configuration, ServerConfiguration)
ORVO_COMPONENT_FACTORY(agent, IdleAgent)
ORVO_COMPONENT_FACTORY(ballast, Ballast)
