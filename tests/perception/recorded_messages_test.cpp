// The reader against messages recorded from a real server: every one reads,
// and every cut of every message fails cleanly or reads as the
// whole elements before the cut.
#include <orvo/perception/perception_reader.h>

#include <support/text.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace orvo::perception;
using orvo::robot::Joint;

// The two recordings, read once for every test.
const auto server = orvo_test::read_lines(RECORDED_DIR "/server-messages.txt");
const auto team = orvo_test::read_lines(RECORDED_DIR "/team-messages.txt");

TEST(RecordedMessages, EveryOneReadsWithItsTimeGameStateAndTwentyTwoJoints) {
    struct File {
        const std::vector<std::string>& lines;
        std::vector<double> times;
    };
    const File files[] = {
        {server,
         {4.22, 4.24, 4.26, 4.28, 4.30, 4.32, 4.68, 4.70, 4.72, 5.08, 5.10, 5.12, 5.68, 5.70,
          5.72}},
        {team, {0.86, 0.88, 0.90, 0.90, 1.58, 2.10, 2.10, 2.82, 8.54, 23.52, 4.78, 4.74}},
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

// Whole elements before the cut read; a cut inside an element fails at the cut.
TEST(RecordedMessages, EveryCutFailsAtTheCutOrEndsBetweenElements) {
    PerceptionReader reader;
    Perception perception;
    for (const auto* file : {&server, &team}) {
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

} // namespace
