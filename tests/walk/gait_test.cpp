// The step cycle without a server: what each step does to the feet, for the
// velocities the walk takes.
#include <orvo/params/param_set.h>
#include <orvo/walk/gait.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace {

using orvo::walk::Gait;
using orvo::walk::Side;
using orvo::walk::Velocity;

orvo::walk::WalkParams type0() {
    return orvo::walk::WalkParams::from(
        orvo::walk::ParamSet::load(std::string(ORVO_PARAMS) + "/walk/type0.json"));
}

/// Runs `steps` whole steps from the stand at `velocity`, starting on the
/// right foot, and returns how far the support feet moved under the hips:
/// the body's own motion, as the odometry counts it.
Velocity walk(Gait& gait, const Velocity& velocity, int steps) {
    Velocity moved;
    Side support = Side::right;
    for (int i = 0; i < steps; ++i) {
        gait.begin(support, velocity, 1);
        const auto before = gait.offset(support);
        while (!gait.advance(0.02)) {
        }
        const auto after = gait.offset(support);
        moved.forward += before.x - after.x;
        moved.sideways += before.y - after.y;
        moved.turn += before.yaw - after.yaw;
        support = orvo::walk::other(support);
    }
    return moved;
}

TEST(Gait, StepsCoverTheVelocityAndTurnFeetOnlyOutward) {
    const auto params = type0();
    const Velocity cases[] = {{0.3, 0, 0}, {-0.2, 0, 0}, {0, 0.15, 0},  {0, -0.15, 0},
                              {0, 0, 40},  {0, 0, -40},  {0.2, 0.1, 20}};
    for (const Velocity& velocity : cases) {
        SCOPED_TRACE(std::to_string(velocity.forward) + " " + std::to_string(velocity.sideways) +
                     " " + std::to_string(velocity.turn));
        Gait gait(params, 0.055);
        constexpr int steps = 20;
        const Velocity moved = walk(gait, velocity, steps);
        // The first step starts from the stand, so it covers half a step; a
        // turn is taken a stride at a time.
        const double time = (steps - 0.5) * params.step_time;
        EXPECT_NEAR(moved.forward, velocity.forward * time, 1e-9);
        EXPECT_NEAR(moved.sideways, velocity.sideways * time, 1e-9);
        EXPECT_NEAR(moved.turn, velocity.turn * time,
                    2 * std::fabs(velocity.turn) * params.step_time);
        for (Side side : {Side::left, Side::right}) {
            EXPECT_GE(orvo::walk::sign(side) * gait.offset(side).yaw, -1e-9);
        }
        // Two steps at no velocity bring the feet back into the stand.
        walk(gait, {}, 2);
        EXPECT_TRUE(gait.feet_together());
    }
}

TEST(Gait, SwayIsNoneAtTheSwitchAndTowardTheSupportFoot) {
    auto params = type0();
    params.zmp_y = 0.05;
    Gait gait(params, 0.055);
    gait.begin(Side::left, {}, 1);
    EXPECT_NEAR(gait.sway(), 0, 1e-12);
    gait.advance(params.step_time / 2);
    EXPECT_GT(gait.sway(), 0);
    // The hips over the left foot: both soles lie further right of them.
    EXPECT_LT(gait.sole(Side::left).position.y(), gait.stand_sole(Side::left).position.y());
    EXPECT_GT(gait.sole(Side::right).position.z(), gait.stand_sole(Side::right).position.z());
    gait.advance(params.step_time);
    EXPECT_NEAR(gait.sway(), 0, 1e-12);
}

TEST(Gait, SwingFootShedsItsShareOfTheWalkBeforeLanding) {
    // At lift-off and touch-down the swing foot moves over the ground at the
    // body's speed (the support foot's under the hips) times the share it
    // does not shed.
    for (double match : {0.0, 0.5, 1.0}) {
        auto params = type0();
        params.landing_match = match;
        params.swing_ramp = match == 0.5 ? 0.2 : 0.5;
        Gait gait(params, 0.055);
        walk(gait, {0.3, 0, 0}, 3);
        gait.begin(Side::left, {0.3, 0, 0}, 1);
        const auto moved = [&](Side side, double phase) {
            return gait.offset(side, phase).x - gait.offset(side, phase - 1e-4).x;
        };
        for (double phase : {1e-4, 1.0}) {
            const double body = moved(Side::left, phase);
            EXPECT_NEAR(moved(Side::right, phase) - body, -(1 - match) * body,
                        1e-3 * std::fabs(body))
                << match;
        }
    }
}

