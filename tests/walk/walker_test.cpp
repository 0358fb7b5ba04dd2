// The walker without a server: it takes its first step only from a steady
// torso and sees through a shaken accelerometer, fed made-up perceptions; its
// heading follows a rocking torso's true turn.
#include <orvo/body/body_model.h>
#include <orvo/walk/walker.h>

#include <Eigen/Geometry>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

TEST(Walker, FirstStepWaitsForASteadyTorso) {
    const auto params = orvo::walk::WalkParams::from(
        orvo::walk::ParamSet::load(std::string(ORVO_PARAMS) + "/walk/type0.json"));
    struct Case {
        double pitch, rate; // deg forward, deg/s about the forward axis
        double shake;       // m/s^2 up and down, alternating each cycle
        bool walks;
    };
    // Shaken, single readings point up to 170 degrees off: only their average
    // tells the tilt.
    for (const Case& c : {Case{params.lean, 0, 0, true},
                          {params.lean, 0, 15, true},
                          {params.lean + 2 * params.start_tilt, 0, 0, false},
                          {params.lean - 2 * params.start_tilt, 0, 0, false},
                          {params.lean, 2 * params.start_gyro, 0, false}}) {
        orvo::perception::Perception torso; // the server's torso frame: x right, y forward
        torso.has_accelerometer = torso.has_gyroscope = true;
        const double angle = c.pitch * 3.14159265358979 / 180;
        torso.gyroscope = {0, float(c.rate), 0};
        orvo::walk::Walker walker(orvo::body::BodyModel::for_type(0), params);
        for (int i = 0; i < 75; ++i) {
            const double shake = i % 2 == 0 ? c.shake : -c.shake;
            torso.accelerometer = {0, float(-9.81 * std::sin(angle)),
                                   float(9.81 * std::cos(angle) + shake)};
            walker.set_velocity(i < 25 ? 0 : 0.3, 0, 0);
            walker.update(torso);
        }
        SCOPED_TRACE(testing::Message() << "pitch " << c.pitch << " rate " << c.rate);
        EXPECT_EQ(!walker.standing(), c.walks);
        // Waiting, it gathers no speed for a sudden first step.
        EXPECT_EQ(walker.velocity().forward == 0, !c.walks);
    }
}

TEST(Walker, HeadingRateIsTheTurnOfARockingTorso) {
    using Eigen::AngleAxisd;
    using Eigen::Vector3d;
    constexpr double rad = 3.14159265358979 / 180;
    struct Case {
        double turn, pitch, roll, pitch_rate, roll_rate; // deg and deg/s
    };
    for (const Case& c : {Case{30, 0, 0, 0, 0},
                          {30, 0, 20, 0, 0},
                          {-30, 10, -20, 0, 0},
                          {0, 5, 15, 40, 0},
                          {20, -8, 10, -30, 50}}) {
        // The torso's rates from two poses a millisecond apart, the heading
        // turned first, then the pitch forward, then the roll to the right.
        auto pose = [&c](double t) {
            return AngleAxisd((c.turn * t) * rad, Vector3d::UnitZ()) *
                   AngleAxisd((c.pitch + c.pitch_rate * t) * rad, Vector3d::UnitY()) *
                   AngleAxisd((c.roll + c.roll_rate * t) * rad, Vector3d::UnitX());
        };
        const double dt = 1e-3;
        const AngleAxisd moved(pose(dt / 2).toRotationMatrix().transpose() *
                               pose(-dt / 2).toRotationMatrix());
        const Vector3d rates = -moved.axis() * moved.angle() / dt / rad;
        SCOPED_TRACE(testing::Message() << "pitch " << c.pitch << " roll " << c.roll);
        EXPECT_NEAR(orvo::walk::heading_rate(rates, {c.pitch, c.roll}), c.turn, 0.05);
    }
}

} // namespace
