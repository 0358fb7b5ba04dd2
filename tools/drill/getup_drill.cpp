#include "drills.h"
#include "fall_watch.h"
#include "summary.h"
#include "trial.h"

#include <orvo/body/body_model.h>
#include <orvo/getup/getup.h>
#include <orvo/getup/getup_motions.h>
#include <orvo/skills/joint_controller.h>
#include <orvo/skills/motion_player.h>
#include <orvo/walk/walker.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iostream>
#include <memory>

namespace orvo::drill {

const char* const getup_usage =
    "  getup --from front|back|left|right   [--walk S] [--record FILE] [--trace]\n"
    "       stands (walks S s first), falls by its own joints, gets up; --seconds: the\n"
    "       longest a get-up may take; --record: every cycle's perception and truth\n";

namespace {

constexpr FieldPose start_spot{-6, 0, 0};
constexpr double stand_seconds = 1;
constexpr double walk_speed = 0.3;
/// The longest the robot may take to fall once it lets itself go.
constexpr double drop_seconds = 4;
/// Upright again by the monitor: as the fall detector's rule.
constexpr double up_tilt = 25;
constexpr double up_height = 0.30;
constexpr double up_hold = 1;
constexpr double settle_seconds = 1.0;
constexpr double radians_per_degree = 0.017453292519943295;
/// The torso tilted this far lies on the ground: how high it rises counts from here.
constexpr double lying_tilt = 70;
constexpr int cycles_per_second = 50;

struct GetUpOptions {
    std::string from;
    double walk_seconds = 0;
    std::string record;
    bool trace = false;
};

/// The perception without what falls and get-ups do not read: the vision.
std::string without_vision(const std::string& payload) {
    const std::size_t begin = payload.find("(See ");
    if (begin == std::string::npos) {
        return payload;
    }
    int depth = 0;
    std::size_t end = begin;
    for (; end < payload.size(); ++end) {
        depth += payload[end] == '(' ? 1 : payload[end] == ')' ? -1 : 0;
        if (depth == 0) {
            break;
        }
    }
    return payload.substr(0, begin) + payload.substr(std::min(end + 1, payload.size()));
}

/// How far the torso's forward axis points up (-1: lying face down), by the monitor.
double forward_rise(const Trial& trial) {
    const monitor::RobotTruth* truth = trial.truth();
    return truth == nullptr || truth->parts.empty() ? 0 : truth->parts[0].pose.m[6];
}

/// One robot cycle of the drill: the commands sent, the monitor caught up
/// (so that falls are timed to its first update that shows them), the fall
/// watch updated and the cycle recorded or traced when asked.
struct Cycle {
    Trial& trial;
    FallWatch& watch;
    const GetUpOptions& getup;
    std::ofstream record;
    /// Tells when the drop lets go: a detector with the get-up's own sense of
    /// up, which believes every reading of about g. The moment the drop lets
    /// go shapes how the robot lands, and the get-ups were measured and tuned
    /// with it letting go then; the fall detector itself believes such
    /// readings only while the torso hardly turns, and sees a fall sooner.
    fall::FallDetector landing;

