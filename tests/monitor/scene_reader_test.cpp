// The monitor reader against the server's recorded stream (two robots, robot
// 1 of the left team placed at (-5, 2), the ball at (3, -1)), and against
// that stream changed where the server would change it.
#include <orvo/monitor/scene_reader.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/allocation_counter.h"
#include "support/text.h"

namespace {

using orvo::monitor::SceneReader;
using orvo::monitor::Side;

class SampleStream : public ::testing::Test {
protected:
    void SetUp() override {
        lines = orvo_test::read_lines(MONITOR_SAMPLE);
        ASSERT_EQ(lines.size(), 30u);
        for (const auto& line : lines) {
            reader.read(line);
        }
    }
    std::vector<std::string> lines;
    SceneReader reader;
};

TEST_F(SampleStream, KeepsTheGameTheRobotsAndTheBall) {
    const auto& truth = reader.truth();
    EXPECT_EQ(reader.counts().malformed + reader.counts().mismatched, 0);
    EXPECT_EQ(truth.play_mode_name(), "PlayOn");
    EXPECT_EQ(truth.team_left, "probe");
    EXPECT_NEAR(truth.time, 1.48 + 29 * 0.04, 1e-6);
    EXPECT_NEAR(truth.ball[0], 3.0, 0.01);
    EXPECT_NEAR(truth.ball[1], -1.0, 0.01);
    ASSERT_EQ(truth.robots.size(), 2u);

    const auto* one = reader.robot(Side::left, 1);
    ASSERT_NE(one, nullptr);
    EXPECT_EQ(one->type, 0);
    EXPECT_NEAR(one->x, -5.0, 0.01);
    EXPECT_NEAR(one->y, 2.0, 0.01);
    EXPECT_NEAR(one->heading_deg, 0.0, 0.1);
    EXPECT_FALSE(one->fallen());
    ASSERT_NE(one->part("head"), nullptr);
    EXPECT_NEAR(one->part("head")->m[14], 0.555, 0.01);
    for (const char* name : {"torso", "lfoot", "rfoot", "lthigh", "rshank", "llowerarm"}) {
        EXPECT_NE(one->part(name), nullptr) << name;
    }
    ASSERT_NE(reader.robot(Side::left, 2), nullptr);
    EXPECT_EQ(reader.robot(Side::left, 2)->type, 1);
    EXPECT_EQ(reader.robot(Side::right, 1), nullptr);
}

TEST_F(SampleStream, UpdatesAllocateNothingOnceASceneIsHeld) {
    const long before = allocations();
    for (int round = 0; round < 10; ++round) {
        for (std::size_t i = 1; i < lines.size(); ++i) {
            reader.read(lines[i]);
        }
    }
    EXPECT_EQ(allocations(), before);
}

TEST_F(SampleStream, AMovedTorsoChangesPositionHeadingAndTilt) {
    struct Case {
        const char* matrix;
        double x, y, heading, tilt;
        bool fallen;
    };
    const Case cases[] = {
        // upright, facing +y
        {"1 0 0 0 0 1 0 0 0 0 1 0 -3 1 0.38 1", -3, 1, 90, 0, false},
        // upright, facing -x
        {"0 1 0 0 -1 0 0 0 0 0 1 0 4 -2 0.38 1", 4, -2, 180, 0, false},
        // on its back: up axis along +x, forward axis pointing up
        {"0 1 0 0 0 0 1 0 1 0 0 0 0 0 0.1 1", 0, 0, 0, 90, true},
    };
    for (const Case& c : cases) {
        EXPECT_TRUE(reader.read(orvo_test::moved(lines[0], lines[1], "-5 2 0.4 1)", c.matrix)));
        const auto* one = reader.robot(Side::left, 1);
        ASSERT_NE(one, nullptr);
        EXPECT_NEAR(one->x, c.x, 1e-9) << c.matrix;
        EXPECT_NEAR(one->y, c.y, 1e-9) << c.matrix;
        EXPECT_NEAR(one->tilt_deg, c.tilt, 1e-6) << c.matrix;
        if (c.tilt < 80) {
            EXPECT_NEAR(one->heading_deg, c.heading, 1e-6) << c.matrix;
        }
        EXPECT_EQ(one->fallen(), c.fallen) << c.matrix;
    }
    EXPECT_EQ(reader.counts().mismatched, 0);
}

TEST_F(SampleStream, HeaderChangesAndASceneSentAgainAreKept) {
    EXPECT_TRUE(reader.read("((time 9.5)(play_mode 13)(score_left 1))(RDS 0 1)" +
                            lines[1].substr(lines[1].find("(RDS 0 1)") + 9)));
    EXPECT_EQ(reader.truth().play_mode_name(), "Goal_Left");
    EXPECT_EQ(reader.truth().score_left, 1);
    EXPECT_DOUBLE_EQ(reader.truth().time, 9.5);
    EXPECT_FALSE(reader.read("((time 9.5))"));

    std::string again = lines[0];
    again.replace(again.find("matNum1 matLeft"), 15, "matNum7 matRight");
    EXPECT_TRUE(reader.read(again));
    EXPECT_EQ(reader.counts().scenes, 2);
    EXPECT_EQ(reader.robot(Side::left, 1), nullptr);
    ASSERT_NE(reader.robot(Side::right, 7), nullptr);
    EXPECT_NEAR(reader.robot(Side::right, 7)->x, -5.0, 0.01);
}

TEST_F(SampleStream, BrokenMessagesKeepWhatWasKnown) {
    const std::string inputs[] = {
        "garbage",
        "((time 3.0))(XYZ 0 1)(",
        lines[1].substr(0, lines[1].size() - 40),
        "((time 3.0))(RDS 0 1)((nd(nd)))",          // fewer nodes than the scene
        "((time 3.0))(RDS 0 1)((nd (SLT 1 2 3))))", // a matrix cut short
        std::string(5000, '(') + std::string(5000, ')'),
    };
    for (const std::string& input : inputs) {
        reader.read(input);
        const auto* one = reader.robot(Side::left, 1);
        ASSERT_NE(one, nullptr) << input.substr(0, 60);
        EXPECT_NEAR(one->x, -5.0, 0.01) << input.substr(0, 60);
    }
    EXPECT_EQ(reader.counts().malformed, 3);  // the first three
    EXPECT_EQ(reader.counts().mismatched, 3); // the cut update and the next two
}

TEST_F(SampleStream, FoulsInTheHeaderAreKeptOnceEachInOrder) {
    const std::string body = lines[1].substr(lines[1].find("(RDS 0 1)"));
    struct Case {
        const char* header;
        std::size_t fouls; ///< fouls held after it
    };
    const Case cases[] = {
        {"((time 20.5)(foul 1 4 1 3))", 1}, // incapable, left 3
        {"((time 20.6)(foul 1 4 1 3))", 1}, // the same foul heard again
        {"((time 21.0)(foul 2 6 2 7)(foul 3 1 1 2))", 3},
        {"((time 21.1)(foul 4 1 0 2))", 3},               // no team: not placed
        {"((time 21.2)(foul 4 x 1 2)(play_mode 13))", 3}, // not a number
    };
    for (const Case& c : cases) {
        reader.read(c.header + body);
        EXPECT_EQ(reader.truth().fouls.size(), c.fouls) << c.header;
    }
    // The rest of a header goes on after a foul that is not one.
    EXPECT_EQ(reader.truth().play_mode_name(), "Goal_Left");
    EXPECT_EQ(reader.counts().malformed, 0);
    const auto& fouls = reader.truth().fouls;
    ASSERT_EQ(fouls.size(), 3u);
    EXPECT_EQ(fouls[0].type_name(), "incapable");
    EXPECT_EQ(fouls[0].side, Side::left);
    EXPECT_EQ(fouls[0].number, 3);
    EXPECT_DOUBLE_EQ(fouls[0].time, 20.5);
    EXPECT_EQ(fouls[1].type_name(), "charging");
    EXPECT_EQ(fouls[1].side, Side::right);
    EXPECT_EQ(fouls[2].type_name(), "touching");
    orvo::monitor::Foul unknown;
    unknown.type = 8;
    EXPECT_EQ(unknown.type_name(), "unknown");
}

} // namespace
