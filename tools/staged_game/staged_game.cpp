#include "staged_game.h"

#include "sim_robot.h"
#include "sim_server.h"

#include <orvo/monitor/monitor_client.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace orvo::sim {

namespace {

using namespace std::chrono_literals;
using monitor::Side;

constexpr auto cycle = 20ms;

/// One bare robot on its own thread: joins when the robots before it have
/// (in sync mode a robot still joining holds up the others), then steps,
/// holding its joints, until told to stop. A robot told to collapse drives
/// its knees and hips to their limits and lets them rest there.
struct Robot {
    Side side = Side::left;
    int number = 0;
    std::atomic<bool> collapse{false};
    std::string error;
    std::thread thread;
};

struct Shared {
    const StagedGameOptions& options;
    const std::atomic<bool>& stop;
    int agent_port = 0;
    std::atomic<int> joined{0};
    std::atomic<bool> done{false};
    /// Set at the kick-off: joining goes as fast as the server steps, since
    /// in sync mode every robot already on waits for the one joining.
    std::atomic<bool> playing{false};
    /// Robots connect while the others hold their "(syn)".
    JoinGate gate{};
};

std::string commands_for(Robot& robot, int& collapsing) {
    if (!robot.collapse) {
        return "";
    }
    // A quarter of a second swings the legs back and bends the knees: the
    // robot falls flat; then the joints are told to rest.
    if (collapsing < 13) {
        ++collapsing;
        return "(lle3 -6)(rle3 -6)(lle4 6)(rle4 6)";
    }
    if (collapsing == 13) {
        ++collapsing;
        return "(lle4 0)(rle4 0)(lle3 0)(rle3 0)";
    }
    return "";
}

void play(Shared& shared, Robot& robot, int index) {
    while (shared.joined < index && !shared.done) {
        std::this_thread::sleep_for(1ms);
    }
    try {
        // A mix the referee takes for a full team: five of type 0, four of
        // type 1, two of type 2.
        const int type = robot.number <= 5 ? 0 : robot.number <= 9 ? 1 : 2;
        const std::unique_ptr<SimRobot> connected = shared.gate.connect(
            "127.0.0.1", shared.agent_port,
            {type, robot.number, robot.side == Side::left ? "home" : "away", 20000ms});
        SimRobot& link = *connected;
        link.join(400);
        ++shared.joined;
        int collapsing = 0;
        auto next = std::chrono::steady_clock::now();
        while (!shared.done) {
            if (shared.options.paced && index == 0 && shared.playing) {
                // A late cycle is not made up for by a burst of quick ones.
                next = std::max(next + cycle, std::chrono::steady_clock::now());
                std::this_thread::sleep_until(next);
            }
            shared.gate.syn(link, commands_for(robot, collapsing));
            link.receive();
        }
    } catch (const std::exception& failure) {
        if (!shared.done) {
            robot.error = failure.what();
            shared.done = true;
        }
    }
}

/// Where each robot stands at the kick-off, in the left team's half (the
/// right team's is mirrored): goalkeepers on their goal line, the others
/// spread out, home 2 and away 2 where their walk starts.
void formation(Side side, int number, double& x, double& y) {
    static constexpr double spots[11][2] = {{-14, 0}, {-7, 3},  {-10, -3}, {-10, 3},
                                            {-7, -3}, {-4, 0},  {-4, 5},   {-4, -5},
                                            {-2, 2},  {-2, -2}, {-12, 0}};
    const double sign = side == Side::left ? 1.0 : -1.0;
    const auto& spot = spots[(number - 1) % 11];
    x = sign * spot[0];
    y = sign * spot[1];
}

/// The scripted moments, by game time since the kick-off.
class Script {
public:
    Script(monitor::MonitorClient& trainer, std::vector<std::unique_ptr<Robot>>& robots)
        : trainer(trainer), robots(robots) {}

    void at(double t) {
        walk(Side::left, 2, -7.0, 3.0, -0.6, 0.5, 0.45, t);
        walk(Side::right, 2, 7.0, -3.0, 2.5, -1.0, 0.3, t);
        if (t >= 1.0 && !shot) {
            // Into the right goal: a goal for the left team.
            // Slow enough to stay in the net: a ball that bounces out and
            // rolls back in is a second goal.
            trainer.place_ball(14.0, 0.3, 0.042, 2.5, 0.0, 0.0);
            shot = true;
        }
        // Once play has resumed after the goal, so that the referee's count
        // of the time it lies is not cut short by the pause.
        if (t >= 7.0) {
            for (auto& robot : robots) {
                robot->collapse =
                    robot->collapse || (robot->side == Side::left && robot->number == 3);
            }
        }
        // Nobody takes the kick-off after the goal: the trainer resumes play.
        if (t >= 6.0 && !restarted && trainer.truth().play_mode_name() == "KickOff_Right") {
            trainer.play_mode("PlayOn");
            restarted = true;
        }
    }

private:
    /// Leads a robot from (x0, y0) towards (x1, y1) at `speed` m/s, facing
    /// where it goes, by placing it a little further every update.
    void walk(Side side, int number, double x0, double y0, double x1, double y1, double speed,
              double t) {
        const monitor::RobotTruth* robot = trainer.robot(side, number);
        if (robot == nullptr || robot->fallen()) {
            return;
        }
        const double dx = x1 - x0, dy = y1 - y0;
        const double length = std::hypot(dx, dy);
        const double share = std::min(1.0, speed * t / length);
        const double heading = std::atan2(dy, dx) * 180.0 / M_PI;
        trainer.place_robot(side, number, x0 + share * dx, y0 + share * dy, robot->z, heading);
    }

