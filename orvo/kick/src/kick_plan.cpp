#include <orvo/kick/kick_plan.h>

#include <algorithm>
#include <cmath>

namespace orvo::kick {

namespace {

constexpr double radians_per_degree = 0.017453292519943295;
/// Sideways offset (m) and turn (deg) at which the approach holds back fully.
constexpr double aside_full = 0.1;
constexpr double turned_full = 20;

} // namespace

Pose2 compose(const Pose2& frame, const Pose2& local) {
    const double h = frame.heading * radians_per_degree;
    return {frame.x + std::cos(h) * local.x - std::sin(h) * local.y,
            frame.y + std::sin(h) * local.x + std::cos(h) * local.y,
            std::remainder(frame.heading + local.heading, 360.0)};
}

Pose2 relative(const Pose2& frame, const Pose2& pose) {
    const double h = frame.heading * radians_per_degree;
    const double dx = pose.x - frame.x;
    const double dy = pose.y - frame.y;
    return {std::cos(h) * dx + std::sin(h) * dy, -std::sin(h) * dx + std::cos(h) * dy,
            std::remainder(pose.heading - frame.heading, 360.0)};
}

walk::Side kicking_side(double ball_x, double ball_y, double direction_deg) {
    constexpr double straight = 5;
    if (std::fabs(direction_deg) > straight) {
        return direction_deg > 0 ? walk::Side::right : walk::Side::left;
    }
    // Which side of the kick's line through the hips the ball lies on.
    const double d = direction_deg * radians_per_degree;
    const double across = -std::sin(d) * ball_x + std::cos(d) * ball_y;
    return across >= 0 ? walk::Side::left : walk::Side::right;
}

Pose2 stand_pose(double ball_x, double ball_y, double direction_deg, walk::Side side,
                 double foot_line, const KickParams& params) {
    const double aside = walk::sign(side) * (foot_line + params.ball_y);
    const Pose2 ball_seen_from_stand{params.ball_x, aside, 0};
    // The stand is the ball's pose (facing the kick) moved back by the
    // offset at which the ball lies from the stand.
    const Pose2 ball{ball_x, ball_y, direction_deg};
    const double h = direction_deg * radians_per_degree;
    return {ball.x - std::cos(h) * ball_seen_from_stand.x + std::sin(h) * ball_seen_from_stand.y,
            ball.y - std::sin(h) * ball_seen_from_stand.x - std::cos(h) * ball_seen_from_stand.y,
            direction_deg};
}

Pose2 approach_spot(const Pose2& robot, const Pose2& stand, const KickParams& params) {
    const Pose2 off = relative(stand, robot);
    const double share =
        std::min(1.0, std::fabs(off.y) / aside_full + std::fabs(off.heading) / turned_full);
    return compose(stand, {-params.approach_clearance * share, 0, 0});
}

walk::Velocity approach_velocity(const Pose2& error, const KickParams& params, double creep) {
    const double forward = params.approach_gain * error.x - params.approach_creep * creep;
    return {std::clamp(forward, -params.approach_forward, params.approach_forward),
            std::clamp(params.approach_gain * error.y, -params.approach_sideways,
                       params.approach_sideways),
            std::clamp(params.approach_turn_gain * error.heading, -params.approach_turn,
                       params.approach_turn)};
}

bool within(const Pose2& error, double x, double y, double heading) {
    return std::fabs(error.x) <= x && std::fabs(error.y) <= y &&
           std::fabs(error.heading) <= heading;
}

} // namespace orvo::kick
