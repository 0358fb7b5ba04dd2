// The reader on made-up messages: every kind of element, what it skips,
// what it refuses and where.
#include <orvo/perception/perception_reader.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace orvo::perception;
using orvo::robot::Joint;

TEST(PerceptionReader, ReadsEveryKindOfElementAndSkipsUnknownOnes) {
    // A type 4 robot with toes, on a stand-in that tells the position, hearing
    // two messages (one in the older form without a team), with unknown
    // elements and values at every level.
    const std::string message =
        "(time (now 12.5) (extra 1))(GS (unum 11) (team right) (sl 2) (sr 3) (t 304.5) "
        "(pm corner_kick_left) (new (deep 1)))(GYR (n torso) (rt 1 -2 3.5))(ACC (n torso) "
        "(a 0.1 0.2 9.75))(HJ (n llj7) (ax 12.5))(HJ (ax -3) (n rlj7))(HJ (n xyz9) (ax 1))"
        "(HJ (n laj2))(FRP (n lf1) (c 0.01 0.02 -0.01) (f 1 2 30))(FRP (n rf) (c 0 0 0) "
        "(f 0 0 1))(FRP (n zz) (c 1 1 1) (f 1 1 1))(mypos -3.25 2 0.35)(alien 1 (2 3))\n"
        "(See (F1L (pol 1 2 3)) (F2R (pol 4 5 6)) (G1L (pol 7 8 9)) (G2R (pol 10 11 12)) "
        "(F3L (pol 1 1 1)) (B (pol 0.5 -10 -20) (vel 1 2 3)) (B) (P (team orvo) (id 7) "
        "(rfoot (pol 2 3 4)) (tail (pol 1 1 1)) (head (pol 1 2 3 4))) (P (id 4)) "
        "(L (pol 1 2 3) (pol 4 5 6)) (L (pol 1 2 3)) (Q q))"
        "(hear orvo 12.40 -90.5 pass)(hear 12.42 self go)(hear too few)";
    PerceptionReader reader;
    Perception p;
    const ReadResult result = reader.read(message, p);
    ASSERT_TRUE(result) << result.describe();

    const GameState& gs = p.game_state;
    EXPECT_EQ(gs.unum, 11);
    EXPECT_EQ(gs.score_left + 10 * gs.score_right, 32);
    EXPECT_EQ(gs.play_mode, PlayMode::corner_kick_left);

    EXPECT_EQ(p.joints.count(), 2u); // the unknown joint and the one without angle are left out
    EXPECT_FLOAT_EQ(p.joints[Joint::left_toe], 12.5f);
    EXPECT_FLOAT_EQ(p.joints[Joint::right_toe], -3.0f);

    EXPECT_TRUE(p[Foot::left_toe].touches && p[Foot::right].touches);
    EXPECT_FALSE(p[Foot::left].touches || p[Foot::right_toe].touches);

    ASSERT_TRUE(p.has_position);
    EXPECT_FLOAT_EQ(p.position.x, -3.25f);

    const Vision& v = p.vision;
    EXPECT_EQ(v.landmarks_seen, (1u << 0) | (1u << 3) | (1u << 4) | (1u << 7));
    EXPECT_FLOAT_EQ(v[Landmark::G2R].elevation, 12.0f);
    ASSERT_TRUE(v.sees_ball); // the second, empty "B" does not unsee it
    ASSERT_EQ(v.players.size(), 2u);
    EXPECT_EQ(v.players[0].id, 7);
    EXPECT_EQ(v.players[0].seen, (1u << static_cast<int>(BodyPart::right_foot)) |
                                     (1u << static_cast<int>(BodyPart::head)));
    EXPECT_FLOAT_EQ(v.players[0][BodyPart::head].elevation, 3.0f);
    EXPECT_EQ(v.players[1].seen, 0u);
    ASSERT_EQ(v.lines.size(), 1u); // a line needs both ends

    ASSERT_EQ(p.heard.size(), 2u);
    EXPECT_DOUBLE_EQ(p.heard[0].time, 12.40);
    EXPECT_FLOAT_EQ(p.heard[0].direction, -90.5f);
    EXPECT_EQ(p.heard[0].text, "pass");
    EXPECT_TRUE(p.heard[1].self);

    // The next message starts from nothing, whatever this one held.
    ASSERT_TRUE(reader.read("(time (now 12.52))", p));
    EXPECT_FALSE(p.has_game_state || p.has_gyroscope || p.has_accelerometer || p.has_vision ||
                 p.has_position || p.joints.count() != 0);
    EXPECT_FALSE(p[Foot::left_toe].touches || p[Foot::right].touches);
    EXPECT_TRUE(p.vision.players.empty() && p.vision.lines.empty() && p.heard.empty());
}

TEST(PerceptionReader, RefusesMalformedMessagesAtTheFaultyByte) {
    const struct {
        const char* message;
        ReadFault fault;
        std::size_t offset;
    } cases[] = {
        {"(time (now 1.0))(GS (t 0)", ReadFault::unclosed, 25},
        {"(time (now 1.0))(", ReadFault::unclosed, 17},
        {"(See (P (head (pol 1 2 3))", ReadFault::unclosed, 26},
        {"(time (now 1.0)))", ReadFault::unopened, 16},
        {")", ReadFault::unopened, 0},
        {"(time (now 1.0)) junk (GS)", ReadFault::stray_text, 17},
    };
    PerceptionReader reader;
    Perception p;
    for (const auto& c : cases) {
        const ReadResult result = reader.read(c.message, p);
        EXPECT_EQ(result.fault, c.fault) << c.message;
        EXPECT_EQ(result.offset, c.offset) << c.message;
    }
    EXPECT_EQ(reader.read("(time (now 1.0))(", p).describe(),
              "message ends inside an element at byte 17");
    EXPECT_EQ(reader.read(" \t\r\n", p).describe(), "read");
}

} // namespace
