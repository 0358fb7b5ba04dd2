// The walker without a server, fed perceptions made up here: how it limits
// combined velocities, when it dares the first step, and what its odometry
// counts while stepping in place.
#include <orvo/body/body_model.h>
#include <orvo/params/param_set.h>
#include <orvo/walk/walker.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using orvo::walk::Walker;

constexpr double gravity = 9.81;
constexpr double radians_per_degree = 0.017453292519943295;

orvo::walk::WalkParams type0() {
    return orvo::walk::WalkParams::from(
        orvo::walk::ParamSet::load(std::string(ORVO_PARAMS) + "/walk/type0.json"));
}

/// A still torso tilted `pitch` degrees forward, turning at `rate` deg/s
/// about its forward axis. The server's torso frame: x right, y forward.
orvo::perception::Perception torso(double pitch, double rate = 0) {
    orvo::perception::Perception perception;
    perception.has_accelerometer = perception.has_gyroscope = true;
    const double angle = pitch * radians_per_degree;
    perception.accelerometer = {0, static_cast<float>(-gravity * std::sin(angle)),
                                static_cast<float>(gravity * std::cos(angle))};
    perception.gyroscope = {0, static_cast<float>(rate), 0};
    return perception;
}

void run(Walker& walker, const orvo::perception::Perception& perception, double seconds) {
    for (int i = 0; i < seconds / orvo::robot::cycle_seconds; ++i) {
        walker.update(perception);
    }
}

TEST(Walker, CombinedVelocitiesStayWithinTheLimitsTogether) {
    auto params = type0();
    params.combine_power = 1;
    Walker walker(orvo::body::BodyModel::for_type(0), params);
    struct Case {
        double forward, sideways, turn;
    };
    // Alone, each limit is reached; together their shares add up to one.
    const Case cases[] = {{9, 0, 0},    {-9, 0, 0},     {0, 9, 0},    {0, 0, -900}, {9, 9, 0},
                          {-9, 0, 900}, {0.2, 0.1, 30}, {9, -9, 900}, {0.01, 0, 0}};
    for (const Case& c : cases) {
        walker.set_velocity(c.forward, c.sideways, c.turn);
        const auto& target = walker.target();
        const double shares = std::fabs(target.forward) /
                                  (target.forward < 0 ? params.max_backward : params.max_forward) +
                              std::fabs(target.sideways) / params.max_sideways +
                              std::fabs(target.turn) / params.max_turn;
        const int axes = (c.forward != 0) + (c.sideways != 0) + (c.turn != 0);
        SCOPED_TRACE(testing::Message() << c.forward << " " << c.sideways << " " << c.turn);
        EXPECT_LE(shares, 1 + 1e-9);
        if (axes == 1 && std::fabs(c.forward + c.sideways + c.turn) > 1) {
            EXPECT_NEAR(shares, 1, 1e-9);
        }
        // Scaling keeps the direction asked for.
        EXPECT_GE(target.forward * c.forward, 0);
        EXPECT_GE(target.turn * c.turn, 0);
    }
}

TEST(Walker, FirstStepWaitsForASteadyTorso) {
    const auto params = type0();
    struct Case {
        double pitch, rate;
        bool walks;
    };
    const Case cases[] = {
        {params.lean, 0, true},
        {params.lean + 2 * params.start_tilt, 0, false},
        {params.lean - 2 * params.start_tilt, 0, false},
        {params.lean, 2 * params.start_gyro, false},
    };
    for (const Case& c : cases) {
        Walker walker(orvo::body::BodyModel::for_type(0), params);
        run(walker, torso(c.pitch, c.rate), 0.5);
        walker.set_velocity(0.3, 0, 0);
        run(walker, torso(c.pitch, c.rate), 1);
        SCOPED_TRACE(testing::Message() << "pitch " << c.pitch << " rate " << c.rate);
        EXPECT_EQ(!walker.standing(), c.walks);
        // Waiting, it does not gather speed for a sudden first step.
        if (!c.walks) {
            EXPECT_EQ(walker.velocity().forward, 0);
        }
    }
}

TEST(Walker, OdometryCountsTheCreepOfSteppingInPlace) {
    auto params = type0();
    params.odometry_creep = 0.05;
    Walker walker(orvo::body::BodyModel::for_type(0), params);
    run(walker, torso(params.lean), 0.5);
    walker.set_velocity(1e-6, 0, 0);
    run(walker, torso(params.lean), 4);
    ASSERT_FALSE(walker.standing());
    EXPECT_NEAR(walker.odometry().x, 0.05 * 4, 0.02);
    EXPECT_NEAR(walker.odometry().y, 0, 1e-3);
}

} // namespace
