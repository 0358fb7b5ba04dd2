// Plug-ins for the host program's tests: an agent whose run does what
// ./probe.txt says, and a component that claims the name "agent" without
// being one.

#include <orvo/core/agent.h>
#include <orvo/core/exception.h>

#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

namespace {

class ProbeAgent : public orvo::Agent {
public:
    void link(orvo::Class_Map&) override {}
    void finalize() override { std::cout << "probe finalized" << std::endl; }
    void run() override {
        std::string what;
        std::ifstream("probe.txt") >> what;
        if (what == "orvo") {
            throw orvo::Exception(orvo::gen_ffl_string("probe.cpp", "run", 7), "probe failed",
                                  "Exception");
        }
        if (what == "std") {
            throw std::runtime_error("probe failed in the standard way");
        }
        std::cout << "probe ran" << std::endl;
    }
};

class Impostor : public orvo::Constructable {
public:
    void link(orvo::Class_Map&) override {}
    std::string get_name() const override { return "agent"; }
};

} // namespace

ORVO_COMPONENT_FACTORY(probe_agent, ProbeAgent)
ORVO_COMPONENT_FACTORY(impostor, Impostor)
