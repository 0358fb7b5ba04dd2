#include <orvo/walk/walk_params.h>

#include <algorithm>

namespace orvo::walk {

#define ORVO_WALK_PARAM(name) params.name = set[#name]

namespace {

/// Walking to a spot and walking fast: what the gait itself does not need.
void read_goto_and_fast(const ParamSet& set, WalkParams& params) {
    ORVO_WALK_PARAM(goto_gain);
    ORVO_WALK_PARAM(goto_speed);
    ORVO_WALK_PARAM(goto_turn_gain);
    ORVO_WALK_PARAM(goto_radius);
    ORVO_WALK_PARAM(goto_near);
    ORVO_WALK_PARAM(goto_turn_only);
    ORVO_WALK_PARAM(fast_from);
    ORVO_WALK_PARAM(fast_step_time);
    ORVO_WALK_PARAM(fast_step_height);
    ORVO_WALK_PARAM(fast_lean);
    ORVO_WALK_PARAM(fast_hip_height);
    ORVO_WALK_PARAM(fast_foot_x);
    ORVO_WALK_PARAM(fast_landing_match);
    ORVO_WALK_PARAM(fast_swing_ramp);
    ORVO_WALK_PARAM(fast_gyro_ankle_pitch);
    ORVO_WALK_PARAM(fast_place_pitch);
    ORVO_WALK_PARAM(fast_switch_phase);
    ORVO_WALK_PARAM(fast_arm_swing);
}

} // namespace

WalkParams WalkParams::from(const ParamSet& set) {
    WalkParams params;
    ORVO_WALK_PARAM(step_time);
    ORVO_WALK_PARAM(step_height);
    ORVO_WALK_PARAM(turn_step_height);
    ORVO_WALK_PARAM(double_support);
    ORVO_WALK_PARAM(switch_phase);
    ORVO_WALK_PARAM(contact_force);
    ORVO_WALK_PARAM(landing_match);
    ORVO_WALK_PARAM(swing_ramp);
    ORVO_WALK_PARAM(hip_height);
    ORVO_WALK_PARAM(lean);
    ORVO_WALK_PARAM(foot_x);
    ORVO_WALK_PARAM(foot_y);
    ORVO_WALK_PARAM(com_height);
    ORVO_WALK_PARAM(zmp_y);
    ORVO_WALK_PARAM(start_sway);
    ORVO_WALK_PARAM(max_forward);
    ORVO_WALK_PARAM(max_backward);
    ORVO_WALK_PARAM(max_sideways);
    ORVO_WALK_PARAM(max_turn);
    ORVO_WALK_PARAM(accel_forward);
    ORVO_WALK_PARAM(accel_sideways);
    ORVO_WALK_PARAM(accel_turn);
    ORVO_WALK_PARAM(combine_power);
    ORVO_WALK_PARAM(gyro_ankle_pitch);
    ORVO_WALK_PARAM(gyro_ankle_roll);
    ORVO_WALK_PARAM(gyro_hip_roll);
    ORVO_WALK_PARAM(tilt_pitch);
    ORVO_WALK_PARAM(tilt_roll);
    ORVO_WALK_PARAM(tilt_filter);
    ORVO_WALK_PARAM(place_pitch);
    ORVO_WALK_PARAM(place_turn_pitch);
    ORVO_WALK_PARAM(place_tip);
    ORVO_WALK_PARAM(place_tip_pitch);
    ORVO_WALK_PARAM(place_roll);
    ORVO_WALK_PARAM(place_rate);
    ORVO_WALK_PARAM(place_max);
    ORVO_WALK_PARAM(start_tilt);
    ORVO_WALK_PARAM(start_gyro);
    ORVO_WALK_PARAM(arm_pitch);
    ORVO_WALK_PARAM(arm_roll);
    ORVO_WALK_PARAM(arm_swing);
    ORVO_WALK_PARAM(heading_gain);
    ORVO_WALK_PARAM(joint_p);
    ORVO_WALK_PARAM(joint_d);
    ORVO_WALK_PARAM(lookahead);
    ORVO_WALK_PARAM(joint_speed);
    ORVO_WALK_PARAM(odometry_forward);
    ORVO_WALK_PARAM(odometry_sideways);
    ORVO_WALK_PARAM(odometry_turn);
    ORVO_WALK_PARAM(odometry_creep);
    read_goto_and_fast(set, params);
    return params;
}

#undef ORVO_WALK_PARAM

double WalkParams::fast_share(double forward) const {
    const double range = max_forward - fast_from;
    if (range <= 0) {
        return 0;
    }
    return std::clamp((forward - fast_from) / range, 0.0, 1.0);
}

WalkParams WalkParams::at_speed(double forward) const {
    const double share = fast_share(forward);
    WalkParams now = *this;
    const auto mix = [share](double slow, double fast) { return slow + (fast - slow) * share; };
    now.step_time = mix(step_time, fast_step_time);
    now.step_height = mix(step_height, fast_step_height);
    now.lean = mix(lean, fast_lean);
    now.hip_height = mix(hip_height, fast_hip_height);
    now.foot_x = mix(foot_x, fast_foot_x);
    now.landing_match = mix(landing_match, fast_landing_match);
    now.swing_ramp = mix(swing_ramp, fast_swing_ramp);
    now.gyro_ankle_pitch = mix(gyro_ankle_pitch, fast_gyro_ankle_pitch);
    now.place_pitch = mix(place_pitch, fast_place_pitch);
    now.switch_phase = mix(switch_phase, fast_switch_phase);
    now.arm_swing = mix(arm_swing, fast_arm_swing);
    return now;
}

} // namespace orvo::walk
