// The body of every robot type against the server's own figures, and the
// legs' inverse kinematics against their forward kinematics.
#include <gtest/gtest.h>

#include <orvo/body/kinematics.h>

#include <cmath>
#include <random>
#include <stdexcept>

namespace {

using orvo::body::BodyModel;
using orvo::body::foot_pose;
using orvo::body::Leg;
using orvo::body::LegAngles;
using orvo::body::solve_leg;
using orvo::robot::Joint;

// Worked out by hand from the server's robot type table and leg scene file.
struct TypeFacts {
    int type;
    double hip_width, thigh, shin, sole_z, ankle_pitch_speed, ankle_roll_speed;
    bool toes;
};
constexpr TypeFacts facts[] = {
    {0, 0.055, 0.12, 0.1, -0.385, 6.1395, 6.1395, false},
    {1, 0.055, 0.13832, 0.11832, -0.42164, 6.1395, 6.1395, false},
    {2, 0.055, 0.12, 0.1, -0.385, 8.80667, 3.47234, false},
    {3, 0.072954143, 0.147868424, 0.127868424, -0.440736848, 6.1395, 6.1395, false},
    {4, 0.055, 0.12, 0.1, -0.385, 6.1395, 6.1395, true},
};

TEST(BodyModel, EveryTypeHasTheServersDimensionsSpeedsAndMass) {
    for (const TypeFacts& f : facts) {
        SCOPED_TRACE(f.type);
        const BodyModel body = BodyModel::for_type(f.type);
        EXPECT_NEAR(body.hip_width(), f.hip_width, 1e-9);
        EXPECT_NEAR(body.thigh_length(), f.thigh, 1e-9);
        EXPECT_NEAR(body.shin_length(), f.shin, 1e-9);
        EXPECT_NEAR(body.foot_height(), 0.05, 1e-9);
        EXPECT_NEAR(body.total_mass(), 4.6071, 1e-9);
        EXPECT_NEAR(body.leg_mass(), 1.04, 1e-9);
        EXPECT_DOUBLE_EQ(body.max_speed(Joint::left_ankle_pitch), f.ankle_pitch_speed);
        EXPECT_DOUBLE_EQ(body.max_speed(Joint::right_ankle_roll), f.ankle_roll_speed);
        EXPECT_EQ(body.has(Joint::left_toe), f.toes);
        // The joint controllers take their limits from the joint table: it
        // must say what the model says.
        for (const auto& joint : body.joints()) {
            EXPECT_NEAR(orvo::robot::speed_limit_rad(f.type, joint.joint), joint.max_speed, 1e-3)
                << orvo::robot::info(joint.joint).name;
        }
        for (const Leg leg : {Leg::left, Leg::right}) {
            const Eigen::Isometry3d sole = foot_pose(body, leg, {});
            const double x = leg == Leg::left ? -f.hip_width : f.hip_width;
            EXPECT_TRUE(sole.translation().isApprox(Eigen::Vector3d(x, 0.025, f.sole_z), 1e-9));
            EXPECT_TRUE(sole.linear().isIdentity(1e-12));
            EXPECT_NEAR(body.hip_offset(leg).x(), x, 1e-12);
        }
    }
}

TEST(BodyModel, RefusesUnknownTypesAndBadFiles) {
    EXPECT_THROW(BodyModel::for_type(5), std::invalid_argument);
    EXPECT_THROW(BodyModel::for_type(-1), std::invalid_argument);
    EXPECT_THROW(orvo::robot::speed_limit_rad(5, Joint::neck_yaw), std::invalid_argument);
    EXPECT_THROW(BodyModel::load("/nonexistent/type0.json"), std::runtime_error);
    EXPECT_THROW(BodyModel::parse(R"({"type": 0, "joints": [{"joint": "tail"}]})", "t"),
                 std::runtime_error);
    EXPECT_THROW(BodyModel::for_type(0).joint(Joint::left_toe), std::invalid_argument);
    EXPECT_DOUBLE_EQ(BodyModel::load(ORVO_BODY_DIR "/type2.json").max_speed(Joint::left_ankle_roll),
                     3.47234);
}

// Random angles inside each joint's range, the knee kept bent (a straight
// knee leaves the hip pitch and the ankle pitch undetermined).
LegAngles random_angles(std::mt19937& rng, Leg leg) {
    const double side = leg == Leg::left ? 1 : -1;
    const auto angle = [&rng](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(rng);
    };
    return {angle(-60, 0),  angle(-20, 20) + 10 * side, angle(-20, 90), angle(-120, -10),
            angle(-40, 70), angle(-20, 20) - 10 * side};
}

void expect_same(const LegAngles& a, const LegAngles& b, double tolerance) {
    orvo::robot::JointValues x{}, y{};
    orvo::body::set_leg_angles(x, Leg::left, a);
    orvo::body::set_leg_angles(y, Leg::left, b);
    for (std::size_t i = 0; i < x.size(); ++i) {
        EXPECT_NEAR(x[i], y[i], tolerance);
    }
}

TEST(LegKinematics, AnglesToSoleToAnglesForEveryTypeAndLeg) {
    std::mt19937 rng(23);
    for (const TypeFacts& f : facts) {
        const BodyModel body = BodyModel::for_type(f.type);
        for (const Leg leg : {Leg::left, Leg::right}) {
            for (int trial = 0; trial < 60; ++trial) {
                SCOPED_TRACE(testing::Message() << "type " << f.type << " leg "
                                                << static_cast<int>(leg) << " trial " << trial);
                const LegAngles wanted = random_angles(rng, leg);
                const Eigen::Isometry3d sole = foot_pose(body, leg, wanted);
                const auto given = solve_leg(body, leg, sole, wanted.hip_yaw_pitch);
                ASSERT_TRUE(given.reachable);
                expect_same(given.angles, wanted, 1e-6);
                // Near a straight knee, or with the thigh across the hip
                // yaw-pitch axis, other angles may give the same pose.
                const auto free = solve_leg(body, leg, sole);
                ASSERT_TRUE(free.reachable);
                EXPECT_TRUE(foot_pose(body, leg, free.angles).isApprox(sole, 1e-9));
            }
        }
    }
}

TEST(LegKinematics, UnreachableSolesAreFlaggedWithAnglesInRange) {
    const BodyModel body = BodyModel::for_type(1);
    const Eigen::Isometry3d far(Eigen::Translation3d(0.05, 0.3, -0.6));
    Eigen::Isometry3d broken = Eigen::Isometry3d::Identity();
    broken.translation().x() = std::nan("");
    // A tilt the ankle cannot take with the sole where it stands at rest.
    const Eigen::Isometry3d tilted =
        foot_pose(body, Leg::right, {}) * Eigen::AngleAxisd(1.2, Eigen::Vector3d::UnitY());
    for (const Eigen::Isometry3d& sole : {far, broken, tilted}) {
        for (const auto& solution :
             {solve_leg(body, Leg::right, sole, -10), solve_leg(body, Leg::right, sole)}) {
            EXPECT_FALSE(solution.reachable);
            orvo::robot::JointValues q{};
            orvo::body::set_leg_angles(q, Leg::right, solution.angles);
            for (const int k : body.leg_chain(Leg::right)) {
                const auto& joint = body.joints()[static_cast<std::size_t>(k)];
                const double deg = q[orvo::robot::index(joint.joint)];
                EXPECT_TRUE(deg >= joint.min_deg && deg <= joint.max_deg) << deg; // not NaN
            }
        }
    }
}

} // namespace
