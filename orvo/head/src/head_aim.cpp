#include <orvo/head/head_aim.h>

#include <orvo/protocol/constants.h>
#include <orvo/robot/joints.h>
#include <orvo/world/field.h>
#include <orvo/world/param_file.h>

#include <algorithm>
#include <cmath>

namespace orvo::head {

namespace {

using protocol::degrees_per_radian;

/// The bearing of (x, y) seen from `pose`, relative to its heading, degrees.
double bearing(const world::Pose& pose, double x, double y) {
    const double deg = std::atan2(y - pose.y, x - pose.x) * degrees_per_radian - pose.heading_deg;
    return std::remainder(deg, 360.0);
}

} // namespace

HeadParams HeadParams::load(const std::string& path) {
    HeadParams p;
    world::ParamFile file(path);
    file.read("scan_yaw_deg", p.scan_yaw_deg);
    file.read("scan_period_s", p.scan_period_s);
    file.read("scan_pitch_deg", p.scan_pitch_deg);
    file.read("camera_height_m", p.camera_height_m);
    file.read("lost_m", p.lost_m);
    file.read("lost_deg", p.lost_deg);
    file.read("ball_lost_s", p.ball_lost_s);
    file.read("landmark_dwell_s", p.landmark_dwell_s);
    file.check_no_others();
    return p;
}

HeadParams HeadParams::for_type(const std::string& dir, int type) {
    return load(dir + "/type" + std::to_string(type) + ".json");
}

const char* name(HeadMode mode) {
    switch (mode) {
    case HeadMode::scan:
        return "scan";
    case HeadMode::landmarks:
        return "landmarks";
    case HeadMode::ball:
        return "ball";
    }
    return "scan";
}

HeadTarget HeadAim::scan(double now) const {
    // A triangle wave: the same sweep speed all the way, so that every
    // direction gets the same share of sightings.
    const double phase = std::fmod(now / params_.scan_period_s, 1.0);
    const double wave = phase < 0.5 ? 4 * phase - 1 : 3 - 4 * phase;
    return {HeadMode::scan, wave * params_.scan_yaw_deg, params_.scan_pitch_deg};
}

bool HeadAim::look_at_landmark(const world::WorldModel& world, double now, HeadTarget& out) {
    const world::Pose& pose = world.pose();
    const double reach = robot::info(robot::Joint::neck_yaw).max_deg;
    if (landmark_since_ < 0 || now - landmark_since_ >= params_.landmark_dwell_s) {
        landmark_since_ = now;
        ++landmark_;
    }
    // From the turn's landmark on, the first one the neck can reach.
    for (std::size_t k = 0; k < perception::landmark_count; ++k) {
        const auto which = static_cast<perception::Landmark>(
            static_cast<std::size_t>(landmark_ + static_cast<int>(k)) % perception::landmark_count);
        const world::field::Point3 mark = world::field::landmark(which, world.side());
        const double yaw = bearing(pose, mark.x, mark.y);
        if (std::abs(yaw) <= reach) {
            out = {HeadMode::landmarks, yaw, 0};
            return true;
        }
    }
    return false;
}

HeadTarget HeadAim::operator()(const world::WorldModel& world, double now) {
    const world::Pose& pose = world.pose();
    if (pose.sigma_m > params_.lost_m || pose.sigma_deg > params_.lost_deg)
        return scan(now);
    HeadTarget out;
    if ((pose.sigma_m > params_.lost_m / 2 || pose.sigma_deg > params_.lost_deg / 2) &&
        look_at_landmark(world, now, out))
        return out;
    const world::BallBelief& ball = world.ball();
    if (!ball.known || now - ball.last_seen > params_.ball_lost_s)
        return scan(now);
    const double reach = robot::info(robot::Joint::neck_yaw).max_deg;
    const double distance = std::hypot(ball.x - pose.x, ball.y - pose.y);
    const double yaw = std::clamp(bearing(pose, ball.x, ball.y), -reach, reach);
    // A positive neck pitch raises the view.
    const double pitch = -std::atan2(params_.camera_height_m, distance) * degrees_per_radian;
    return {HeadMode::ball, yaw, pitch};
}

} // namespace orvo::head
