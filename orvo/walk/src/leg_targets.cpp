#include <orvo/walk/leg_targets.h>

#include <cmath>

namespace orvo::walk {

namespace {

constexpr double radians_per_degree = 0.017453292519943295;

body::Leg leg_of(Side side) {
    return side == Side::left ? body::Leg::left : body::Leg::right;
}

/// The sole's pose in the torso frame: the level frame's origin is the
/// middle of the hip joints, about which the torso tilts.
Eigen::Isometry3d sole_in_torso(const body::BodyModel& model, const SoleTarget& target,
                                const Attitude& attitude) {
    const Eigen::Vector3d hips =
        (model.hip_offset(body::Leg::left) + model.hip_offset(body::Leg::right)) / 2;
    const Eigen::Matrix3d tilt =
        (Eigen::AngleAxisd(attitude.pitch * radians_per_degree, Eigen::Vector3d::UnitY()) *
         Eigen::AngleAxisd(attitude.roll * radians_per_degree, Eigen::Vector3d::UnitX()))
            .toRotationMatrix();
    Eigen::Isometry3d pose = Eigen::Isometry3d::Identity();
    pose.linear() = tilt.transpose() *
                    Eigen::AngleAxisd(target.yaw * radians_per_degree, Eigen::Vector3d::UnitZ())
                        .toRotationMatrix();
    pose.translation() = tilt.transpose() * target.position + hips;
    return pose;
}

double yaw_of(const Eigen::Isometry3d& pose) {
    return std::atan2(pose.linear()(1, 0), pose.linear()(0, 0)) / radians_per_degree;
}

} // namespace

bool leg_angles(const body::BodyModel& model, Side side, const SoleTarget& target,
                const Attitude& attitude, body::LegAngles& angles) {
    const Eigen::Isometry3d pose = sole_in_torso(model, target, attitude);
    const body::Leg leg = leg_of(side);
    // The joint only turns a foot outward; a small outward yaw needs about
    // sqrt(2) times its angle, larger ones a little more: two secant steps
    // on the leg's own kinematics settle it within a tenth of a degree.
    const double outward = std::max(0.0, sign(side) * target.yaw);
    double hip_yaw = -outward * std::sqrt(2.0);
    body::LegSolution solution = body::solve_leg(model, leg, pose, hip_yaw);
    if (outward > 0.1) {
        double previous_hip = 0;
        double previous_error = -outward;
        for (int i = 0; i < 2; ++i) {
            const double error =
                sign(side) * yaw_of(body::foot_pose(model, leg, solution.angles)) - outward;
            const double slope = (error - previous_error) / (hip_yaw - previous_hip);
            if (std::fabs(slope) < 1e-6) {
                break;
            }
            previous_hip = hip_yaw;
            previous_error = error;
            hip_yaw = std::min(0.0, hip_yaw - error / slope);
            solution = body::solve_leg(model, leg, pose, hip_yaw);
        }
    }
    angles = solution.angles;
    return solution.reachable;
}

void set_leg(Side side, const body::LegAngles& angles, robot::JointValues& targets) {
    using robot::Joint;
    const bool left = side == Side::left;
    targets[index(left ? Joint::left_hip_yaw_pitch : Joint::right_hip_yaw_pitch)] =
        angles.hip_yaw_pitch;
    targets[index(left ? Joint::left_hip_roll : Joint::right_hip_roll)] = angles.hip_roll;
    targets[index(left ? Joint::left_hip_pitch : Joint::right_hip_pitch)] = angles.hip_pitch;
    targets[index(left ? Joint::left_knee_pitch : Joint::right_knee_pitch)] = angles.knee;
    targets[index(left ? Joint::left_ankle_pitch : Joint::right_ankle_pitch)] = angles.ankle_pitch;
    targets[index(left ? Joint::left_ankle_roll : Joint::right_ankle_roll)] = angles.ankle_roll;
}

} // namespace orvo::walk
