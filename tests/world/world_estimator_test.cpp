// The world model against the truth: on perceptions recorded from a real
// server, and on sightings made up from the field's own geometry.
#include <gtest/gtest.h>

#include "replay.h"

#include <orvo/perception/perception_reader.h>
#include <orvo/world/field.h>
#include <orvo/world/localizer.h>
#include <orvo/world/world_model.h>

#include <cmath>
#include <string>

namespace {

using orvo::perception::Landmark;
using orvo::perception::Side;
using orvo::world::Method;

orvo::world::WorldParams params() {
    return orvo::world::WorldParams::for_type(WORLD_PARAMS, 0);
}

struct RecordedCase {
    const char* file;
    Method method;
    orvo::record::Handicap handicap;
    double median_m, p95_m, heading_deg, ball_m, recovery_s;
};

// A robot moved by the trainer 8 times across the field (every move a
// kidnap of 5 m or more), its head scanning, the neck pitched up and down,
// then facing a side line with lines only in view; type 0's ends carried
// along a quarter circle with a walk's odometry, 10 % long.
const RecordedCase recorded_cases[] = {
    {"type0_scan_kidnap.txt", Method::particles_and_fit, {}, 0.05, 0.10, 1.0, 0.10, 1.0},
    {"type2_scan_kidnap.txt", Method::particles_and_fit, {}, 0.05, 0.10, 1.0, 0.10, 1.0},
    {"type0_scan_kidnap.txt", Method::particles, {}, 0.05, 0.20, 1.0, 0.10, 1.0},
    // Only one landmark per sighting and odometry that claims steps never
    // taken: held to the 95th percentile a walking robot must meet.
    {"type0_scan_kidnap.txt", Method::particles_and_fit, {1, 0.01}, 0.05, 0.50, 1.0, 0.10, 1.5},
    // Lines only from the beam on: continuity alone keeps the right half.
    {"type0_scan_kidnap.txt", Method::particles_and_fit, {0, 0, true}, 0.05, 0.10, 1.0, 0.10, 0},
};

class Recorded : public testing::TestWithParam<RecordedCase> {};

TEST_P(Recorded, StaysWithinMarginsOfTheTruth) {
    const RecordedCase& c = GetParam();
    const auto frames = orvo::record::read_recording_file(std::string(WORLD_DATA) + "/" + c.file);
    const orvo::record::Scores s = orvo::record::replay(frames, params(), c.method, c.handicap);
    ASSERT_GT(s.frames, 25);
    EXPECT_LE(s.position_median_m, c.median_m);
    EXPECT_LE(s.position_p95_m, c.p95_m);
    EXPECT_LE(s.heading_median_deg, c.heading_deg);
    EXPECT_LE(s.ball_median_m, c.ball_m);
    EXPECT_GE(s.recovery_worst_s, 0) << "lost after a move";
    EXPECT_LE(s.recovery_worst_s, c.recovery_s);
}

INSTANTIATE_TEST_SUITE_P(World, Recorded, testing::ValuesIn(recorded_cases));

/// What a robot at `pose` on `side` would see: every landmark and a few
/// points of every line within 12 m, on the ground around its torso.
orvo::world::Sightings seen_from(const orvo::world::Pose& pose, Side side) {
    orvo::world::Sightings seen;
    const double h = pose.heading_deg * M_PI / 180;
    auto local = [&](double x, double y) {
        const double dx = x - pose.x, dy = y - pose.y;
        return orvo::world::GroundPoint{std::cos(h) * dx + std::sin(h) * dy,
                                        -std::sin(h) * dx + std::cos(h) * dy};
    };
    for (std::size_t i = 0; i < orvo::perception::landmark_count; ++i) {
        const auto mark = orvo::world::field::landmark(static_cast<Landmark>(i), side);
        seen.landmarks[i] = local(mark.x, mark.y);
        seen.landmarks_seen |= static_cast<std::uint8_t>(1u << i);
    }
    for (const auto& s : orvo::world::field::segments())
        for (double t : {0.2, 0.5, 0.8}) {
            const double x = s.x1 + t * (s.x2 - s.x1), y = s.y1 + t * (s.y2 - s.y1);
            if (std::hypot(x - pose.x, y - pose.y) < 12 &&
                seen.line_point_count < seen.line_points.size())
                seen.line_points[seen.line_point_count++] = local(x, y);
        }
    return seen;
}

struct PoseCase {
    orvo::world::Pose pose;
    Side side;
};

const PoseCase pose_cases[] = {
    {{-5, 2, 30}, Side::left},    {{7, -4, -120}, Side::left}, {{0, 0, 180}, Side::left},
    {{-12, -8, 90}, Side::right}, {{3, 6, -45}, Side::right},
};

class Geometry : public testing::TestWithParam<PoseCase> {};

TEST_P(Geometry, LandmarksAndTheFitFindThePoseThatMadeTheSightings) {
    const auto& [truth, side] = GetParam();
    const orvo::world::Sightings seen = seen_from(truth, side);
    orvo::world::Pose fixed;
    ASSERT_TRUE(orvo::world::pose_from_landmarks(seen, side, fixed));
    EXPECT_NEAR(fixed.x, truth.x, 1e-6);
    EXPECT_NEAR(fixed.y, truth.y, 1e-6);
    EXPECT_NEAR(std::remainder(fixed.heading_deg - truth.heading_deg, 360.0), 0, 1e-6);
    // From a start 0.4 m and 8 degrees off, the fit comes back.
    orvo::world::Pose start = truth;
    start.x += 0.3;
    start.y -= 0.25;
    start.heading_deg += 8;
    auto loose = params();
    loose.fit_iterations = 8;
    loose.fit_prior_m = 5;
    loose.fit_prior_deg = 90;
    const orvo::world::Pose fitted = orvo::world::fit_pose(start, seen, loose, side);
    EXPECT_NEAR(fitted.x, truth.x, 0.02);
    EXPECT_NEAR(fitted.y, truth.y, 0.02);
    EXPECT_NEAR(std::remainder(fitted.heading_deg - truth.heading_deg, 360.0), 0, 0.2);
}

TEST_P(Geometry, ParticlesFindTheRobotFromAWrongStartBySeeingLandmarks) {
    const auto& [truth, side] = GetParam();
    orvo::world::Localizer localizer(params(), Method::particles_and_fit, 3);
    localizer.set_side(side);
    localizer.reset({-truth.x, -truth.y, truth.heading_deg + 180}, 0.1, 5);
    const orvo::world::Sightings seen = seen_from(truth, side);
    for (int i = 0; i < 40; ++i) {
        localizer.predict({});
        localizer.correct(seen);
    }
    EXPECT_NEAR(localizer.estimate().x, truth.x, 0.05);
    EXPECT_NEAR(localizer.estimate().y, truth.y, 0.05);
}

INSTANTIATE_TEST_SUITE_P(World, Geometry, testing::ValuesIn(pose_cases));

TEST(Odometry, StepBetweenReadingsIsInTheFrameOfTheFirst) {
    // Facing +y at (1, 1), then 0.3 m further along +y and turned to face -x.
    const orvo::world::Odometry step = orvo::world::step_between(1, 1, 90, 1, 1.3, -179);
    EXPECT_NEAR(step.dx, 0.3, 1e-9);
    EXPECT_NEAR(step.dy, 0, 1e-9);
    EXPECT_NEAR(step.dturn_deg, 91, 1e-9);
}

TEST(Sightings, ValuesThatAreNotNumbersAreLeftOut) {
    orvo::perception::Vision vision;
    vision.landmarks[0] = {NAN, 10, 0};
    vision.landmarks[1] = {10, 20, -2};
    vision.landmarks_seen = 3;
    vision.lines.push_back({{NAN, 1, 1}, {2, 3, -4}});
    vision.lines.push_back({{2, 0, -10}, {4, 45, -5}});
    orvo::world::Sightings seen;
    seen.read(vision, 90, 0);
    EXPECT_EQ(seen.landmarks_seen, 2);
    EXPECT_EQ(seen.line_point_count, 3u);
    // Seen 20 degrees left of a camera turned 90 degrees left: 110 degrees.
    EXPECT_NEAR(std::atan2(seen.landmarks[1].y, seen.landmarks[1].x) * 180 / M_PI, 110, 0.01);
}

TEST(Sightings, TheTorsosForwardLeanIsUndone) {
    // A mark 10 m straight ahead at camera height, seen with the torso
    // leaning forward 20 degrees: the camera looks down by as much.
    const orvo::world::GroundPoint g =
        orvo::world::to_ground(orvo::math::Polar(10, 0, 20), 0, 0, 20);
    EXPECT_NEAR(g.x, 10, 1e-6);
    EXPECT_NEAR(g.y, 0, 1e-6);
}

TEST(WorldModel, AFallenRobotNeitherTrustsWhatItSeesNorMovesByItsSteps) {
    const orvo::world::WorldParams settings = params();
    orvo::world::WorldModel world(settings);
    world.place(-5, 0, 0);
    orvo::perception::Perception now;
    const auto at = [&now](double time, const char* rest) {
        const std::string text = "(time (now " + std::to_string(time) + "))" + rest;
        EXPECT_TRUE(orvo::perception::PerceptionReader().read(text, now));
    };
    // Lying on its back, it sees the goal posts where a standing robot at the
    // centre spot would, and its legs still make steps.
    const char* lying =
        "(ACC (n torso) (a 0 -9.6 2))(See (G1R (pol 15.05 4 1)) (G2R (pol 15.05 -4 1)))";
    double time = 1;
    for (; time < 3; time += 0.02) {
        at(time, lying);
        world.update(now, {0.001, 0, 0.1});
    }
    EXPECT_NEAR(world.pose().x, -5, 0.1);
    EXPECT_NEAR(world.pose().heading_deg, 0, 5);
    EXPECT_GT(world.tilt_deg(), 60);
    EXPECT_TRUE(world.lying());
    // Up again for a while, it no longer knows its pose as well as before
    // the fall; a moment upright (a bump, a placement) is not up.
    const char* upright = "(ACC (n torso) (a 0 0 9.8))";
    for (const double end = time + 0.1; time < end; time += 0.02) {
        at(time, upright);
        world.update(now, {});
    }
    EXPECT_TRUE(world.lying());
    for (const double end = time + 2; time < end && world.lying(); time += 0.02) {
        at(time, upright);
        world.update(now, {});
    }
    EXPECT_FALSE(world.lying());
    EXPECT_GE(world.pose().sigma_m, settings.fall_spread_m * 0.5);
}

} // namespace
