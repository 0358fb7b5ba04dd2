// The monitor client against a real server in sync mode: robots and the ball
// placed with trainer commands read back where they were put, the robots with
// the number, side and type they joined with.
#include <orvo/monitor/monitor_client.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <memory>

#include "sim_robot.h"
#include "sim_server.h"

namespace {

using namespace std::chrono_literals;
using orvo::monitor::MonitorClient;
using orvo::monitor::Side;

class RealServer : public ::testing::Test {
protected:
    /// A new server with one robot joined and a monitor connected.
    void start(int type, int number) {
        robot.reset();
        monitor.reset();
        server = std::make_unique<orvo::sim::SimServer>();
        monitor = std::make_unique<MonitorClient>("127.0.0.1", server->monitor_port());
        robot = std::make_unique<orvo::sim::SimRobot>("127.0.0.1", server->agent_port(),
                                                      orvo::sim::RobotEntry{type, number, "probe"});
        ASSERT_EQ(robot->join(), number);
    }
    /// Steps the robot `cycles` times (the server moves on only then) and
    /// reads what the monitor sent meanwhile.
    void run(int cycles) {
        for (int i = 0; i < cycles; ++i) {
            robot->step();
            monitor->update(0ms);
        }
        monitor->update(200ms);
    }

    std::unique_ptr<orvo::sim::SimServer> server;
    std::unique_ptr<MonitorClient> monitor;
    std::unique_ptr<orvo::sim::SimRobot> robot;
};

TEST_F(RealServer, PlacedRobotsAndBallReadBackWithTheRobotsNumberSideAndType) {
    struct Case {
        int type, number;
        double x, y, heading;
        bool toes;
    };
    // One server each: in sync mode a robot that is not stepped holds up
    // every other robot's joining.
    const Case cases[] = {{0, 1, -5.0, 2.0, 0.0, false}, {4, 4, -3.0, -4.0, 90.0, true}};
    for (const Case& c : cases) {
        start(c.type, c.number);
        // Before the kick-off the referee keeps the ball on the centre spot.
        monitor->play_mode("PlayOn");
        run(2);
        monitor->place_robot(Side::left, c.number, c.x, c.y, 0.4, c.heading);
        monitor->place_ball(3.0, -1.0, 0.042);
        run(10);
        EXPECT_EQ(monitor->truth().play_mode_name(), "PlayOn");
        EXPECT_NEAR(monitor->truth().ball[0], 3.0, 0.05);
        EXPECT_NEAR(monitor->truth().ball[1], -1.0, 0.05);
        const auto* robot = monitor->robot(Side::left, c.number);
        ASSERT_NE(robot, nullptr) << c.number;
        EXPECT_EQ(robot->type, c.type);
        EXPECT_NEAR(robot->x, c.x, 0.05) << c.number;
        EXPECT_NEAR(robot->y, c.y, 0.05) << c.number;
        EXPECT_NEAR(std::remainder(robot->heading_deg - c.heading, 360.0), 0.0, 5.0) << c.number;
        EXPECT_EQ(robot->part("ltoe") != nullptr, c.toes) << c.number;
        EXPECT_NE(robot->part("rfoot"), nullptr) << c.number;
    }
}

} // namespace
