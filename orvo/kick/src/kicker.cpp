#include <orvo/kick/kicker.h>

#include <orvo/body/kinematics.h>
#include <orvo/world/sightings.h>

#include <algorithm>
#include <cmath>

namespace orvo::kick {

namespace {

constexpr double degrees_per_radian = 57.29577951308232;
constexpr double radians_per_degree = 0.017453292519943295;

} // namespace

const char* phase_name(KickPhase phase) {
    switch (phase) {
    case KickPhase::idle:
        return "idle";
    case KickPhase::approach:
        return "approach";
    case KickPhase::settle:
        return "settle";
    case KickPhase::kick:
        return "kick";
    case KickPhase::rest:
        return "rest";
    case KickPhase::done:
        return "done";
    case KickPhase::failed:
        return "failed";
    }
    return "?";
}

Kicker::Kicker(const body::BodyModel& model, const walk::WalkParams& walk, const KickParams& kick)
    : model_(model), params_(kick), walker_(model, walk),
      controller_(skills::JointController::Gains{kick.joint_p, kick.joint_d},
                  robot::speed_limits_deg(model.type(), kick.joint_speed)) {}

Pose2 Kicker::robot() const {
    const walk::Odometry& odometry = walker_.odometry();
    return {odometry.x, odometry.y, odometry.heading};
}

double Kicker::beyond_spot() const {
    // Along the robot's own heading, which the swing follows: turned a few
    // degrees on the spot, the ball beside the hips lies a centimetre nearer
    // or further than the spot's offset says.
    return relative(robot(), *ball_).x - params_.ball_x;
}

bool Kicker::placed_for_kick(double lead) const {
    // Every walk back to the spot is a new chance to stop off it again: each
    // one widens the tolerances, so that a robot that cannot stop closer
    // kicks a ball less well placed rather than never. A ball further than
    // the swing reaches is never kicked.
    const double widen = 1 + params_.retry_widen * retries_;
    const Pose2 off = relative(robot(), *stand_);
    const double beyond = beyond_spot() - lead;
    return within(off, widen * params_.kick_tolerance_x, widen * params_.kick_tolerance_y,
                  widen * params_.kick_tolerance_heading) &&
           -beyond <= widen * params_.kick_tolerance_close && beyond <= params_.kick_tolerance_far;
}

void Kicker::start(double direction_deg) {
    asked_ = direction_deg;
    direction_ = robot().heading + direction_deg;
    side_chosen_ = false;
    retries_ = 0;
    stand_.reset();
    motion_.reset();
    phase_ = KickPhase::approach;
    since_ = started_ = clock_;
    plan();
}

void Kicker::see_ball(const perception::Perception& perception) {
    using robot::Joint;
    if (!perception.has_vision || !perception.vision.sees_ball) {
        return;
    }
    const double yaw =
        perception.joints.has(Joint::neck_yaw) ? perception.joints[Joint::neck_yaw] : 0;
    const double pitch =
        perception.joints.has(Joint::neck_pitch) ? perception.joints[Joint::neck_pitch] : 0;
    const world::GroundPoint seen =
        world::to_ground(perception.vision.ball, yaw, pitch, walker_.params().lean);
    if (!std::isfinite(seen.x) || !std::isfinite(seen.y)) {
        return;
    }
    const Pose2 now = compose(robot(), {seen.x, seen.y, 0});
    if (!ball_) {
        ball_ = now;
    } else {
        ball_->x += (now.x - ball_->x) * params_.ball_filter;
        ball_->y += (now.y - ball_->y) * params_.ball_filter;
    }
    last_seen_ = clock_;
}

void Kicker::plan() {
    if (!ball_) {
        return;
    }
    if (!side_chosen_) {
        const Pose2 seen = relative(robot(), *ball_);
        side_ = kicking_side(seen.x, seen.y, asked_);
        side_chosen_ = true;
    }
    stand_ = stand_pose(ball_->x, ball_->y, direction_, side_,
                        model_.hip_width() + walker_.params().foot_y, params_);
}

void Kicker::aim_head() {
    // The head follows the ball, looking down at it by the camera's height;
    // during the kick it holds still, as the robot does.
    if (!ball_ || phase_ == KickPhase::kick) {
        return;
    }
    const Pose2 seen = relative(robot(), *ball_);
    const double distance = std::hypot(seen.x, seen.y);
    head_yaw_ = std::atan2(seen.y, seen.x) * degrees_per_radian;
    head_pitch_ = -std::atan2(params_.camera_height, distance) * degrees_per_radian;
}

void Kicker::approach() {
    const Pose2 here = robot();
    // The walk's last steps carry the robot on after it is told to stop:
    // up to stop_lead short of the spot counts as on it; a robot still
    // standing carries on nowhere.
    Pose2 off = relative(here, *stand_);
    const double lead = walker_.standing() ? 0
                        : retries_ > 0     ? params_.retry_lead * params_.stop_lead
                                           : params_.stop_lead;
    off.x -= std::clamp(off.x, 0.0, lead);
    const bool near =
        within(off, params_.tolerance_x, params_.tolerance_y, params_.tolerance_heading);
    // Sent on by a last look, the robot stops only where that look would
    // kick: stopped anywhere near, it was sent on and stopped again for ever.
    const bool placed = retries_ == 0 || placed_for_kick(lead);
    if (near && placed) {
        walker_.stop();
        phase_ = KickPhase::settle;
        since_ = clock_;
        return;
    }
    Pose2 error = relative(here, approach_spot(here, *stand_, params_));
    if (near) {
        // On the spot as the walk sees it, off it as the swing does: forward
        // or back by where the ball lies along the robot's heading.
        error.x = beyond_spot() - lead;
    }
    const walk::Velocity velocity =
        approach_velocity(error, params_, walker_.params().odometry_creep);
    walker_.set_velocity(velocity.forward, velocity.sideways, velocity.turn);
}

void Kicker::settle() {
    if (!walker_.standing()) {
        since_ = clock_;
        settled_ball_ = *ball_;
        return;
    }
    // A last look once standing still: the steps may have pushed the ball.
    if (clock_ - since_ < params_.settle_time || last_seen_ < since_ + params_.settle_time / 2) {
        return;
    }
    // A ball still rolling from a push would lie elsewhere by the time the
    // foot comes: look again until it rests.
    if (std::hypot(ball_->x - settled_ball_.x, ball_->y - settled_ball_.y) > params_.ball_still) {
        since_ = clock_;
        settled_ball_ = *ball_;
        return;
    }
    if (!placed_for_kick(0)) {
        phase_ = KickPhase::approach;
        since_ = clock_;
        ++retries_;
        return;
    }
    // Short of the spot, the ball lies further than the swing expects: the
    // drawn-back foot comes closer to it, so that it still meets the ball at
    // the speed it has early in the swing.
    const double further = std::clamp(beyond_spot(), 0.0, params_.kick_tolerance_x);
    // A ball off the place the swing meets best draws the hips toward it.
    const double off_center = relative(robot(), *ball_).x - params_.reach_center;
    const double reach =
        std::clamp(params_.reach_ball * off_center, -params_.reach_max, params_.reach_max);
    motion_.emplace(params_, walker_.params(), model_.hip_width(), side_,
                    params_.follow_ball * further, reach);
    phase_ = KickPhase::kick;
    since_ = clock_;
}

void Kicker::follow_walker(const perception::Perception& perception) {
    using robot::Joint;
    targets_ = walker_.targets();
    speeds_ = walker_.speeds();
    // The walker holds the head straight; the head follows the ball instead.
    const Joint neck[] = {Joint::neck_yaw, Joint::neck_pitch};
    const double wanted[] = {head_yaw_, head_pitch_};
    for (int i = 0; i < 2; ++i) {
        const std::size_t j = robot::index(neck[i]);
        const auto& range = model_.joint(neck[i]);
        targets_[j] = std::clamp(wanted[i], range.min_deg, range.max_deg);
        const double angle = perception.joints.has(neck[i]) ? perception.joints[neck[i]] : 0;
        speeds_[j] = std::clamp(params_.joint_p * (targets_[j] - angle) * radians_per_degree,
                                -range.max_speed, range.max_speed);
    }
    previous_ = targets_;
}

void Kicker::move() {
    using robot::Joint;
    const double t = clock_ - since_;
    const KickPose pose = motion_->at(t);
    (void)motion_->angles(model_, t, targets_);
    const auto& walk = walker_.params();
    const double out_sign = walk::sign(side_);
    const double out = out_sign * pose.arm_out;
    targets_[robot::index(Joint::left_shoulder_pitch)] = walk.arm_pitch - out_sign * pose.arm_swing;
    targets_[robot::index(Joint::right_shoulder_pitch)] =
        walk.arm_pitch + out_sign * pose.arm_swing;
    targets_[robot::index(Joint::left_shoulder_roll)] = walk.arm_roll + std::max(out, 0.0);
    targets_[robot::index(Joint::right_shoulder_roll)] = -walk.arm_roll + std::min(out, 0.0);
    for (std::size_t i = 0; i < robot::joint_count; ++i) {
        rates_[i] = (targets_[i] - previous_[i]) / robot::cycle_seconds;
    }
    previous_ = targets_;
    controller_.step(targets_, rates_, angles_, joints(), speeds_);
}

void Kicker::update(const perception::Perception& perception) {
    clock_ += robot::cycle_seconds;
    for (std::size_t i = 0; i < robot::joint_count; ++i) {
        const auto joint = static_cast<robot::Joint>(i);
        if (perception.joints.has(joint)) {
            angles_[i] = perception.joints[joint];
        }
    }
    see_ball(perception);
    if (phase_ == KickPhase::approach || phase_ == KickPhase::settle) {
        plan();
        const double seen = ball_ ? last_seen_ : started_;
        if (clock_ - seen > params_.give_up_time) {
            walker_.stop();
            phase_ = KickPhase::failed;
        } else if (!ball_) {
            walker_.stop();
        } else if (phase_ == KickPhase::approach) {
            approach();
        } else {
            settle();
        }
    }
    if (phase_ == KickPhase::kick && clock_ - since_ >= motion_->duration()) {
        phase_ = KickPhase::rest;
        since_ = clock_;
    }
    if (phase_ == KickPhase::rest && clock_ - since_ >= params_.rest_time) {
        phase_ = KickPhase::done;
    }
    aim_head();
    walker_.update(perception);
    if (phase_ == KickPhase::kick) {
        move();
    } else {
        follow_walker(perception);
    }
}

} // namespace orvo::kick
