#include "drills.h"
#include "summary.h"
#include "trial.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>

namespace orvo::drill {

const char* const roll_usage =
    "  roll --launch VX VZ [--trace]\n"
    "       the trainer sets the ball off at VX m/s forward and VZ m/s up, without spin;\n"
    "       how far it flies and rolls: what a kick has to give the ball to reach a spot\n";

namespace {

constexpr double rest_check_seconds = 0.2;
constexpr double rest_metres = 0.005;
/// The robot stands well away, only to drive the server's clock.
constexpr double robot_x = -5;
constexpr int settle_cycles = 25;
/// A lifted ball starts this far off the ground: set off touching it, the
/// ground's friction takes a quarter of its speed in the first step, which no
/// kicked ball loses.
constexpr double lift_clearance = 0.02;
/// Once it has come down: its underside this near the ground.
constexpr double landed_height = 0.005;
constexpr double least_rise = 0.01;

nlohmann::json roll_run(const DrillOptions& options, double vx, double vz, bool trace, int run) {
    Trial trial(options, FieldPose{robot_x, 0, 0});
    for (int i = 0; i < settle_cycles; ++i) {
        trial.step("");
    }
    trial.monitor().place_ball(0, 0, ball_radius + (vz > 0 ? lift_clearance : 0.0), vx, 0, vz);
    const double start_time = trial.game_time();
    double highest = 0;
    double landed = -1; // where the ball first came down, metres
    double before = 0;
    const int cycles = static_cast<int>(std::lround(rest_check_seconds / robot::cycle_seconds));
    while (trial.game_time() - start_time < options.seconds) {
        for (int i = 0; i < cycles; ++i) {
            trial.step("");
            trial.catch_up();
            const double* ball = trial.monitor_truth().ball;
            highest = std::max(highest, ball[2] - ball_radius);
            if (trace) {
                std::fprintf(stderr, "t %.2f ball %.3f %.3f\n", trial.game_time() - start_time,
                             ball[0], ball[2]);
            }
            if (landed < 0 && highest > least_rise && ball[2] - ball_radius < landed_height) {
                landed = ball[0];
            }
        }
        const double now = trial.monitor_truth().ball[0];
        if (trial.game_time() - start_time > 1 && std::fabs(now - before) < rest_metres) {
            break;
        }
        before = now;
    }
    nlohmann::json result = trial.record("roll", options, run, start_time);
    result["launch"] = {vx, vz};
    result["distance_m"] = std::hypot(trial.monitor_truth().ball[0], trial.monitor_truth().ball[1]);
    result["highest_m"] = highest;
    result["first_landing_m"] = landed;
    result["seconds"] = trial.game_time() - start_time;
    return result;
}

} // namespace

int run_roll(Arguments& arguments) {
    double vx = 0;
    double vz = 0;
    bool trace = false;
    const DrillOptions options = parse_common(arguments, [&](Arguments& words) {
        if (words.flag() == "--launch") {
            vx = words.number();
            vz = words.value();
            return true;
        }
        if (words.flag() == "--trace") {
            words.skip();
            trace = true;
            return true;
        }
        return false;
    });
    require_server(options);
    Summary summary(std::cout);
    for (int run = 0; run < options.runs; ++run) {
        summary.add(roll_run(options, vx, vz, trace, run));
    }
    summary.print(std::cerr, {"distance_m", "highest_m", "first_landing_m", "seconds"});
    return 0;
}

} // namespace orvo::drill
