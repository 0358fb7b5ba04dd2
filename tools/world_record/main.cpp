// orvo_world_record: records what one robot perceives on a real server while
// a trainer moves it from spot to spot and its head scans, with where it
// truly stood beside every perception, for the world model's tests.
#include "recording.h"
#include "sim_robot.h"
#include "sim_server.h"
#include <orvo/monitor/monitor_client.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <ostream>
#include <random>
#include <string>

namespace {

struct Spot {
    double x, y, heading_deg;
    double neck_pitch_deg; ///< held while the neck yaw scans
    bool scan = true;      ///< false: the head looks straight ahead
};

// Spots across the whole field, each at least 5 m from the one before, so
// that every move is a kidnap the estimator has to notice.
constexpr Spot spots[] = {
    {-5, 0, 0, 0},
    {-11, 6, 45, -20},
    {-3, -6, 170, 0},
    {6, 3, -90, 20},
    {12, -7, 135, 0},
    {2, 8, -30, -10},
    {-8, -3, -150, 0},
    {9, 0, 90, 0},
    // Facing the side line with the head still: lines only, no landmark.
    {0, 5, 90, -20},
    {0, 5, 90, -20, false},
};

double neck_angle(const std::string& payload, const std::string& joint) {
    const std::string key = "(HJ (n " + joint + ") (ax ";
    const auto at = payload.find(key);
    return at == std::string::npos ? 0.0 : std::atof(payload.c_str() + at + key.size());
}

/// Carries the robot by the trainer along a quarter circle of 3 m radius at
/// 0.4 m/s, its head scanning, writing the odometry a walk would report (10 %
/// long, as a walk's often are) beside the truth.
void glide(orvo::sim::SimRobot& robot, orvo::monitor::MonitorClient& trainer, std::ostream& out) {
    const double radius = 3, speed = 0.4, cx = -3, cy = 0;
    const double turn = speed / radius; // rad/s, counter-clockwise
    double angle = -M_PI / 2;
    trainer.place_robot(orvo::monitor::Side::left, 1, cx, cy - radius, 0.35, 0);
    for (int c = 0; c < 10; ++c)
        robot.step();
    double dx = 0, dturn = 0;
    for (int c = 0; c < 500; ++c) {
        angle += turn * 0.02;
        const double x = cx + radius * std::cos(angle), y = cy + radius * std::sin(angle);
        const double heading = (angle + M_PI / 2) * 180 / M_PI;
        trainer.place_robot(orvo::monitor::Side::left, 1, x, y, 0.35, heading);
        dx += 1.1 * speed * 0.02;
        dturn += turn * 0.02 * 180 / M_PI;
        const double yaw_speed = 2.6 * std::cos(2 * M_PI * c * 0.02 / 4.0);
        const std::string& got = robot.step("(he1 " + std::to_string(yaw_speed) + ")");
        trainer.update(std::chrono::milliseconds(0));
        if (got.find("(See") == std::string::npos)
            continue;
        // The robot stands where the trainer put it one cycle before.
        const double px = cx + radius * std::cos(angle - turn * 0.02);
        const double py = cy + radius * std::sin(angle - turn * 0.02);
        out << "truth " << px << ' ' << py << ' ' << heading - turn * 0.02 * 180 / M_PI << "\nstep "
            << dx << " 0 " << dturn << "\nsee " << orvo::record::cut_down(got) << '\n';
        dx = dturn = 0;
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "usage: orvo_world_record TYPE OUT [SECONDS-PER-SPOT] [SEED]\n";
        return 2;
    }
    const int type = std::stoi(argv[1]);
    const double per_spot = argc > 3 ? std::stod(argv[3]) : 4.0;
    std::mt19937 rng(argc > 4 ? static_cast<unsigned>(std::stoul(argv[4])) : 1u);
    std::uniform_real_distribution<double> around(-2.5, 2.5);
    std::ofstream out(argv[2]);
    orvo::sim::SimServer server;
    orvo::monitor::MonitorClient trainer("127.0.0.1", server.monitor_port());
    orvo::sim::SimRobot robot("127.0.0.1", server.agent_port(), {type, 1, "orvo"});
    robot.join();
    robot.step("(beam -5 0 0)");
    trainer.send("(playMode PlayOn)");
    out << "# robot type " << type << ", " << per_spot << " s per spot, head scanning\n";
    const int cycles = static_cast<int>(per_spot / 0.02);
    for (const Spot& spot : spots) {
        trainer.place_robot(orvo::monitor::Side::left, 1, spot.x, spot.y, 0.35, spot.heading_deg);
        const double bx = spot.x + around(rng), by = spot.y + around(rng);
        char ball[96];
        std::snprintf(ball, sizeof ball, "(ball (pos %.2f %.2f 0.042))", bx, by);
        trainer.send(ball);
        out << "truth " << spot.x << ' ' << spot.y << ' ' << spot.heading_deg << "\nball " << bx
            << ' ' << by << '\n';
        for (int c = 0; c < cycles; ++c) {
            // The neck sweeps about +-100 degrees every 4 s; the pitch is driven
            // towards the spot's angle.
            const double yaw_speed = spot.scan ? 2.6 * std::cos(2 * M_PI * c * 0.02 / 4.0)
                                               : -0.1 * neck_angle(robot.last(), "hj1");
            const double pitch_speed =
                0.1 * (spot.neck_pitch_deg - neck_angle(robot.last(), "hj2"));
            const std::string& got = robot.step("(he1 " + std::to_string(yaw_speed) + ")(he2 " +
                                                std::to_string(pitch_speed) + ")");
            trainer.update(std::chrono::milliseconds(0));
            if (got.find("(See") != std::string::npos && c > 10)
                out << "see " << orvo::record::cut_down(got) << '\n';
        }
    }
    glide(robot, trainer, out);
    return 0;
}
