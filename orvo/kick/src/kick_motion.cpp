#include <orvo/kick/kick_motion.h>

#include <orvo/body/kinematics.h>

#include <algorithm>
#include <cmath>

namespace orvo::kick {

namespace {

/// 0 to 1 with no speed at either end.
double smooth(double share) {
    return share * share * (3 - 2 * share);
}

double mix(double from, double to, double share) {
    return from + (to - from) * share;
}

} // namespace

KickMotion::KickMotion(const KickParams& params, const walk::WalkParams& stand, double hip_width,
                       walk::Side kicking, double closer, double reach)
    : params_(params), stand_(stand), hip_width_(hip_width), kicking_(kicking), reach_(reach) {
    const KickParams& p = params;
    const double length = p.swing_x + p.back_x;
    const double swing_time =
        length > 0 ? p.swing_time * std::max(length - closer, 0.0) / length : p.swing_time;
    keys_ = {{
        {0, 0, 0, 0, 0, 0, 0, 0, 0}, // the walk's stand
        {0, 0, 0, 1, 0, 0, 0, 0, 0}, // over the support foot
        {closer - p.back_x, p.lift_z, p.out_y, 1, p.back_pitch, 0, 0, 0, 1}, // drawn back
        {p.swing_x, p.swing_z, p.out_y, 1, p.swing_pitch, p.lunge, 1, 1, 1}, // swung through
        // The twist stays while the leg draws back and unwinds as it sets
        // down: turned back at once, the leg spun the robot on its support
        // foot and it toppled.
        {0, p.lift_z, p.out_y, 1, 0, 0, 1, 1, 1}, // drawn back under the hips
        {0, 0, 0, 1, 0, 0, 0, 0, 0},              // set down where it stood
        {0, 0, 0, 0, 0, 0, 0, 0, 0},              // back in the stand
    }};
    times_ = {p.shift_time, p.lift_time, swing_time, p.retract_time, p.lower_time, p.unshift_time};
    // Where the foot meets the ball, moved as the drawn-back foot is toward a
    // ball lying further; the hips' lunge and the arms as far as the swing
    // has come by then. The hip's twist waits until after it: turned some of
    // its way there, it drew the foot inward across the ball, which then
    // went off 30 to 60 degrees.
    const double c = p.contact_share;
    contact_ = {closer + p.contact_x, p.contact_z, p.out_y, 1, p.contact_pitch,
                c * p.lunge,          c,           0,       1};
}

double KickMotion::duration() const {
    double total = 0;
    for (double time : times_) {
        total += time;
    }
    return total;
}

double KickMotion::swing_begins() const {
    return times_[0] + times_[1];
}

KickPose KickMotion::at(double seconds) const {
    std::size_t phase = 0;
    double t = std::max(seconds, 0.0);
    while (phase < times_.size() && t >= times_[phase]) {
        t -= times_[phase];
        ++phase;
    }
    if (phase == times_.size()) {
        return pose(keys_.back());
    }
    const double share = times_[phase] > 0 ? t / times_[phase] : 1;
    const double s = phase == 2 ? share : smooth(share);
    const Key& a = keys_[phase];
    const Key& b = keys_[phase + 1];
    return pose({mix(a.x, b.x, s), mix(a.z, b.z, s), mix(a.out, b.out, s), mix(a.shift, b.shift, s),
                 mix(a.toe_down, b.toe_down, s), mix(a.lunge, b.lunge, s), mix(a.arms, b.arms, s),
                 mix(a.twist, b.twist, s), mix(a.carry, b.carry, s)});
}

KickPose KickMotion::pose(const Key& key) const {
    const double k = walk::sign(kicking_);
    const double height = stand_.hip_height - params_.crouch * key.shift;
    const double line = hip_width_ + stand_.foot_y;
    // Moving the hips over the support foot moves both soles, in the hips'
    // frame, toward the kicking side.
    const double shift = k * params_.shift_y * key.shift;
    KickPose pose;
    walk::SoleTarget& kick = kicking_ == walk::Side::left ? pose.left : pose.right;
    walk::SoleTarget& support = kicking_ == walk::Side::left ? pose.right : pose.left;
    // The lifted kicking sole reaches toward the ball, part of the way
    // carried by the hips as they move over the support foot (which costs
    // balance); on the ground it stays where it stood.
    const double reach = params_.reach_hips * reach_ * key.shift;
    kick.position = {stand_.foot_x + key.x + reach_ * key.carry - reach,
                     k * (line + key.out) + shift, key.z - height};
    // The hips lunge forward over the support foot as the kicking leg swings,
    // and carry it with them.
    support.position = {stand_.foot_x - key.lunge - reach, -k * line + shift, -height};
    pose.attitude.pitch = mix(stand_.lean, params_.lean, key.shift);
    pose.attitude.roll = -k * params_.support_roll * key.shift;
    pose.toe_down = key.toe_down;
    pose.twist = params_.swing_twist * key.twist;
    pose.arm_out = params_.arm_out * key.shift;
    pose.arm_swing = params_.arm_swing * key.arms;
    return pose;
}

bool KickMotion::angles(const body::BodyModel& model, double seconds,
                        robot::JointValues& angles) const {
    const double begins = swing_begins();
    if (seconds <= begins || seconds >= swing_ends()) {
        return pose_legs(model, at(seconds), kicking_, angles);
    }
    const double share = (seconds - begins) / times_[2];
    const bool reached = swing_angles(model, share, angles);
    // The support hip turns the torso through the swing. Pitched back, the
    // torso carries the kicking leg, hung below it, forward: the foot then
    // gains that hip's speed on top of its own hip's and knee's, each held
    // to the same speed limit.
    const bool left = kicking_ == walk::Side::left;
    const robot::Joint support_hip =
        left ? robot::Joint::right_hip_pitch : robot::Joint::left_hip_pitch;
    const robot::Joint support_knee =
        left ? robot::Joint::right_knee_pitch : robot::Joint::left_knee_pitch;
    angles[robot::index(support_hip)] += params_.swing_lean * share;
    angles[robot::index(support_knee)] += params_.swing_knee * share;
    return reached;
}

bool KickMotion::swing_angles(const body::BodyModel& model, double share,
                              robot::JointValues& angles) const {
    robot::JointValues through = angles;
    bool reached = pose_legs(model, pose(keys_[3]), kicking_, through) &&
                   pose_legs(model, pose(keys_[2]), kicking_, angles);
    // Through a pose of its own at the ball, the swing is two straight
    // ways in the joints' angles, and the foot passes as low and as tilted
    // as that pose says where it meets the ball: on the straight way from
    // drawn back to swung through it rises all along.
    const double c = params_.contact_share;
    if (c > 0 && c < 1) {
        robot::JointValues meet = angles;
        reached = pose_legs(model, pose(contact_), kicking_, meet) && reached;
        if (share < c) {
            through = meet;
            share /= c;
        } else {
            angles = meet;
            share = (share - c) / (1 - c);
        }
    }
    for (std::size_t i = 0; i < robot::joint_count; ++i) {
        angles[i] = mix(angles[i], through[i], share);
    }
    return reached;
}

bool pose_legs(const body::BodyModel& model, const KickPose& pose, walk::Side kicking,
               robot::JointValues& angles) {
    bool reached = true;
    for (walk::Side side : {walk::Side::left, walk::Side::right}) {
        body::LegAngles leg{};
        reached = walk::leg_angles(model, side, pose.sole(side), pose.attitude, leg) && reached;
        if (side == kicking) {
            leg.ankle_pitch -= pose.toe_down;
            leg.hip_yaw_pitch += pose.twist;
        }
        body::set_leg_angles(angles, walk::leg_of(side), leg);
    }
    return reached;
}

} // namespace orvo::kick
