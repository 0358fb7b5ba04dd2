#include "drills.h"
#include "fall_watch.h"
#include "summary.h"
#include "trial.h"

#include "sim_server.h"

#include <orvo/body/body_model.h>
#include <orvo/walk/walker.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <optional>
#include <random>

namespace orvo::drill {

const char* const walk_usage =
    "  walk --velocity VX VY TURN | --to X Y   [--schedule]\n"
    "       m/s forward, m/s left, deg/s left; or a spot in metres of the start frame;\n"
    "       --schedule: a new random velocity every 2 s; --trace: every cycle on stderr;\n"
    "       --paths: the torso's path, [x, y] every 0.2 s, in each run's JSON\n";

namespace {

/// Where the robot starts: own half, facing the opponent's goal, with room
/// for 10 s at any speed the walk takes.
constexpr FieldPose start_spot{-6, 0, 0};
constexpr double stand_seconds = 1;
constexpr double schedule_seconds = 2;
/// The torso's path is kept every this many cycles.
constexpr int path_cycles = 10;
/// A walk from the stand has reached its pace by then: the speed from here
/// on is its steady one.
constexpr double steady_after_seconds = 3;

struct WalkOptions {
    walk::Velocity velocity;
    bool schedule = false;
    bool to = false;
    bool trace = false;
    bool paths = false;
    double to_x = 0;
    double to_y = 0;
};

walk::Velocity random_velocity(const walk::WalkParams& params, std::mt19937& random) {
    auto pick = [&random](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    return {pick(-params.max_backward, params.max_forward),
            pick(-params.max_sideways, params.max_sideways),
            pick(-params.max_turn, params.max_turn)};
}

/// One line per cycle on stderr: the truth beside what the walk does.
void trace(const Trial& trial, const walk::Walker& walker) {
    const FieldPose pose = trial.pose().value_or(FieldPose{});
    const auto& gait = walker.gait();
    double error = 0;
    for (std::size_t i = 0; i < robot::joint_count; ++i) {
        const auto joint = static_cast<robot::Joint>(i);
        if (walker.joints().test(i) && trial.perception().joints.has(joint)) {
            error =
                std::max(error, std::fabs(walker.targets()[i] - trial.perception().joints[joint]));
        }
    }
    // The torso's true pitch forward and roll to the right, as the
    // accelerometer of a still torso would give them.
    double pitch = 0;
    double roll = 0;
    if (const monitor::RobotTruth* truth = trial.truth()) {
        const double* m = truth->parts.front().pose.m;
        pitch = std::atan2(-m[6], m[10]) * 180 / 3.14159265358979;
        roll = std::atan2(-m[2], m[10]) * 180 / 3.14159265358979;
    }
    // Each foot's place on the field, x and height: a support foot that
    // moves on the ground is slipping.
    const std::array<double, 6> feet = feet_on_field(trial);
    const auto& acc = trial.perception().accelerometer;
    const double acc_pitch = std::atan2(-acc.y, acc.z) * 180 / 3.14159265358979;
    const double acc_roll = std::atan2(-acc.x, acc.z) * 180 / 3.14159265358979;
    std::fprintf(stderr,
                 "t %.2f pose %.3f %.3f %.1f z %.3f tilt %.1f %.1f %.1f acc %.1f %.1f | pitch %.1f "
                 "roll %.1f g %.0f %.0f "
                 "%s phase %.2f "
                 "v %.2f %.2f %.0f "
                 "odo %.2f %.2f %.0f err %.1f%s feet %.3f %.3f %.3f %.3f\n",
                 trial.game_time(), pose.x, pose.y, pose.heading, trial.height(), trial.tilt(),
                 pitch, roll, acc_pitch, acc_roll, walker.tilt().pitch, walker.tilt().roll,
                 walker.rates().x(), walker.rates().y(),
                 walker.standing()                    ? "stand"
                 : gait.support() == walk::Side::left ? "left "
                                                      : "right",
                 gait.phase(), walker.velocity().forward, walker.velocity().sideways,
                 walker.velocity().turn, walker.odometry().x, walker.odometry().y,
                 walker.odometry().heading, error, walker.reachable() ? "" : " unreachable",
                 feet[0], feet[2], feet[3], feet[5]);
}

double median(std::vector<double> values) {
    if (values.empty()) {
        return 0;
    }
    std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
    return values[values.size() / 2];
}

nlohmann::json pose_json(const FieldPose& pose) {
    return {pose.x, pose.y, pose.heading};
}

/// One cycle of the robot: the walk's update (timed, as the agent's own
/// time per cycle), its joint speeds sent, the next perception read.
struct Cycle {
    Trial& trial;
    walk::Walker& walker;
    bool trace;
    std::vector<double> agent_us;
    FallWatch falls;

    void operator()() {
        const auto begin = std::chrono::steady_clock::now();
        walker.update(trial.perception());
        const std::string command = joint_command(walker.joints(), walker.speeds());
        agent_us.push_back(
            std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - begin)
                .count());
        trial.step(command);
        falls.update(trial);
        if (trace) {
            drill::trace(trial, walker);
            const fall::FallDetector& detector = falls.detector();
            if (detector.posture() != fall::Posture::upright) {
                std::fprintf(stderr, "detector %s tilt %.1f rate %.0f height %.3f\n",
                             std::string(fall::posture_name(detector.posture())).c_str(),
                             detector.tilt_deg(), detector.tilt_rate(), detector.height());
            }
        }
    }
};

/// Where the robot was, from its start, and when.
struct Passed {
    FieldPose moved;
    double time = 0;
};

/// The speeds from the start (`moved` by `now`) and, past `steady`, the
/// forward speed from there on, along the heading at the start.
void add_speeds(nlohmann::json& result, const FieldPose& moved, double start_time,
                const std::optional<Passed>& steady, double now) {
    const double elapsed = std::max(now - start_time, robot::cycle_seconds);
    result["forward_mps"] = moved.x / elapsed;
    if (steady && now > steady->time) {
        result["steady_mps"] = (moved.x - steady->moved.x) / (now - steady->time);
    }
    result["sideways_mps"] = moved.y / elapsed;
    result["turn_dps"] = moved.heading / elapsed;
}

nlohmann::json walk_run(const DrillOptions& options, const WalkOptions& walk,
                        const walk::WalkParams& params, int run, std::mt19937& random) {
    Trial trial(options, start_spot);
    walk::Walker walker(body::BodyModel::for_type(options.type), params);
    Cycle cycle{trial, walker, walk.trace, {}, FallWatch(options.type)};
    const int cycles_per_second = static_cast<int>(std::lround(1 / robot::cycle_seconds));
    for (int i = 0; i < stand_seconds * cycles_per_second; ++i) {
        cycle();
    }
    trial.catch_up();
    if (!trial.pose()) {
        throw std::runtime_error("the monitor never showed the robot");
    }
    cycle.agent_us.clear();
    const FieldPose start = *trial.pose();
    const double start_time = trial.game_time();
    if (walk.to) {
        walker.walk_to(walk.to_x, walk.to_y);
    } else {
        walker.set_velocity(walk.velocity.forward, walk.velocity.sideways, walk.velocity.turn);
    }
    const int cycles = static_cast<int>(std::lround(options.seconds * cycles_per_second));
    nlohmann::json path = nlohmann::json::array();
    std::optional<Passed> steady;
    for (int i = 0; i < cycles; ++i) {
        if (i == static_cast<int>(steady_after_seconds * cycles_per_second) && trial.pose()) {
            steady = Passed{relative_to(start, *trial.pose()), trial.game_time()};
        }
        if (walk.paths && i % path_cycles == 0 && trial.pose()) {
            path.push_back({trial.pose()->x, trial.pose()->y});
        }
        if (walk.schedule && i % static_cast<int>(schedule_seconds * cycles_per_second) == 0) {
            const walk::Velocity next = random_velocity(params, random);
            walker.set_velocity(next.forward, next.sideways, next.turn);
        }
        cycle();
        if (walk.to && walker.arrived() && walker.standing()) {
            break;
        }
    }
    trial.catch_up();
    const FieldPose end = *trial.pose();
    nlohmann::json result = trial.record("walk", options, run, start_time);
    const FieldPose moved = relative_to(start, end);
    result["start"] = pose_json(start);
    result["end"] = pose_json(end);
    add_speeds(result, moved, start_time, steady, trial.game_time());
    result["agent_us_median"] = median(cycle.agent_us);
    // Each time the robot's fall detector said it fell when the monitor saw no fall.
    result["false_alarms"] = cycle.falls.false_alarms();
    result["odometry"] = {walker.odometry().x, walker.odometry().y, walker.odometry().heading};
    if (walk.paths) {
        path.push_back({end.x, end.y});
        result["path"] = path;
    }
    if (walk.to) {
        result["miss_m"] = std::hypot(moved.x - walk.to_x, moved.y - walk.to_y);
    }
    return result;
}

} // namespace

void require_server(const DrillOptions& options) {
    if (options.server_host.empty() && !sim::SimServer::installed()) {
        throw sim::SimServerError(
            "rcssserver3d is not on the PATH: install the soccer-sim-server package, or give "
            "a running server with --server HOST:PORT --monitor-port P");
    }
}

int run_walk(Arguments& arguments) {
    WalkOptions walk;
    bool moves = false;
    const DrillOptions options = parse_common(arguments, [&](Arguments& words) {
        if (words.flag() == "--velocity") {
            walk.velocity = {words.number(), words.value(), words.value()};
            moves = true;
        } else if (words.flag() == "--to") {
            walk.to_x = words.number();
            walk.to_y = words.value();
            walk.to = moves = true;
        } else if (words.flag() == "--paths") {
            words.skip();
            walk.paths = true;
        } else if (words.flag() == "--trace") {
            words.skip();
            walk.trace = true;
        } else if (words.flag() == "--schedule") {
            words.skip();
            walk.schedule = moves = true;
        } else {
            return false;
        }
        return true;
    });
    if (!moves) {
        throw UsageError("walk needs --velocity, --to or --schedule");
    }
    require_server(options);
    const walk::WalkParams params = walk::WalkParams::from(walk::ParamSet::load(
        options.params.empty() ? walk::params_path("walk", options.type) : options.params));
    Summary summary(std::cout);
    std::mt19937 random(options.seed);
    for (int run = 0; run < options.runs; ++run) {
        std::cerr << "walk: type " << options.type << ", run " << run + 1 << " of " << options.runs
                  << '\n';
        summary.add(walk_run(options, walk, params, run, random));
    }
    summary.print(std::cerr, {"forward_mps", "steady_mps", "sideways_mps", "turn_dps", "falls",
                              "false_alarms", "miss_m", "agent_us_median"});
    return 0;
}

} // namespace orvo::drill
