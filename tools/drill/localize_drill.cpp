// The localize drill: a robot walks a course of spots across the field by
// what its world model believes, its head aimed by the head skill's
// decisions, and the trainer moves it 5 m once half way. At every monitor
// update the drill compares the belief of that game time with the truth. A
// robot that falls gets up and walks on, as in a game.
#include "drills.h"
#include "summary.h"
#include "trial.h"

#include <orvo/body/body_model.h>
#include <orvo/fall/fall_detector.h>
#include <orvo/getup/getup.h>
#include <orvo/head/head_aim.h>
#include <orvo/params/param_set.h>
#include <orvo/walk/walker.h>
#include <orvo/world/world_model.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <map>

namespace orvo::drill {

const char* const localize_usage =
    "  localize   a course of spots across the field, walked by the world model's belief;\n"
    "             the trainer moves the robot 5 m half way\n";

namespace {

constexpr FieldPose start_spot{-12, 0, 0};
constexpr double course[][2] = {{-8, -4}, {-3, 5}, {3, -3}, {-2, 0}, {-9, 6}, {-12, -2}};
constexpr std::size_t course_spots = sizeof course / sizeof course[0];
/// A spot counts as reached this close by belief.
constexpr double reached_m = 0.3;
constexpr double kidnap_m = 5;
constexpr double recovered_m = 0.5;
constexpr double ball_recent_s = 1;
/// The robot stands this long where the trainer put it, as after a referee's move.
constexpr double stand_after_kidnap_s = 1;
constexpr double degrees = 180 / M_PI;

struct Belief {
    world::Pose pose;
    world::BallBelief ball;
    double server_time = 0;
};

struct Errors {
    std::vector<double> position, heading, ball;
    double kidnapped_at = -1; ///< the robot's game time when the trainer was told
    FieldPose carried_from;
    double moved_at = -1; ///< the first monitor update that shows the robot moved
    double recovery_s = -1;
};

double quantile(std::vector<double> values, double share) {
    if (values.empty()) {
        return -1;
    }
    const auto at = values.begin() + static_cast<long>(share * (values.size() - 1));
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

class CourseWalk {
public:
    CourseWalk(const DrillOptions& options, const walk::WalkParams& walk, int run);
    nlohmann::json run(int run);

private:
    void steer();
    std::string head_command();
    void compare();
    void kidnap();
    void cycle();
    /// Drives the joints while the robot is down or getting up; false once
    /// they are the walk's again.
    bool get_up(const perception::Perception& now);

    const DrillOptions& options_;
    Trial trial_;
    walk::Walker walker_;
    world::WorldModel world_;
    head::HeadAim aim_;
    fall::FallDetector detector_;
    getup::GetUp getup_;
    std::map<double, Belief> beliefs_; ///< by game time, until the monitor shows it
    Errors errors_;
    std::size_t next_ = 0;
    walk::Odometry last_odometry_;
    double last_compared_ = -1;
    int getups_ = 0;
};

CourseWalk::CourseWalk(const DrillOptions& options, const walk::WalkParams& walk, int run)
    : options_(options), trial_(options, start_spot),
      walker_(body::BodyModel::for_type(options.type), walk),
      world_(world::WorldParams::load(params::params_path("world", options.type)),
             world::Method::particles_and_fit, options.seed + static_cast<unsigned>(run)),
      aim_(head::HeadParams::load(params::params_path("head", options.type))),
      detector_(body::BodyModel::for_type(options.type), fall::FallParams::for_type(options.type)),
      getup_(getup::GetUp::for_type(options.type)) {
    world_.set_team("orvo", perception::Side::left);
    world_.place(start_spot.x, start_spot.y, start_spot.heading);
    trial_.monitor().place_ball(-4, 2, 0.042);
}

// Turns toward the next spot, then walks to it turning as it goes.
void CourseWalk::steer() {
    const world::Pose& pose = world_.pose();
    const double dx = course[next_][0] - pose.x, dy = course[next_][1] - pose.y;
    if (std::hypot(dx, dy) < reached_m) {
        next_ = (next_ + 1) % course_spots;
        return;
    }
    const double bearing = std::remainder(std::atan2(dy, dx) * degrees - pose.heading_deg, 360.0);
    // Turns on the spot first, then walks on at a moderate speed, correcting
    // gently: what a team's behavior asks of its walk crossing the field.
    constexpr double turn_first_deg = 30, turn_gain = 1, spot_turn = 40, walking_turn = 15;
    constexpr double cruise = 0.3;
    if (std::abs(bearing) > turn_first_deg) {
        walker_.set_velocity(0, 0, std::clamp(turn_gain * bearing, -spot_turn, spot_turn));
    } else {
        walker_.set_velocity(std::min(cruise, std::hypot(dx, dy)), 0,
                             std::clamp(turn_gain * bearing, -walking_turn, walking_turn));
    }
}

std::string CourseWalk::head_command() {
    const perception::Perception& now = trial_.perception();
    const head::HeadTarget target = aim_(world_, now.time);
    // Proportional speeds (rad/s per degree off), within the joints' limit.
    constexpr double gain = 0.15, limit = 6;
    const double yaw = now.joints[robot::Joint::neck_yaw];
    const double pitch = now.joints[robot::Joint::neck_pitch];
    char command[80];
    std::snprintf(command, sizeof command, "(he1 %.4f)(he2 %.4f)",
                  std::clamp(gain * (target.yaw_deg - yaw), -limit, limit),
                  std::clamp(gain * (target.pitch_deg - pitch), -limit, limit));
    return command;
}

// The belief of the game time the monitor shows now, beside the truth.
void CourseWalk::compare() {
    // Both clocks are the same game time, printed by the server with a few
    // decimals: nearest within half a cycle.
    constexpr double half_cycle = 0.01;
    const double shown = trial_.game_time();
    const auto belief = beliefs_.lower_bound(shown - half_cycle);
    if (shown == last_compared_ || belief == beliefs_.end() || belief->first > shown + half_cycle ||
        !trial_.pose()) {
        return;
    }
    last_compared_ = shown;
    const FieldPose truth = *trial_.pose();
    const double error =
        std::hypot(belief->second.pose.x - truth.x, belief->second.pose.y - truth.y);
    errors_.position.push_back(error);
    errors_.heading.push_back(
        std::abs(std::remainder(belief->second.pose.heading_deg - truth.heading, 360.0)));
    if (errors_.kidnapped_at >= 0 && errors_.moved_at < 0 &&
        std::hypot(truth.x - errors_.carried_from.x, truth.y - errors_.carried_from.y) >
            kidnap_m / 2) {
        errors_.moved_at = shown;
    }
    if (errors_.moved_at >= 0 && errors_.recovery_s < 0 && error < recovered_m) {
        errors_.recovery_s = shown - errors_.moved_at;
    }
    const world::BallBelief& ball = belief->second.ball;
    if (ball.known && belief->second.server_time - ball.last_seen <= ball_recent_s) {
        const double* real = trial_.monitor().truth().ball;
        errors_.ball.push_back(std::hypot(ball.x - real[0], ball.y - real[1]));
    }
    beliefs_.erase(beliefs_.begin(), std::next(belief));
}

void CourseWalk::kidnap() {
    const FieldPose at = trial_.pose().value_or(start_spot);
    const double y = at.y > 0 ? at.y - kidnap_m : at.y + kidnap_m;
    trial_.monitor().place_robot(monitor::Side::left, trial_.number(), at.x, y, trial_.height(),
                                 at.heading);
    errors_.kidnapped_at = trial_.perception().game_state.time;
    errors_.carried_from = at;
}

bool CourseWalk::get_up(const perception::Perception& now) {
    const fall::Posture posture = detector_.update(now);
    if (fall::lying(posture) && !getup_.active() && getup_.settled(now)) {
        getup_.start(posture);
        ++getups_;
    }
    if (!getup_.active() && !fall::lying(posture) && posture != fall::Posture::getting_up) {
        return false;
    }
    // The walk starts again from its stand once the robot is up.
    walker_.stop();
    getup_.update(now);
    trial_.step(joint_command(getup_.joints(), getup_.speeds()));
    return true;
}

void CourseWalk::cycle() {
    const perception::Perception& now = trial_.perception();
    if (get_up(now)) {
        world_.update(now, {});
        beliefs_[now.game_state.time] = {world_.pose(), world_.ball(), now.time};
        compare();
        return;
    }
    walker_.update(now);
    const walk::Odometry& odometry = walker_.odometry();
    world_.update(now,
                  world::step_between(last_odometry_.x, last_odometry_.y, last_odometry_.heading,
                                      odometry.x, odometry.y, odometry.heading));
    last_odometry_ = odometry;
    beliefs_[now.game_state.time] = {world_.pose(), world_.ball(), now.time};
    robot::JointSet legs_and_arms = walker_.joints();
    legs_and_arms.reset(robot::index(robot::Joint::neck_yaw));
    legs_and_arms.reset(robot::index(robot::Joint::neck_pitch));
    trial_.step(joint_command(legs_and_arms, walker_.speeds()) + head_command());
    if (errors_.kidnapped_at >= 0 && errors_.recovery_s < 0) {
        // The monitor's updates come in bursts, of which the drill sees the
        // last: around the move it waits for each one, to time the recovery
        // from the first update that shows the robot carried off.
        trial_.catch_up();
    }
    compare();
}

nlohmann::json CourseWalk::run(int run) {
    const int per_second = static_cast<int>(std::lround(1 / robot::cycle_seconds));
    for (int i = 0; i < per_second; ++i) { // the stand settles
        cycle();
    }
    errors_ = {};
    const double start_time = trial_.game_time();
    const int cycles = static_cast<int>(std::lround(options_.seconds * per_second));
    for (int i = 0; i < cycles; ++i) {
        if (errors_.kidnapped_at < 0 && i >= cycles / 2) {
            // Carried off when standing, as a referee would move it.
            walker_.stop();
            if (walker_.standing() && detector_.posture() == fall::Posture::upright) {
                kidnap();
            }
        } else if (trial_.perception().game_state.time >
                   errors_.kidnapped_at + stand_after_kidnap_s) {
            steer();
        }
        cycle();
    }
    trial_.catch_up();
    nlohmann::json result = trial_.record("localize", options_, run, start_time);
    result["position_error_median_m"] = quantile(errors_.position, 0.5);
    result["position_error_p95_m"] = quantile(errors_.position, 0.95);
    result["heading_error_median_deg"] = quantile(errors_.heading, 0.5);
    result["ball_error_median_m"] = quantile(errors_.ball, 0.5);
    result["recovery_s"] = errors_.recovery_s;
    result["compared"] = errors_.position.size();
    result["spots_reached"] = next_;
    result["getups"] = getups_;
    return result;
}

} // namespace

int run_localize(Arguments& arguments) {
    const DrillOptions options = parse_common(arguments, [](Arguments&) { return false; });
    require_server(options);
    const walk::WalkParams walk = walk::WalkParams::from(walk::ParamSet::load(
        options.params.empty() ? walk::params_path("walk", options.type) : options.params));
    Summary summary(std::cout);
    for (int run = 0; run < options.runs; ++run) {
        std::cerr << "localize: type " << options.type << ", run " << run + 1 << " of "
                  << options.runs << '\n';
        summary.add(CourseWalk(options, walk, run).run(run));
    }
    summary.print(std::cerr,
                  {"position_error_median_m", "position_error_p95_m", "heading_error_median_deg",
                   "ball_error_median_m", "recovery_s", "falls"});
    return 0;
}

} // namespace orvo::drill
