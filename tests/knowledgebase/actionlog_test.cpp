#include "named_descriptors.h"

#include <orvo/knowledgebase/actionlog.h>
#include <orvo/knowledgebase/knowledgebase_module.h>

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

namespace {

using orvo::knowledgebase::ActionLog;
using namespace orvo_test;

const std::string header = "[i][Action Log]\n\n";

std::string printed(ActionLog& log) {
    std::ostringstream out;
    EXPECT_EQ(&log.print(out), &out);
    return out.str();
}

/// An entry line of an action with nothing added.
std::string bare_entry(unsigned int time) {
    return "\t-> @Sim (" + std::to_string(time) + ") [Descriptor_Action] Behavior(b" +
           std::to_string(time) + ")\n\n";
}

TEST(ActionLog, PrintsEveryEntryAndRendersTheCurrentOne) {
    LinkedLog linked;
    linked.inject_action("approach_ball", 4, 100);
    linked.add_skill("walk");
    linked.add_effector("legs");
    // Times print unsigned.
    const unsigned int last = std::numeric_limits<unsigned int>::max();
    linked.inject_action("b" + std::to_string(last), last, last);
    EXPECT_EQ(printed(linked.log), header +
                                       "\t-> @Sim (4) [Descriptor_Action] Behavior(approach_ball)\n"
                                       "\t-> Skill (walk))\n"
                                       "\t-> Effector (legs)\n"
                                       "\n" +
                                       bare_entry(last));
    EXPECT_EQ(linked.log.to_eval(),
              "(log (action (initiator b4294967295)(skill_chain)(effectors)))");
}

TEST(ExtractorAction, AgesCountFromTheNewestEntryThatTrimmingLeft) {
    LinkedLog linked;
    EXPECT_EQ(linked.extract(0), nullptr);
    EXPECT_EQ(linked.extract(std::numeric_limits<unsigned int>::max()), nullptr);
    for (unsigned int time = 1; time <= 9; ++time) {
        linked.inject_action("b" + std::to_string(time), time * 2, 1000);
    }
    linked.inject_action("repeated", 18, 1000); // the first action of a time stays
    for (unsigned int age = 0; age < 9; ++age) {
        ASSERT_NE(linked.extract(age), nullptr) << age;
        EXPECT_EQ(linked.extract(age)->get_initiator(), "b" + std::to_string(9 - age)) << age;
    }
    EXPECT_EQ(linked.extract(9), nullptr);
    linked.inject_action("b10", 20, 5); // keeps 16..20
    EXPECT_EQ(linked.extract(0)->get_initiator(), "b10");
    EXPECT_EQ(linked.extract(2)->get_initiator(), "b8");
    EXPECT_EQ(linked.extract(3), nullptr);
}

} // namespace
