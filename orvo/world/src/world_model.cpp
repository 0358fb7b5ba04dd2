#include <orvo/world/world_model.h>

#include "angles.h"

#include <algorithm>
#include <cmath>

namespace orvo::world {

WorldModel::WorldModel(const WorldParams& params, Method method, std::uint32_t seed)
    : params_(params), localizer_(params, method, seed) {}

void WorldModel::set_team(const std::string& name, perception::Side side) {
    team_ = name;
    if (side != perception::Side::none) {
        side_ = side;
        localizer_.set_side(side);
    }
}

void WorldModel::place(double x, double y, double heading_deg) {
    localizer_.reset({x, y, heading_deg, 0, 0}, params_.beam_spread_m, params_.beam_spread_deg);
}

void WorldModel::update(const perception::Perception& now, const Odometry& step) {
    if (now.has_game_state && now.game_state.side != perception::Side::none &&
        now.game_state.side != side_) {
        side_ = now.game_state.side;
        localizer_.set_side(side_);
    }
    const double time = now.has_time ? now.time : ball_time_;
    const bool upright = track_tilt(now);
    follow_posture(time, upright);
    if (!lying_) {
        localizer_.predict(step);
    }
    if (!now.has_vision || !upright || lying_) {
        update_ball(time, false);
        return;
    }
    const double yaw = now.joints[robot::Joint::neck_yaw];
    const double pitch = now.joints[robot::Joint::neck_pitch];
    seen_.read(now.vision, yaw, pitch, lean_forward_deg_);
    localizer_.correct(seen_);
    last_vision_ = time;
    update_ball(time, seen_.sees_ball);
    update_others(now.vision, yaw, pitch, time);
}

// A lying robot's walk may still count steps (its legs move), but it goes
// nowhere; the fall itself moved and turned the torso by an unknown amount, so
// once it is up again the pose is widened for the sightings to settle. Lying
// and rising both hold for rise_hold_s: a placement or a bump shakes the
// accelerometer's reading for a moment either way.
void WorldModel::follow_posture(double time, bool upright) {
    if (tilt_deg_ > params_.lying_tilt_deg) {
        upright_since_ = -1;
        if (lying_since_ < 0) {
            lying_since_ = time;
        }
        lying_ = lying_ || time - lying_since_ >= params_.rise_hold_s;
        return;
    }
    lying_since_ = -1;
    if (!lying_ || !upright) {
        upright_since_ = -1;
    } else if (upright_since_ < 0) {
        upright_since_ = time;
    } else if (time - upright_since_ >= params_.rise_hold_s) {
        lying_ = false;
        upright_since_ = -1;
        const Pose at = localizer_.estimate();
        localizer_.reset(at, params_.fall_spread_m, params_.fall_spread_deg);
    }
}

bool WorldModel::track_tilt(const perception::Perception& now) {
    // The reading's running average: steps, impacts and placements shake the
    // single readings (a robot the trainer moves every cycle reads +43 and
    // -23 m/s^2 upwards in turn), while gravity stays.
    if (now.has_accelerometer) {
        const math::Vector3d& a = now.accelerometer;
        gravity_[0] += params_.tilt_filter * (a.x - gravity_[0]);
        gravity_[1] += params_.tilt_filter * (a.y - gravity_[1]);
        gravity_[2] += params_.tilt_filter * (a.z - gravity_[2]);
    }
    const double g = std::sqrt(gravity_[0] * gravity_[0] + gravity_[1] * gravity_[1] +
                               gravity_[2] * gravity_[2]);
    if (g <= 1.0) { // no reading yet, or free fall: take the torso as upright
        lean_forward_deg_ = tilt_deg_ = 0;
        return true;
    }
    // The accelerometer's y axis points forward; leaning forward tips the
    // measured gravity towards -y (measured on the server: a robot that fell
    // on its front reads y = -9.6).
    lean_forward_deg_ = std::atan2(-gravity_[1], gravity_[2]) / radians_per_degree;
    tilt_deg_ = std::acos(std::clamp(gravity_[2] / g, -1.0, 1.0)) / radians_per_degree;
    return tilt_deg_ <= params_.max_tilt_deg;
}

void WorldModel::update_ball(double time, bool seen) {
    const double dt = ball_.known ? std::max(0.0, time - ball_time_) : 0.0;
    ball_time_ = time;
    const double decay = std::exp(-params_.ball_velocity_decay_per_s * dt);
    const double q = params_.ball_acceleration_sigma * params_.ball_acceleration_sigma;
    double* velocity[2] = {&ball_.vx, &ball_.vy};
    double* position[2] = {&ball_.x, &ball_.y};
    const Pose& pose = localizer_.estimate();
    const double c = std::cos(pose.heading_deg * radians_per_degree);
    const double s = std::sin(pose.heading_deg * radians_per_degree);
    const double measured[2] = {pose.x + c * seen_.ball.x - s * seen_.ball.y,
                                pose.y + s * seen_.ball.x + c * seen_.ball.y};
    const double r =
        params_.ball_position_sigma_share * std::hypot(seen_.ball.x, seen_.ball.y) + pose.sigma_m;
    for (int axis = 0; axis < 2; ++axis) {
        // A constant-velocity Kalman filter per axis whose velocity fades
        // as the ball rolls out. P = [pp pv; pv vv].
        double& pp = ball_var_[axis][0];
        double& pv = ball_var_[axis][1];
        double& vv = ball_var_[axis][2];
        *position[axis] += *velocity[axis] * dt;
        *velocity[axis] *= decay;
        pp += 2 * dt * pv + dt * dt * vv + 0.25 * dt * dt * dt * dt * q;
        pv = decay * (pv + dt * vv) + 0.5 * dt * dt * dt * q;
        vv = decay * decay * vv + dt * dt * q;
        if (!seen)
            continue;
        // A ball far from where it should be was moved (by a kick, the
        // referee, a trainer) or the pose has jumped: start it afresh.
        const double jump = measured[axis] - *position[axis];
        if (!ball_.known || jump * jump > 9 * (pp + r * r) + 1.0) {
            *position[axis] = measured[axis];
            *velocity[axis] = 0;
            pp = r * r;
            pv = 0;
            vv = 1;
            continue;
        }
        const double innovation = measured[axis] - *position[axis];
        const double total = pp + r * r;
        const double kp = pp / total;
        const double kv = pv / total;
        *position[axis] += kp * innovation;
        *velocity[axis] += kv * innovation;
        vv -= kv * pv;
        pv -= kp * pv;
        pp -= kp * pp;
    }
    if (seen) {
        ball_.known = true;
        ball_.last_seen = time;
    }
    ball_.sigma_m = std::sqrt(ball_var_[0][0] + ball_var_[1][0]);
}

void WorldModel::update_others(const perception::Vision& vision, double neck_yaw, double neck_pitch,
                               double time) {
    const Pose& pose = localizer_.estimate();
    const double c = std::cos(pose.heading_deg * radians_per_degree);
    const double s = std::sin(pose.heading_deg * radians_per_degree);
    for (const perception::SeenPlayer& player : vision.players) {
        if (!player.sees(perception::BodyPart::head) || player.id < 1 ||
            player.id > static_cast<int>(team_size))
            continue;
        const math::Polar& head = player[perception::BodyPart::head];
        if (!std::isfinite(head.distance) || !std::isfinite(head.azimuth) ||
            !std::isfinite(head.elevation))
            continue;
        const GroundPoint g = to_ground(head, neck_yaw, neck_pitch);
        const bool mate = !team_.empty() && player.team == team_;
        OtherRobot& slot = others_[mate ? 1 : 0][static_cast<std::size_t>(player.id - 1)];
        slot = {true, mate, player.id, pose.x + c * g.x - s * g.y, pose.y + s * g.x + c * g.y,
                time};
    }
}

} // namespace orvo::world
