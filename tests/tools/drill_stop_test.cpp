// A drill stopped by a signal (a tuner's timeout, Ctrl-C) stops the server it
// started: none of its process group outlives it.
#include "sim_server.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
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

INSTANTIATE_TEST_SUITE_P(Signals, DrillStop, testing::Values(SIGTERM, SIGPIPE));

} // namespace
