#include <orvo/skills/joint_controller.h>
#include <orvo/skills/motion.h>
#include <orvo/skills/motion_player.h>

#include "support/failure.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <memory>

namespace {

using orvo::robot::Joint;
using orvo::robot::JointSet;
using orvo::robot::JointValues;
using orvo::skills::JointController;
using orvo::skills::Keyframe;
using orvo::skills::Motion;
using orvo::skills::MotionPlayer;

/// The joints as the server moves them: each cycle a joint turns by its speed
/// command (clamped to the speed limit of its robot type) for 20 ms and stops
/// at its range. With a latency the server applies a command that many cycles
/// late.
struct ServerJoints {
    explicit ServerJoints(int latency, int type = 0)
        : pending(latency, JointValues{}), type(type) {}
    void apply(const JointValues& speeds) {
        pending.push_back(speeds);
        for (std::size_t i = 0; i < orvo::robot::joint_count; ++i) {
            const double limit = orvo::robot::speed_limit_rad(type, static_cast<Joint>(i));
            const double speed = std::clamp(pending.front()[i], -limit, limit);
            angles[i] = orvo::robot::clamp_to_range(
                static_cast<Joint>(i),
                angles[i] + speed * orvo::robot::degrees_per_radian * orvo::robot::cycle_seconds);
        }
        pending.pop_front();
    }
    JointValues angles{};
    std::deque<JointValues> pending;
    int type;
};

/// Angles `share` of the way from each joint's lower to its upper limit.
JointValues across_ranges(double share) {
    JointValues angles{};
    for (const auto& joint : orvo::robot::joint_table()) {
        angles[orvo::robot::index(joint.joint)] =
            joint.min_deg + share * (joint.max_deg - joint.min_deg);
    }
    return angles;
}

TEST(JointController, ReachesEveryTargetWithinTheRangesAndTheSpeedLimit) {
    struct Case {
        const char* what;
        int type;
        int latency;
        double start, target; ///< shares of each joint's range
    };
    const Case cases[] = {
        {"type 0, one end to the other", 0, 0, 0.02, 0.98},
        {"type 4, one end to the other, a cycle late", 4, 1, 0.98, 0.02},
        {"type 2, two cycles late", 2, 2, 0.3, 0.7},
        {"beyond the upper ends", 4, 1, 0.5, 1.4},
        {"beyond the lower ends", 0, 0, 0.5, -0.6},
    };
    constexpr int bound = 50; // a full 240-degree swing at the speed limit takes 35 cycles
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const JointSet joints = orvo::robot::joints_of(c.type);
        ServerJoints server(c.latency, c.type);
        server.angles = across_ranges(c.start);
        const JointValues targets = across_ranges(c.target);
        const JointValues still{};
        JointController controller({}, orvo::robot::speed_limits_deg(c.type));
        JointValues speeds{};
        JointValues fastest{};
        int cycle = 0;
        for (; cycle < bound + 25; ++cycle) {
            controller.step(targets, still, server.angles, joints, speeds);
            for (std::size_t i = 0; i < orvo::robot::joint_count; ++i) {
                fastest[i] = std::max(fastest[i], std::fabs(speeds[i]));
                const double error =
                    std::fabs(orvo::robot::clamp_to_range(static_cast<Joint>(i), targets[i]) -
                              server.angles[i]);
                if (cycle >= bound && joints.test(i)) {
                    EXPECT_LT(error, 2.0) << orvo::robot::joint_table()[i].name << " at " << cycle;
                }
            }
            server.apply(speeds);
        }
        // Each joint as fast as its own motor and no faster: type 2's ankles
        // pitch faster and roll slower than every other joint.
        for (std::size_t i = 0; i < orvo::robot::joint_count; ++i) {
            const double limit = orvo::robot::speed_limit_rad(c.type, static_cast<Joint>(i));
            EXPECT_LE(fastest[i], limit + 1e-9) << orvo::robot::joint_table()[i].name;
        }
        if (c.type == 2) {
            EXPECT_GT(fastest[orvo::robot::index(Joint::left_ankle_pitch)], 8.5);
            EXPECT_LT(fastest[orvo::robot::index(Joint::right_ankle_roll)], 3.5);
        }
        // At a range's end the joint stops: nothing keeps pushing against it.
        for (std::size_t i = 0; i < orvo::robot::joint_count; ++i) {
            EXPECT_LT(std::fabs(speeds[i]), joints.test(i) ? 0.05 : 1e-300)
                << orvo::robot::joint_table()[i].name;
        }
    }
}