    void operator()(const std::string& command) {
        trial.step(command);
        trial.catch_up();
        watch.update(trial);
        landing.update(trial.perception());
        if (record.is_open()) {
            record << "truth " << trial.game_time() << ' ' << trial.tilt() << ' ' << trial.height()
                   << "\nperceive " << without_vision(trial.payload()) << '\n';
        }
        if (getup.trace) {
            const auto& detector = watch.detector();
            const auto& joints = trial.perception().joints;
            const monitor::RobotTruth* body = trial.truth();
            const auto z_of = [&](const char* part) {
                const monitor::Pose* pose = body == nullptr ? nullptr : body->part(part);
                return pose == nullptr ? -1.0 : pose->m[14];
            };
            std::fprintf(
                stderr,
                "t %.2f tilt %.1f z %.3f fwd %.2f | %s tilt %.1f rate %.0f z %.3f | shoulder %.0f "
                "hip %.0f knee %.0f ankle %.0f | acc %.1f %.1f %.1f\n",
                trial.game_time(), trial.tilt(), trial.height(), forward_rise(trial),
                std::string(fall::posture_name(detector.posture())).c_str(), detector.tilt_deg(),
                detector.tilt_rate(), detector.height(), joints[robot::Joint::left_shoulder_pitch],
                joints[robot::Joint::left_hip_pitch], joints[robot::Joint::left_knee_pitch],
                joints[robot::Joint::left_ankle_pitch], trial.perception().accelerometer.x,
                trial.perception().accelerometer.y, trial.perception().accelerometer.z);
            std::fprintf(stderr, "  parts z: foot %.3f shank %.3f thigh %.3f hand %.3f head %.3f\n",
                         z_of("lfoot"), z_of("lshank"), z_of("lthigh"), z_of("llowerarm"),
                         z_of("head"));
        }
    }
};

void stand_and_walk(Cycle& cycle, walk::Walker& walker, double walk_seconds) {
    const auto run = [&](double seconds) {
        for (int i = 0; i < seconds * cycles_per_second; ++i) {
            walker.update(cycle.trial.perception());
            cycle(joint_command(walker.joints(), walker.speeds()));
        }
    };
    run(stand_seconds);
    if (walk_seconds > 0) {
        walker.set_velocity(walk_speed, 0, 0);
        run(walk_seconds);
        walker.stop();
        run(stand_seconds);
    }
}

/// Lets the robot fall by its own joints until it lies, as the cycle's
/// landing detector sees it.
void drop(Cycle& cycle, const params::ParamSet& set, const std::string& from, int type) {
    skills::MotionPlayer player;
    // One drop tips the robot onto its left side, and played mirrored onto its right.
    const bool side = from == "left" || from == "right";
    player.play(std::make_shared<const skills::Motion>(
        getup::motion_from(set, side ? "drop_side" : "drop_" + from, from == "right")));
    skills::JointController controller;
    robot::JointValues speeds{};
    for (int i = 0; i < drop_seconds * cycles_per_second && !fall::lying(cycle.landing.posture());
         ++i) {
        robot::JointValues angles{};
        for (std::size_t j = 0; j < robot::joint_count; ++j) {
            angles[j] = cycle.trial.perception().joints[static_cast<robot::Joint>(j)];
        }
        player.update(cycle.trial.perception().time, angles);
        const robot::JointSet joints = player.driven() & robot::joints_of(type);
        controller.step(player.targets(), player.rates(), angles, joints, speeds);
        cycle(joint_command(joints, speeds));
    }
}

/// How a get-up went, by the monitor.
struct Rise {
    double up_at = -1; ///< start of the first second upright, -1 if none
    double peak = 0;   ///< highest torso after landing, times the cosine of its tilt
    double upright_seconds = 0;
    /// The torso's least tilt after landing: how near upright a get-up that never
    /// rises off the ground came, for searches that start from such motions.
    double least_tilt = 180;
};

/// Plays the get-up for at most `seconds`, until the robot has stood for the
/// hold, and a second more (so that its own detector has seen the hold too, and a robot
/// that topples again right after counts the fall).
Rise get_up(Cycle& cycle, getup::GetUp& getting_up, double seconds) {
    const Trial& trial = cycle.trial;
    Rise rise;
    double hold_from = -1;
    bool landed = false;
    for (int i = 0; i < seconds * cycles_per_second && rise.up_at < 0; ++i) {
        getting_up.update(trial.perception());
        cycle(joint_command(getting_up.joints(), getting_up.speeds()));
        landed = landed || trial.tilt() >= lying_tilt;
        if (landed) {
            rise.least_tilt = std::min(rise.least_tilt, trial.tilt());
            rise.peak =
                std::max(rise.peak, trial.height() * std::cos(trial.tilt() * radians_per_degree));
        }
        const bool up = trial.tilt() <= up_tilt && trial.height() >= up_height;
        rise.upright_seconds += up ? robot::cycle_seconds : 0;
        hold_from = !up ? -1 : hold_from < 0 ? trial.game_time() : hold_from;
        if (hold_from >= 0 && trial.game_time() - hold_from >= up_hold) {
            rise.up_at = hold_from;
        }
    }
    for (int i = 0; rise.up_at >= 0 && i < settle_seconds * cycles_per_second; ++i) {
        getting_up.update(trial.perception());
        cycle(joint_command(getting_up.joints(), getting_up.speeds()));
    }
    return rise;
}

/// Fouls the referee called on the robot for touching itself since `since`
/// (game time): each freezes its joints for a second, which a get-up must never cause.
int self_collisions(const Trial& trial, double since) {
    const auto& fouls = trial.monitor_truth().fouls;
    return static_cast<int>(std::count_if(fouls.begin(), fouls.end(), [&](const auto& foul) {
        return foul.type_name() == "self_collision" && foul.side == monitor::Side::left &&
               foul.number == trial.number() && foul.time >= since;
    }));
}

nlohmann::json getup_run(const DrillOptions& options, const GetUpOptions& getup,
                         const params::ParamSet& set, const walk::WalkParams& walk_params,
                         int run) {
    Trial trial(options, start_spot);
    FallWatch watch(options.type);
    Cycle cycle{trial,
                watch,
                getup,
                {},
                fall::FallDetector(body::BodyModel::for_type(options.type),
                                   getup::senses_params(options.type))};
    if (!getup.record.empty()) {
        cycle.record.open(getup.record + (options.runs > 1 ? "." + std::to_string(run) : ""));
        cycle.record << "# type " << options.type << ", from " << getup.from << "\n";
    }
    walk::Walker walker(body::BodyModel::for_type(options.type), walk_params);
    stand_and_walk(cycle, walker, getup.walk_seconds);
    const double start_time = trial.game_time();
    const int falls_before = trial.falls();
    const std::size_t detections_before = watch.detections().size();
    drop(cycle, set, getup.from, options.type);
    getup::GetUp getting_up(options.type, set);
    for (int i = 0; i < drop_seconds * cycles_per_second && !getting_up.settled(trial.perception());
         ++i) {
        // A joint keeps the last speed it was told: still ones stay still.
        cycle(joint_command(robot::joints_of(options.type), robot::JointValues{}));
    }
    const fall::Posture lying = watch.detector().posture();
    getting_up.start(lying);
    const double getup_start = trial.perception().game_state.time;
    const Rise rise = get_up(cycle, getting_up, options.seconds);
    const double up_at = rise.up_at;
    nlohmann::json result = trial.record("getup", options, run, start_time);
    const bool fell = !watch.monitor_falls().empty() && trial.falls() > falls_before;
    result["fell_at"] = fell ? nlohmann::json(watch.monitor_falls()[falls_before]) : nullptr;
    result["lying"] = std::string(fall::posture_name(lying));
    result["getup_start"] = getup_start;
    result["up_at"] = up_at >= 0 ? nlohmann::json(up_at) : nullptr;
    result["seconds"] = up_at >= 0 ? nlohmann::json(up_at - getup_start) : nullptr;
    result["success"] = fell && up_at >= 0;
    // For searches, which need a number however far a candidate got: the
    // highest the torso rose, counted by how upright it was then.
    result["getup_seconds"] = up_at >= 0 ? up_at - getup_start : options.seconds;
    result["peak_height"] = rise.peak;
    result["upright_seconds"] = rise.upright_seconds;
    result["least_tilt"] = rise.least_tilt;
    result["motion_seconds"] = getting_up.duration();
    if (fell && watch.detections().size() > detections_before) {
        const double seen = watch.detections()[detections_before];
        result["detected_at"] = seen;
        result["detection_delay"] = seen - result["fell_at"].get<double>();
    }
    result["false_alarms"] = watch.false_alarms();
    result["self_collisions"] = self_collisions(trial, start_time);
    return result;
}

walk::WalkParams walk_params_of(int type) {
    return walk::WalkParams::from(walk::ParamSet::load(walk::params_path("walk", type)));
}

} // namespace

nlohmann::json getup_once(const DrillOptions& options, const std::string& from) {
    GetUpOptions getup;
    getup.from = from;
    return getup_run(options, getup,
                     params::ParamSet::load(params::params_path("getup", options.type)),
                     walk_params_of(options.type), 0);
}

int run_getup(Arguments& arguments) {
    GetUpOptions getup;
    DrillOptions options = parse_common(arguments, [&](Arguments& words) {
        if (words.flag() == "--from") {
            getup.from = words.text();
        } else if (words.flag() == "--walk") {
            getup.walk_seconds = words.number();
        } else if (words.flag() == "--record") {
            getup.record = words.text();
        } else if (words.flag() == "--trace") {
            words.skip();
            getup.trace = true;
        } else {
            return false;
        }
        return true;
    });
    if (getup.from != "front" && getup.from != "back" && getup.from != "left" &&
        getup.from != "right") {
        throw UsageError("getup needs --from front, back, left or right");
    }
    require_server(options);
    const params::ParamSet set = params::ParamSet::load(
        options.params.empty() ? params::params_path("getup", options.type) : options.params);
    const walk::WalkParams walk_params = walk_params_of(options.type);
    Summary summary(std::cout);
    for (int run = 0; run < options.runs; ++run) {
        std::cerr << "getup: type " << options.type << " from the " << getup.from << ", run "
                  << run + 1 << " of " << options.runs << '\n';
        summary.add(getup_run(options, getup, set, walk_params, run));
    }
    summary.print(std::cerr,
                  {"seconds", "detection_delay", "falls", "false_alarms", "self_collisions"});
    return 0;
}

} // namespace orvo::drill
