#ifndef ORVO_WALK_LEG_TARGETS_H
#define ORVO_WALK_LEG_TARGETS_H

#include <orvo/body/body_model.h>
#include <orvo/body/leg_kinematics.h>
#include <orvo/robot/joints.h>
#include <orvo/walk/gait.h>

#include <Eigen/Geometry>

namespace orvo::walk {

/// The torso's attitude over the level frame: pitched forward and rolled to
/// the left, degrees.
struct Attitude {
    double pitch = 0;
    double roll = 0;
};

/// Joint angles (deg) that put the sole of `side` at `target` with the torso
/// held at `attitude`. The hip yaw-pitch joint turns the foot about an axis
/// tilted 45 degrees, so the angle that gives the foot its yaw is found from
/// the leg's own forward kinematics. Unreachable targets give the nearest
/// angles the solver found. Returns whether the target was reached.
bool leg_angles(const body::BodyModel& model, Side side, const SoleTarget& target,
                const Attitude& attitude, body::LegAngles& angles);

/// Writes `angles` into the six joints of `side`'s leg.
void set_leg(Side side, const body::LegAngles& angles, robot::JointValues& targets);

} // namespace orvo::walk

#endif
