// Values that are not numbers ("nan" from a real server, "inf", garbage, a
// missing number) cost the element that carries them and nothing else.
#include <orvo/perception/perception_reader.h>

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <regex>
#include <string>

namespace {

using namespace orvo::perception;

// Every kind of element the reader keeps, one of each, with a robot seen
// by two parts: a bad value anywhere in it loses exactly one of the things
// count_kept() counts.
const std::string whole =
    "(time (now 12.5))(GS (unum 3) (team left) (sl 1) (sr 2) (t 4.5) (pm PlayOn))"
    "(GYR (n torso) (rt 1 -2 3.5))(ACC (n torso) (a 0.1 0.2 9.75))(HJ (n hj1) (ax 12.5))"
    "(HJ (n hj2) (ax -3))(FRP (n lf) (c 0.01 0.02 -0.01) (f 1 2 30))(mypos -3.25 2 0.35)"
    "(See (F1L (pol 1 2 3)) (G2R (pol 10 11 12)) (B (pol 0.5 -10 -20)) (P (team orvo) "
    "(head (pol 1 2 3)) (lfoot (pol 1.5 2 -3))) (L (pol 1 2 3) (pol 4 5 6)) "
    "(L (pol 7 8 9) (pol 1 1 1)))(hear orvo 12.40 -90.5 pass)";

int count_kept(const Perception& p) {
    int kept = p.has_time + p.has_game_state + p.has_gyroscope + p.has_accelerometer +
               p.has_position + static_cast<int>(p.joints.count()) +
               static_cast<int>(p.heard.size()) + p.vision.sees_ball +
               static_cast<int>(p.vision.lines.size());
    for (const FootForce& foot : p.feet) {
        kept += foot.touches;
    }
    for (std::size_t i = 0; i < landmark_count; ++i) {
        kept += p.vision.sees(static_cast<Landmark>(i));
    }
    for (const SeenPlayer& player : p.vision.players) {
        for (std::size_t i = 0; i < body_part_count; ++i) {
            kept += player.sees(static_cast<BodyPart>(i));
        }
    }
    return kept;
}

// Each number of the message in turn, replaced by each kind of bad value.
TEST(LostValues, EachBadValueLosesOnlyItsElement) {
    PerceptionReader reader;
    Perception p;
    ASSERT_TRUE(reader.read(whole, p));
    ASSERT_EQ(p.lost_elements, 0u);
    const int all = count_kept(p);
    ASSERT_EQ(all, 16);

    const std::regex number("-?[0-9.]+(?=[ )])");
    int numbers = 0;
    for (auto it = std::sregex_iterator(whole.begin(), whole.end(), number);
         it != std::sregex_iterator(); ++it) {
        if (whole[it->position() - 1] != ' ') {
            continue; // a digit inside a name such as "hj1"
        }
        ++numbers;
        for (const char* bad : {"nan", "inf", "-inf", "NaN", "x", "1.2.3", ""}) {
            const std::string message =
                whole.substr(0, it->position()) + bad + whole.substr(it->position() + it->length());
            const ReadResult result = reader.read(message, p);
            ASSERT_TRUE(result) << result.describe() << " in " << message;
            EXPECT_EQ(result.lost, 1u) << message;
            EXPECT_EQ(p.lost_elements, 1u) << message;
            EXPECT_EQ(count_kept(p), all - 1) << message;
        }
    }
    EXPECT_EQ(numbers, 51);
}

// The line a real server sent in a game of eleven robots, and how the loss is
// told (that nothing else is lost, the first test shows for every value).
TEST(LostValues, AFieldLineWithANanEndIsTheOnlyLoss) {
    const std::string message =
        "(time (now 80.12))(GS (t 20.30) (pm PlayOn))(GYR (n torso) (rt 0.01 0.02 0.03))"
        "(See (G1R (pol 14.2 -3.1 1.2)) (L (pol nan nan nan) (pol 8.46 -60.16 -3.84)) "
        "(L (pol 5.1 20.5 -4.2) (pol 6.3 -10.1 -3.9)))(HJ (n hj1) (ax -0.00))";
    PerceptionReader reader;
    Perception p;
    const ReadResult result = reader.read(message, p);
    ASSERT_TRUE(result);
    EXPECT_EQ(result.describe(), "read, 1 element lost (the first: not a number at byte 118)");
    ASSERT_EQ(p.vision.lines.size(), 1u);
    EXPECT_FLOAT_EQ(p.vision.lines[0].begin.distance, 5.1f);
}

// Perceptions a real server sent in a game of eleven robots, each with a
// "(pol nan nan nan)" in it: all else is read, and no value that is not a
// number reaches the Perception.
TEST(LostValues, RecordedPerceptionsWithNanKeepTheirSensorsAndJoints) {
    std::ifstream file(std::string(RECORDED_DIR) + "/nonfinite-messages.txt");
    PerceptionReader reader;
    Perception p;
    int messages = 0;
    for (std::string message; std::getline(file, message); ++messages) {
        const ReadResult result = reader.read(message, p);
        ASSERT_TRUE(result) << result.describe();
        EXPECT_GE(p.lost_elements, 1u);
        EXPECT_TRUE(p.has_time && p.has_game_state && p.has_gyroscope && p.has_accelerometer);
        EXPECT_EQ(p.joints.count(), 22u);
        EXPECT_GT(p.vision.lines.size(), 0u);
        for (const SeenLine& line : p.vision.lines) {
            EXPECT_TRUE(std::isfinite(line.begin.distance) && std::isfinite(line.end.distance));
        }
    }
    EXPECT_GE(messages, 1);
}

// A bad value does not hide faults of the message's shape after it.
TEST(LostValues, ACutMessageStillFailsAfterALoss) {
    PerceptionReader reader;
    Perception p;
    const ReadResult result = reader.read("(GYR (rt nan 0 0))(time (now 1", p);
    EXPECT_EQ(result.fault, ReadFault::unclosed);
    EXPECT_EQ(result.lost, 1u);
}

} // namespace
