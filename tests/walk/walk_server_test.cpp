// The walk on a real server in sync mode, measured by the monitor: from the
// stand it walks forward a few seconds without falling, and its odometry
// agrees with the ground it covered.
#include <orvo/body/body_model.h>
#include <orvo/walk/walker.h>

#include <gtest/gtest.h>

#include "sim_server.h"
#include "trial.h"

#include <cmath>

namespace {

constexpr int cycles_per_second = 50;

TEST(WalkOnRealServer, WalksForwardWithoutFalling) {
    if (!orvo::sim::SimServer::installed()) {
        GTEST_SKIP() << "no simulation server installed";
    }
    orvo::drill::DrillOptions options;
    const auto params = orvo::walk::WalkParams::from(
        orvo::walk::ParamSet::load(orvo::walk::params_path("walk", options.type)));
    orvo::drill::Trial trial(options, {-6, 0, 0});
    orvo::walk::Walker walker(orvo::body::BodyModel::for_type(options.type), params);
    const auto run = [&](double seconds) {
        for (int i = 0; i < seconds * cycles_per_second; ++i) {
            walker.update(trial.perception());
            trial.step(orvo::drill::joint_command(walker.joints(), walker.speeds()));
        }
        trial.catch_up();
    };
    run(1);
    ASSERT_TRUE(trial.pose().has_value());
    const orvo::drill::FieldPose start = *trial.pose();
    walker.set_velocity(0.3, 0, 0);
    run(4);
    walker.stop();
    run(1);
    const orvo::drill::FieldPose moved = orvo::drill::relative_to(start, *trial.pose());
    EXPECT_EQ(trial.falls(), 0);
    EXPECT_TRUE(walker.standing());
    // Half the asked speed at least, and mostly straight on.
    EXPECT_GT(moved.x, 0.6);
    EXPECT_LT(std::fabs(moved.y), 0.3);
    // The odometry counts the same steps within a generous margin.
    EXPECT_NEAR(walker.odometry().x, moved.x, 0.5 * moved.x);
}

} // namespace
