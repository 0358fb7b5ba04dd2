// The fall detector on perceptions recorded from a real server (orvo_drill
// getup --record), with the monitor's truth beside each: the robot stands or
// walks, lets itself fall, and gets up.
#include <orvo/fall/fall_detector.h>
#include <orvo/perception/perception_reader.h>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using orvo::fall::Posture;

/// One cycle: the truth by the monitor, then the perception.
struct Frame {
    double time = 0, tilt = 0, height = 0;
    std::string payload;
};

std::vector<Frame> read_frames(const std::string& path) {
    std::ifstream in(path);
    std::vector<Frame> frames;
    Frame frame;
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream words(line);
        std::string kind;
        words >> kind;
        if (kind == "truth") {
            words >> frame.time >> frame.tilt >> frame.height;
        } else if (kind == "perceive") {
            frame.payload = line.substr(kind.size() + 1);
            frames.push_back(frame);
        }
    }
    return frames;
}

bool fallen_by_monitor(const Frame& f) {
    return f.tilt > 53 || f.height < 0.25;
}

/// Whether the monitor showed the robot upright over the recording's last 1.2 s.
bool stood_up_at_end(const std::vector<Frame>& frames) {
    for (auto f = frames.rbegin(); f != frames.rend() && frames.back().time - f->time < 1.2; ++f) {
        if (f->tilt > 25 || f->height < 0.30) {
            return false;
        }
    }
    return true;
}

struct RecordedFall {
    const char* file;
    int type;
    Posture lying;
};

const RecordedFall recorded_falls[] = {
    {"type0_walk_front.txt", 0, Posture::fallen_front},
    {"type2_back.txt", 2, Posture::fallen_back},
    // Type 4 fell by itself while it walked, before it let itself go.
    {"type4_walk_falls_right.txt", 4, Posture::fallen_right},
    // Walking at its top speed rocks the torso: no fall before the drop.
    {"type3_fast_walk_front.txt", 3, Posture::fallen_front},
};

class Recorded : public testing::TestWithParam<RecordedFall> {};

TEST_P(Recorded, SeesTheFallInTimeAndNothingBefore) {
    const RecordedFall& c = GetParam();
    const auto frames = read_frames(std::string(FALL_DATA) + "/" + c.file);
    ASSERT_GT(frames.size(), 100u);
    orvo::fall::FallDetector detector(orvo::body::BodyModel::for_type(c.type),
                                      orvo::fall::FallParams::for_type(c.type));
    orvo::perception::PerceptionReader reader;
    orvo::perception::Perception p;
    double fell = -1, seen = -1;
    Posture first_lying = Posture::upright;
    for (const Frame& f : frames) {
        ASSERT_TRUE(reader.read(f.payload, p).ok());
        detector.update(p);
        if (fell < 0 && fallen_by_monitor(f)) {
            fell = f.time;
        }
        if (seen < 0 && detector.down()) {
            seen = f.time;
            EXPECT_GT(f.tilt, 20) << "a fall seen while the robot still stood, at " << f.time;
        }
        if (first_lying == Posture::upright && orvo::fall::lying(detector.posture())) {
            first_lying = detector.posture();
        }
    }
    ASSERT_GE(fell, 0) << "the recording shows no fall";
    ASSERT_GE(seen, 0) << "the fall at " << fell << " was never seen";
    EXPECT_LE(seen - fell, 0.06);
    EXPECT_GE(seen - fell, -1.0) << "a fall seen a second or more before the monitor showed one";
    EXPECT_EQ(first_lying, c.lying);
    // Where the robot stood up again, the detector must have seen it too.
    if (stood_up_at_end(frames)) {
        EXPECT_EQ(detector.posture(), Posture::upright);
    }
}

INSTANTIATE_TEST_SUITE_P(FallDetector, Recorded, testing::ValuesIn(recorded_falls));

} // namespace
