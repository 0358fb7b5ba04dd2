// A real server started on free ports, a robot joined to it with the number
// it asked for, and nothing left running afterwards.
#include <gtest/gtest.h>

#include <csignal>

#include "real_server.h"
#include "sim_robot.h"
#include "sim_server.h"

namespace {

TEST(SimServer, RobotJoinsWithItsNumberAndTheServerIsGoneAfterStop) {
    ORVO_REQUIRE_REAL_SERVER();
    pid_t pid = 0;
    int agent_port = 0;
    {
        orvo::sim::SimServer server;
        pid = server.pid();
        agent_port = server.agent_port();
        ASSERT_TRUE(orvo::sim::port_listening(server.monitor_port()));
        orvo::sim::SimRobot robot("127.0.0.1", agent_port, {1, 7, "probe"});
        EXPECT_EQ(robot.join(), 7);
        EXPECT_NE(robot.step().find("(HJ (n llj1)"), std::string::npos);
    }
    EXPECT_NE(::kill(pid, 0), 0);
    EXPECT_FALSE(orvo::sim::port_listening(agent_port));
}

} // namespace
