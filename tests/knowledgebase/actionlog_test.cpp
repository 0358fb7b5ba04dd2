#include "named_descriptors.h"

#include <orvo/knowledgebase/actionlog.h>
#include <orvo/knowledgebase/knowledgebase_module.h>

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

namespace {

using orvo::knowledgebase::ActionLog;
using orvo::knowledgebase::KnowledgeBase_Module;
using namespace orvo_test;

const std::string header = "[i][Action Log]\n\n";

std::string printed(ActionLog& log) {
    std::ostringstream out;
    EXPECT_EQ(&log.print(out), &out);
    return out.str();
}

/// An entry line of an action with nothing added.
std::string bare_entry(unsigned int time, const std::string& behavior) {
    return "\t-> @Sim (" + std::to_string(time) + ") [Descriptor_Action] Behavior(" + behavior +
           ")\n\n";
}

class OnlyModule : public KnowledgeBase_Module {
public:
    void link(orvo::Class_Map&) override {}
    std::string get_name() const override { return "only"; }
};

TEST(ActionLog, NewLogIsNamedAndRendersItsEmptyState) {
    ActionLog log;
    EXPECT_EQ(log.get_name(), "actionlog");
    EXPECT_EQ(printed(log), header);
    EXPECT_EQ(log.to_eval(), "(log )");
    EXPECT_EQ(log.start_time, 0u);
    EXPECT_FALSE(log.flag);
    EXPECT_TRUE(log.current_action == log.actions.end());
    EXPECT_TRUE(log.previous_action == log.actions.end());

    OnlyModule module;
    std::ostringstream out;
    EXPECT_EQ(&module.print(out), &out);
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(module.to_eval(), "");
}

TEST(ActionLog, PrintsEveryEntryWithItsActionListing) {
    LinkedLog linked;
    linked.inject_action("approach_ball", 4, 100);
    linked.add_skill("walk");
    linked.add_effector("legs");
    linked.inject_action("kick", 9, 100);
    EXPECT_EQ(printed(linked.log), header +
                                       "\t-> @Sim (4) [Descriptor_Action] Behavior(approach_ball)\n"
                                       "\t-> Skill (walk))\n"
                                       "\t-> Effector (legs)\n"
                                       "\n" +
                                       bare_entry(9, "kick"));
    EXPECT_EQ(linked.log.to_eval(), "(log (action (initiator kick)(skill_chain)(effectors)))");
}

TEST(ActionLog, ShowsTheTenNewestEntriesAndCountsTheSkippedOnes) {
    LinkedLog linked;
    std::string ten;
    for (unsigned int time = 1; time <= 10; ++time) {
        linked.inject_action("b" + std::to_string(time), time, 100);
        ten += bare_entry(time, "b" + std::to_string(time));
    }
    EXPECT_EQ(printed(linked.log), header + ten);

    linked.inject_action("b11", 11, 100);
    std::string shown;
    for (unsigned int time = 2; time <= 11; ++time) {
        shown += bare_entry(time, "b" + std::to_string(time));
    }
    EXPECT_EQ(printed(linked.log), header + "\t   ... Skipping (1) entries! \n\n" + shown);

    linked.inject_action("b12", 12, 100);
    const std::string twelve = printed(linked.log);
    EXPECT_EQ(twelve.rfind(header + "\t   ... Skipping (2) entries! \n\n" + bare_entry(3, "b3"), 0),
              0u);
}

TEST(ActionLog, PrintsTimesUnsigned) {
    LinkedLog linked;
    const unsigned int largest = std::numeric_limits<unsigned int>::max();
    linked.inject_action("late", largest, 1);
    EXPECT_EQ(printed(linked.log), header + bare_entry(largest, "late"));
}

TEST(ActionLog, RendersTheFirstActionOfARepeatedTime) {
    LinkedLog linked;
    linked.inject_action("first", 7, 10);
    linked.inject_action("second", 7, 10);
    EXPECT_EQ(linked.log.actions.size(), 1u);
    EXPECT_EQ(linked.log.to_eval(), "(log (action (initiator first)(skill_chain)(effectors)))");
}

} // namespace