    monitor::MonitorClient& trainer;
    std::vector<std::unique_ptr<Robot>>& robots;
    bool shot = false;
    bool restarted = false;
};

void wait_for_robots(monitor::MonitorClient& trainer, std::size_t count, const Shared& shared) {
    const auto deadline = std::chrono::steady_clock::now() + 60s;
    while (trainer.truth().robots.size() < count || shared.joined < static_cast<int>(count)) {
        if (shared.done || shared.stop || std::chrono::steady_clock::now() > deadline) {
            throw std::runtime_error("the robots did not all join");
        }
        trainer.update(50ms);
    }
}

void write_ready(const std::string& path, const SimServer& server) {
    if (path.empty()) {
        return;
    }
    const std::string temporary = path + ".tmp";
    std::ofstream(temporary) << server.pid() << ' ' << server.agent_port() << ' '
                             << server.monitor_port() << '\n';
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        throw std::runtime_error("cannot write " + path);
    }
}

void direct(const StagedGameOptions& options, Shared& shared, const SimServer& server,
            std::vector<std::unique_ptr<Robot>>& robots) {
    monitor::MonitorClient trainer("127.0.0.1", server.monitor_port());
    std::ofstream record;
    if (!options.record_path.empty()) {
        record.open(options.record_path, std::ios::binary | std::ios::trunc);
        if (!record) {
            throw std::runtime_error("cannot write " + options.record_path);
        }
        trainer.tap([&record](std::string_view message) {
            // The server's messages hold no line breaks: a line is a message.
            record.write(message.data(), static_cast<std::streamsize>(message.size())) << '\n';
        });
    }
    wait_for_robots(trainer, robots.size(), shared);
    for (const auto& robot : robots) {
        double x = 0, y = 0;
        formation(robot->side, robot->number, x, y);
        trainer.place_robot(robot->side, robot->number, x, y, 0.4,
                            robot->side == Side::left ? 0.0 : 180.0);
    }
    trainer.kick_off(Side::left);
    trainer.play_mode("PlayOn");
    // The placements show two updates later; the clock runs from the kick-off.
    while (trainer.truth().time <= 0 && !shared.done && !shared.stop) {
        trainer.update(100ms);
    }
    const double start = trainer.truth().time;
    shared.playing = true;
    write_ready(options.ready_file, server);
    Script script(trainer, robots);
    while (!shared.done && !shared.stop) {
        trainer.update(100ms);
        const double t = trainer.truth().time - start;
        if (options.seconds > 0 && t >= options.seconds) {
            break;
        }
        if (options.scripted) {
            script.at(t);
        }
    }
    if (record.is_open() && !record.flush()) {
        throw std::runtime_error("cannot write " + options.record_path);
    }
}

} // namespace

void run_staged_game(const StagedGameOptions& options, const std::atomic<bool>& stop) {
    SimServerOptions server_options;
    server_options.log_path = options.log_path;
    SimServer server(server_options);
    Shared shared{options, stop, server.agent_port()};
    std::vector<std::unique_ptr<Robot>> robots;
    for (int n = 1; n <= options.left + options.right; ++n) {
        auto robot = std::make_unique<Robot>();
        robot->side = n <= options.left ? Side::left : Side::right;
        robot->number = n <= options.left ? n : n - options.left;
        robots.push_back(std::move(robot));
    }
    for (std::size_t i = 0; i < robots.size(); ++i) {
        robots[i]->thread =
            std::thread(play, std::ref(shared), std::ref(*robots[i]), static_cast<int>(i));
    }
    std::string failure;
    try {
        direct(options, shared, server, robots);
    } catch (const std::exception& error) {
        failure = error.what();
    }
    shared.done = true;
    // Robots blocked on a perception wake when the server goes.
    server.stop();
    for (auto& robot : robots) {
        robot->thread.join();
        if (failure.empty() && !robot->error.empty()) {
            failure = robot->error;
        }
    }
    if (!failure.empty()) {
        throw std::runtime_error(failure + "\n" + server.log_tail());
    }
}

} // namespace orvo::sim
