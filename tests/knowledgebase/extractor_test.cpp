#include "named_descriptors.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace orvo_test;

TEST(ExtractorAction, EmptyLogHasNoActionAtAnyAge) {
    LinkedLog linked;
    EXPECT_EQ(linked.extract.get_name(), "extractor_action");
    EXPECT_EQ(linked.extract.get_action_log(), &linked.log);
    EXPECT_EQ(linked.extract(0), nullptr);
    EXPECT_EQ(linked.extract(1), nullptr);
    EXPECT_EQ(linked.extract(std::numeric_limits<unsigned int>::max()), nullptr);
}

TEST(ExtractorAction, AgesCountFromTheNewestEntry) {
    LinkedLog linked;
    linked.inject_action("b3", 3, 100);
    ASSERT_NE(linked.extract(0), nullptr);
    EXPECT_EQ(linked.extract(0)->get_initiator(), "b3");
    EXPECT_EQ(linked.extract(1), nullptr);

    linked.inject_action("b7", 7, 100);
    linked.inject_action("b12", 12, 100);
    EXPECT_EQ(linked.extract(0), linked.log.actions.at(12).get());
    EXPECT_EQ(linked.extract(1), linked.log.actions.at(7).get());
    EXPECT_EQ(linked.extract(2), linked.log.actions.at(3).get());
    EXPECT_EQ(linked.extract(3), nullptr);
}

TEST(ExtractorAction, EveryAgeOfALongLogFindsItsEntry) {
    LinkedLog linked;
    for (unsigned int time = 0; time < 21; ++time) {
        linked.inject_action("b" + std::to_string(time), time * 2, 1000);
    }
    for (unsigned int age = 0; age < 21; ++age) {
        ASSERT_NE(linked.extract(age), nullptr) << age;
        EXPECT_EQ(linked.extract(age)->get_initiator(), "b" + std::to_string(20 - age)) << age;
    }
    EXPECT_EQ(linked.extract(21), nullptr);
}

TEST(ExtractorAction, SeesTheKeptActionOfARepeatedTime) {
    LinkedLog linked;
    linked.inject_action("first", 5, 10);
    linked.inject_action("second", 5, 10);
    ASSERT_NE(linked.extract(0), nullptr);
    EXPECT_EQ(linked.extract(0)->get_initiator(), "first");
    EXPECT_EQ(linked.extract(1), nullptr);
}

TEST(ExtractorAction, CountsOnlyTheEntriesTrimmingLeft) {
    LinkedLog linked;
    for (unsigned int time = 1; time <= 9; ++time) {
        linked.inject_action("b" + std::to_string(time), time, 100);
    }
    linked.inject_action("b10", 10, 3);
    EXPECT_EQ(linked.extract(0)->get_initiator(), "b10");
    EXPECT_EQ(linked.extract(2)->get_initiator(), "b8");
    EXPECT_EQ(linked.extract(3), nullptr);
}

} // namespace
