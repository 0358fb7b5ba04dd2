// orvo_drill as a program: a drill stopped by a signal (a tuner's timeout,
// Ctrl-C) stops the server it started, the ball drill measures a ball the
// trainer set off, and the plan drill reads the walk's joint rates.
#include "sim_server.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <dirent.h>
#include <fstream>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <thread>

extern char** environ;

namespace {

// Whether a process named `name` belongs to process group `group`.
bool group_runs(pid_t group, const std::string& name) {
    DIR* proc = ::opendir("/proc");
    bool found = false;
    while (dirent* entry = proc != nullptr ? ::readdir(proc) : nullptr) {
        std::ifstream stat(std::string("/proc/") + entry->d_name + "/stat");
        std::string pid, comm, state;
        long parent = 0, pgrp = 0;
        if (stat >> pid >> comm >> state >> parent >> pgrp && pgrp == group &&
            comm.find(name) != std::string::npos) {
            found = true;
        }
    }
    if (proc != nullptr) {
        ::closedir(proc);
    }
    return found;
}

// SIGTERM as a tuner's timeout sends it; SIGPIPE as a reader that closed
// the drill's output (`orvo_drill ... | head`) raises it.
class DrillStop : public testing::TestWithParam<int> {};

TEST_P(DrillStop, ASignalStopsTheDrillAndItsServer) {
    const int signal = GetParam();
    if (!orvo::sim::SimServer::installed()) {
        GTEST_SKIP() << "no simulation server installed";
    }
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    posix_spawnattr_setpgroup(&attributes, 0);
    std::string words[] = {DRILL, "walk", "--velocity", "0", "0", "0", "--seconds", "120"};
    char* argv[] = {words[0].data(), words[1].data(), words[2].data(),
                    words[3].data(), words[4].data(), words[5].data(),
                    words[6].data(), words[7].data(), nullptr};
    pid_t drill = -1;
    ASSERT_EQ(::posix_spawn(&drill, DRILL, nullptr, &attributes, argv, environ), 0);
    posix_spawnattr_destroy(&attributes);

    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!group_runs(drill, "rcssserver") && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    ASSERT_TRUE(group_runs(drill, "rcssserver")) << "the drill never started its server";
    std::this_thread::sleep_for(std::chrono::seconds(1));
    ::kill(drill, signal);
    int status = 0;
    for (int i = 0; i < 200 && ::waitpid(drill, &status, WNOHANG) == 0; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    if (::waitpid(drill, &status, WNOHANG) == 0) {
        ::killpg(drill, SIGKILL);
        ::waitpid(drill, &status, 0);
        FAIL() << "the drill did not end within 10 s of signal " << signal;
    }
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 128 + signal);
    const bool left = ::killpg(drill, 0) == 0;
    if (left) {
        ::killpg(drill, SIGKILL);
    }
    EXPECT_FALSE(left) << "a process of the drill's group outlived it";
}

// The first JSON line a drill printed, run with `arguments`.
nlohmann::json first_run(const std::string& arguments) {
    const std::string command = std::string(DRILL) + " " + arguments + " 2>/dev/null";
    FILE* output = ::popen(command.c_str(), "r");
    std::string text;
    char buffer[4096];
    while (output != nullptr && std::fgets(buffer, sizeof buffer, output) != nullptr) {
        text += buffer;
    }
    if (output != nullptr) {
        ::pclose(output);
    }
    return text.empty() ? nlohmann::json() : nlohmann::json::parse(text.substr(0, text.find('\n')));
}

// A ball lifted as a kick lifts it flies, comes down and rolls on further
// than the same speed along the ground, which slides before it rolls.
TEST(RollDrill, ALiftedBallFliesLandsAndGoesFurther) {
    if (!orvo::sim::SimServer::installed()) {
        GTEST_SKIP() << "no simulation server installed";
    }
    const nlohmann::json flat = first_run("roll --launch 5.2 0");
    const nlohmann::json lifted = first_run("roll --launch 5.2 1.3");
    ASSERT_TRUE(flat.is_object() && lifted.is_object());
    EXPECT_NEAR(flat["highest_m"].get<double>(), 0, 0.01);
    EXPECT_LT(flat["first_landing_m"].get<double>(), 0) << "a ball that never rose never landed";
    // 1.3 m/s up rises 8.6 cm: a little less with the drag.
    EXPECT_NEAR(lifted["highest_m"].get<double>(), 0.085, 0.015);
    EXPECT_GT(lifted["first_landing_m"].get<double>(), 0.5);
    EXPECT_GT(lifted["distance_m"].get<double>(), lifted["first_landing_m"].get<double>());
    EXPECT_GT(lifted["distance_m"].get<double>(), flat["distance_m"].get<double>() + 0.5);
    EXPECT_EQ(lifted["falls"], 0);
}

// The walk's plan, without a server: a straight walk asks the same of both
// legs, a faster one more of the pitch joints that swing the leg, and the
// sideways joints barely move.
TEST(PlanDrill, FasterStraightStepsAskMoreOfTheSwingingJoints) {
    const nlohmann::json slow = first_run("plan --type 0 --velocity 0.2 0 0");
    const nlohmann::json fast = first_run("plan --type 0 --velocity 0.5 0 0");
    ASSERT_TRUE(slow.is_object() && fast.is_object());
    const auto peak = [](const nlohmann::json& plan, const char* joint) {
        return plan["joints"][joint]["peak_rad_s"].get<double>();
    };
    for (const char* joint : {"hip_pitch", "knee_pitch", "ankle_pitch", "hip_roll"}) {
        const std::string left = std::string("left_") + joint;
        EXPECT_NEAR(peak(fast, left.c_str()), peak(fast, ("right_" + std::string(joint)).c_str()),
                    1e-6)
            << joint;
    }
    EXPECT_GT(peak(fast, "left_hip_pitch"), peak(slow, "left_hip_pitch") * 1.5);
    EXPECT_LT(peak(fast, "left_hip_roll"), 1);
    EXPECT_NEAR(fast["joints"]["left_hip_pitch"]["limit_rad_s"].get<double>(), 6.1395, 1e-4);
    // Type 2's ankle pitch turns faster than its walk file lets it.
    const nlohmann::json type2 = first_run("plan --type 2 --velocity 0.5 0 0");
    ASSERT_TRUE(type2.is_object());
    EXPECT_NEAR(type2["joints"]["left_ankle_pitch"]["limit_rad_s"].get<double>(), 6.1395, 1e-4);
}

// The kick's bound: the knee alone moves the foot at its limit (rad/s, not
// deg/s) times a lever no longer than the shank (0.1 m) and the ankle's
// reach to the toes (0.11 m), every joint added can only raise the bound,
// and a bad joint name is an error.
TEST(ReachDrill, BoundsGrowWithTheJointsAndKeepTheirUnits) {
    const std::string base = "reach --type 0 --samples 50000 --joints ";
    const nlohmann::json knee = first_run(base + "right_knee_pitch");
    const nlohmann::json leg = first_run(base + "right_hip_pitch,right_knee_pitch");
    const nlohmann::json torso =
        first_run(base + "left_hip_pitch,right_hip_pitch,right_knee_pitch");
    ASSERT_TRUE(knee.is_object() && leg.is_object() && torso.is_object());
    const double knee_speed = knee["foot_speed_mps"].get<double>();
    EXPECT_GT(knee_speed, 6.1395 * 0.05);
    EXPECT_LT(knee_speed, 6.1395 * 0.22);
    EXPECT_NEAR(knee["shares_mps"]["right_knee_pitch"].get<double>(), knee_speed, 1e-9);
    EXPECT_NEAR(knee["ball_speed_mps"].get<double>(), 1.8 * knee_speed, 1e-9);
    EXPECT_GT(leg["foot_speed_mps"].get<double>(), knee_speed);
    EXPECT_GT(torso["foot_speed_mps"].get<double>(), leg["foot_speed_mps"].get<double>());
    EXPECT_TRUE(first_run(base + "right_elbow").is_null());
}

INSTANTIATE_TEST_SUITE_P(Signals, DrillStop, testing::Values(SIGTERM, SIGPIPE));

} // namespace
