#include "server_clock.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>
#include <vector>

namespace {

TEST(ServerClock, CountsReceivedAndMissedCyclesByTheServerTime) {
    struct Case {
        std::vector<float> times; // as the perception reader hands them out
        unsigned received, missed, cycles;
    };
    const Case cases[] = {
        {{}, 0, 0, 0},
        {{0.86f, 0.88f, 0.90f}, 3, 0, 3},
        // Two cycles that never arrived, and a later single one.
        {{4.22f, 4.24f, 4.30f, 4.32f, 4.36f}, 5, 3, 8},
        // Late in a long game float times still land on their cycle.
        {{3599.98f, 3600.00f, 3600.02f, 3600.06f}, 4, 1, 5},
        // A repeated or older time is no gap and does not move the clock back.
        {{1.00f, 1.00f, 0.98f, 1.02f}, 4, 0, 2},
    };
    for (const Case& c : cases) {
        demo::ServerClock clock;
        for (const float now : c.times) {
            clock.perceived(now);
        }
        EXPECT_EQ(std::make_tuple(clock.received(), clock.missed(), clock.cycles()),
                  std::make_tuple(c.received, c.missed, c.cycles))
            << "first time " << (c.times.empty() ? 0.0f : c.times.front());
    }
    // The real server's steps are a little longer than 20 ms and its times
    // come in hundredths, so readings sit half a cycle off now and then.
    demo::ServerClock clock;
    for (int cycle = 0; cycle < 3000; ++cycle) {
        clock.perceived(std::round((100.005 + cycle * 0.02001) * 100) / 100);
    }
    EXPECT_EQ(std::make_tuple(clock.received(), clock.missed(), clock.cycles()),
              std::make_tuple(3000u, 0u, 3000u));
}

} // namespace
