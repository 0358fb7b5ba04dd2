// The kick's motion for every robot type with its parameter files: every
// pose within the legs' reach, from the walk's stand back into it, the feet
// never near each other (the server fouls limbs that touch).
#include <orvo/body/kinematics.h>
#include <orvo/kick/kick_motion.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>

namespace {

/// Every type's foot is 8 cm wide; the server counts limbs within 4 cm as
/// touching, so the feet's middles keep at least this far apart sideways.
constexpr double feet_apart = 0.08 + 0.04;

using orvo::kick::KickMotion;
using orvo::walk::Side;

orvo::params::ParamSet load(const std::string& skill, int type) {
    return orvo::params::ParamSet::load(std::string(ORVO_PARAMS) + "/" + skill + "/type" +
                                        std::to_string(type) + ".json");
}

struct Feet {
    Eigen::Vector3d left, right, left_toes;
};

double mix(double from, double to, double share) {
    return from + (to - from) * share;
}

Feet feet(const orvo::body::BodyModel& model, const orvo::robot::JointValues& angles) {
    using orvo::body::Leg;
    const auto left =
        orvo::body::foot_pose(model, Leg::left, orvo::body::leg_angles(angles, Leg::left));
    const auto right =
        orvo::body::foot_pose(model, Leg::right, orvo::body::leg_angles(angles, Leg::right));
    return {left.translation(), right.translation(), left.linear().col(1)};
}

TEST(KickMotion, EveryTypeReachesEveryPoseAndKeepsItsFeetApart) {
    for (int type = 0; type < 5; ++type) {
        const auto model = orvo::body::BodyModel::for_type(type);
        const auto walk = orvo::walk::WalkParams::from(load("walk", type));
        const auto kick = orvo::kick::KickParams::from(load("kick", type));
        // A kick that reaches for the ball does so up to its limit either way.
        const double most = kick.reach_ball > 0 ? kick.reach_max : 0;
        for (auto [side, reach] : {std::pair{Side::left, -most}, std::pair{Side::right, most}}) {
            SCOPED_TRACE(testing::Message()
                         << "type " << type << (side == Side::left ? " left" : " right"));
            const KickMotion motion(kick, walk, model.hip_width(), side, 0, reach);
            orvo::robot::JointValues angles{};
            ASSERT_TRUE(orvo::kick::pose_legs(model, motion.at(0), side, angles));
            const Feet stand = feet(model, angles);
            double closest = std::fabs(stand.left.x() - stand.right.x());
            for (double t = 0; t <= motion.duration(); t += 0.01) {
                EXPECT_TRUE(motion.angles(model, t, angles)) << t;
                const Feet now = feet(model, angles);
                closest = std::min(closest, std::fabs(now.left.x() - now.right.x()));
            }
            EXPECT_GE(closest, feet_apart);
            orvo::kick::pose_legs(model, motion.at(motion.duration()), side, angles);
            EXPECT_LT((feet(model, angles).left - stand.left).norm(), 1e-6);
            EXPECT_LT((feet(model, angles).right - stand.right).norm(), 1e-6);
        }
    }
}

TEST(KickMotion, SwingsTheKickingFootFromBehindToAheadOfItsPlace) {
    const auto model = orvo::body::BodyModel::for_type(0);
    const auto walk = orvo::walk::WalkParams::from(load("walk", 0));
    auto set = load("kick", 0);
    set.set("swing_pitch", 20);
    set.set("back_x", 0.04);
    set.set("swing_twist", 0); // turns the toes too: checked below
    set.set("lunge", 0);       // moves the hips over the support foot
    const auto kick = orvo::kick::KickParams::from(set);
    // A ball lying further than planned brings the drawn-back foot closer
    // to it; the swing ends where it would and is as much shorter in time.
    double back_from = 0;
    for (double closer : {0.0, 0.03}) {
        SCOPED_TRACE(closer);
        const KickMotion motion(kick, walk, model.hip_width(), Side::left, closer);
        orvo::robot::JointValues angles{};
        orvo::kick::pose_legs(model, motion.at(0), Side::left, angles);
        const Feet stand = feet(model, angles);
        orvo::kick::pose_legs(model, motion.at(motion.swing_begins()), Side::left, angles);
        const Feet back = feet(model, angles);
        orvo::kick::pose_legs(model, motion.at(motion.swing_ends()), Side::left, angles);
        const Feet through = feet(model, angles);
        // The body frame's y is forward, z up.
        EXPECT_LT(back.left.y(), stand.left.y() - 0.5 * kick.back_x + closer);
        back_from = closer == 0 ? back.left.y() : back_from;
        EXPECT_NEAR(back.left.y() - back_from, closer, 0.005);
        EXPECT_GT(back.left.z(), stand.left.z() + 0.5 * kick.lift_z);
        EXPECT_GT(through.left.y(), stand.left.y() + 0.5 * kick.swing_x);
        const double length = kick.swing_x + kick.back_x;
        EXPECT_NEAR(motion.swing_ends() - motion.swing_begins(),
                    kick.swing_time * (length - closer) / length, 1e-9);
        // Toes down at the end of the swing, level in the stand; the support foot stays put.
        EXPECT_LT(through.left_toes.z(), -0.2);
        EXPECT_NEAR(stand.left_toes.z(), 0, 0.1);
        EXPECT_LT((through.right - back.right).norm(), 1e-6);
    }
    // The kicking hip twists through the swing and holds it while the leg
    // draws back (unwound at once, it spun the robot over); set down, untwisted.
    set.set("swing_twist", -20);
    const KickMotion motion(orvo::kick::KickParams::from(set), walk, model.hip_width(), Side::left);
    const double retracted = motion.swing_ends() + kick.retract_time;
    for (double t : {motion.swing_ends(), retracted, retracted + kick.lower_time}) {
        orvo::robot::JointValues angles{};
        orvo::kick::pose_legs(model, motion.at(t), Side::left, angles);
        EXPECT_NEAR(angles[orvo::robot::index(orvo::robot::Joint::left_hip_yaw_pitch)],
                    t < retracted + kick.lower_time ? -20 : 0, 1e-9)
            << t;
    }
}

TEST(KickMotion, PassesThroughItsPoseAtTheBall) {
    const auto model = orvo::body::BodyModel::for_type(0);
    auto set = load("kick", 0);
    // Upright over a support foot that stays where it stood.
    for (const char* still : {"lean", "swing_lean", "lunge"}) {
        set.set(still, 0);
    }
    set.set("contact_share", 0.4);
    set.set("contact_x", 0.05);
    set.set("contact_z", 0.01);
    const KickMotion low(orvo::kick::KickParams::from(set),
                         orvo::walk::WalkParams::from(load("walk", 0)), model.hip_width(),
                         Side::left);
    // At that share of the swing the sole is as low and as far ahead as the pose puts it.
    orvo::robot::JointValues met{};
    low.angles(model, mix(low.swing_begins(), low.swing_ends(), 0.4), met);
    const Feet meeting = feet(model, met);
    EXPECT_NEAR(meeting.left.z() - meeting.right.z(), 0.01, 1e-3);
    EXPECT_NEAR(meeting.left.y() - meeting.right.y(), 0.05, 1e-3);
}

TEST(KickMotion, ReachingCarriesTheSwingTowardTheBall) {
    const auto model = orvo::body::BodyModel::for_type(1);
    const auto walk = orvo::walk::WalkParams::from(load("walk", 1));
    auto set = load("kick", 1);
    constexpr double reach = 0.02;
    // The lifted foot's place from the support foot (which stays on the
    // ground), forward; the body frame's y is forward.
    auto ahead = [&](const KickMotion& motion, double t) {
        orvo::robot::JointValues angles{};
        orvo::kick::pose_legs(model, motion.at(t), Side::right, angles);
        const Feet now = feet(model, angles);
        return now.right.y() - now.left.y();
    };
    for (double hips : {0.0, 1.0}) {
        SCOPED_TRACE(hips);
        set.set("reach_hips", hips);
        const auto kick = orvo::kick::KickParams::from(set);
        const KickMotion still(kick, walk, model.hip_width(), Side::right);
        const KickMotion reaching(kick, walk, model.hip_width(), Side::right, 0, reach);
        // Over the support foot the kicking foot has not moved on the ground;
        // drawn back and swung through, it is `reach` further on.
        EXPECT_NEAR(ahead(reaching, kick.shift_time), ahead(still, kick.shift_time), 1e-6);
        for (double t : {reaching.swing_begins(), reaching.swing_ends()}) {
            EXPECT_NEAR(ahead(reaching, t) - ahead(still, t), reach, 1e-3) << t;
        }
        EXPECT_NEAR(ahead(reaching, reaching.duration()), ahead(still, still.duration()), 1e-6);
    }
}

} // namespace
