#include <orvo/fall/fall_detector.h>

#include <orvo/body/kinematics.h>

#include <Eigen/Geometry>

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvo::fall {

namespace {

constexpr double gravity = 9.81;
constexpr double radians_per_degree = 0.017453292519943295;
/// A gap in the perceptions longer than this is not integrated over: the
/// accelerometer alone says where up is after it.
constexpr double longest_step = 0.1;

robot::JointValues joint_angles(const perception::Perception& perception) {
    robot::JointValues angles{};
    for (std::size_t i = 0; i < robot::joint_count; ++i) {
        angles[i] = perception.joints[static_cast<robot::Joint>(i)];
    }
    return angles;
}

} // namespace

std::string_view posture_name(Posture posture) {
    switch (posture) {
    case Posture::upright:
        return "upright";
    case Posture::falling:
        return "falling";
    case Posture::fallen_front:
        return "fallen_front";
    case Posture::fallen_back:
        return "fallen_back";
    case Posture::fallen_left:
        return "fallen_left";
    case Posture::fallen_right:
        return "fallen_right";
    case Posture::getting_up:
        return "getting_up";
    }
    return "unknown";
}

FallDetector::FallDetector(body::BodyModel body, const FallParams& params)
    : body_(std::move(body)), params_(params) {}

void FallDetector::reset() {
    posture_ = Posture::upright;
    up_ = Eigen::Vector3d::UnitZ();
    started_ = false;
    tilt_ = rate_ = height_ = 0;
    upright_since_ = -1;
}

void FallDetector::level(const perception::Perception& perception) {
    const Eigen::Vector3d felt(perception.accelerometer.x, perception.accelerometer.y,
                               perception.accelerometer.z);
    if (perception.has_accelerometer && felt.norm() > 0) {
        up_ = felt.normalized();
    }
}

Posture FallDetector::update(const perception::Perception& perception) {
    if (!perception.has_time) {
        return posture_;
    }
    const double dt = started_ ? perception.time - last_time_ : 0;
    last_time_ = perception.time;
    track_up(perception, dt);
    const double tilt = std::acos(std::clamp(up_.z(), -1.0, 1.0)) / radians_per_degree;
    if (started_ && dt > 0 && dt <= longest_step) {
        rate_ += params_.rate_filter * ((tilt - tilt_) / dt - rate_);
    }
    tilt_ = tilt;
    started_ = true;
    estimate_height(perception);
    const bool feet_down =
        perception[perception::Foot::left].touches || perception[perception::Foot::right].touches;
    posture_ = next_posture(feet_down, perception.time);
    return posture_;
}

void FallDetector::track_up(const perception::Perception& perception, double dt) {
    if (perception.has_gyroscope && started_ && dt > 0 && dt <= longest_step) {
        const Eigen::Vector3d turn(perception.gyroscope.x, perception.gyroscope.y,
                                   perception.gyroscope.z);
        // A direction fixed in the world seems, from the turning torso, to
        // turn the other way.
        const Eigen::Vector3d angle = -turn * radians_per_degree * dt;
        if (angle.norm() > 0) {
            up_ = Eigen::AngleAxisd(angle.norm(), angle.normalized()) * up_;
        }
    }
    if (perception.has_accelerometer) {
        const Eigen::Vector3d felt(perception.accelerometer.x, perception.accelerometer.y,
                                   perception.accelerometer.z);
        const double size = felt.norm();
        // A turning torso's readings of about g are no guide to where up is:
        // a walking torso reads g in mid-step, tilted by the step's push, and
        // trusting those readings drifted the estimate 20 to 50 degrees over
        // a few seconds of a fast walk. Still, they are.
        const double turning = perception.has_gyroscope
                                   ? Eigen::Vector3d(perception.gyroscope.x, perception.gyroscope.y,
                                                     perception.gyroscope.z)
                                         .norm()
                                   : 0;
        if (std::fabs(size - gravity) <= params_.accel_tolerance && size > 0 &&
            (!started_ || turning <= params_.accel_still_rate)) {
            // Without a gyroscope history the reading is all there is.
            const double weight = started_ ? params_.accel_weight : 1.0;
            up_ += weight * (felt / size - up_);
        }
    }
    if (up_.norm() > 1e-9) {
        up_.normalize();
    } else {
        up_ = Eigen::Vector3d::UnitZ();
    }
}

void FallDetector::estimate_height(const perception::Perception& perception) {
    const robot::JointValues angles = joint_angles(perception);
    height_ = 0;
    for (body::Leg leg : {body::Leg::left, body::Leg::right}) {
        const Eigen::Isometry3d sole = body::foot_pose(body_, leg, body::leg_angles(angles, leg));
        height_ = std::max(height_, -up_.dot(sole.translation()));
    }
}

Posture FallDetector::lying_side() const {
    if (std::fabs(up_.y()) >= std::fabs(up_.x())) {
        return up_.y() < 0 ? Posture::fallen_front : Posture::fallen_back;
    }
    return up_.x() > 0 ? Posture::fallen_left : Posture::fallen_right;
}

Posture FallDetector::next_posture(bool feet_down, double now) {
    const bool low = feet_down && height_ < params_.fallen_height;
    if (tilt_ >= params_.fallen_tilt || (low && posture_ != Posture::getting_up)) {
        upright_since_ = -1;
        return lying_side();
    }
    if (posture_ == Posture::upright || posture_ == Posture::falling) {
        const bool tipping = tilt_ >= params_.falling_tilt && rate_ >= params_.falling_rate;
        return tipping ? Posture::falling : Posture::upright;
    }
    // Lying or getting up: upright again only once it has held long enough.
    const bool upright =
        feet_down && tilt_ <= params_.upright_tilt && height_ >= params_.upright_height;
    if (!upright) {
        upright_since_ = -1;
        return Posture::getting_up;
    }
    if (upright_since_ < 0) {
        upright_since_ = now;
    }
    return now - upright_since_ >= params_.upright_hold ? Posture::upright : Posture::getting_up;
}

} // namespace orvo::fall
