// orvo_world_drill: the world model on a live server while the trainer
// carries a robot along a course of spots across the field (0.4 m/s, turning
// on the spot at 60 deg/s), its head aimed by the head skill's decisions, and
// moves it 5 m once half way (a kidnap). The truth is where the trainer put
// the robot; the odometry is the course's own steps, 10 % long as a walk's
// often are. Prints one JSON object per run.
#include "replay.h"
#include "sim_robot.h"
#include "sim_server.h"
#include <orvo/monitor/monitor_client.h>

#include <orvo/head/head_aim.h>
#include <orvo/perception/perception_reader.h>
#include <orvo/world/world_model.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

namespace {

struct Options {
    int type = 0;
    double seconds = 60;
    int runs = 1;
    std::string params = "params";
};

struct Errors {
    std::vector<double> position, heading, ball;
    double recovery_s = -1;
};

/// The course: a loop of spots, visited in turn.
constexpr double course[][2] = {{-10, -5}, {-3, 6}, {5, -4}, {11, 5}, {2, 0}, {-8, 7}};

class CourseRun {
public:
    CourseRun(const Options& options, unsigned seed)
        : options_(options),
          world_(orvo::world::WorldParams::for_type(options.params + "/world", options.type),
                 orvo::world::Method::particles_and_fit, seed),
          aim_(orvo::head::HeadParams::for_type(options.params + "/head", options.type)) {}

    Errors run();

private:
    void advance(double dt);
    std::string neck_command(const orvo::perception::Perception& now, double time);

    Options options_;
    orvo::world::WorldModel world_;
    orvo::head::HeadAim aim_;
    double x_ = -12, y_ = 0, heading_ = 0; // degrees
    std::size_t next_ = 0;
};

void CourseRun::advance(double dt) {
    const double tx = course[next_][0], ty = course[next_][1];
    const double want = std::atan2(ty - y_, tx - x_) * 180 / M_PI;
    const double off = std::remainder(want - heading_, 360.0);
    if (std::abs(off) > 2) {
        heading_ += std::copysign(std::min(std::abs(off), 60 * dt), off);
        return;
    }
    const double left = std::hypot(tx - x_, ty - y_);
    const double forward = std::min(left, 0.4 * dt);
    x_ += forward * std::cos(heading_ * M_PI / 180);
    y_ += forward * std::sin(heading_ * M_PI / 180);
    if (left < 0.01)
        next_ = (next_ + 1) % (sizeof course / sizeof course[0]);
}

std::string CourseRun::neck_command(const orvo::perception::Perception& now, double time) {
    const orvo::head::HeadTarget target = aim_(world_, time);
    const double yaw = now.joints[orvo::robot::Joint::neck_yaw];
    const double pitch = now.joints[orvo::robot::Joint::neck_pitch];
    // Proportional speeds (rad/s per degree off), within the joints' limit.
    const double he1 = std::clamp(0.15 * (target.yaw_deg - yaw), -6.0, 6.0);
    const double he2 = std::clamp(0.15 * (target.pitch_deg - pitch), -6.0, 6.0);
    return "(he1 " + std::to_string(he1) + ")(he2 " + std::to_string(he2) + ")";
}

Errors CourseRun::run() {
    orvo::sim::SimServer server;
    orvo::monitor::MonitorClient trainer("127.0.0.1", server.monitor_port());
    orvo::sim::SimRobot robot("127.0.0.1", server.agent_port(), {options_.type, 1, "orvo"});
    robot.join();
    trainer.send("(playMode PlayOn)");
    for (int c = 0; c < 5; ++c)
        robot.step();
    trainer.send("(ball (pos 0 0 0.042))");
    trainer.place_robot(orvo::monitor::Side::left, 1, x_, y_, 0.35, heading_);
    world_.set_team("orvo", orvo::perception::Side::left);
    world_.place(x_, y_, heading_);
    orvo::perception::PerceptionReader reader;
    orvo::perception::Perception now;
    Errors errors;
    const int cycles = static_cast<int>(options_.seconds / 0.02);
    double kidnapped_at = -1;
    bool kidnap = false;
    double px = x_, py = y_, ph = heading_; // where the robot stood the cycle before
    std::string command;
    for (int c = 0; c < cycles; ++c) {
        // The robot stands where the trainer put it in the previous round.
        const std::string& got = robot.step(command);
        trainer.update(std::chrono::milliseconds(0));
        if (!reader.read(got, now))
            continue;
        orvo::world::Odometry step;
        if (!kidnap) {
            step = orvo::world::step_between(px, py, ph, x_, y_, heading_);
            step.dx *= 1.1;
            step.dy *= 1.1;
        } else {
            kidnapped_at = now.time;
        }
        world_.update(now, step);
        if (c % 2 == 0 && c > 50) {
            const orvo::world::Pose& pose = world_.pose();
            const double e = std::hypot(pose.x - x_, pose.y - y_);
            errors.position.push_back(e);
            errors.heading.push_back(std::abs(std::remainder(pose.heading_deg - heading_, 360.0)));
            if (kidnapped_at >= 0 && errors.recovery_s < 0 && e < 0.5 && now.time > kidnapped_at)
                errors.recovery_s = now.time - kidnapped_at;
            const orvo::world::BallBelief& b = world_.ball();
            if (b.known && now.time - b.last_seen <= 1.0)
                errors.ball.push_back(std::hypot(b.x, b.y));
        }
        px = x_;
        py = y_;
        ph = heading_;
        kidnap = c == cycles / 2;
        if (kidnap)
            y_ += y_ > 0 ? -5 : 5; // 5 m sideways, unknown to the odometry
        else
            advance(0.02);
        trainer.place_robot(orvo::monitor::Side::left, 1, x_, y_, 0.35, heading_);
        command = neck_command(now, now.time);
    }
    return errors;
}

bool parse(int argc, char** argv, Options& out) {
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string key = argv[i];
        if (key == "--type")
            out.type = std::stoi(argv[i + 1]);
        else if (key == "--seconds")
            out.seconds = std::stod(argv[i + 1]);
        else if (key == "--runs")
            out.runs = std::stoi(argv[i + 1]);
        else if (key == "--params")
            out.params = argv[i + 1];
        else
            return false;
    }
    return argc % 2 == 1;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    if (!parse(argc, argv, options)) {
        std::cerr << "usage: orvo_world_drill [--type T] [--seconds S] [--runs N] [--params DIR]\n";
        return 2;
    }
    for (int run = 0; run < options.runs; ++run) {
        Errors e = CourseRun(options, static_cast<unsigned>(run + 1)).run();
        std::printf("{\"drill\": \"localize\", \"type\": %d, \"run\": %d, \"seconds\": %.0f, "
                    "\"position_error_median_m\": %.3f, \"position_error_p95_m\": %.3f, "
                    "\"heading_error_median_deg\": %.2f, \"ball_error_median_m\": %.3f, "
                    "\"recovery_s\": %.2f}\n",
                    options.type, run + 1, options.seconds, orvo::record::quantile(e.position, 0.5),
                    orvo::record::quantile(e.position, 0.95),
                    orvo::record::quantile(e.heading, 0.5), orvo::record::quantile(e.ball, 0.5),
                    e.recovery_s);
        std::fflush(stdout);
    }
    return 0;
}
