// Get-up motions built from parameter sets: sides mirrored, the order of
// motions from each lying posture, and files that cannot make a motion.
#include <orvo/getup/getup.h>
#include <orvo/getup/getup_motions.h>

#include <gtest/gtest.h>

namespace {

using orvo::fall::Posture;
using orvo::params::ParamError;
using orvo::params::ParamSet;
using orvo::robot::Joint;

ParamSet set_of(const std::string& entries) {
    return ParamSet::parse("{" + entries + "}", "test");
}

std::string entry(const std::string& name, double value) {
    return "\"" + name + "\": {\"value\": " + std::to_string(value) +
           ", \"min\": -200, \"max\": 200}";
}

struct MirrorCase {
    const char* key;
    bool mirrored;
    Joint joint;
    double expected;
};

TEST(GetUpMotions, BothSidesMoveAsMirrorImages) {
    const ParamSet set =
        set_of(entry("m.1.time", 0.5) + "," + entry("m.1.hip_roll", 10) + "," +
               entry("m.1.knee_pitch", -40) + "," + entry("m.1.left_shoulder_pitch", -30) + "," +
               entry("m.1.left_elbow_roll", -50));
    const MirrorCase cases[] = {
        {"hip_roll", false, Joint::left_hip_roll, 10},
        {"hip_roll", false, Joint::right_hip_roll, -10},
        {"knee", false, Joint::right_knee_pitch, -40},
        {"one side", false, Joint::left_shoulder_pitch, -30},
        {"played mirrored", true, Joint::right_shoulder_pitch, -30},
        {"played mirrored", true, Joint::right_elbow_roll, 50},
    };
    for (const MirrorCase& c : cases) {
        const auto motion = orvo::getup::motion_from(set, "m", c.mirrored);
        ASSERT_EQ(motion.keyframes().size(), 1u);
        const auto& frame = motion.keyframes()[0];
        EXPECT_TRUE(frame.joints.test(orvo::robot::index(c.joint))) << c.key;
        EXPECT_DOUBLE_EQ(frame.angles[orvo::robot::index(c.joint)], c.expected) << c.key;
    }
    // Mirrored, a one-sided joint drives only the other side.
    const auto mirrored = orvo::getup::motion_from(set, "m", true);
    EXPECT_FALSE(mirrored.joints().test(orvo::robot::index(Joint::left_shoulder_pitch)));
}

TEST(GetUpMotions, KeyframesRunInOrderUntilTheFirstMissing) {
    const ParamSet set = set_of(entry("m.1.time", 0.5) + "," + entry("m.1.knee_pitch", -20) + "," +
                                entry("m.2.time", 0.25) + "," + entry("m.2.knee_pitch", -10) + "," +
                                entry("m.4.time", 9) + "," + entry("m.4.knee_pitch", -10));
    EXPECT_DOUBLE_EQ(orvo::getup::motion_from(set, "m").duration(), 0.75);
}

TEST(GetUpMotions, RefusesWhatCannotBeAMotion) {
    EXPECT_THROW(orvo::getup::motion_from(set_of(entry("m.2.time", 1)), "m"), ParamError);
    EXPECT_THROW(orvo::getup::motion_from(
                     set_of(entry("m.1.time", 1) + "," + entry("m.1.tail_wag", 3)), "m"),
                 ParamError);
}

TEST(GetUp, EveryTypePlaysTheMotionOfItsSide) {
    for (int type = 0; type < orvo::robot::robot_types; ++type) {
        auto getup = orvo::getup::GetUp::for_type(type);
        const ParamSet set = ParamSet::load(orvo::params::params_path("getup", type));
        const double front = orvo::getup::motion_from(set, "front").duration();
        const double back = orvo::getup::motion_from(set, "back").duration();
        const double side = orvo::getup::motion_from(set, "side").duration();
        const double after_side = set["side_onto_front"] >= 0.5 ? front : back;
        struct {
            Posture lying;
            const char* motion;
            double duration;
        } const cases[] = {{Posture::fallen_front, "getup_front", front},
                           {Posture::fallen_back, "getup_back", back},
                           {Posture::fallen_left, "getup_side", side + after_side},
                           {Posture::fallen_right, "getup_mirrored_side", side + after_side}};
        for (const auto& c : cases) {
            getup.start(c.lying);
            EXPECT_EQ(getup.motion(), c.motion) << "type " << type;
            EXPECT_NEAR(getup.duration(), c.duration, 1e-9) << "type " << type;
            EXPECT_TRUE(getup.active());
        }
    }
}

} // namespace