TEST(Gait, ShorterSwingRampsLowerTheSwingFootsTopSpeed) {
    // The hip joints' top speed caps how fast the swing foot can pass the
    // hips; an even middle stretch of the swing lowers the peak it needs.
    const auto fastest = [](double ramp) {
        auto params = type0();
        params.landing_match = 0;
        params.double_support = 0;
        params.swing_ramp = ramp;
        Gait gait(params, 0.055);
        walk(gait, {0.3, 0, 0}, 3);
        gait.begin(Side::left, {0.3, 0, 0}, 1);
        const orvo::walk::Offset from = gait.offset(Side::right, 0);
        const orvo::walk::Offset to = gait.offset(Side::right, 1);
        EXPECT_NEAR(to.x - from.x, 0.3 * params.step_time, 1e-9) << ramp;
        double top = 0;
        constexpr int steps = 1000;
        for (int i = 1; i <= steps; ++i) {
            const double phase = double(i) / steps;
            const double moved =
                gait.offset(Side::right, phase).x - gait.offset(Side::right, phase - 1.0 / steps).x;
            top = std::max(top, moved * steps / (to.x - from.x));
        }
        return top;
    };
    EXPECT_NEAR(fastest(0.5), 3.14159265 / 2, 1e-3);
    EXPECT_NEAR(fastest(0.2), 1 / (1 - 0.4 + 0.8 / 3.14159265), 1e-3);
    EXPECT_NEAR(fastest(0.01), 1, 0.01);
}

TEST(Gait, SwingFootLiftsToTheHeightItsTurnAsks) {
    auto params = type0();
    params.turn_step_height = params.step_height / 2;
    // Straight, half the turn limit, all of it, and beyond (held there).
    for (const double share : {0.0, 0.5, 1.0, 2.0}) {
        Gait gait(params, 0.055);
        gait.begin(Side::left, {0.1, 0, -share * params.max_turn}, 1);
        gait.advance(params.step_time / 2); // mid-swing: the foot at its highest
        const double lift =
            gait.sole(Side::right).position.z() - gait.stand_sole(Side::right).position.z();
        EXPECT_NEAR(lift, params.step_height * (1 - std::min(share, 1.0) / 2), 1e-9) << share;
    }
}

} // namespace

TEST(Gait, FastGaitBlendsInWithSpeedAndStepsKeepTheirTime) {
    auto params = type0();
    params.fast_from = 0.4;
    params.max_forward = 0.8;
    params.step_time = 0.2;
    params.fast_step_time = 0.1;
    params.lean = 2;
    params.fast_lean = 10;
    EXPECT_DOUBLE_EQ(params.at_speed(-0.3).step_time, 0.2);
    EXPECT_DOUBLE_EQ(params.at_speed(0.4).lean, 2);
    EXPECT_DOUBLE_EQ(params.at_speed(0.6).step_time, 0.15);
    EXPECT_DOUBLE_EQ(params.at_speed(0.6).lean, 6);
    EXPECT_DOUBLE_EQ(params.at_speed(2.0).step_time, 0.1);
    params.fast_from = params.max_forward; // no range: the fast gait never blends in
    EXPECT_DOUBLE_EQ(params.at_speed(2.0).step_time, 0.2);

    // A step already under way keeps the time it began with.
    params.fast_from = 0.4;
    Gait gait(params.at_speed(0), 0.055);
    gait.begin(Side::right, {0.3, 0, 0}, 1);
    gait.retune(params.at_speed(0.8));
    EXPECT_FALSE(gait.advance(0.1));
    EXPECT_NEAR(gait.phase(), 0.5, 1e-12);
    EXPECT_TRUE(gait.advance(0.1));
    gait.begin(Side::left, {0.3, 0, 0}, 1);
    EXPECT_TRUE(gait.advance(0.1));
}
