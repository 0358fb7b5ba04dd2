#include <orvo/kick/kick_params.h>

namespace orvo::kick {

#define ORVO_KICK_PARAM(name) params.name = set[#name]

namespace {

/// Where the ball must lie and how the robot walks up to it.
void read_approach(const params::ParamSet& set, KickParams& params) {
    ORVO_KICK_PARAM(ball_x);
    ORVO_KICK_PARAM(ball_y);
    ORVO_KICK_PARAM(approach_gain);
    ORVO_KICK_PARAM(approach_turn_gain);
    ORVO_KICK_PARAM(approach_forward);
    ORVO_KICK_PARAM(approach_sideways);
    ORVO_KICK_PARAM(approach_turn);
    ORVO_KICK_PARAM(approach_clearance);
    ORVO_KICK_PARAM(approach_creep);
    ORVO_KICK_PARAM(tolerance_x);
    ORVO_KICK_PARAM(stop_lead);
    ORVO_KICK_PARAM(tolerance_y);
    ORVO_KICK_PARAM(tolerance_heading);
    ORVO_KICK_PARAM(kick_tolerance_x);
    ORVO_KICK_PARAM(kick_tolerance_close);
    ORVO_KICK_PARAM(retry_widen);
    ORVO_KICK_PARAM(kick_tolerance_far);
    ORVO_KICK_PARAM(retry_lead);
    ORVO_KICK_PARAM(kick_tolerance_y);
    ORVO_KICK_PARAM(kick_tolerance_heading);
    ORVO_KICK_PARAM(settle_time);
    ORVO_KICK_PARAM(ball_still);
    ORVO_KICK_PARAM(ball_filter);
    ORVO_KICK_PARAM(camera_height);
    ORVO_KICK_PARAM(give_up_time);
}

/// The motion, phase by phase.
void read_motion(const params::ParamSet& set, KickParams& params) {
    ORVO_KICK_PARAM(shift_y);
    ORVO_KICK_PARAM(shift_time);
    ORVO_KICK_PARAM(crouch);
    ORVO_KICK_PARAM(lift_time);
    ORVO_KICK_PARAM(back_x);
    ORVO_KICK_PARAM(lift_z);
    ORVO_KICK_PARAM(out_y);
    ORVO_KICK_PARAM(back_pitch);
    ORVO_KICK_PARAM(swing_time);
    ORVO_KICK_PARAM(follow_ball);
    ORVO_KICK_PARAM(reach_ball);
    ORVO_KICK_PARAM(reach_center);
    ORVO_KICK_PARAM(reach_max);
    ORVO_KICK_PARAM(reach_hips);
    ORVO_KICK_PARAM(swing_x);
    ORVO_KICK_PARAM(swing_z);
    ORVO_KICK_PARAM(swing_pitch);
    ORVO_KICK_PARAM(contact_share);
    ORVO_KICK_PARAM(contact_x);
    ORVO_KICK_PARAM(contact_z);
    ORVO_KICK_PARAM(contact_pitch);
    ORVO_KICK_PARAM(lunge);
    ORVO_KICK_PARAM(swing_lean);
    ORVO_KICK_PARAM(swing_knee);
    ORVO_KICK_PARAM(swing_twist);
    ORVO_KICK_PARAM(retract_time);
    ORVO_KICK_PARAM(lower_time);
    ORVO_KICK_PARAM(unshift_time);
    ORVO_KICK_PARAM(support_roll);
    ORVO_KICK_PARAM(lean);
    ORVO_KICK_PARAM(arm_out);
    ORVO_KICK_PARAM(arm_swing);
    ORVO_KICK_PARAM(joint_p);
    ORVO_KICK_PARAM(joint_d);
    ORVO_KICK_PARAM(joint_speed);
    ORVO_KICK_PARAM(rest_time);
}

} // namespace

KickParams KickParams::from(const params::ParamSet& set) {
    KickParams params;
    read_approach(set, params);
    read_motion(set, params);
    return params;
}

#undef ORVO_KICK_PARAM

} // namespace orvo::kick
