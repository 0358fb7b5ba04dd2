#ifndef ORVO_KICK_KICK_PLAN_H
#define ORVO_KICK_KICK_PLAN_H

#include <orvo/core/export.h>
#include <orvo/kick/kick_params.h>
#include <orvo/walk/gait.h>

namespace orvo::kick {

/// A pose on the ground: metres, and degrees turned left from the frame's x.
struct Pose2 {
    double x = 0;
    double y = 0;
    double heading = 0;
};

/// `local`, given in `frame`, in the frame `frame` is given in.
ORVO_API Pose2 compose(const Pose2& frame, const Pose2& local);
/// `pose` seen from `frame` (both in one frame): the inverse of compose().
ORVO_API Pose2 relative(const Pose2& frame, const Pose2& pose);

/// The foot that kicks a ball lying at (`ball_x`, `ball_y`) of the robot's
/// frame toward `direction_deg`: the one on the ball's side of the line the
/// ball will travel along through the hips, so the robot steps aside least.
/// A ball kicked toward one side is kicked with the other foot, whose instep
/// faces that way.
ORVO_API walk::Side kicking_side(double ball_x, double ball_y, double direction_deg);

/// Where the hips' middle must stand, and facing where, to kick a ball at
/// (`ball_x`, `ball_y`) toward `direction_deg` with the foot of `side`, all
/// in one frame. `foot_line` is how far the kicking sole stands beside the
/// hips' middle.
ORVO_API Pose2 stand_pose(double ball_x, double ball_y, double direction_deg, walk::Side side,
                          double foot_line, const KickParams& params);

/// The spot the approach heads for while the robot is not yet lined up with
/// `stand` (both in one frame): held back along the kick's line by up to
/// approach_clearance, the more the robot stands aside or turned, so that it
/// never sidesteps or turns into the ball.
ORVO_API Pose2 approach_spot(const Pose2& robot, const Pose2& stand, const KickParams& params);

/// The walking velocity toward `error`, the spot as seen from the robot, for a
/// walk that drifts forward by `creep` (m/s) while it steps.
ORVO_API walk::Velocity approach_velocity(const Pose2& error, const KickParams& params,
                                          double creep);

/// Whether `error` is within the given tolerances (metres, metres, degrees).
ORVO_API bool within(const Pose2& error, double x, double y, double heading);

} // namespace orvo::kick

#endif
