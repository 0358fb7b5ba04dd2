#include <orvo/behaviors/behavior.h>
#include <orvo/core/agent.h>

#include <gtest/gtest.h>

namespace {

class QuietAgent : public orvo::Agent {
public:
    void link(orvo::Class_Map&) override {}
    void run() override {}
};

class IdleBehavior : public orvo::behaviors::Behavior {
public:
    void link(orvo::Class_Map&) override {}
    std::string get_name() const override { return "idle"; }
};

} // namespace

TEST(Roles, AgentIsRegisteredAsAgentAndBaseBehaviorDoesNothing) {
    QuietAgent agent;
    EXPECT_EQ(agent.get_name(), "agent");
    IdleBehavior idle;
    idle();
    idle.init();
    idle.finalize();
    EXPECT_EQ(idle.get_name(), "idle");
}
