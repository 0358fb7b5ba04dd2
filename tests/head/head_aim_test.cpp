// Where the head looks: scanning while lost or without the ball, landmarks
// while uncertain, the ball otherwise.
#include <gtest/gtest.h>

#include <orvo/head/head_aim.h>
#include <orvo/perception/perception_reader.h>

#include <cmath>

namespace {

using orvo::head::HeadMode;

struct AimCase {
    const char* what;
    double spread_m, spread_deg; ///< how sure the placement is
    bool sees_ball;
    HeadMode mode;
};

const AimCase aim_cases[] = {
    {"lost", 5.0, 90, true, HeadMode::scan},
    {"uncertain", 0.6, 2, true, HeadMode::landmarks},
    {"sure, no ball", 0.01, 1, false, HeadMode::scan},
    {"sure, ball seen", 0.01, 1, true, HeadMode::ball},
};

class Aim : public testing::TestWithParam<AimCase> {};

TEST_P(Aim, ModeFollowsTheBeliefs) {
    const AimCase& c = GetParam();
    auto params = orvo::world::WorldParams::for_type(PARAMS_DIR "/world", 0);
    params.beam_spread_m = c.spread_m;
    params.beam_spread_deg = c.spread_deg;
    orvo::world::WorldModel world(params);
    world.place(-5, 0, 90); // facing the left side line
    if (c.sees_ball) {
        // The ball 2 m ahead and 2 m to the right: at (-3, 0) from (-5, 0) facing +y.
        orvo::perception::Perception now;
        ASSERT_TRUE(orvo::perception::PerceptionReader().read(
            "(time (now 1.0))(See (B (pol 2.83 -45 -10)))", now));
        world.update(now, {});
    }
    orvo::head::HeadAim aim(orvo::head::HeadParams::for_type(PARAMS_DIR "/head", 0));
    const orvo::head::HeadTarget target = aim(world, 1.0);
    EXPECT_EQ(target.mode, c.mode) << c.what;
    if (c.mode == HeadMode::ball) {
        EXPECT_NEAR(target.yaw_deg, -45, 1);
        EXPECT_LT(target.pitch_deg, -5);
    }
    if (c.mode == HeadMode::landmarks) {
        EXPECT_LE(std::abs(target.yaw_deg), 120);
    }
}

INSTANTIATE_TEST_SUITE_P(Head, Aim, testing::ValuesIn(aim_cases));

TEST(Head, ScanSweepsBetweenItsLimitsAtOneSpeed) {
    const auto params = orvo::head::HeadParams::for_type(PARAMS_DIR "/head", 0);
    auto world_params = orvo::world::WorldParams::for_type(PARAMS_DIR "/world", 0);
    world_params.beam_spread_m = 5;
    orvo::world::WorldModel world(world_params);
    world.place(0, 0, 0);
    orvo::head::HeadAim aim(params);
    const double quarter = params.scan_period_s / 4;
    EXPECT_NEAR(aim(world, 0).yaw_deg, -params.scan_yaw_deg, 1e-9);
    EXPECT_NEAR(aim(world, quarter).yaw_deg, 0, 1e-9);
    EXPECT_NEAR(aim(world, 2 * quarter).yaw_deg, params.scan_yaw_deg, 1e-9);
    EXPECT_NEAR(aim(world, 3 * quarter).yaw_deg, 0, 1e-9);
}

} // namespace
