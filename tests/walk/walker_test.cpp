// The walker without a server: it takes its first step only from a steady
// torso and sees through a shaken accelerometer, fed made-up perceptions; its
// heading follows a rocking torso's true turn.
#include <orvo/body/body_model.h>
#include <orvo/walk/walker.h>

#include <Eigen/Geometry>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>

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
    // Turning left at 30 deg/s while pitching at 40 and rolling at 50, seen in
    // the torso's own axes: the heading, then the pitch, then the roll.
    for (const auto& [pitch, roll] : {std::pair{10.0, 20.0}, {-8.0, -15.0}}) {
        const AngleAxisd tipped(pitch * rad, Vector3d::UnitY()),
            rolled(roll * rad, Vector3d::UnitX());
        const Vector3d rates = (tipped * rolled).inverse() * Vector3d(0, 0, 30) +
                               rolled.inverse() * Vector3d(0, 40, 0) + Vector3d(50, 0, 0);
        EXPECT_NEAR(orvo::walk::heading_rate(rates, {pitch, roll}), 30, 1e-9)
            << pitch << " " << roll;
    }
}

} // namespace
