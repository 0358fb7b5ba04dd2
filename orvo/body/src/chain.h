#ifndef ORVO_BODY_SRC_CHAIN_H
#define ORVO_BODY_SRC_CHAIN_H

#include <orvo/body/body_model.h>

#include <Eigen/Geometry>

#include <array>

namespace orvo::body::detail {

constexpr double radians_per_degree = 1.0 / robot::degrees_per_radian;

/// How a joint turned by `radians` moves everything it carries, in the frame
/// of the part it hangs from (which, with every joint at 0, is the body frame).
inline Eigen::Isometry3d turn(const JointModel& joint, double radians) {
    Eigen::Isometry3d t = Eigen::Isometry3d::Identity();
    t.translate(joint.anchor);
    t.rotate(Eigen::AngleAxisd(radians, joint.axis));
    t.translate(-joint.anchor);
    return t;
}

/// One leg's joints in the order of LegAngles, left leg first.
constexpr std::array<std::array<robot::Joint, 6>, 2> leg_joint_ids{{
    {robot::Joint::left_hip_yaw_pitch, robot::Joint::left_hip_roll, robot::Joint::left_hip_pitch,
     robot::Joint::left_knee_pitch, robot::Joint::left_ankle_pitch, robot::Joint::left_ankle_roll},
    {robot::Joint::right_hip_yaw_pitch, robot::Joint::right_hip_roll, robot::Joint::right_hip_pitch,
     robot::Joint::right_knee_pitch, robot::Joint::right_ankle_pitch,
     robot::Joint::right_ankle_roll},
}};

using LegVector = Eigen::Matrix<double, 6, 1>;

inline LegVector to_vector(const LegAngles& a) {
    LegVector v;
    v << a.hip_yaw_pitch, a.hip_roll, a.hip_pitch, a.knee, a.ankle_pitch, a.ankle_roll;
    return v;
}

inline LegAngles to_angles(const LegVector& v) {
    return {v[0], v[1], v[2], v[3], v[4], v[5]};
}

/// The joints of one leg, hip yaw-pitch first.
inline std::array<const JointModel*, 6> leg_joints(const BodyModel& model, Leg leg) {
    std::array<const JointModel*, 6> joints{};
    for (std::size_t k = 0; k < 6; ++k) {
        joints[k] = &model.joints()[static_cast<std::size_t>(model.leg_chain(leg)[k])];
    }
    return joints;
}

} // namespace orvo::body::detail

#endif
