// A get-up on a real server in sync mode, timed by the monitor: the robot
// lets itself fall on its front and stands up again.
#include <gtest/gtest.h>

#include "drills.h"
#include "tools/real_server.h"

namespace {

TEST(GetUpOnRealServer, StandsUpAfterFallingOnItsFront) {
    ORVO_REQUIRE_REAL_SERVER();
    orvo::drill::DrillOptions options;
    options.seconds = 5;
    const nlohmann::json run = orvo::drill::getup_once(options, "front");
    ASSERT_FALSE(run["fell_at"].is_null()) << run.dump();
    EXPECT_EQ(run["lying"], "fallen_front");
    EXPECT_TRUE(run["success"].get<bool>()) << run.dump();
    EXPECT_LE(run["detection_delay"].get<double>(), 0.06) << run.dump();
}

} // namespace
