#include <orvo/walk/gait.h>

#include <algorithm>
#include <cmath>

namespace orvo::walk {

namespace {

constexpr double gravity = 9.81;
constexpr double pi = 3.14159265358979323846;

std::size_t at(Side side) {
    return side == Side::left ? 0 : 1;
}

Offset blend(const Offset& from, const Offset& to, double share) {
    return {from.x + (to.x - from.x) * share, from.y + (to.y - from.y) * share,
            from.yaw + (to.yaw - from.yaw) * share};
}

/// How far along its way the swing foot is at `share` of the swing: its
/// speed rises as a quarter sine over `ramp` of the swing, holds, and falls
/// again the same way, so that it starts and stops at rest.
double swing_progress(double share, double ramp) {
    const double r = std::clamp(ramp, 0.01, 0.5);
    const double peak = 1 / (1 - 2 * r + 4 * r / pi);
    const auto rising = [r, peak](double s) {
        return s < r ? peak * 2 * r / pi * (1 - std::cos(pi * s / (2 * r)))
                     : peak * (2 * r / pi + s - r);
    };
    return share <= 0.5 ? rising(share) : 1 - rising(1 - share);
}

} // namespace

Gait::Gait(const WalkParams& params, double hip_offset)
    : params_(params), hip_offset_(hip_offset) {}

void Gait::begin(Side support, const Velocity& velocity, double sway_scale) {
    const Side swing = other(support);
    start_[at(Side::left)] = offset(Side::left);
    start_[at(Side::right)] = offset(Side::right);
    support_ = support;
    phase_ = 0;
    sway_scale_ = sway_scale;
    step_time_ = params_.step_time;
    const double time = step_time_;
    // Forward and sideways: the support foot slides under the hips by half a
    // step while the swing foot comes through to half a step beyond them.
    Offset& support_end = end_[at(support)];
    Offset& swing_end = end_[at(swing)];
    support_end = {-velocity.forward * time / 2, -velocity.sideways * time / 2, 0};
    swing_end = {velocity.forward * time / 2, velocity.sideways * time / 2, 0};
    // Turning: two steps make one turn, which the leg on the turning side
    // takes alone, so that the hip joints only ever turn a foot outward.
    if (velocity.turn * sign(swing) > 0) {
        swing_end.yaw = velocity.turn * 2 * time;
    }
    swing_end_ = swing_end;
    const double turning = params_.turn_share(velocity.turn);
    step_height_ = params_.step_height + (params_.turn_step_height - params_.step_height) * turning;
}

void Gait::place(double x, double y) {
    // Shifting the end moves the foot by the shift times the share of the
    // swing done, so a shift that changes a little each cycle stays smooth.
    Offset& end = end_[at(other(support_))];
    end.x = swing_end_.x + x;
    end.y = swing_end_.y + y;
}

bool Gait::advance(double seconds) {
    phase_ = std::min(1.0, phase_ + seconds / step_time_);
    return phase_ >= 1;
}

double Gait::swing_share(double phase) const {
    const double lifted = std::max(1e-6, 1 - params_.double_support);
    return std::clamp((phase - params_.double_support / 2) / lifted, 0.0, 1.0);
}

Offset Gait::offset(Side side, double phase) const {
    if (side == support_) {
        return blend(start_[at(side)], end_[at(side)], phase);
    }
    // The hips move on over the support foot while the swing foot is in the
    // air; a foot set down still moving with them slides on the ground and
    // jolts the body round. The swing foot takes `landing_match` of the
    // support foot's motion along, so that it lifts off and lands with that
    // share of the walk's speed shed.
    const double share = swing_progress(swing_share(phase), params_.swing_ramp);
    const Offset& support_start = start_[at(support_)];
    const Offset& support_end = end_[at(support_)];
    const double carry = params_.landing_match;
    const double carried_x = (support_end.x - support_start.x) * carry;
    const double carried_y = (support_end.y - support_start.y) * carry;
    Offset now = blend(start_[at(side)], end_[at(side)], share);
    now.x += carried_x * (phase - share);
    now.y += carried_y * (phase - share);
    return now;
}

bool Gait::feet_together() const {
    constexpr double metres = 1e-4;
    constexpr double degrees = 0.1;
    for (Side side : {Side::left, Side::right}) {
        const Offset now = offset(side);
        if (std::fabs(now.x) > metres || std::fabs(now.y) > metres ||
            std::fabs(now.yaw) > degrees) {
            return false;
        }
    }
    return true;
}

double Gait::sway(double phase) const {
    const double constant = std::sqrt(params_.com_height / gravity);
    const double half = step_time_ / 2;
    const double shape =
        1 - std::cosh((phase * step_time_ - half) / constant) / std::cosh(half / constant);
    return params_.zmp_y * sway_scale_ * shape;
}

SoleTarget Gait::stand_sole(Side side) const {
    return {{params_.foot_x, sign(side) * (hip_offset_ + params_.foot_y), -params_.hip_height}, 0};
}

SoleTarget Gait::sole(Side side, double ahead) const {
    const double phase = std::min(1.0, phase_ + ahead / step_time_);
    SoleTarget target = stand_sole(side);
    const Offset now = offset(side, phase);
    target.position.x() += now.x;
    target.position.y() += now.y - sign(support_) * sway(phase);
    target.yaw = now.yaw;
    if (side != support_ && phase < 1) {
        target.position.z() += step_height_ * std::sin(pi * swing_share(phase));
    }
    return target;
}

} // namespace orvo::walk
