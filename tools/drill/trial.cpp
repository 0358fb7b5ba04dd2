#include "trial.h"

#include "sim_robot.h"
#include "sim_server.h"
#include "stop_signal.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <sstream>

namespace orvo::drill {

namespace {

constexpr double radians_per_degree = 0.017453292519943295;
/// Cycles for a beam to take effect before play goes on.
constexpr int beam_cycles = 10;

} // namespace

Trial::Trial(const DrillOptions& options, const FieldPose& beam) {
    std::string host = options.server_host;
    int port = options.server_port;
    int monitor_port = options.monitor_port;
    if (host.empty()) {
        server_ = std::make_unique<sim::SimServer>();
        host = "127.0.0.1";
        port = server_->agent_port();
        monitor_port = server_->monitor_port();
    }
    monitor_ = std::make_unique<monitor::MonitorClient>(host, monitor_port);
    // A robot beams only before the kick-off; a server that has played on
    // since an earlier run is set back.
    monitor_->play_mode("BeforeKickOff");
    sim::RobotEntry entry;
    entry.type = options.type;
    robot_ = std::make_unique<sim::SimRobot>(host, port, entry);
    number_ = robot_->join();
    std::ostringstream command;
    command << "(beam " << beam.x << ' ' << beam.y << ' ' << beam.heading << ')';
    for (int i = 0; i < beam_cycles; ++i) {
        step(i == 0 ? command.str() : "");
    }
    monitor_->play_mode("PlayOn");
    falls_ = 0;
}

Trial::~Trial() = default;

const perception::Perception& Trial::step(const std::string& commands) {
    check_stop();
    (void)reader_.read(robot_->step(commands), perception_);
    watch();
    return perception_;
}

const std::string& Trial::payload() const {
    return robot_->last();
}

void Trial::catch_up() {
    constexpr double lag = 0.05;
    constexpr int tries = 40;
    check_stop();
    for (int i = 0; i < tries && game_time() < perception_.game_state.time - lag; ++i) {
        monitor_->update(std::chrono::milliseconds(50));
        watch();
    }
}

void Trial::watch() {
    monitor_->update(std::chrono::milliseconds(0));
    const monitor::RobotTruth* seen = monitor_->robot(monitor::Side::left, number_);
    if (seen == nullptr) {
        return;
    }
    const bool down = seen->fallen();
    if (down && !down_) {
        ++falls_;
    }
    down_ = down;
    height_ = seen->z;
    tilt_ = seen->tilt_deg;
    FieldPose now{seen->x, seen->y, seen->heading_deg};
    if (pose_) {
        // Unwrapped, so that turning on the spot measures beyond a half turn.
        now.heading = pose_->heading + std::remainder(now.heading - pose_->heading, 360.0);
    }
    pose_ = now;
}

std::optional<FieldPose> Trial::pose() const {
    return pose_;
}

const monitor::RobotTruth* Trial::truth() const {
    return monitor_->robot(monitor::Side::left, number_);
}

double Trial::game_time() const {
    return monitor_->truth().time;
}

nlohmann::json Trial::record(const std::string& skill, const DrillOptions& options, int run,
                             double start_time) const {
    return {{"skill", skill},           {"type", options.type},    {"run", run},
            {"start_time", start_time}, {"end_time", game_time()}, {"falls", falls_}};
}

std::string joint_command(const robot::JointSet& joints, const robot::JointValues& speeds) {
    std::string command;
    char part[48];
    for (std::size_t i = 0; i < robot::joint_count; ++i) {
        if (joints.test(i)) {
            const auto& joint = robot::joint_table()[i];
            std::snprintf(part, sizeof part, "(%.*s %.4f)", static_cast<int>(joint.effector.size()),
                          joint.effector.data(), speeds[i]);
            command += part;
        }
    }
    return command;
}

FieldPose relative_to(const FieldPose& origin, const FieldPose& pose) {
    const double heading = origin.heading * radians_per_degree;
    const double dx = pose.x - origin.x;
    const double dy = pose.y - origin.y;
    return {std::cos(heading) * dx + std::sin(heading) * dy,
            -std::sin(heading) * dx + std::cos(heading) * dy, pose.heading - origin.heading};
}

std::array<double, 6> feet_on_field(const Trial& trial) {
    std::array<double, 6> feet{};
    if (const monitor::RobotTruth* seen = trial.truth()) {
        for (int i = 0; i < 2; ++i) {
            if (const monitor::Pose* foot = seen->part(i == 0 ? "lfoot" : "rfoot")) {
                for (int k = 0; k < 3; ++k) {
                    feet[3 * i + k] = foot->m[12 + k];
                }
            }
        }
    }
    return feet;
}

} // namespace orvo::drill
