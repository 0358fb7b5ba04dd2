#include "named_descriptors.h"

#include <gtest/gtest.h>

#include <sstream>

// The shared pointers' own assertion is what stops the program, in every build
// type; these tests would pass vacuously if it were compiled away here.
#ifdef NDEBUG
#error "the null-pointer tests need the assertions of boost::shared_ptr"
#endif

namespace {

using orvo::knowledgebase::descriptors::Descriptor_Action;
using orvo::knowledgebase::descriptors::Descriptor_Effector;
using namespace orvo_test;

constexpr const char* assertion = "px != 0";

TEST(NullPointerDeathTest, ActionWalksStopOnANullSkillOrEffector) {
    Descriptor_Action action("b");
    action.add_skill(skill("walk"));
    action.add_skill(boost::shared_ptr<orvo::knowledgebase::descriptors::Descriptor_Skill>());
    // Storing it was fine; anything that reaches it stops.
    EXPECT_EQ(action.get_skill("walk").first, 0);
    EXPECT_DEATH(action.has_skill("kick"), assertion);
    EXPECT_DEATH(action.get_skill("kick"), assertion);
    EXPECT_DEATH(action.to_eval(), assertion);
    std::ostringstream out;
    EXPECT_DEATH(action.print(out), assertion);
    EXPECT_DEATH(action.add_effector(boost::shared_ptr<Descriptor_Effector>()), assertion);
}

// The log holds no null action (only the injectors add entries, and never
// a null one), but skills and effectors may come before any action.
TEST(NullPointerDeathTest, LogStopsOnAMissingCurrentAction) {
    LinkedLog linked;
    EXPECT_DEATH(linked.add_skill("walk"), assertion);
    EXPECT_DEATH(linked.add_effector("legs"), assertion);

    LinkedLog valid;
    valid.inject_action("b", 1, 10);
    boost::shared_ptr<Descriptor_Effector> none;
    EXPECT_DEATH(valid.inject_effector(none), assertion);
}

} // namespace
