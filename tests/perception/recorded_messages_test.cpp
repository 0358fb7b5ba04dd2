// The reader against messages recorded from a real server: every one reads,
// a few are checked value by value (values copied from the recording by
// hand), and every cut of every message fails cleanly or reads as the
// whole elements before the cut.
#include "support/allocation_counter.h"

#include <orvo/perception/perception_reader.h>

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace {

using namespace orvo::perception;
using orvo::robot::Joint;

std::vector<std::string> recorded(const char* name) {
    std::ifstream file(std::string(RECORDED_DIR) + "/" + name);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

const std::vector<std::string>& server() {
    static const auto lines = recorded("server-messages.txt");
    return lines;
}
const std::vector<std::string>& team() {
    static const auto lines = recorded("team-messages.txt");
    return lines;
}

void expect_polar(const orvo::math::Polar& seen, float distance, float azimuth, float elevation) {
    EXPECT_FLOAT_EQ(seen.distance, distance);
    EXPECT_FLOAT_EQ(seen.azimuth, azimuth);
    EXPECT_FLOAT_EQ(seen.elevation, elevation);
}

void expect_vector(const orvo::math::Vector3d& v, float x, float y, float z) {
    EXPECT_FLOAT_EQ(v.x, x);
    EXPECT_FLOAT_EQ(v.y, y);
    EXPECT_FLOAT_EQ(v.z, z);
}

TEST(RecordedMessages, EveryOneReadsWithItsTimeGameStateAndTwentyTwoJoints) {
    struct File {
        const std::vector<std::string>& lines;
        std::vector<double> times;
    };
    const File files[] = {
        {server(),
         {4.22, 4.24, 4.26, 4.28, 4.30, 4.32, 4.68, 4.70, 4.72, 5.08, 5.10, 5.12, 5.68, 5.70,
          5.72}},
        {team(), {0.86, 0.88, 0.90, 0.90, 1.58, 2.10, 2.10, 2.82, 8.54, 23.52, 4.78, 4.74}},
    };
    PerceptionReader reader;
    Perception perception;
    for (const File& file : files) {
        ASSERT_EQ(file.lines.size(), file.times.size());
        for (std::size_t i = 0; i < file.lines.size(); ++i) {
            SCOPED_TRACE("message " + std::to_string(i + 1) + ": " + file.lines[i].substr(0, 40));
            const ReadResult result = reader.read(file.lines[i], perception);
            ASSERT_TRUE(result) << result.describe();
            EXPECT_TRUE(perception.has_time);
            EXPECT_DOUBLE_EQ(perception.time, file.times[i]);
            EXPECT_TRUE(perception.has_game_state && perception.has_gyroscope &&
                        perception.has_accelerometer);
            EXPECT_EQ(perception.joints.count(), 22u);
            EXPECT_FALSE(perception.joints.has(Joint::left_toe) ||
                         perception.joints.has(Joint::right_toe));
            EXPECT_FALSE(perception.has_position); // a real server never tells it
        }
    }
}

TEST(RecordedMessages, ValuesMatchTheRecording) {
    PerceptionReader reader;
    Perception p;

    // A lone robot that turned its head and sees its own arms.
    ASSERT_TRUE(reader.read(server()[14], p));
    EXPECT_EQ(p.game_state.play_mode, PlayMode::BeforeKickOff);
    EXPECT_EQ(p.game_state.play_mode_name, "BeforeKickOff");
    EXPECT_EQ(p.game_state.unum, 0);
    EXPECT_EQ(p.game_state.side, Side::none);
    EXPECT_FLOAT_EQ(p.joints[Joint::neck_yaw], 16.62f);
    expect_vector(p.accelerometer, 0.0f, 0.0f, 9.81f);
    ASSERT_TRUE(p[Foot::right].touches && p[Foot::left].touches);
    EXPECT_FALSE(p[Foot::left_toe].touches || p[Foot::right_toe].touches);
    expect_vector(p[Foot::right].contact, -0.0f, -0.01f, -0.01f);
    expect_vector(p[Foot::right].force, 0.0f, 0.0f, 22.60f);
    ASSERT_TRUE(p.has_vision);
    const Vision& v = p.vision;
    EXPECT_TRUE(v.sees(Landmark::G2R) && v.sees(Landmark::G1R) && v.sees(Landmark::F1R) &&
                v.sees(Landmark::F2R));
    expect_polar(v[Landmark::G2R], 17.77f, -30.66f, 0.30f);
    ASSERT_TRUE(v.sees_ball);
    expect_polar(v.ball, 3.25f, -59.68f, -9.11f);
    ASSERT_EQ(v.players.size(), 1u);
    EXPECT_FALSE(v.players[0].sees(BodyPart::head));
    ASSERT_TRUE(v.players[0].sees(BodyPart::right_lower_arm));
    expect_polar(v.players[0][BodyPart::left_lower_arm], 0.19f, 19.74f, -23.03f);
    ASSERT_EQ(v.lines.size(), 13u);
    expect_polar(v.lines[12].end, 4.96f, -45.09f, -6.69f);

    // The one message that tells the robot its number, while the server drops it in.
    ASSERT_TRUE(reader.read(server()[4], p));
    EXPECT_EQ(p.game_state.unum, 1);
    EXPECT_EQ(p.game_state.side, Side::left);
    EXPECT_FALSE(p.has_vision);
    EXPECT_FALSE(p[Foot::left].touches);

    // A team-mate hears the direction the speaker is in.
    ASSERT_TRUE(reader.read(team()[6], p));
    ASSERT_EQ(p.heard.size(), 1u);
    EXPECT_FALSE(p.heard[0].self);
    EXPECT_FLOAT_EQ(p.heard[0].direction, -55.96f);
    EXPECT_DOUBLE_EQ(p.heard[0].time, 0.0);

    // Kick-off, seen from the field with six team-mates in view, the last with all five parts.
    ASSERT_TRUE(reader.read(team()[8], p));
    EXPECT_EQ(p.game_state.play_mode, PlayMode::KickOff_Left);
    EXPECT_DOUBLE_EQ(p.game_state.time, 0.02);
    expect_vector(p.gyroscope, 0.20f, 0.0f, -0.12f);
    expect_polar(p.vision[Landmark::G1L], 8.68f, 3.36f, 1.65f);
    ASSERT_EQ(p.vision.players.size(), 6u);
    EXPECT_EQ(p.vision.players[5].id, 5);
    EXPECT_TRUE(p.heard.empty());

    ASSERT_TRUE(reader.read(team()[9], p));
    EXPECT_EQ(p.game_state.play_mode, PlayMode::PlayOn);
    EXPECT_DOUBLE_EQ(p.game_state.time, 15.0);
    ASSERT_TRUE(reader.read(team()[10], p));
    EXPECT_EQ(p.game_state.side, Side::right);
}

// Whole elements before the cut read; a cut inside an element fails at the cut.
TEST(RecordedMessages, EveryCutFailsAtTheCutOrEndsBetweenElements) {
    PerceptionReader reader;
    Perception perception;
    for (const auto* file : {&server(), &team()}) {
        for (const std::string& message : *file) {
            int depth = 0;
            for (std::size_t cut = 0; cut < message.size(); ++cut) {
                // A copy of exactly the cut length, so the sanitizers see any read beyond it.
                const std::string piece = message.substr(0, cut);
                const ReadResult result = reader.read(piece, perception);
                if (depth == 0) {
                    ASSERT_TRUE(result) << result.describe() << " in " << piece;
                } else {
                    ASSERT_EQ(result.fault, ReadFault::unclosed) << piece;
                    ASSERT_EQ(result.offset, cut) << piece;
                }
                depth += message[cut] == '(' ? 1 : message[cut] == ')' ? -1 : 0;
            }
        }
    }
}

TEST(RecordedMessages, ReadingAllocatesNothingOnceWarm) {
    PerceptionReader reader;
    Perception perception;
    const auto read_all = [&] {
        for (const auto* file : {&server(), &team()}) {
            for (const std::string& message : *file) {
                ASSERT_TRUE(reader.read(message, perception));
            }
        }
    };
    read_all();
    read_all();
    const long before = allocations();
    read_all();
    EXPECT_EQ(allocations(), before);
}

} // namespace
