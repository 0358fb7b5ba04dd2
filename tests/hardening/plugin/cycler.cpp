// The assembly-cycle checks' plug-in: besides a configuration and an agent
// (server_configuration.cpp), a component that holds a large block, so that a
// component left undeleted shows in the resident memory at once.
#include <orvo/humanoid/base/constructable.h>

#include <vector>

namespace {

class Ballast : public orvo::Constructable {
public:
    void link(orvo::Class_Map&) override {}
    std::string get_name() const override { return "ballast"; }

private:
    std::vector<char> block = std::vector<char>(256 * 1024, 'b');
};

} // namespace

ORVO_COMPONENT_FACTORY(ballast, Ballast)
