#include "named_descriptors.h"

#include <orvo/core/exception.h>
#include <orvo/knowledgebase/descriptors/descriptor_action.h>

#include <gtest/gtest.h>

#include <sstream>

namespace {

using orvo::knowledgebase::descriptors::Descriptor_Action;
using namespace orvo_test;

std::string printed(const Descriptor_Action& action) {
    std::ostringstream out;
    EXPECT_EQ(&action.print(out), &out);
    return out.str();
}

TEST(DescriptorAction, RendersTheApproachBallExample) {
    Descriptor_Action action("approach_ball");
    for (const char* id : {"walk", "turn", "walk"}) {
        action.add_skill(skill(id));
    }
    action.add_effector(effector("legs"));
    action.add_effector(effector("head"));
    EXPECT_EQ(action.to_eval(),
              "(action (initiator approach_ball)(skill_chain (skill (id walk)) (skill (id turn)) "
              "(skill (id walk)))(effectors (effector (id head)) (effector (id legs))))");
    EXPECT_EQ(printed(action), "[Descriptor_Action] Behavior(approach_ball)\n"
                               "\t-> Skill (walk))\n"
                               "\t-> Skill (turn))\n"
                               "\t-> Skill (walk))\n"
                               "\t-> Effector (head)\n"
                               "\t-> Effector (legs)\n");
}

TEST(DescriptorAction, NewActionHasNothingAndReportsBothLookups) {
    const Descriptor_Action action("approach_ball");
    EXPECT_EQ(action.to_eval(), "(action (initiator approach_ball)(skill_chain)(effectors))");
    EXPECT_EQ(printed(action), "[Descriptor_Action] Behavior(approach_ball)\n");
    EXPECT_EQ(action.get_effector_chain(), "");
    EXPECT_FALSE(action.has_skill("walk"));
    EXPECT_FALSE(action.has_effector("legs"));
    try {
        action.get_skill("walk");
        FAIL() << "no exception";
    } catch (const orvo::DataUnavailableException& missing) {
        EXPECT_EQ(missing.get_source(), "knowledgebase/descriptors/src/descriptor_action.cpp: In "
                                        "function 'get_skill' (line 192): ");
        EXPECT_EQ(missing.get_message(), "Tried to retrieve skill for current action that has not "
                                         "been used in skill chain yet!");
    }
    try {
        action.get_effector("legs");
        FAIL() << "no exception";
    } catch (const orvo::DataUnavailableException& missing) {
        EXPECT_EQ(missing.get_source(), "knowledgebase/descriptors/src/descriptor_action.cpp: In "
                                        "function 'get_effector' (line 167): ");
        EXPECT_EQ(missing.get_message(), "Tried to retrieve effector for current action that has "
                                         "not been invoked yet!");
        EXPECT_EQ(missing.get_type(), "DataUnavailableException");
    }
}

TEST(DescriptorAction, RepeatedSkillsStayInTheChainAndGetSkillFindsTheFirst) {
    Descriptor_Action action("b");
    const auto kick = skill("kick");
    const auto first_walk = skill("walk");
    action.add_skill(first_walk);
    action.add_skill(kick);
    action.add_skill(kick);
    action.add_skill(skill("walk"));
    EXPECT_EQ(action.to_eval(), "(action (initiator b)(skill_chain (skill (id walk)) (skill (id "
                                "kick)) (skill (id kick)) (skill (id walk)))(effectors))");
    const auto found = action.get_skill("walk");
    EXPECT_EQ(found.first, 0);
    EXPECT_EQ(found.second, first_walk);
    EXPECT_EQ(action.get_skill("kick").first, 1);
    EXPECT_EQ(action.get_skill_chain().size(), 4u);
    EXPECT_THROW(action.get_skill("Walk"), orvo::DataUnavailableException);
}

TEST(DescriptorAction, SkillPositionWrapsAtEightBits) {
    Descriptor_Action action("b");
    for (int index = 0; index < 300; ++index) {
        action.add_skill(skill(index == 260 || index == 290 ? "x" : "y"));
    }
    EXPECT_EQ(action.get_skill("x").first, 4);
    EXPECT_EQ(action.get_skill("y").first, 0);
}

TEST(DescriptorAction, AddEffectorKeepsTheFirstOfAnIdAndOrdersById) {
    Descriptor_Action action("b");
    const auto first = effector("legs", "(first)");
    action.add_effector(first);
    action.add_effector(effector("legs", "(second)"));
    action.add_effector(effector("head", "(head)"));
    EXPECT_EQ(action.get_effector("legs"), first);
    EXPECT_EQ(action.get_effectors().size(), 2u);
    EXPECT_EQ(action.get_effector_chain(), "(head)(first)");
    EXPECT_EQ(action.to_eval(), "(action (initiator b)(skill_chain)(effectors (effector (id head)) "
                                "(effector (id legs))))");
}

TEST(DescriptorAction, EffectorChainLeavesExcludedMessagesOut) {
    Descriptor_Action both("b");
    both.add_effector(effector("b", "(b)"));
    both.add_effector(effector("a", "(a)"));
    EXPECT_EQ(both.get_effector_chain(), "(a)(b)");
    Descriptor_Action one("b");
    one.add_effector(effector("a", "(a)"));
    one.add_effector(effector("b", "(b)", true));
    EXPECT_EQ(one.get_effector_chain(), "(a)");
    Descriptor_Action none("b");
    none.add_effector(effector("a", "(a)", true));
    none.add_effector(effector("b", "(b)", true));
    EXPECT_EQ(none.get_effector_chain(), "");
}

/// Plug-in descriptors that change their renderings and message.
class LoudSkill : public NamedSkill {
public:
    using NamedSkill::NamedSkill;
    std::string to_eval() const override { return "(loud " + id + ")"; }
};
class LoudEffector : public NamedEffector {
public:
    using NamedEffector::NamedEffector;
    std::string to_eval() const override { return "(loud " + id + ")"; }
    const std::string& get_message() const override { return loud; }

private:
    std::string loud = "(LOUD)";
};

TEST(DescriptorAction, RendersThroughPlugInOverrides) {
    Descriptor_Action action("b");
    action.add_skill(boost::make_shared<LoudSkill>("kick"));
    action.add_effector(boost::make_shared<LoudEffector>("say", "(quiet)"));
    EXPECT_EQ(action.to_eval(), "(action (initiator b)(skill_chain (loud kick))(effectors (loud "
                                "say)))");
    EXPECT_EQ(action.get_effector_chain(), "(LOUD)");
}

} // namespace
