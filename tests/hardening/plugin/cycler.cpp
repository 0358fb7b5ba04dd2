// The assembly-cycle checks' plug-in: besides the messenger tests' configuration
// and agent (compiled in from there), a component that holds a large block, so
// that a component left undeleted shows in the resident memory at once, and one
// whose init always fails, for assemblies that go wrong.
#include <orvo/core/exception.h>
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

class Sulky : public Ballast {
public:
    void init() override {
        throw orvo::LogicException(orvo::gen_ffl_string("plugin/cycler.cpp", "init", 1),
                                   "not today");
    }
    std::string get_name() const override { return "sulky"; }
};

} // namespace

ORVO_COMPONENT_FACTORY(ballast, Ballast)
ORVO_COMPONENT_FACTORY(sulky, Sulky)
