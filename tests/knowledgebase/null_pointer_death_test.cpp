#include "named_descriptors.h"

#include <gtest/gtest.h>

// The shared pointers' own assertion is what stops the program, in every build
// type; these tests would pass vacuously if it were compiled away here.
#ifdef NDEBUG
#error "the null-pointer tests need the assertions of boost::shared_ptr"
#endif

namespace {

using orvo::knowledgebase::descriptors::Descriptor_Action;
using namespace orvo_test;

constexpr const char* assertion = "px != 0";

TEST(NullPointerDeathTest, ANullSkillOrAMissingActionStopsTheProgram) {
    Descriptor_Action action("b");
    action.add_skill(boost::shared_ptr<orvo::knowledgebase::descriptors::Descriptor_Skill>());
    EXPECT_DEATH(action.has_skill("kick"), assertion);
    EXPECT_DEATH(action.to_eval(), assertion);
    LinkedLog linked;
    EXPECT_DEATH(linked.add_skill("walk"), assertion);
}

} // namespace
