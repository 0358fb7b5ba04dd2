// On the real server in sync mode: eleven robots of a legal mix join with
// numbers 1 to 11 and beam where they were sent in their own half (by the
// monitor), one robot's head and arms reach the angles the library's joint
// control holds them at, and what a robot says reaches its team-mate intact.
#include <gtest/gtest.h>

#include <orvo/communication/say_codec.h>
#include <orvo/monitor/monitor_client.h>
#include <orvo/perception/perception_reader.h>
#include <orvo/skills/joint_controller.h>
#include <orvo/skills/motion_player.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <memory>
#include <set>
#include <thread>
#include <vector>

#include "real_server.h"
#include "sim_robot.h"
#include "sim_server.h"
#include "squad.h"

namespace {

using namespace orvo;

struct Spot {
    int type;
    double x, y;
};

// 5 robots of type 0, 4 of type 1, 2 of type 2: a mix the server accepts.
const Spot team[] = {{0, -13, 0}, {0, -10, -6}, {0, -10, -2}, {0, -10, 2}, {0, -10, 6}, {1, -7, -6},
                     {1, -7, -2}, {1, -7, 2},   {1, -7, 6},   {2, -4, -3}, {2, -4, 3}};
constexpr int team_size = sizeof team / sizeof team[0];

struct Outcome {
    int number = 0;
    std::string error;
};

// One robot's life: join, beam, then step until the server time the last
// robot to join set. Every robot leaves after the same cycle: one that leaves
// sooner stalls a server in sync mode for the others.
void play(sim::SimRobot& robot, const Spot& spot, sim::JoinGate& gate, std::atomic<int>& joined,
          std::atomic<double>& stop_at, Outcome& out) {
    try {
        out.number = robot.join();
        perception::PerceptionReader reader;
        perception::Perception seen;
        if (++joined == team_size && reader.read(robot.last(), seen)) {
            stop_at = seen.time + 1.0; // the beam settles
        }
        char beam[64];
        std::snprintf(beam, sizeof beam, "(beam %.2f %.2f 0)", spot.x, spot.y);
        robot.send(beam);
        for (;;) {
            robot.receive();
            if (reader.read(robot.last(), seen) && seen.has_time && seen.time >= stop_at) {
                return;
            }
            gate.syn(robot);
        }
    } catch (const std::exception& error) {
        out.error = error.what();
    }
}

TEST(RealTeam, ElevenOfALegalMixJoinAsOneToElevenAndBeamIntoTheirHalf) {
    ORVO_REQUIRE_REAL_SERVER();
    sim::SimServer server;
    monitor::MonitorClient monitor("127.0.0.1", server.monitor_port());
    sim::JoinGate gate;
    std::atomic<int> joined{0};
    std::atomic<double> stop_at{1e9};
    std::vector<Outcome> outcomes(team_size);
    std::vector<std::unique_ptr<sim::SimRobot>> robots;
    std::vector<std::thread> threads;
    for (int i = 0; i < team_size; ++i) {
        // One at a time: robots that connect in the same instant never join.
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (joined < i && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        robots.push_back(gate.connect("127.0.0.1", server.agent_port(), {team[i].type, 0, "orvo"}));
        threads.emplace_back(play, std::ref(*robots.back()), std::cref(team[i]), std::ref(gate),
                             std::ref(joined), std::ref(stop_at), std::ref(outcomes[i]));
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::set<int> numbers;
    for (int i = 0; i < team_size; ++i) {
        ASSERT_EQ(outcomes[i].error, "") << "robot " << i << "; server: " << server.log_tail();
        numbers.insert(outcomes[i].number);
    }
    EXPECT_EQ(numbers, (std::set<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
    // Where the monitor shows them once the last update has come in.
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    while (std::chrono::steady_clock::now() < until) {
        monitor.update(std::chrono::milliseconds(100));
    }
    for (int i = 0; i < team_size; ++i) {
        const monitor::RobotTruth* truth = monitor.robot(monitor::Side::left, outcomes[i].number);
        ASSERT_NE(truth, nullptr) << "robot " << outcomes[i].number;
        EXPECT_LT(truth->x, 0) << "robot " << outcomes[i].number;
        // Beams carry up to 0.05 m of noise; settling moves a robot a little.
        EXPECT_NEAR(truth->x, team[i].x, 0.3) << "robot " << outcomes[i].number;
        EXPECT_NEAR(truth->y, team[i].y, 0.3) << "robot " << outcomes[i].number;
    }
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

// The longest text, packed by the codec with characters from both ends of
// its alphabet, heard by the team-mate in the next perception.
TEST(RealTeam, WhatARobotSaysReachesItsTeamMateIntact) {
    ORVO_REQUIRE_REAL_SERVER();
    sim::SimServer server;
    sim::Squad squad(server.agent_port());
    squad.join(0, "orvo");
    squad.join(1, "orvo");
    communication::SayWriter writer;
    for (const double value :
         {0.0, 8099.0, 1234.0, 4321.0, 42.0, 8000.0, 17.0, 99.0, 7.0, 5000.0}) {
        writer.put(value, {0, 8099, 1});
    }
    const std::string text = writer.text();
    ASSERT_EQ(text.size(), communication::say_max_length);
    ASSERT_EQ(communication::say_fault(text), "");
    squad.step({"(say " + text + ")"});
    const auto& heard = squad.step()[1];
    ASSERT_EQ(heard.size(), 1u);
    EXPECT_EQ(heard[0].team, "orvo");
    EXPECT_FALSE(heard[0].self);
    EXPECT_EQ(heard[0].text, text);
}

} // namespace
