// The end of a rise answering the torso's lean: when it takes over within a
// motion's parts, how far it bends the hips and ankles, and a get-up that
// reads the lean right from the start where it has one.
#include <orvo/getup/getup.h>
#include <orvo/getup/lean_balance.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using orvo::params::ParamSet;
using orvo::robot::Joint;

std::string entry(const std::string& name, double value) {
    return "\"" + name + "\": {\"value\": " + std::to_string(value) +
           ", \"min\": -200, \"max\": 200}";
}

/// Keyframes 1 to 3 of "m" (0.2, 0.3, 0.4 s), balanced from keyframe 3.
std::string balanced(double hip, double ankle, double damping) {
    return entry("m.1.time", 0.2) + "," + entry("m.2.time", 0.3) + "," + entry("m.3.time", 0.4) +
           "," + entry("m.balance.from", 3) + "," + entry("m.balance.lean", 5) + "," +
           entry("m.balance.damping", damping) + "," + entry("m.balance.hip", hip) + "," +
           entry("m.balance.ankle", ankle) + "," + entry("m.balance.limit", 12);
}

ParamSet set_of(const std::string& entries) {
    return ParamSet::parse("{" + entries + "}", "test");
}

TEST(LeanBalance, TakesOverAsTheMotionSetsOutTowardsItsKeyframe) {
    const orvo::getup::LeanBalance balance(set_of(balanced(1, 1, 0)), "m");
    const struct {
        int first, last;
        double after;
    } parts[] = {{1, 3, 0.5}, {2, 3, 0.3}, {3, 3, 0}, {4, 6, 0}, {1, 2, -1}};
    for (const auto& part : parts) {
        EXPECT_DOUBLE_EQ(balance.starts_after(part.first, part.last), part.after)
            << part.first << ".." << part.last;
    }
    // Without a keyframe to start from there is no balance, and a file that
    // names one must say how it acts.
    const orvo::getup::LeanBalance none(set_of(entry("m.1.time", 0.2)), "m");
    EXPECT_FALSE(none.on());
    EXPECT_LT(none.starts_after(1, 9), 0);
    EXPECT_THROW(orvo::getup::LeanBalance(
                     set_of(entry("m.1.time", 0.2) + "," + entry("m.balance.from", 1)), "m"),
                 orvo::params::ParamError);
}

TEST(LeanBalance, BendsForwardAgainstALeanBackWithinItsLimitAndTheJointsRange) {
    const struct {
        const char* what;
        double hip_gain, ankle_gain, damping, lean, rate, ankle_from, hip_by, ankle_by;
    } cases[] = {
        {"on balance", 1, 1, 0, 5, 0, 30, 0, 0},
        {"leaning back", 1, 0.5, 0, 9, 0, 30, 4, 2},
        {"leaning forward", 1, 0.5, 0, 1, 0, 30, -4, -2},
        {"turning back counts", 1, 1, 0.1, 5, 30, 30, 3, 3},
        {"at most the limit", 2, 1, 0, 20, 0, 30, 12, 12},
        {"within the ankle's range", 1, 1, 0, 15, 0, 70, 10, 5},
        {"either sign of gain", -1, 0, 0, 9, 0, 30, -4, 0},
    };
    for (const auto& c : cases) {
        const orvo::getup::LeanBalance balance(
            set_of(balanced(c.hip_gain, c.ankle_gain, c.damping)), "m");
        orvo::robot::JointValues targets{};
        for (const Joint ankle : {Joint::left_ankle_pitch, Joint::right_ankle_pitch}) {
            targets[orvo::robot::index(ankle)] = c.ankle_from;
        }
        targets[orvo::robot::index(Joint::left_knee_pitch)] = -60;
        balance.apply(c.lean, c.rate, targets);
        for (const Joint hip : {Joint::left_hip_pitch, Joint::right_hip_pitch}) {
            EXPECT_DOUBLE_EQ(targets[orvo::robot::index(hip)], c.hip_by) << c.what;
        }
        for (const Joint ankle : {Joint::left_ankle_pitch, Joint::right_ankle_pitch}) {
            EXPECT_DOUBLE_EQ(targets[orvo::robot::index(ankle)], c.ankle_from + c.ankle_by)
                << c.what;
        }
        EXPECT_DOUBLE_EQ(targets[orvo::robot::index(Joint::left_knee_pitch)], -60) << c.what;
    }
}

TEST(LeanBalance, AGetUpWithOneKnowsItsLeanWhileTheAccelerometerReadsOffOneG) {
    // Lying still on the back, the accelerometer reading half a g: believed at
    // once where the back motion balances (from its first keyframe), slowly
    // or not at all where it does not; and the balance bends the hips then.
    double lean[2] = {};
    double hip_speed[2] = {};
    for (const bool with_balance : {false, true}) {
        ParamSet set = ParamSet::load(orvo::params::params_path("getup", 0));
        std::string file;
        for (const auto& [name, param] : set.entries()) {
            file += entry(name, param.value) + ",";
        }
        file += with_balance
                    ? entry("back.balance.from", 1) + "," + entry("back.balance.lean", 0) + "," +
                          entry("back.balance.damping", 0) + "," + entry("back.balance.hip", 1) +
                          "," + entry("back.balance.ankle", 0) + "," +
                          entry("back.balance.limit", 30)
                    : entry("unused", 0);
        orvo::getup::GetUp getup(0, set_of(file));
        getup.start(orvo::fall::Posture::fallen_back);
        orvo::perception::Perception felt;
        felt.has_time = felt.has_accelerometer = true;
        felt.accelerometer = orvo::math::Vector3d(0, 4.9, 0);
        for (double time = 0; time < 2 && getup.motion() != "getup_back"; time += 0.02) {
            felt.time = time;
            getup.update(felt);
        }
        ASSERT_EQ(getup.motion(), "getup_back");
        const int i = with_balance ? 1 : 0;
        lean[i] = getup.lean_back();
        hip_speed[i] = getup.speeds()[orvo::robot::index(Joint::left_hip_pitch)];
    }
    EXPECT_NEAR(lean[1], 90, 1);
    EXPECT_LT(lean[0], 45);
    EXPECT_GT(hip_speed[1], hip_speed[0]);
}

} // namespace
