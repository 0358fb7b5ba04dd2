// A team's plug-in as the assembly-cycle checks need it: a configuration that
// points the messenger at the test's loopback server ("./config/server.cfg":
// host, port, run value), an agent, and a component that holds a large block,
// so that a component left undeleted shows in the resident memory at once;
// and one whose init always fails, for assemblies that go wrong.
#include <orvo/communication/configuration.h>
#include <orvo/core/agent.h>
#include <orvo/core/exception.h>

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

class Sulky : public Ballast {
public:
    void init() override {
        throw orvo::LogicException(orvo::gen_ffl_string("plugin/cycler.cpp", "init", 1),
                                   "not today");
    }
    std::string get_name() const override { return "sulky"; }
};

} // namespace

ORVO_COMPONENT_FACTORY(configuration, ServerConfiguration)
ORVO_COMPONENT_FACTORY(agent, IdleAgent)
ORVO_COMPONENT_FACTORY(ballast, Ballast)
ORVO_COMPONENT_FACTORY(sulky, Sulky)
