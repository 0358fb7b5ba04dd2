// The fall detector on senses made up from a known posture: lying on each
// side, tipping over, crouching, and standing up again.
#include <orvo/fall/fall_detector.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

using orvo::fall::Posture;
using orvo::robot::Joint;

constexpr double g = 9.81;
constexpr double cycle = 0.02;

orvo::fall::FallDetector detector() {
    return {orvo::body::BodyModel::for_type(0), orvo::fall::FallParams::for_type(0)};
}

/// The robot standing with straight legs and both feet down, its torso
/// feeling `felt` (m/s², torso frame) and turning at `turn` (deg/s).
orvo::perception::Perception sense(double time, orvo::math::Vector3d felt,
                                   orvo::math::Vector3d turn = {0, 0, 0}) {
    orvo::perception::Perception p;
    p.has_time = p.has_accelerometer = p.has_gyroscope = true;
    p.time = time;
    p.accelerometer = felt;
    p.gyroscope = turn;
    p.feet[0].touches = p.feet[1].touches = true;
    for (std::size_t i = 0; i < orvo::robot::joints_of_type(0); ++i) {
        p.joints.set(static_cast<Joint>(i), 0);
    }
    return p;
}

struct LyingCase {
    orvo::math::Vector3d felt;
    Posture posture;
};

TEST(FallDetector, TellsTheSideItLiesOnFromGravity) {
    const LyingCase cases[] = {
        {{0, 0, g}, Posture::upright},       {{0, -g, 0}, Posture::fallen_front},
        {{0, g, 0}, Posture::fallen_back},   {{g, 0, 0}, Posture::fallen_left},
        {{-g, 0, 0}, Posture::fallen_right}, {{1, -g, 1}, Posture::fallen_front},
    };
    for (const LyingCase& c : cases) {
        auto d = detector();
        for (int i = 0; i < 200; ++i) {
            d.update(sense(i * cycle, c.felt));
        }
        EXPECT_EQ(d.posture(), c.posture) << posture_name(d.posture());
    }
}

TEST(FallDetector, FollowsTheGyroscopeWhileTheAccelerometerIsShaken) {
    // Tipping forward at 150 deg/s (about the right axis, x) with the
    // accelerometer far from g: only the gyroscope can tell.
    auto d = detector();
    d.update(sense(0, {0, 0, g}));
    Posture seen = Posture::upright;
    double falling_at = -1;
    for (int i = 1; i <= 30 && !orvo::fall::lying(seen); ++i) {
        seen = d.update(sense(i * cycle, {0, 0, 3 * g}, {-150, 0, 0}));
        if (seen == Posture::falling && falling_at < 0) {
            falling_at = d.tilt_deg();
        }
    }
    EXPECT_EQ(seen, Posture::fallen_front);
    EXPECT_GE(falling_at, 35);
    EXPECT_LT(falling_at, 50);
    EXPECT_NEAR(d.tilt_deg(), 51, 3);
}

TEST(FallDetector, NeitherTurningNorSwayingIsAFall) {
    auto d = detector();
    for (int i = 0; i < 500; ++i) {
        const float sway = (i / 25) % 2 == 0 ? 20.0f : -20.0f;
        EXPECT_EQ(d.update(sense(i * cycle, {0.5, 0.5, g}, {sway, sway, 90})), Posture::upright);
    }
}

TEST(FallDetector, BelievesReadingsOfGOnlyWhileTheTorsoHardlyTurns) {
    // A fast walk rocks the torso back and forth at 100 deg/s, and in
    // mid-step its accelerometer reads about g far from the vertical (here
    // 60 degrees forward): believed, those readings alone would lay it down.
    auto d = detector();
    const float s = std::sin(1.047f) * static_cast<float>(g);
    const float c = std::cos(1.047f) * static_cast<float>(g);
    d.update(sense(0, {0, 0, g}));
    for (int i = 1; i < 1500; ++i) {
        const float rock = (i + 5) / 10 % 2 == 0 ? 100.0f : -100.0f;
        d.update(sense(i * cycle, {0, -s, c}, {rock, 0, 0}));
        ASSERT_EQ(d.posture(), Posture::upright) << i;
    }
    EXPECT_LT(d.tilt_deg(), 15);
    // Still, the same reading is believed.
    for (int i = 1500; i < 1700; ++i) {
        d.update(sense(i * cycle, {0, -s, c}));
    }
    EXPECT_EQ(d.posture(), Posture::fallen_front);
}

TEST(FallDetector, CrouchingLowCountsAsFallen) {
    auto d = detector();
    auto p = sense(0, {0, 0, g});
    for (Joint joint : {Joint::left_knee_pitch, Joint::right_knee_pitch}) {
        p.joints.set(joint, -130);
    }
    for (Joint joint : {Joint::left_hip_pitch, Joint::right_hip_pitch}) {
        p.joints.set(joint, 90);
    }
    for (Joint joint : {Joint::left_ankle_pitch, Joint::right_ankle_pitch}) {
        p.joints.set(joint, 75);
    }
    EXPECT_TRUE(orvo::fall::lying(d.update(p)));
    EXPECT_LT(d.height(), 0.25);
}

/// Lying on its back for 2 s, then held upright until `until` with or without
/// its feet on the ground; the time at which it counted as upright, or -1.
double upright_again_at(bool feet_down, double& upright_from) {
    auto d = detector();
    double t = 0;
    for (; t < 2; t += cycle) {
        d.update(sense(t, {0, g, 0}));
    }
    EXPECT_EQ(d.posture(), Posture::fallen_back);
    upright_from = -1;
    for (; t < 6; t += cycle) {
        auto p = sense(t, {0, 0, g});
        p.feet[0].touches = p.feet[1].touches = feet_down;
        d.update(p);
        if (upright_from < 0 && d.tilt_deg() <= 25) {
            upright_from = t;
        }
        if (d.posture() == Posture::upright) {
            return t;
        }
    }
    return -1;
}

TEST(FallDetector, IsUprightAgainOnlyAfterStandingForTheHold) {
    double standing_from = -1;
    const double upright_at = upright_again_at(true, standing_from);
    ASSERT_GE(standing_from, 0);
    EXPECT_NEAR(upright_at - standing_from, 1.0, 1.5 * cycle);
    // Held up off the ground it does not count as standing.
    EXPECT_LT(upright_again_at(false, standing_from), 0);
}

} // namespace
