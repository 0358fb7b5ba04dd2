// Get-ups on a real server in sync mode, timed by the monitor: the robot
// lets itself fall on its front (then on its back), is seen falling in time
// and stands again.
#include <gtest/gtest.h>

#include <string>

#include "drills.h"
#include "tools/real_server.h"

namespace {

TEST(GetUpOnRealServer, StandsAgainAfterFallingOnItsFrontOrBack) {
    ORVO_REQUIRE_REAL_SERVER();
    orvo::drill::DrillOptions options;
    options.seconds = 5;
    for (const char* from : {"front", "back"}) {
        const nlohmann::json run = orvo::drill::getup_once(options, from);
        ASSERT_FALSE(run["fell_at"].is_null()) << run.dump();
        EXPECT_EQ(run["lying"], std::string("fallen_") + from) << run.dump();
        EXPECT_LE(run["detection_delay"].get<double>(), 0.06) << run.dump();
        // Up and held for a second, and still up a second later: the drill's
        // own fall is the only one.
        EXPECT_TRUE(run["success"].get<bool>()) << run.dump();
        EXPECT_EQ(run["falls"], 1) << run.dump();
        // Limbs that touch freeze the joints for a second: never while getting up.
        EXPECT_EQ(run["self_collisions"], 0) << run.dump();
    }
}

} // namespace
