#ifndef ORVO_WALK_LEG_TARGETS_H
#define ORVO_WALK_LEG_TARGETS_H

#include <orvo/body/body_model.h>
#include <orvo/core/export.h>
#include <orvo/walk/gait.h>

namespace orvo::walk {

/// The torso's attitude over the level frame: pitched forward and rolled to
/// the left, degrees.
struct Attitude {
    double pitch = 0;
    double roll = 0;
};

/// Joint angles (deg) that put the sole of `side` at `target` with the torso
/// held at `attitude`. A turned foot takes its yaw from the hip yaw-pitch
/// joint, which can only turn it outward; an inward yaw is not asked for by
/// the gait. Unreachable targets give the nearest angles the solver found.
/// Returns whether the target was reached.
ORVO_API bool leg_angles(const body::BodyModel& model, Side side, const SoleTarget& target,
                         const Attitude& attitude, body::LegAngles& angles);

inline body::Leg leg_of(Side side) {
    return side == Side::left ? body::Leg::left : body::Leg::right;
}

} // namespace orvo::walk

#endif
