// Where the kicker stands and how it walks there, without a server: the
// ball must end up in front of the kicking foot, facing the kick, whatever
// the ball's place and the kick's direction.
#include <orvo/kick/kick_plan.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using orvo::kick::KickParams;
using orvo::kick::Pose2;
using orvo::walk::Side;

KickParams params() {
    return KickParams::from(
        orvo::params::ParamSet::load(std::string(ORVO_PARAMS) + "/kick/type0.json"));
}

constexpr double foot_line = 0.07;

struct StandCase {
    double ball_x, ball_y, direction;
    Side side;
};

TEST(KickPlan, BallLiesInFrontOfTheKickingFootFacingTheKick) {
    const KickParams p = params();
    const StandCase cases[] = {
        {1, 0, 0, Side::left},    {1, 0, 0, Side::right},   {0.5, -0.3, 30, Side::right},
        {-2, 1, -45, Side::left}, {3, 2, 170, Side::right}, {0, 0, -90, Side::left},
    };
    for (const StandCase& c : cases) {
        const Pose2 stand =
            orvo::kick::stand_pose(c.ball_x, c.ball_y, c.direction, c.side, foot_line, p);
        const Pose2 ball = orvo::kick::relative(stand, {c.ball_x, c.ball_y, 0});
        const double side = c.side == Side::left ? 1 : -1;
        SCOPED_TRACE(testing::Message()
                     << c.ball_x << ", " << c.ball_y << " toward " << c.direction);
        EXPECT_NEAR(stand.heading, c.direction, 1e-9);
        EXPECT_NEAR(ball.x, p.ball_x, 1e-9);
        EXPECT_NEAR(ball.y, side * (foot_line + p.ball_y), 1e-9);
    }
}

TEST(KickPlan, ComposeAndRelativeUndoEachOther) {
    const Pose2 frames[] = {{0, 0, 0}, {1, -2, 90}, {-3, 0.5, -135}, {0.2, 0.1, 179}};
    const Pose2 local{0.4, -0.7, 30};
    for (const Pose2& frame : frames) {
        const Pose2 back = orvo::kick::relative(frame, orvo::kick::compose(frame, local));
        EXPECT_NEAR(back.x, local.x, 1e-9);
        EXPECT_NEAR(back.y, local.y, 1e-9);
        EXPECT_NEAR(back.heading, local.heading, 1e-9);
    }
    // A quarter turn left: the frame's forward is the outer frame's left.
    const Pose2 ahead = orvo::kick::compose({1, 1, 90}, {2, 0, 0});
    EXPECT_NEAR(ahead.x, 1, 1e-9);
    EXPECT_NEAR(ahead.y, 3, 1e-9);
}

TEST(KickPlan, ChoosesTheFootThatStepsAsideLeast) {
    struct Case {
        double ball_x, ball_y, direction;
        Side expected;
    } const cases[] = {
        {1, 0.1, 0, Side::left},     {1, -0.1, 0, Side::right},  {1, 0.3, 2, Side::left},
        {1, -0.05, 30, Side::right}, {1, 0.05, -30, Side::left},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(orvo::kick::kicking_side(c.ball_x, c.ball_y, c.direction), c.expected)
            << c.ball_x << ", " << c.ball_y << " toward " << c.direction;
    }
}

TEST(KickPlan, ApproachHoldsBackUntilLinedUp) {
    const KickParams p = params();
    const Pose2 stand{0, 0, 0};
    struct Case {
        Pose2 robot;
        double held_back; ///< share of the clearance
    } const cases[] = {
        {{-0.5, 0, 0}, 0},      // lined up behind: straight in
        {{-0.5, 0.3, 0}, 1},    // aside: held back fully
        {{-0.5, 0, 45}, 1},     // turned: held back fully
        {{-0.5, 0.05, 0}, 0.5}, // a little aside: partly
    };
    for (const auto& c : cases) {
        const Pose2 spot = orvo::kick::approach_spot(c.robot, stand, p);
        EXPECT_NEAR(spot.x, -p.approach_clearance * c.held_back, 1e-9);
        EXPECT_NEAR(spot.y, 0, 1e-9);
    }
}

TEST(KickPlan, ApproachVelocityPointsAtTheSpotWithinItsLimits) {
    const KickParams p = params();
    const Pose2 errors[] = {{2, 0, 0}, {-2, 0.5, -90}, {0.01, -0.01, 2}, {0, 0, 0}};
    for (const Pose2& e : errors) {
        const orvo::walk::Velocity v = orvo::kick::approach_velocity(e, p, 0);
        EXPECT_GE(v.forward * e.x, 0);
        EXPECT_GE(v.sideways * e.y, 0);
        EXPECT_GE(v.turn * e.heading, 0);
        EXPECT_LE(std::fabs(v.forward), p.approach_forward);
        EXPECT_LE(std::fabs(v.sideways), p.approach_sideways);
        EXPECT_LE(std::fabs(v.turn), p.approach_turn);
    }
    // A walk that drifts forward as it steps is asked that much less: on the
    // spot, it steps back by the drift, which holds it there.
    KickParams drifting = p;
    drifting.approach_creep = 1;
    EXPECT_NEAR(orvo::kick::approach_velocity({0, 0, 0}, drifting, 0.08).forward, -0.08, 1e-12);
    EXPECT_NEAR(orvo::kick::approach_velocity({2, 0, 0}, drifting, 0.08).forward,
                p.approach_forward, 1e-12);
}

} // namespace
