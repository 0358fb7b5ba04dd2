#ifndef ORVO_KICK_KICK_PARAMS_H
#define ORVO_KICK_KICK_PARAMS_H

#include <orvo/core/export.h>
#include <orvo/params/param_set.h>

namespace orvo::kick {

/// Every number that shapes the kick of one robot type, as the parameter file
/// "kick/type<T>.json" holds them. Lengths in metres, angles in degrees, times
/// in seconds. The stance it kicks from is the walk's stand.
struct ORVO_API KickParams {
    // Where the ball must lie before the kick: ahead of the hips' middle, and
    // beside the kicking foot's line (positive: outward).
    double ball_x = 0;
    double ball_y = 0;
    // Walking up to that spot.
    double approach_gain = 0;      ///< m/s per metre off the spot
    double approach_turn_gain = 0; ///< deg/s per degree off the heading
    double approach_forward = 0;   ///< fastest forward, m/s
    double approach_sideways = 0;  ///< fastest sideways, m/s
    double approach_turn = 0;      ///< fastest turn, deg/s
    double approach_clearance = 0; ///< keep this far behind the ball until lined up
    /// Share of the walk's forward creep (its `odometry_creep`) the approach
    /// asks for less: stepping carries the body forward by itself, so a short
    /// way back asked plainly walked the robot on into the ball.
    double approach_creep = 0;
    double tolerance_x = 0; ///< close enough to stop and settle
    /// A robot up to this far short of the spot counts as on it when it
    /// stops walking: the walk's last steps carry it on about that far.
    double stop_lead = 0;
    double tolerance_y = 0;
    double tolerance_heading = 0;
    double kick_tolerance_x = 0; ///< still close enough once stood still
    /// Past the spot (the ball closer than planned) by more than this, the
    /// robot steps back: the swing cannot make up for a ball too close.
    double kick_tolerance_close = 0;
    /// Each walk back to the spot after a last look widens the four
    /// tolerances above by this share of themselves.
    double retry_widen = 0;
    /// Short of the spot (the ball further than planned) by more than this,
    /// widened or not, the robot walks again: the swing passes over a ball
    /// that far off.
    double kick_tolerance_far = 0;
    /// Share of stop_lead counted on the walks back after a last look: they
    /// are short and slow, and barely carry on.
    double retry_lead = 0;
    double kick_tolerance_y = 0;
    double kick_tolerance_heading = 0;
    double settle_time = 0; ///< standing still before the last look
    /// The ball moved more than this while the robot stood: still rolling,
    /// it is looked at again before the kick.
    double ball_still = 0;
    double ball_filter = 0;   ///< share of a new ball sighting taken
    double camera_height = 0; ///< over the ground, for aiming the head
    double give_up_time = 0;  ///< approach given up after this long
    // The motion, phase by phase: hips over the support foot, kicking foot
    // lifted and drawn back, swung through, drawn back, set down, hips back.
    double shift_y = 0; ///< hips' shift toward the support foot
    double shift_time = 0;
    double crouch = 0; ///< hips lowered during the kick (negative: raised, a longer swing)
    double lift_time = 0;
    double back_x = 0;     ///< kicking sole behind its stand place
    double lift_z = 0;     ///< kicking sole above the ground, drawn back
    double out_y = 0;      ///< kicking sole outward, away from the support leg
    double back_pitch = 0; ///< kicking foot's toes down when drawn back (ankle, degrees)
    double swing_time = 0;
    /// Share of how much further the ball lies than `ball_x` (up to
    /// `kick_tolerance_x`) by which the drawn-back foot comes closer to it:
    /// the foot then meets the ball at the same point of its swing.
    double follow_ball = 0;
    /// Share of how far the ball lies off `reach_center` (seen ahead of the
    /// hips, m) by which the swing moves toward it, carried by the hips over
    /// the support foot (`reach_hips` of it) and the leg; at most `reach_max` (m).
    double reach_ball = 0;
    double reach_center = 0;
    double reach_max = 0;
    double reach_hips = 0;  ///< share of that reach made by the hips, the rest by the leg
    double swing_x = 0;     ///< kicking sole ahead of its stand place at the end of the swing
    double swing_z = 0;     ///< and above the ground
    double swing_pitch = 0; ///< toes down during the swing (ankle, degrees)
    /// Share of the swing's time at which the foot passes a pose of its own
    /// where it meets the ball (0: none, the swing goes straight in the
    /// joints from drawn back to swung through and rises all along): the
    /// kicking sole `contact_x` ahead of its stand place, `contact_z` above
    /// the ground, toes down `contact_pitch` (ankle, degrees). Met low, below
    /// its middle, by the foot's upper front edge, the ball is lifted off the
    /// ground and flies some of its way rather than rolling all of it.
    double contact_share = 0;
    double contact_x = 0;
    double contact_z = 0;
    double contact_pitch = 0;
    double lunge = 0; ///< hips forward over the support foot at the end of the swing
    /// The support hip turns the torso through the swing, degrees: negative
    /// pitches it back, which carries the kicking leg forward under it and
    /// adds that hip's speed to the foot's.
    double swing_lean = 0;
    /// The support knee bends through the swing, degrees (negative: bends):
    /// the body above it turns back about that knee, which stands higher than
    /// the ball, and so carries the kicking foot forward as the lean does.
    double swing_knee = 0;
    /// The kicking hip's yaw-pitch joint turns through the swing, degrees
    /// (negative: its only way). Its axis lies between the vertical and the
    /// sideways, so turning it swings the hanging leg forward too: a fourth
    /// joint at its speed limit adding to the foot's speed.
    double swing_twist = 0;
    double retract_time = 0;
    double lower_time = 0;
    double unshift_time = 0;
    double support_roll = 0; ///< torso rolled over the support foot, degrees
    double lean = 0;         ///< torso pitched forward during the kick
    double arm_out = 0;      ///< shoulder roll outward on the kicking side, for balance
    double arm_swing = 0;    ///< shoulder pitch: kicking side back, the other forward
    double joint_p = 0;
    double joint_d = 0;
    /// The fastest (deg/s) the kick turns any joint, within its motor's
    /// own limit (type 2's ankle pitch turns faster than the others).
    double joint_speed = 0;
    double rest_time = 0; ///< standing after the kick before it counts as done

    /// Takes every field from `set`; throws ParamError naming a missing entry.
    static KickParams from(const params::ParamSet& set);
};

} // namespace orvo::kick

#endif
