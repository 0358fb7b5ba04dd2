#include "drills.h"
#include "summary.h"
#include "trial.h"

#include <orvo/body/body_model.h>
#include <orvo/kick/kicker.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <optional>
#include <random>

namespace orvo::drill {

const char* const kick_usage =
    "  kick [--direction DEG] [--ball X Y] [--placed [--jitter M]] [--trace]\n"
    "       walks up to a ball 1 m ahead and kicks it DEG left of its heading (default 0);\n"
    "       the ball lies at (X, Y) on the field (default 0 0); --params: a kick file;\n"
    "       --seconds: the most the approach and kick may take (default 10);\n"
    "       --placed: the trainer puts the ball on the kick's spot, no approach; --jitter:\n"
    "       that spot moved up to M metres either way on both axes (seeded)\n";

namespace {

constexpr double radians_per_degree = 0.017453292519943295;
constexpr double robot_height = 0.4; ///< where the trainer puts a torso not seen yet
constexpr double height_margin = 0.005;
constexpr double behind = 1; ///< robot behind the ball, metres
constexpr double stand_seconds = 1;
/// The ball counts as resting once it moved less than this in a check.
constexpr double rest_check_seconds = 0.2;
constexpr double rest_metres = 0.005;
constexpr double most_rolling_seconds = 15;
/// A ball moved less than this was not kicked: its direction is meaningless.
constexpr double least_kick = 0.05;
constexpr double missed_error_deg = 180;

struct KickOptions {
    double direction = 0;
    double ball_x = 0;
    double ball_y = 0;
    bool placed = false;
    double jitter = 0;
    bool trace = false;
};

struct Ball {
    double x = 0;
    double y = 0;
};

Ball ball_of(const Trial& trial) {
    return {trial.monitor_truth().ball[0], trial.monitor_truth().ball[1]};
}

void trace(const Trial& trial, const kick::Kicker& kicker) {
    const FieldPose pose = trial.pose().value_or(FieldPose{});
    const kick::Pose2 ball = kicker.ball().value_or(kick::Pose2{});
    const kick::Pose2 stand = kicker.stand().value_or(kick::Pose2{});
    const kick::Pose2 robot = kicker.robot();
    const std::array<double, 6> feet = feet_on_field(trial);
    using robot::Joint;
    const auto& seen_joints = trial.perception().joints;
    const bool left = kicker.kicking() == walk::Side::left;
    const Joint hip = left ? Joint::left_hip_pitch : Joint::right_hip_pitch;
    const Joint knee = left ? Joint::left_knee_pitch : Joint::right_knee_pitch;
    const Joint ankle = left ? Joint::left_ankle_pitch : Joint::right_ankle_pitch;
    std::fprintf(stderr, "joints hip %.1f>%.1f knee %.1f>%.1f ankle %.1f>%.1f\n", seen_joints[hip],
                 kicker.targets()[robot::index(hip)], seen_joints[knee],
                 kicker.targets()[robot::index(knee)], seen_joints[ankle],
                 kicker.targets()[robot::index(ankle)]);
    std::fprintf(stderr, "feet %.3f %.3f %.3f  %.3f %.3f %.3f\n", feet[0], feet[1], feet[2],
                 feet[3], feet[4], feet[5]);
    std::fprintf(stderr,
                 "t %.2f pose %.3f %.3f %.1f tilt %.1f ball %.3f %.3f %.3f | %s odo %.3f %.3f "
                 "%.1f ball %.3f %.3f stand %.3f %.3f %.1f\n",
                 trial.game_time(), pose.x, pose.y, pose.heading, trial.tilt(), ball_of(trial).x,
                 ball_of(trial).y, trial.monitor_truth().ball[2], kick::phase_name(kicker.phase()),
                 robot.x, robot.y, robot.heading, ball.x, ball.y, stand.x, stand.y, stand.heading);
}

/// Steps until the ball rests (or long enough), the robot standing.
void wait_for_rest(Trial& trial, kick::Kicker& kicker) {
    const int cycles = static_cast<int>(std::lround(rest_check_seconds / robot::cycle_seconds));
    Ball before = ball_of(trial);
    for (double waited = 0; waited < most_rolling_seconds; waited += rest_check_seconds) {
        for (int i = 0; i < cycles; ++i) {
            kicker.update(trial.perception());
            trial.step(joint_command(kicker.joints(), kicker.speeds()));
        }
        trial.catch_up();
        const Ball now = ball_of(trial);
        if (std::hypot(now.x - before.x, now.y - before.y) < rest_metres) {
            return;
        }
        before = now;
    }
}

/// The ball and the robot put in place by the trainer: the ball at the
/// kick's spot, the robot at `spot` (where the beam put it already).
void place(Trial& trial, const KickOptions& kick, const FieldPose& spot) {
    trial.monitor().place_ball(kick.ball_x, kick.ball_y, ball_radius);
    // At the height it stands at: the types stand at different heights, and
    // a torso put lower than that pushes the feet into the ground.
    trial.catch_up();
    const double height = trial.height() > 0 ? trial.height() + height_margin : robot_height;
    trial.monitor().place_robot(monitor::Side::left, trial.number(), spot.x, spot.y, height,
                                spot.heading);
}

/// The ball put where the kick wants it before the right foot of the robot
/// standing as the monitor shows it, so that only the kick's motion is
/// measured: the approach's last steps leave the ball a few centimetres off
/// its spot either way, which decides more of a kick than its motion does.
void place_at_foot(Trial& trial, const kick::KickParams& params, const walk::WalkParams& walk,
                   int type, double jitter, std::mt19937& random) {
    // As far off as the approach's last steps leave it, so that a kick tuned
    // on placed balls holds up after an approach too.
    std::uniform_real_distribution<double> off(-jitter, jitter);
    const double jitter_x = off(random);
    const double jitter_y = off(random);
    trial.catch_up();
    if (!trial.pose()) {
        throw std::runtime_error("the monitor never showed the robot");
    }
    const double aside =
        -(body::BodyModel::for_type(type).hip_width() + walk.foot_y + params.ball_y);
    const kick::Pose2 robot{trial.pose()->x, trial.pose()->y, trial.pose()->heading};
    const kick::Pose2 ball = kick::compose(robot, {params.ball_x + jitter_x, aside + jitter_y, 0});
    trial.monitor().place_ball(ball.x, ball.y, ball_radius);
    trial.catch_up();
}

/// What a run shows: how far and where the ball went from `from` to `to`,
/// against the heading at the start plus the asked direction, and how far
/// from `kicked_from`, where it lay as the kick's motion began.
void add_figures(nlohmann::json& result, const KickOptions& kick, const FieldPose& start,
                 const Ball& from, const Ball& to, const std::optional<Ball>& kicked_from) {
    const double distance = std::hypot(to.x - from.x, to.y - from.y);
    const double wanted = start.heading + kick.direction;
    const double went = std::atan2(to.y - from.y, to.x - from.x) / radians_per_degree;
    result["direction"] = kick.direction;
    result["distance_m"] = distance;
    result["direction_error_deg"] =
        distance < least_kick ? missed_error_deg : std::fabs(std::remainder(went - wanted, 360.0));
    result["ball_from"] = {from.x, from.y};
    result["ball_to"] = {to.x, to.y};
    // The kick's own share of the distance: a ball pushed along by the
    // approach's steps adds to distance_m and not to this.
    result["kick_distance_m"] =
        kicked_from ? std::hypot(to.x - kicked_from->x, to.y - kicked_from->y) : 0.0;
}

/// Where the ball lay as the kick's motion began: truly (on the field, and
/// from the torso) and as the robot believed, from its hips; the two differ
/// by what its camera and odometry got wrong.
struct AtKick {
    std::optional<Ball> ball;
    nlohmann::json truth;
    nlohmann::json believed;
    double rise = 0; ///< highest the ball's underside rose since the kick began
};

/// Every cycle from the kick on: a ball in the air for a few tenths of a
/// second would slip between the monitor's batches.
void watch_rise(Trial& trial, AtKick& at) {
    if (at.ball) {
        trial.catch_up();
        at.rise = std::max(at.rise, trial.monitor_truth().ball[2] - ball_radius);
    }
}

AtKick at_kick(Trial& trial, const kick::Kicker& kicker, const FieldPose& start) {
    trial.catch_up();
    AtKick at;
    const Ball ball = ball_of(trial);
    at.ball = ball;
    const FieldPose seen = relative_to(trial.pose().value_or(start), FieldPose{ball.x, ball.y, 0});
    at.truth = {seen.x, seen.y};
    const kick::Pose2 believed =
        kick::relative(kicker.robot(), kicker.ball().value_or(kick::Pose2{}));
    at.believed = {believed.x, believed.y};
    return at;
}

nlohmann::json kick_run(const DrillOptions& options, const KickOptions& kick,
                        const walk::WalkParams& walk, const kick::KickParams& params, int run,
                        std::mt19937& random) {
    const FieldPose spot{kick.ball_x - behind, kick.ball_y, 0};
    Trial trial(options, spot);
    kick::Kicker kicker(body::BodyModel::for_type(options.type), walk, params);
    const auto cycle = [&] {
        kicker.update(trial.perception());
        trial.step(joint_command(kicker.joints(), kicker.speeds()));
        if (kick.trace) {
            trace(trial, kicker);
        }
    };
    const auto stand = [&] {
        for (int i = 0; i < stand_seconds / robot::cycle_seconds; ++i) {
            cycle();
        }
    };
    // Placed once it stands in the walk's stance, at the height it stands
    // at: placed at the height its straight legs gave it after the beam, a
    // tall type dropped into its stance and toppled.
    stand();
    place(trial, kick, spot);
    stand();
    if (kick.placed) {
        // Standing on until the robot's belief of the ball has moved to where
        // the ball now lies: the kick picks its foot from that belief.
        place_at_foot(trial, params, walk, options.type, kick.jitter, random);
        stand();
    }
    trial.catch_up();
    if (!trial.pose()) {
        throw std::runtime_error("the monitor never showed the robot");
    }
    const FieldPose start = *trial.pose();
    const Ball from = ball_of(trial);
    const double start_time = trial.game_time();
    kicker.start(kick.direction);
    AtKick at;
    while (!kicker.finished() && trial.game_time() - start_time < options.seconds) {
        cycle();
        if (!at.ball && kicker.phase() == kick::KickPhase::kick) {
            at = at_kick(trial, kicker, start);
        }
        watch_rise(trial, at);
    }
    trial.catch_up();
    const double seconds = trial.game_time() - start_time;
    wait_for_rest(trial, kicker);
    nlohmann::json result = trial.record("kick", options, run, start_time);
    add_figures(result, kick, start, from, ball_of(trial), at.ball);
    result["seconds"] = seconds;
    result["kicked"] = kicker.phase() == kick::KickPhase::done;
    result["upright"] = !trial.down();
    result["foot"] = kicker.kicking() == walk::Side::left ? "left" : "right";
    result["ball_at_kick"] = at.truth;
    result["ball_believed_at_kick"] = at.believed;
    result["ball_rise_m"] = at.rise;
    return result;
}

} // namespace

int run_kick(Arguments& arguments) {
    KickOptions kick;
    const DrillOptions options = parse_common(arguments, [&](Arguments& words) {
        if (words.flag() == "--direction") {
            kick.direction = words.number();
        } else if (words.flag() == "--ball") {
            kick.ball_x = words.number();
            kick.ball_y = words.value();
        } else if (words.flag() == "--trace") {
            words.skip();
            kick.trace = true;
        } else if (words.flag() == "--placed") {
            words.skip();
            kick.placed = true;
        } else if (words.flag() == "--jitter") {
            kick.jitter = std::fabs(words.number());
        } else {
            return false;
        }
        return true;
    });
    require_server(options);
    const walk::WalkParams walk =
        walk::WalkParams::from(walk::ParamSet::load(walk::params_path("walk", options.type)));
    const kick::KickParams params = kick::KickParams::from(walk::ParamSet::load(
        options.params.empty() ? walk::params_path("kick", options.type) : options.params));
    Summary summary(std::cout);
    std::mt19937 random(options.seed);
    for (int run = 0; run < options.runs; ++run) {
        std::cerr << "kick: type " << options.type << ", run " << run + 1 << " of " << options.runs
                  << '\n';
        summary.add(kick_run(options, kick, walk, params, run, random));
    }
    summary.print(std::cerr, {"distance_m", "direction_error_deg", "seconds", "falls"});
    return 0;
}

} // namespace orvo::drill