TEST(Motion, ABadLineFailsWithItsFileAndLine) {
    const std::string at = "MotionException @ skills/src/motion.cpp: In function 'parse' (line ";
    const std::pair<const char*, std::string> cases[] = {
        {"0.5 neck_yaw=10\n\n1 left_knee=-30", "bad.motion:3: unknown joint 'left_knee'"},
        {"# fine\n0.5 neck_yaw=ten",
         "bad.motion:2: 'neck_yaw=ten' does not give neck_yaw in degrees"},
        {"0.5 neck_yaw", "bad.motion:1: 'neck_yaw' does not give neck_yaw in degrees"},
        {"0.5 neck_yaw=nan", "bad.motion:1: 'neck_yaw=nan' does not give neck_yaw in degrees"},
        {"0.5 neck_yaw=1 neck_yaw=2", "bad.motion:1: neck_yaw is given twice"},
        {"0 neck_yaw=1", "bad.motion:1: the duration '0' is not a positive number of seconds"},
        {"neck_yaw=1",
         "bad.motion:1: the duration 'neck_yaw=1' is not a positive number of seconds"},
        {"\t1.5  # no joints\n", "bad.motion:1: a keyframe needs at least one JOINT=DEGREES"},
        {"# only a comment\n", "bad.motion: no keyframe"},
    };
    orvo_test::ScratchDir dir;
    for (const auto& [text, message] : cases) {
        dir.write("bad.motion", text);
        const std::string got =
            orvo_test::failure<orvo::skills::MotionException>([] { Motion::load("bad.motion"); });
        EXPECT_EQ(got.substr(0, at.size()), at);
        EXPECT_EQ(got.substr(got.find(" | ") + 3), message);
    }
    const std::string missing =
        orvo_test::failure<orvo::skills::MotionException>([] { Motion::load("missing.motion"); });
    EXPECT_EQ(missing.substr(0, missing.find(" (line")),
              "MotionException @ skills/src/motion.cpp: In function 'load'");
    EXPECT_EQ(missing.substr(missing.find(" | ")), " | missing.motion: cannot be read");
}

TEST(Motion, TheShippedMotionsStayWithinTheRangesAndTheSpeedLimit) {
    for (const char* name : {"ready", "wave", "head_scan"}) {
        SCOPED_TRACE(name);
        const auto motion = std::make_shared<Motion>(
            Motion::load(std::string(ORVO_MOTIONS) + "/" + name + ".motion"));
        EXPECT_EQ(motion->name(), name);
        // Played from the ready stance (that one from mid-range), every
        // target is in range and no faster than a joint can follow.
        MotionPlayer player;
        player.play(motion);
        JointValues angles = across_ranges(0.5);
        const Keyframe ready =
            Motion::load(std::string(ORVO_MOTIONS) + "/ready.motion").keyframes()[0];
        for (std::size_t i = 0; i < orvo::robot::joint_count && name != std::string("ready"); ++i) {
            angles[i] = ready.joints.test(i) ? ready.angles[i] : angles[i];
        }
        for (std::size_t i = 0; i < orvo::robot::joint_count; ++i) {
            for (const auto& keyframe : motion->keyframes()) {
                if (keyframe.joints.test(i)) {
                    EXPECT_EQ(
                        orvo::robot::clamp_to_range(static_cast<Joint>(i), keyframe.angles[i]),
                        keyframe.angles[i])
                        << orvo::robot::joint_table()[i].name;
                }
            }
        }
        for (double now = 0; now < motion->duration(); now += orvo::robot::cycle_seconds) {
            player.update(now, angles);
            for (std::size_t i = 0; i < orvo::robot::joint_count; ++i) {
                EXPECT_LT(std::fabs(player.rates()[i]), 0.9 * orvo::robot::max_joint_speed_deg);
            }
        }
    }
}

} // namespace
