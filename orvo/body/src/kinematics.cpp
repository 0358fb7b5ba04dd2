#include <orvo/body/kinematics.h>

#include "chain.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace orvo::body {

using detail::radians_per_degree;

Eigen::Isometry3d foot_pose(const BodyModel& model, Leg leg, const LegAngles& angles) {
    const auto joints = detail::leg_joints(model, leg);
    const detail::LegVector degrees = detail::to_vector(angles);
    Eigen::Isometry3d pose = Eigen::Isometry3d::Identity();
    for (std::size_t k = 0; k < 6; ++k) {
        pose = pose *
               detail::turn(*joints[k], degrees[static_cast<Eigen::Index>(k)] * radians_per_degree);
    }
    return pose * Eigen::Translation3d(model.sole_centre(leg));
}

namespace {

// Where every joint has moved what it carries, joints in the model's order.
std::vector<Eigen::Isometry3d> joint_poses(const BodyModel& model,
                                           const robot::JointValues& angles) {
    std::vector<Eigen::Isometry3d> poses;
    poses.reserve(model.joints().size());
    for (const JointModel& joint : model.joints()) {
        const Eigen::Isometry3d parent = joint.parent < 0
                                             ? Eigen::Isometry3d::Identity()
                                             : poses[static_cast<std::size_t>(joint.parent)];
        poses.push_back(
            parent * detail::turn(joint, angles[robot::index(joint.joint)] * radians_per_degree));
    }
    return poses;
}

Eigen::Isometry3d carried_by(const std::vector<Eigen::Isometry3d>& poses, const Part& part) {
    return part.joint < 0 ? Eigen::Isometry3d::Identity()
                          : poses[static_cast<std::size_t>(part.joint)];
}

} // namespace

LegAngles leg_angles(const robot::JointValues& angles, Leg leg) {
    detail::LegVector v;
    for (std::size_t k = 0; k < 6; ++k) {
        v[static_cast<Eigen::Index>(k)] =
            angles[robot::index(detail::leg_joint_ids[leg == Leg::left ? 0 : 1][k])];
    }
    return detail::to_angles(v);
}

void set_leg_angles(robot::JointValues& angles, Leg leg, const LegAngles& leg_angles) {
    const detail::LegVector v = detail::to_vector(leg_angles);
    for (std::size_t k = 0; k < 6; ++k) {
        angles[robot::index(detail::leg_joint_ids[leg == Leg::left ? 0 : 1][k])] =
            v[static_cast<Eigen::Index>(k)];
    }
}

Eigen::Isometry3d part_pose(const BodyModel& model, std::string_view part,
                            const robot::JointValues& angles) {
    for (const Part& candidate : model.parts()) {
        if (candidate.name == part) {
            return carried_by(joint_poses(model, angles), candidate) *
                   Eigen::Translation3d(candidate.centre);
        }
    }
    throw std::invalid_argument("robot type " + std::to_string(model.type()) + " has no part \"" +
                                std::string(part) + "\"");
}

Eigen::Vector3d centre_of_mass(const BodyModel& model, const robot::JointValues& angles) {
    const std::vector<Eigen::Isometry3d> poses = joint_poses(model, angles);
    Eigen::Vector3d weighted = Eigen::Vector3d::Zero();
    for (const Part& part : model.parts()) {
        weighted += part.mass * (carried_by(poses, part) * part.centre);
    }
    return weighted / model.total_mass();
}

} // namespace orvo::body
