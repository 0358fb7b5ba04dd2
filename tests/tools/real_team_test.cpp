// On the real server in sync mode: eleven robots of a legal mix join with
// numbers 1 to 11 and beam into their own half, and one robot's head and arms
// reach the angles the library's joint control holds them at.
#include <gtest/gtest.h>

#include <orvo/perception/perception_reader.h>
#include <orvo/skills/joint_controller.h>
#include <orvo/skills/motion_player.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <set>
#include <thread>
#include <vector>

#include "real_server.h"
#include "sim_robot.h"
#include "sim_server.h"

namespace {

using namespace orvo;
using perception::Landmark;

struct Spot {
    int type;
    double x, y;
};

// 5 robots of type 0, 4 of type 1, 2 of type 2: a mix the server accepts.
const Spot team[] = {{0, -13, 0}, {0, -10, -6}, {0, -10, -2}, {0, -10, 2}, {0, -10, 6}, {1, -7, -6},
                     {1, -7, -2}, {1, -7, 2},   {1, -7, 6},   {2, -4, -3}, {2, -4, 3}};
constexpr int team_size = sizeof team / sizeof team[0];
constexpr double goal_line = 15.0;
constexpr double goal_post_y = 1.05;

struct Outcome {
    int number = 0;
    double x_sum = 0; ///< where the robot's view of the far goal posts puts it
    int sightings = 0;
    std::string error;
};

// The robot's x on the field from its view of both far goal posts at
// (15, +-1.05): the mean of the squared ground distances does not depend on
// which post is which.
bool x_from_goal(const perception::Vision& vision, double& x) {
    if (!vision.sees(Landmark::G1R) || !vision.sees(Landmark::G2R)) {
        return false;
    }
    const auto ground = [](const math::Polar& p) {
        return p.distance * std::cos(p.elevation * M_PI / 180);
    };
    const double d1 = ground(vision[Landmark::G1R]);
    const double d2 = ground(vision[Landmark::G2R]);
    const double y = (d2 * d2 - d1 * d1) / (4 * goal_post_y);
    const double along = (d1 * d1 + d2 * d2) / 2 - y * y - goal_post_y * goal_post_y;
    x = goal_line - std::sqrt(std::max(0.0, along));
    return true;
}

// One robot's life, as an agent process lives it: join, beam, then step
// (sync mode: the server waits for every robot) until the server time the
// last robot to join set. Every robot leaves after the same cycle: one that
// leaves sooner stalls a server in sync mode for the others.
void play(int port, const Spot& spot, std::atomic<int>& joined, std::atomic<double>& stop_at,
          Outcome& out) {
    try {
        sim::SimRobot robot("127.0.0.1", port, {spot.type, 0, "orvo"});
        out.number = robot.join();
        perception::PerceptionReader reader;
        perception::Perception seen;
        if (++joined == team_size && reader.read(robot.last(), seen)) {
            stop_at = seen.time + 3.0; // 1 s to settle after the beam, 2 s to look
        }
        char beam[64];
        std::snprintf(beam, sizeof beam, "(beam %.2f %.2f 0)", spot.x, spot.y);
        robot.send(beam);
        for (;;) {
            robot.receive();
            const bool read = reader.read(robot.last(), seen) && seen.has_time;
            double x = 0;
            if (read && seen.time > stop_at - 2.0 && x_from_goal(seen.vision, x)) {
                out.x_sum += x;
                ++out.sightings;
            }
            if (read && seen.time >= stop_at) {
                return;
            }
            robot.send("");
        }
    } catch (const std::exception& error) {
        out.error = error.what();
    }
}

// Off by default: in sync mode eleven robots joining one after another
// sometimes stall the server (about one run in three here, more under load),
// which a test run cannot tell from a fault. Run it by hand with
// --gtest_also_run_disabled_tests; the demo joins eleven in real time.
TEST(RealTeam, DISABLED_ElevenOfALegalMixJoinAsOneToElevenAndBeamIntoTheirHalf) {
    ORVO_REQUIRE_REAL_SERVER();
    sim::SimServer server;
    std::atomic<int> joined{0};
    std::atomic<double> stop_at{1e9};
    std::vector<Outcome> outcomes(team_size);
    std::vector<std::thread> robots;
    for (int i = 0; i < team_size; ++i) {
        // A robot that connects before the one before it has joined stalls a
        // server in sync mode ("connecting in same frame"): one at a time.
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (joined < i && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        robots.emplace_back(play, server.agent_port(), std::cref(team[i]), std::ref(joined),
                            std::ref(stop_at), std::ref(outcomes[i]));
    }
    for (std::thread& robot : robots) {
        robot.join();
    }
    std::set<int> numbers;
    for (int i = 0; i < team_size; ++i) {
        const Outcome& out = outcomes[i];
        ASSERT_EQ(out.error, "") << "robot " << i << "; server: " << server.log_tail();
        numbers.insert(out.number);
        ASSERT_GT(out.sightings, 0) << "robot " << i << " never saw both far goal posts";
        const double x = out.x_sum / out.sightings;
        EXPECT_LT(x, 0) << "robot " << i;
        EXPECT_NEAR(x, team[i].x, 0.5) << "robot " << i;
    }
    EXPECT_EQ(numbers.size(), 11u);
    EXPECT_EQ(*numbers.begin(), 1);
    EXPECT_EQ(*numbers.rbegin(), 11);
}

// Targets away from the body, so that no limb touches another (the server
// freezes joints that do).
const std::pair<robot::Joint, double> pose[] = {{robot::Joint::neck_yaw, 40},
                                                {robot::Joint::neck_pitch, 20},
                                                {robot::Joint::left_shoulder_pitch, -50},
                                                {robot::Joint::left_shoulder_roll, 30},
                                                {robot::Joint::left_elbow_yaw, -30},
                                                {robot::Joint::left_elbow_roll, -40},
                                                {robot::Joint::right_shoulder_pitch, -70},
                                                {robot::Joint::right_shoulder_roll, -20},
                                                {robot::Joint::right_elbow_yaw, 40},
                                                {robot::Joint::right_elbow_roll, 60}};

TEST(RealTeam, HeadAndArmsReachHeldAnglesWithinThreeDegrees) {
    ORVO_REQUIRE_REAL_SERVER();
    sim::SimServer server;
    sim::SimRobot robot("127.0.0.1", server.agent_port(), {0, 1, "orvo"});
    robot.join();
    skills::MotionPlayer player;
    skills::JointController controller;
    robot::JointSet upper;
    for (const auto& [joint, degrees] : pose) {
        player.hold(joint, degrees);
        upper.set(robot::index(joint));
    }
    const robot::JointSet all = robot::joints_of(0);
    for (std::size_t i = 0; i < robot::joint_count; ++i) {
        if (all.test(i) && !upper.test(i)) {
            player.hold(static_cast<robot::Joint>(i), 0); // the legs stand straight
        }
    }
    perception::PerceptionReader reader;
    perception::Perception seen;
    robot::JointValues angles{}, speeds{};
    double upper_error = 0, leg_error = 0;
    constexpr int cycles = 150, measured = 25; // 3 s; the last half second counts
    for (int cycle = 0; cycle < cycles; ++cycle) {
        ASSERT_TRUE(reader.read(robot.last(), seen));
        for (std::size_t i = 0; i < robot::joint_count; ++i) {
            angles[i] = seen.joints[static_cast<robot::Joint>(i)];
        }
        player.update(seen.time, angles);
        controller.step(player.targets(), player.rates(), angles, player.driven(), speeds);
        std::string command;
        for (const robot::JointInfo& info : robot::joint_table()) {
            const std::size_t i = robot::index(info.joint);
            if (all.test(i)) {
                command += "(" + std::string(info.effector) + " " + std::to_string(speeds[i]) + ")";
            }
            if (cycle >= cycles - measured && all.test(i)) {
                double& worst = upper.test(i) ? upper_error : leg_error;
                worst = std::max(worst, std::abs(player.targets()[i] - angles[i]));
            }
        }
        robot.step(command);
    }
    std::printf("worst error over the last %d cycles: head and arms %.2f, legs %.2f degrees\n",
                measured, upper_error, leg_error);
    RecordProperty("leg_error_degrees", std::to_string(leg_error));
    EXPECT_LT(upper_error, 3.0);
}

} // namespace
