#ifndef ORVO_WALK_WALK_PARAMS_H
#define ORVO_WALK_WALK_PARAMS_H

#include <orvo/core/export.h>
#include <orvo/params/param_set.h>

#include <algorithm>
#include <cmath>

namespace orvo::walk {

using params::Param;
using params::ParamError;
using params::params_path;
using params::ParamSet;

/// Every number that shapes the walk of one robot type, by name, as the
/// parameter file "walk/type<T>.json" holds them. Lengths in metres, angles in
/// degrees, times in seconds.
struct ORVO_API WalkParams {
    // The step cycle.
    double step_time = 0;   ///< one step, support switch to switch
    double step_height = 0; ///< how high the swing foot lifts
    /// How high it lifts turning at max_turn, blended in with the turn's
    /// share: a foot turning out high above the ground twists the body on
    /// its support foot longer than it needs to.
    double turn_step_height = 0;
    double double_support = 0; ///< share of a step with both feet down
    double switch_phase = 0;   ///< earliest share of a step at which contact ends it
    double contact_force = 0;  ///< newtons on the swing foot that count as contact
    /// Share of the walk's speed the swing foot sheds before it lands (and
    /// takes along when it lifts): 0 lands it moving with the hips, 1 at rest
    /// on the ground.
    double landing_match = 0;
    /// Share of the swing (at each end, up to 0.5) over which the swing foot
    /// speeds up and slows down; between, it moves at an even speed. At 0.5
    /// it never moves evenly, and its fastest is pi/2 times its mean; shorter
    /// ramps lower that peak, which the hip joints' top speed caps.
    double swing_ramp = 0;
    // The stance.
    double hip_height = 0; ///< hip joints above the soles
    double lean = 0;       ///< torso pitched forward
    double foot_x = 0;     ///< soles ahead of the hips
    double foot_y = 0;     ///< soles outside the hips
    // The pendulum: the hips sway over the support foot.
    double com_height = 0; ///< pendulum length; sets its time constant
    double zmp_y = 0;      ///< pressure centre inside the support foot, from the hips' middle
    double start_sway = 0; ///< share of the sway on the first and last step
    // Speeds the walk takes, and how fast it changes them.
    double max_forward = 0;
    double max_backward = 0;
    double max_sideways = 0;
    double max_turn = 0;      ///< deg/s
    double accel_forward = 0; ///< m/s per second
    double accel_sideways = 0;
    double accel_turn = 0; ///< deg/s per second
    /// How the shares of the limits add up when the walk moves in more than
    /// one way at once: their sum of this power stays within one (2 an
    /// ellipsoid, 1 a diamond: smaller combined steps).
    double combine_power = 0;
    // Feedback from the gyroscope (deg of joint per deg/s) and the tilt.
    double gyro_ankle_pitch = 0;
    double gyro_ankle_roll = 0;
    double gyro_hip_roll = 0;
    double tilt_pitch = 0;  ///< hip pitch per degree of forward tilt beyond the lean
    double tilt_roll = 0;   ///< hip roll per degree of sideways tilt
    double tilt_filter = 0; ///< share of a new tilt reading taken each cycle
    /// Foot placement: the swing foot lands further forward (left) by this
    /// many metres per degree the torso is tipping forward (left), the tilt
    /// beyond the lean plus its rate times place_rate (s); at most place_max
    /// either way.
    double place_pitch = 0;
    /// Added to place_pitch in proportion to the turn's share of max_turn:
    /// turning on the spot the feet step no further forward than the hips,
    /// and a torso tipping forward has no step to catch it but this one.
    double place_turn_pitch = 0;
    /// A catch step: beyond place_tip degrees of forward (backward) tilt from
    /// the lean, the swing foot lands a further place_tip_pitch metres per
    /// degree beyond it ahead (behind). A torso knocked forward by a stubbed
    /// foot does not right itself stepping in place, and the small gain
    /// that would act on every step trips the walk's ordinary rocking.
    double place_tip = 0;
    double place_tip_pitch = 0;
    double place_roll = 0;
    double place_rate = 0;
    double place_max = 0;
    /// The first step waits until the torso is steady: tilted no more than
    /// this (deg) from the lean and turning no faster than start_gyro (deg/s).
    double start_tilt = 0;
    double start_gyro = 0;
    // Arms and joint control.
    double arm_pitch = 0;
    double arm_roll = 0;
    double arm_swing = 0;    ///< shoulder pitch per metre of the foot's forward offset
    double heading_gain = 0; ///< turn (deg/s) per degree of drift from the asked heading
    double joint_p = 0;
    double joint_d = 0;
    double lookahead = 0; ///< the joints aim this far (s) ahead of the gait, for their lag
    /// The fastest (deg/s) the walk turns any joint, within its motor's own
    /// limit: a gait found with every joint at the common limit stumbles when
    /// one joint (type 2's ankle pitch) is let turn faster.
    double joint_speed = 0;
    // What the walk believes it moved per commanded metre or degree.
    double odometry_forward = 0;
    double odometry_sideways = 0;
    double odometry_turn = 0;
    /// m/s forward the body drifts while stepping, beyond its steps: the
    /// stance leans it on a little with every step, even stepping in place.
    double odometry_creep = 0;
    // Walking to a spot.
    double goto_gain = 0;      ///< forward m/s per metre left
    double goto_speed = 0;     ///< fastest forward m/s toward a spot: slower slips less
    double goto_turn_gain = 0; ///< deg/s per degree off the spot's bearing
    double goto_radius = 0;
    double goto_near = 0;      ///< within this it steps to the spot without turning
    double goto_turn_only = 0; ///< bearing beyond which it turns on the spot
    /// Walking fast forward asks for another gait than stepping aside or
    /// turning: shorter, lower steps and a torso leaning into the walk. From
    /// fast_from m/s forward up to max_forward these values take over from
    /// their slow namesakes (step_time ... arm_swing) in proportion, so that
    /// the slow walk, sideways and turning keep theirs.
    double fast_from = 0;
    double fast_step_time = 0;
    double fast_step_height = 0;
    double fast_lean = 0;
    double fast_hip_height = 0;
    double fast_foot_x = 0;
    double fast_landing_match = 0;
    double fast_swing_ramp = 0;
    double fast_gyro_ankle_pitch = 0;
    double fast_place_pitch = 0;
    double fast_switch_phase = 0;
    double fast_arm_swing = 0;

    /// Takes every field from `set`; throws ParamError naming a missing entry.
    static WalkParams from(const ParamSet& set);

    /// The share of max_turn that `turn` (deg/s) asks for, 0 to 1: what the
    /// turn-dependent step height and foot placement blend in by.
    double turn_share(double turn) const { return std::min(1.0, std::fabs(turn) / max_turn); }
    /// The share of the fast gait at `forward` m/s, 0 to 1.
    double fast_share(double forward) const;
    /// These parameters with the fast gait blended in for `forward` m/s.
    WalkParams at_speed(double forward) const;
};

} // namespace orvo::walk

#endif
