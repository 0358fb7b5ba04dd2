// Get-up motions built from parameter sets: sides mirrored, files that
// cannot make a motion, which motion follows lying still on each side, and
// keyframes that wait for the torso or answer its lean.
#include <orvo/getup/getup.h>
#include <orvo/getup/getup_motions.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <utility>

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
           ", \"min\": -1000, \"max\": 1000}";
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
               entry("m.1.knee_pitch", -40) + "," + entry("m.1.hip_yaw_pitch", -30) + "," +
               entry("m.1.left_shoulder_pitch", -30) + "," + entry("m.1.left_elbow_roll", -50));
    const MirrorCase cases[] = {
        {"hip_roll", false, Joint::left_hip_roll, 10},
        {"hip_roll", false, Joint::right_hip_roll, -10},
        {"knee", false, Joint::right_knee_pitch, -40},
        {"hip yaw-pitch", false, Joint::right_hip_yaw_pitch, -30},
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

TEST(GetUpMotions, KeyframesRunInOrderUntilTheFirstMissingAndBadOnesAreRefused) {
    const ParamSet set = set_of(entry("m.1.time", 0.5) + "," + entry("m.1.knee_pitch", -20) + "," +
                                entry("m.2.time", 0.25) + "," + entry("m.2.knee_pitch", -10) + "," +
                                entry("m.4.time", 9) + "," + entry("m.4.knee_pitch", -10));
    EXPECT_DOUBLE_EQ(orvo::getup::motion_from(set, "m").duration(), 0.75);
    // No first keyframe, or a joint no robot has.
    EXPECT_THROW(orvo::getup::motion_from(set_of(entry("m.2.time", 1)), "m"), ParamError);
    EXPECT_THROW(orvo::getup::motion_from(
                     set_of(entry("m.1.time", 1) + "," + entry("m.1.tail_wag", 3)), "m"),
                 ParamError);
}

/// What the torso feels at `time`: the ground pushing along (x, y, z).
orvo::perception::Perception felt(double time, double x, double y, double z = 0) {
    orvo::perception::Perception p;
    p.has_time = p.has_accelerometer = true;
    p.time = time;
    p.accelerometer = orvo::math::Vector3d(x, y, z);
    return p;
}

/// Type 0's parameter entries but those whose names start with one of `left_out`.
std::string type0_entries(std::initializer_list<const char*> left_out = {}) {
    std::string file;
    const ParamSet type0 = ParamSet::load(orvo::params::params_path("getup", 0));
    for (const auto& [name, param] : type0.entries()) {
        if (std::none_of(left_out.begin(), left_out.end(),
                         [&](const char* prefix) { return name.rfind(prefix, 0) == 0; })) {
            file += entry(name, param.value) + ",";
        }
    }
    return file;
}

/// Runs `getup` on a robot lying still, the ground pushing along x and y,
/// until `motion` plays or `seconds` have passed; returns whether it played.
bool plays(orvo::getup::GetUp& getup, double& time, double x, double y, const std::string& motion,
           double seconds) {
    for (const double end = time + seconds; time < end && getup.motion() != motion; time += 0.02) {
        getup.update(felt(time, x, y));
    }
    return getup.motion() == motion;
}

TEST(GetUp, OnceStillPlaysTheSideItFeelsAndLooksAgainAfterARoll) {
    constexpr double g = 9.81;
    // The posture named at the start is a guess: the side felt once still decides.
    const struct {
        double x, y;
        const char* motion;
    } sides[] = {{0, -g, "getup_front"},
                 {0, g, "getup_back"},
                 {g, 0, "getup_side"},
                 {-g, 0, "getup_mirrored_side"}};
    for (int type = 0; type < orvo::robot::robot_types; ++type) {
        for (const auto& side : sides) {
            auto getup = orvo::getup::GetUp::for_type(type);
            getup.start(Posture::fallen_front);
            double time = 0;
            EXPECT_TRUE(plays(getup, time, side.x, side.y, side.motion, 1)) << side.motion;
            // The joints no motion moves (the neck, type 4's toes) hold still.
            EXPECT_EQ(getup.joints(), orvo::robot::joints_of(type));
            for (const Joint held : {Joint::neck_yaw, Joint::neck_pitch, Joint::left_toe}) {
                EXPECT_EQ(getup.speeds()[orvo::robot::index(held)], 0.0);
            }
        }
    }
    // A roll starts over from the lying pose (a roll that ended on the back
    // again rolls once more, played again from where it ended it would not
    // move); a stand-up from the back is all there is.
    ParamSet set = ParamSet::load(orvo::params::params_path("getup", 0));
    const double later = orvo::getup::motion_from(set, "back").duration() + set["settle_max"] + 0.1;
    for (const double rolls : {1.0, 0.0}) {
        set.set("back_rolls", rolls);
        orvo::getup::GetUp getup(0, set);
        getup.start(Posture::fallen_back);
        double time = 0;
        ASSERT_TRUE(plays(getup, time, 0, g, "getup_back", 1));
        EXPECT_EQ(plays(getup, time, 0, g, "getup_lie", later), rolls > 0) << rolls;
        EXPECT_EQ(plays(getup, time, 0, -g, "getup_front", later), rolls > 0) << rolls;
    }
}

TEST(GetUp, AHeldKeyframeWaitsForTheTorsoOrTheWait) {
    // Type 0's file but for the back and front motions: held after keyframe 2, the knees folding
    // at 3.
    std::string file;
    for (const std::string m : {"back.", "front."}) {
        file += entry(m + "1.time", 0.3) + "," + entry(m + "1.knee_pitch", 0) + "," +
                entry(m + "2.time", 0.4) + "," + entry(m + "2.hip_pitch", 90) + "," +
                entry(m + "3.time", 0.25) + "," + entry(m + "3.knee_pitch", -130) + ",";
    }
    file += type0_entries({"back.", "front."});
    const double held = 0.3 + 0.3 + 0.4; // the lying pose, keyframes 1 and 2, lying still
    const std::size_t knee = orvo::robot::index(Joint::left_knee_pitch);
    // Lying on the back ("lean" waits to come forward) or front ("risen" to turn
    // up) until lean_at, 30 deg forward after (the accelerometer alone turns
    // the felt up axis slowly): the fold starts within [after, before].
    const struct {
        double wait, lean_at, after, before;
    } cases[] = {{0.5, 9, held + 0.45, held + 0.65}, {3, held - 0.5, held, held + 2.5}};
    for (const auto& [back, c] :
         {std::pair{true, cases[0]}, {true, cases[1]}, {false, cases[0]}, {false, cases[1]}}) {
        const std::string hold = back ? "back.2." : "front.2.";
        orvo::getup::GetUp getup(
            0, set_of(file + entry(hold + (back ? "lean" : "risen"), back ? -20 : -50) + "," +
                      entry(hold + "wait", c.wait)));
        getup.start(back ? Posture::fallen_back : Posture::fallen_front);
        double time = 0;
        for (; time < 5 && !(time > held - 0.3 && getup.targets()[knee] < -5); time += 0.02) {
            const bool lying = time < c.lean_at;
            getup.update(felt(time, 0, lying ? (back ? 9.81 : -9.81) : -4.9, lying ? 0 : 8.5));
        }
        EXPECT_GE(time, c.after) << back << ' ' << c.wait;
        EXPECT_LE(time, c.before) << back << ' ' << c.wait;
    }
}

TEST(GetUp, AStandUpThatEndsShortOfStandingStartsOver) {
    // Lying on the front until the stand-up plays, then upright: on its feet it
    // is done; held up with no foot on the ground it lies down again.
    for (const bool feet_down : {true, false}) {
        ParamSet set = ParamSet::load(orvo::params::params_path("getup", 0));
        set.set("retry_after", 1.5);
        orvo::getup::GetUp getup(0, set);
        getup.start(Posture::fallen_front);
        bool stood_up = false, lay_again = false;
        const double end = 1 + orvo::getup::motion_from(set, "front").duration() + 2;
        for (double time = 0; time < end; time += 0.02) {
            stood_up = stood_up || getup.motion() == "getup_front";
            lay_again = lay_again || (stood_up && getup.motion() == "getup_lie");
            auto now = felt(time, 0, stood_up ? 0 : -9.81, stood_up ? 9.81 : 0);
            now.feet[0].touches = stood_up && feet_down;
            getup.update(now);
        }
        EXPECT_TRUE(stood_up);
        EXPECT_EQ(lay_again, !feet_down) << feet_down;
    }
}

TEST(GetUp, AnEndThatAnswersTheLeanKnowsTheLeanAtOnceAndBendsForwardAgainstIt) {
    // Lying still on the back, the accelerometer reading half a g (as it does
    // here): believed at once where the back motion balances from its first
    // keyframe, which then drives the hips further forward; not at all where
    // the motion does not balance.
    const ParamSet type0 = ParamSet::load(orvo::params::params_path("getup", 0));
    const std::string file =
        type0_entries() + entry("back.balance.from", 1) + "," + entry("back.balance.lean", 0) +
        "," + entry("back.balance.damping", 0) + "," + entry("back.balance.hip", 1) + "," +
        entry("back.balance.ankle", 0) + "," + entry("back.balance.limit", 30);
    double lean[2] = {}, hip_speed[2] = {};
    for (const bool balanced : {false, true}) {
        orvo::getup::GetUp getup(0, balanced ? set_of(file) : type0);
        getup.start(orvo::fall::Posture::fallen_back);
        double time = 0;
        ASSERT_TRUE(plays(getup, time, 0, 4.9, "getup_back", 2));
        lean[balanced] = getup.lean_back();
        hip_speed[balanced] = getup.speeds()[orvo::robot::index(Joint::left_hip_pitch)];
    }
    EXPECT_NEAR(lean[1], 90, 1);
    EXPECT_LT(lean[0], 45);
    EXPECT_GT(hip_speed[1], hip_speed[0]);
}

} // namespace
