#include <orvo/walk/leg_targets.h>

#include <orvo/body/kinematics.h>

#include <cmath>

namespace orvo::walk {

namespace {

constexpr double radians_per_degree = 0.017453292519943295;
/// Smaller yaws are taken as none, so that a straight walk keeps the hip
/// yaw-pitch joints at rest.
constexpr double least_yaw = 0.05;

/// The walk thinks forward, left, up; the body model right, forward, up.
Eigen::Matrix3d walk_to_body() {
    Eigen::Matrix3d turn;
    turn << 0, -1, 0, 1, 0, 0, 0, 0, 1;
    return turn;
}

/// The sole's pose in the body frame. The level frame's origin is the middle
/// of the hip joints, about which the torso tilts.
Eigen::Isometry3d sole_in_torso(const body::BodyModel& model, const SoleTarget& target,
                                const Attitude& attitude) {
    const Eigen::Matrix3d to_body = walk_to_body();
    const Eigen::Vector3d hips =
        to_body.transpose() *
        (model.hip_offset(body::Leg::left) + model.hip_offset(body::Leg::right)) / 2;
    const Eigen::Matrix3d tilt =
        (Eigen::AngleAxisd(attitude.pitch * radians_per_degree, Eigen::Vector3d::UnitY()) *
         Eigen::AngleAxisd(attitude.roll * radians_per_degree, Eigen::Vector3d::UnitX()))
            .toRotationMatrix();
    const Eigen::Matrix3d yaw =
        Eigen::AngleAxisd(target.yaw * radians_per_degree, Eigen::Vector3d::UnitZ())
            .toRotationMatrix();
    Eigen::Isometry3d pose = Eigen::Isometry3d::Identity();
    pose.linear() = to_body * tilt.transpose() * yaw * to_body.transpose();
    pose.translation() = to_body * (tilt.transpose() * target.position + hips);
    return pose;
}

} // namespace

bool leg_angles(const body::BodyModel& model, Side side, const SoleTarget& target,
                const Attitude& attitude, body::LegAngles& angles) {
    const Eigen::Isometry3d pose = sole_in_torso(model, target, attitude);
    const body::LegSolution solution = std::fabs(target.yaw) < least_yaw
                                           ? body::solve_leg(model, leg_of(side), pose, 0.0)
                                           : body::solve_leg(model, leg_of(side), pose);
    angles = solution.angles;
    return solution.reachable;
}

} // namespace orvo::walk
