#include "perception.h"
#include "sexpression.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace {

TEST(Perception, ReadsEveryRecordedMessageOfARealServer) {
    std::ifstream file(SERVER_MESSAGES);
    std::vector<std::string> messages;
    for (std::string line; std::getline(file, line);) {
        messages.push_back(line);
    }
    ASSERT_EQ(messages.size(), 15u);
    const double times[] = {4.22, 4.24, 4.26, 4.28, 4.30, 4.32, 4.68, 4.70,
                            4.72, 5.08, 5.10, 5.12, 5.68, 5.70, 5.72};
    demo::PerceptionParser parser;
    demo::Perception perception;
    for (std::size_t i = 0; i < messages.size(); ++i) {
        SCOPED_TRACE("message " + std::to_string(i + 1));
        ASSERT_TRUE(parser.parse(messages[i], perception));
        EXPECT_NEAR(perception.now, times[i], 1e-6);
        EXPECT_TRUE(perception.has_game_state);
        EXPECT_EQ(perception.play_mode, "BeforeKickOff");
        EXPECT_EQ(perception.game_time, 0.0);
        // Only one message tells the number.
        EXPECT_EQ(perception.unum, i == 4 ? 1 : 0);
        EXPECT_EQ(perception.side, i == 4 ? "left" : "");
        EXPECT_TRUE(perception.has_head_angles);
        const bool vision = i == 0 || i == 3 || i == 7 || i == 11 || i == 14;
        EXPECT_EQ(perception.has_vision, vision);
        // From the 8th message on, the agent sees its own arms: team Test, id 1.
        if (vision && i >= 7) {
            ASSERT_EQ(perception.players.size(), 1u);
            EXPECT_EQ(perception.players[0].team, "Test");
            EXPECT_EQ(perception.players[0].id, 1);
            EXPECT_GT(perception.players[0].distance, 0.1f);
            EXPECT_LT(perception.players[0].distance, 0.3f);
        } else {
            EXPECT_TRUE(perception.players.empty());
        }
        // The head joint angles follow the commands of the recording.
        if (i == 11) {
            EXPECT_FLOAT_EQ(perception.head_pan, 0.57f);
        } else if (i == 14) {
            EXPECT_FLOAT_EQ(perception.head_pan, 16.62f);
            EXPECT_FLOAT_EQ(perception.head_tilt, 0.69f);
        }
    }
}

TEST(Perception, ReadsNumberSidePlayModeAndPlayersAndSkipsWhatItDoesNotKnow) {
    demo::PerceptionParser parser;
    demo::Perception perception;
    ASSERT_TRUE(parser.parse("(time (now 0.04))(GS (unum 7) (team right) (t 1.50) (pm PlayOn))"
                             "(weird (stuff (deep)))(mypos -3.25 2.00 0.35)"
                             "(See (B (pol 1 2 3)) (P (team orvo) (id 4) (head (pol 5.00 -90.00 "
                             "1.00))) (P (team orvo) (id 9)))",
                             perception));
    EXPECT_EQ(perception.unum, 7);
    EXPECT_EQ(perception.side, "right");
    EXPECT_EQ(perception.play_mode, "PlayOn");
    EXPECT_DOUBLE_EQ(perception.game_time, 1.5);
    // A player without a position (id 9) is skipped.
    ASSERT_EQ(perception.players.size(), 1u);
    EXPECT_EQ(perception.players[0].id, 4);
    EXPECT_FLOAT_EQ(perception.players[0].azimuth, -90.0f);
}

TEST(Perception, BrokenMessagesAreRefusedWithoutHarm) {
    demo::PerceptionParser parser;
    demo::Perception perception;
    EXPECT_FALSE(parser.parse("", perception));
    EXPECT_FALSE(parser.parse("(GS (t 0) (pm BeforeKickOff))", perception)); // no time
    EXPECT_FALSE(parser.parse("(time (now 1.00))(GS (t 0)", perception));    // unbalanced
    EXPECT_FALSE(parser.parse("(time (now 1.00)))", perception));            // one ) too many
    EXPECT_FALSE(parser.parse("(time (now x))", perception));
    // The previous message's content does not leak into the next.
    ASSERT_TRUE(parser.parse("(time (now 1.00))(GS (unum 2) (team left) (pm PlayOn))"
                             "(See (P (team orvo) (id 4) (head (pol 5 0 0))))",
                             perception));
    ASSERT_TRUE(parser.parse("(time (now 1.02))", perception));
    EXPECT_EQ(perception.unum, 0);
    EXPECT_EQ(perception.play_mode, "");
    EXPECT_FALSE(perception.has_game_state);
    EXPECT_FALSE(perception.has_vision);
    EXPECT_TRUE(perception.players.empty());
}

TEST(SExpression, NestedListsLinkChildrenAndSiblings) {
    demo::SExpression tree;
    ASSERT_TRUE(tree.parse("(a (b 1 2) (c (d 3)))  (e)"));
    const auto a = tree.root();
    EXPECT_EQ(tree.head(a), "a");
    EXPECT_EQ(tree.value(a, "b"), "1");
    const auto c = tree.find(a, "c");
    EXPECT_EQ(tree.value(c, "d"), "3");
    EXPECT_EQ(tree.find(a, "d"), demo::SExpression::none); // only direct children
    EXPECT_EQ(tree.head(tree.next(a)), "e");
    EXPECT_EQ(tree.first_argument(tree.next(a)), demo::SExpression::none);
    EXPECT_EQ(tree.next(tree.next(a)), demo::SExpression::none);
    EXPECT_EQ(tree.value(demo::SExpression::none, "x"), "");

    float number = 7;
    EXPECT_FALSE(demo::to_float("1.5x", number));
    EXPECT_FALSE(demo::to_float("inf", number));
    EXPECT_EQ(number, 7);
    int whole = 0;
    EXPECT_TRUE(demo::to_int("-12", whole));
    EXPECT_EQ(whole, -12);
    EXPECT_FALSE(demo::to_int("99999999999", whole));
}

} // namespace
