#include <orvo/walk/walker.h>

#include <orvo/body/kinematics.h>

#include <algorithm>
#include <cmath>

namespace orvo::walk {

namespace {

constexpr double radians_per_degree = 0.017453292519943295;

double approach(double from, double to, double step) {
    return from + std::clamp(to - from, -step, step);
}

bool still(const Velocity& velocity) {
    return velocity.forward == 0 && velocity.sideways == 0 && velocity.turn == 0;
}

/// The torso's sensors report in the server's body frame (x right, y
/// forward, z up); the walk thinks forward, left, up.
Eigen::Vector3d walk_axes(const math::Vector3d& body) {
    return {body.y, -body.x, body.z};
}

} // namespace

double heading_rate(const Eigen::Vector3d& rates, const Attitude& tilt) {
    // The torso rocks in pitch and roll with every step; its rate about its
    // own up axis, summed, drifts from the heading (the rocking's rates and
    // angles multiply to a steady turn: type 2 walking to a spot 5 m ahead
    // ended 0.2 to 0.4 m aside, its heading 3 to 7 degrees off).
    const double roll = tilt.roll * radians_per_degree;
    const double pitch = tilt.pitch * radians_per_degree;
    return (rates.y() * std::sin(roll) + rates.z() * std::cos(roll)) / std::cos(pitch);
}

Walker::Walker(const body::BodyModel& model, const WalkParams& params)
    : model_(model), params_(params), now_(params.at_speed(0)), gait_(now_, model.hip_width()),
      controller_(skills::JointController::Gains{params.joint_p, params.joint_d},
                  robot::speed_limits_deg(model.type(), params.joint_speed)),
      joints_(robot::joints_of(model.type())) {}

Velocity Walker::limited(const Velocity& wanted) const {
    Velocity velocity{std::clamp(wanted.forward, -params_.max_backward, params_.max_forward),
                      std::clamp(wanted.sideways, -params_.max_sideways, params_.max_sideways),
                      std::clamp(wanted.turn, -params_.max_turn, params_.max_turn)};
    // Each limit holds alone; together they would ask for steps no leg can
    // take (a foot turning out far while stepping far trips the robot), so a
    // combination is scaled down into the body the limits span.
    const double power = params_.combine_power;
    const double forward =
        velocity.forward / (velocity.forward < 0 ? params_.max_backward : params_.max_forward);
    const double share =
        std::pow(std::pow(std::fabs(forward), power) +
                     std::pow(std::fabs(velocity.sideways / params_.max_sideways), power) +
                     std::pow(std::fabs(velocity.turn / params_.max_turn), power),
                 1 / power);
    if (share > 1) {
        velocity.forward /= share;
        velocity.sideways /= share;
        velocity.turn /= share;
    }
    return velocity;
}

void Walker::set_velocity(double forward, double sideways, double turn) {
    target_ = limited({forward, sideways, turn});
    spot_.reset();
    arrived_ = false;
}

void Walker::walk_to(double x, double y) {
    set_velocity(0, 0, 0);
    spot_ = Eigen::Vector2d(x, y);
}

void Walker::steer_to_spot() {
    const Eigen::Vector2d left = *spot_ - Eigen::Vector2d(odometry_.x, odometry_.y);
    const double distance = left.norm();
    if (distance < params_.goto_radius) {
        target_ = {};
        spot_.reset();
        arrived_ = true;
        return;
    }
    double bearing = std::atan2(left.y(), left.x()) / radians_per_degree - odometry_.heading;
    bearing = std::remainder(bearing, 360.0);
    target_ = {};
    if (distance < params_.goto_near) {
        // Close by, it steps straight to the spot whatever its heading: a
        // spot a little aside would otherwise set it turning on the spot.
        const double speed = params_.goto_gain * distance;
        const double angle = bearing * radians_per_degree;
        target_.forward =
            std::clamp(speed * std::cos(angle), -params_.max_backward, params_.max_forward);
        target_.sideways =
            std::clamp(speed * std::sin(angle), -params_.max_sideways, params_.max_sideways);
        return;
    }
    target_.turn =
        std::clamp(params_.goto_turn_gain * bearing, -params_.max_turn, params_.max_turn);
    if (std::fabs(bearing) < params_.goto_turn_only) {
        const double speed = std::min(params_.goto_speed, params_.goto_gain * distance);
        target_.forward = speed * std::cos(bearing * radians_per_degree);
    }
    target_ = limited(target_);
}

void Walker::accelerate() {
    const double dt = robot::cycle_seconds;
    velocity_.forward = approach(velocity_.forward, target_.forward, params_.accel_forward * dt);
    velocity_.sideways =
        approach(velocity_.sideways, target_.sideways, params_.accel_sideways * dt);
    velocity_.turn = approach(velocity_.turn, target_.turn, params_.accel_turn * dt);
}

void Walker::track_odometry(const Offset& before) {
    // The support foot stays where it is on the ground: whatever it moved
    // relative to the hips, the body moved the other way.
    const Offset after = gait_.offset(gait_.support());
    const double forward = (before.x - after.x) * params_.odometry_forward +
                           params_.odometry_creep * robot::cycle_seconds;
    const double sideways = (before.y - after.y) * params_.odometry_sideways;
    const double heading = odometry_.heading * radians_per_degree;
    odometry_.x += std::cos(heading) * forward - std::sin(heading) * sideways;
    odometry_.y += std::sin(heading) * forward + std::cos(heading) * sideways;
    odometry_.heading = heading_ * params_.odometry_turn;
}

void Walker::step_on(const perception::Perception& perception) {
    if (!walking_) {
        if ((still(target_) && still(velocity_)) || !steady()) {
            return;
        }
        // The first swing goes to the side the robot moves to.
        const double lead = velocity_.sideways != 0 ? velocity_.sideways : velocity_.turn;
        walking_ = true;
        last_step_ = false;
        gait_.begin(lead < 0 ? Side::left : Side::right, velocity_, params_.start_sway);
    }
    const Offset before = gait_.offset(gait_.support());
    bool done = gait_.advance(robot::cycle_seconds);
    const perception::FootForce& swing =
        perception[gait_.support() == Side::left ? perception::Foot::right
                                                 : perception::Foot::left];
    if (!done && gait_.phase() >= now_.switch_phase && swing.touches &&
        swing.force.z > params_.contact_force) {
        gait_.finish();
        done = true;
    }
    track_odometry(before);
    if (!done) {
        return;
    }
    const Side next = other(gait_.support());
    if (still(target_) && still(velocity_) && gait_.feet_together()) {
        if (last_step_) {
            walking_ = false;
            return;
        }
        last_step_ = true;
        gait_.begin(next, velocity_, params_.start_sway);
        return;
    }
    last_step_ = false;
    gait_.begin(next, steered(), 1);
}

bool Walker::steady() const {
    // A robot still rocking from its landing or a stop would start its first
    // step off balance; without the sensors it starts at once.
    const bool level = !has_tilt_ || (std::fabs(tilt_.pitch - now_.lean) <= params_.start_tilt &&
                                      std::fabs(tilt_.roll) <= params_.start_tilt);
    return level && gyro_.norm() <= params_.start_gyro;
}

Velocity Walker::steered() const {
    Velocity velocity = velocity_;
    // Stopping, it brings its feet together rather than turning back.
    if (still(target_)) {
        return velocity;
    }
    // The correction counts against the limits like any other turn.
    velocity.turn -= params_.heading_gain * drift_;
    return limited(velocity);
}

void Walker::sense(const perception::Perception& perception) {
    for (std::size_t i = 0; i < robot::joint_count; ++i) {
        const auto joint = static_cast<robot::Joint>(i);
        if (perception.joints.has(joint)) {
            angles_[i] = perception.joints[joint];
        }
    }
    if (perception.has_gyroscope) {
        gyro_ = walk_axes(perception.gyroscope);
        const double turning = has_tilt_ ? heading_rate(gyro_, tilt_) : gyro_.z();
        heading_ += turning * robot::cycle_seconds;
        drift_ = walking_ ? drift_ + (turning - velocity_.turn) * robot::cycle_seconds : 0;
    }
    if (perception.has_accelerometer) {
        // The accelerometer, shaken by every step far more than the torso
        // tilts, is averaged as a vector (its angles from single readings
        // swing by tens of degrees) and only pulls the tilt back slowly; the
        // gyroscope carries the tilt from cycle to cycle.
        const Eigen::Vector3d a = walk_axes(perception.accelerometer);
        const double share = has_tilt_ ? params_.tilt_filter : 1.0;
        gravity_ += (a - gravity_) * share;
        if (has_tilt_ && perception.has_gyroscope) {
            tilt_.pitch += gyro_.y() * robot::cycle_seconds;
            tilt_.roll += gyro_.x() * robot::cycle_seconds;
        }
        const Attitude now{std::atan2(-gravity_.x(), gravity_.z()) / radians_per_degree,
                           std::atan2(gravity_.y(), gravity_.z()) / radians_per_degree};
        tilt_.pitch += (now.pitch - tilt_.pitch) * share;
        tilt_.roll += (now.roll - tilt_.roll) * share;
        has_tilt_ = true;
    }
}

void Walker::place_swing_foot() {
    if (!walking_ || !has_tilt_) {
        return;
    }
    // Where the torso will be tipped place_rate seconds from now: a foot set
    // down under that catches it. The gyroscope's rate jumps at every
    // landing, and a foot target that jumps with it kicks the joints.
    const double forward = tilt_.pitch - now_.lean + gyro_.y() * params_.place_rate;
    const double right = tilt_.roll + gyro_.x() * params_.place_rate;
    const double most = params_.place_max;
    const double turning = params_.turn_share(velocity_.turn);
    const double pitch_gain = now_.place_pitch + params_.place_turn_pitch * turning;
    const double beyond = std::max(0.0, std::fabs(forward) - params_.place_tip);
    const double catching = std::copysign(params_.place_tip_pitch * beyond, forward);
    gait_.place(std::clamp(pitch_gain * forward + catching, -most, most),
                std::clamp(-params_.place_roll * right, -most, most));
}

void Walker::pose_joints() {
    using robot::Joint;
    Attitude attitude{now_.lean, 0};
    if (has_tilt_) {
        attitude.pitch -= params_.tilt_pitch * (tilt_.pitch - now_.lean);
        attitude.roll -= params_.tilt_roll * tilt_.roll;
    }
    reachable_ = true;
    for (Side side : {Side::left, Side::right}) {
        body::LegAngles angles{};
        const SoleTarget sole =
            walking_ ? gait_.sole(side, params_.lookahead) : gait_.stand_sole(side);
        reachable_ = leg_angles(model_, side, sole, attitude, angles) && reachable_;
        body::set_leg_angles(targets_, leg_of(side), angles);
    }
    // Each arm swings against its leg, which takes up some of the turn that
    // the swinging leg gives the body.
    targets_[index(Joint::left_shoulder_pitch)] =
        params_.arm_pitch - now_.arm_swing * gait_.offset(Side::left).x;
    targets_[index(Joint::right_shoulder_pitch)] =
        params_.arm_pitch - now_.arm_swing * gait_.offset(Side::right).x;
    targets_[index(Joint::left_shoulder_roll)] = params_.arm_roll;
    targets_[index(Joint::right_shoulder_roll)] = -params_.arm_roll;
    // The rates feed the planned motion forward; the sensors' corrections
    // below are noisy and stay out of them.
    const double dt = robot::cycle_seconds;
    for (std::size_t i = 0; i < robot::joint_count; ++i) {
        rates_[i] = has_previous_ ? (targets_[i] - previous_targets_[i]) / dt : 0;
    }
    previous_targets_ = targets_;
    has_previous_ = true;
    for (Joint joint : {Joint::left_ankle_pitch, Joint::right_ankle_pitch}) {
        targets_[index(joint)] += now_.gyro_ankle_pitch * gyro_.y();
    }
    for (Joint joint : {Joint::left_ankle_roll, Joint::right_ankle_roll}) {
        targets_[index(joint)] += params_.gyro_ankle_roll * gyro_.x();
    }
    for (Joint joint : {Joint::left_hip_roll, Joint::right_hip_roll}) {
        targets_[index(joint)] += params_.gyro_hip_roll * gyro_.x();
    }
}

void Walker::update(const perception::Perception& perception) {
    sense(perception);
    if (spot_) {
        steer_to_spot();
    }
    // Standing, the velocity waits with the first step for a steady torso.
    if (walking_ || steady()) {
        accelerate();
    }
    now_ = params_.at_speed(velocity_.forward);
    gait_.retune(now_);
    step_on(perception);
    place_swing_foot();
    pose_joints();
    controller_.step(targets_, rates_, angles_, joints_, speeds_);
}

} // namespace orvo::walk
