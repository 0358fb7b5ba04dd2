#ifndef ORVO_BODY_KINEMATICS_H
#define ORVO_BODY_KINEMATICS_H

#include <orvo/body/body_model.h>
#include <orvo/core/export.h>
#include <orvo/robot/joints.h>

#include <Eigen/Geometry>

#include <string_view>

namespace orvo::body {

/// The sole's pose in the body frame (see Leg): its origin is the sole's
/// centre, its axes are the foot's (x right, y towards the toes, z out of the
/// sole's top), so at every joint 0 it is the body frame moved down to the
/// sole. Toes count as straight.
ORVO_API Eigen::Isometry3d foot_pose(const BodyModel& model, Leg leg, const LegAngles& angles);

/// Joint angles for a wanted sole pose. `reachable` is false when no angles
/// within the joints' ranges put the sole there: the angles are then clamped
/// to the ranges and put the sole as near as the solver got (never NaN).
/// `position_error` (m) and `tilt_error_deg` say how far off the result is.
struct LegSolution {
    LegAngles angles;
    bool reachable = false;
    double position_error = 0;
    double tilt_error_deg = 0;
};

/// The other five angles for a given hip yaw-pitch. Both legs share one hip
/// yaw-pitch motor on the real robot, so the caller picks it (from the turn
/// it wants) and uses it for both legs; the sole's position and tilt are then
/// met, and its heading is whatever that hip yaw-pitch gives.
ORVO_API LegSolution solve_leg(const BodyModel& model, Leg leg,
                               const Eigen::Isometry3d& sole_in_torso, double hip_yaw_pitch_deg);
/// All six angles, heading included: the hip yaw-pitch a turning foot needs.
ORVO_API LegSolution solve_leg(const BodyModel& model, Leg leg,
                               const Eigen::Isometry3d& sole_in_torso);

/// One leg's angles out of (or into) a whole robot's joint values.
ORVO_API LegAngles leg_angles(const robot::JointValues& angles, Leg leg);
ORVO_API void set_leg_angles(robot::JointValues& angles, Leg leg, const LegAngles& leg_angles);

/// A part's pose (origin at its centre) in the body frame for the given
/// angles (degrees, every joint); throws std::invalid_argument for a part the
/// model does not have (names as in the data files: "lfoot", "rthigh"...).
ORVO_API Eigen::Isometry3d part_pose(const BodyModel& model, std::string_view part,
                                     const robot::JointValues& angles);
/// The whole robot's centre of mass in the body frame.
ORVO_API Eigen::Vector3d centre_of_mass(const BodyModel& model, const robot::JointValues& angles);

} // namespace orvo::body

#endif
