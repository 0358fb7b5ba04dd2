// The world model on a live server: a robot placed by the trainer, its head
// scanning, finds where it stands.
#include <gtest/gtest.h>

#include "sim_robot.h"
#include "sim_server.h"
#include <orvo/monitor/monitor_client.h>

#include <orvo/perception/perception_reader.h>
#include <orvo/world/world_model.h>

#include <cmath>

namespace {

TEST(WorldRealServer, PlacedRobotFindsItsPoseWhileItsHeadScans) {
    orvo::sim::SimServer server;
    orvo::monitor::MonitorClient trainer("127.0.0.1", server.monitor_port());
    orvo::sim::SimRobot robot("127.0.0.1", server.agent_port(), {0, 1, "orvo"});
    robot.join();
    // The server takes each command in its own time: let the beam land
    // before play is on, and play be on before the trainer moves the robot.
    robot.step("(beam -3 1 0)");
    for (int cycle = 0; cycle < 5; ++cycle)
        robot.step();
    trainer.send("(playMode PlayOn)");
    for (int cycle = 0; cycle < 5; ++cycle)
        robot.step();
    trainer.place_robot(orvo::monitor::Side::left, 1, -4, 3, 0.35, 30);
    orvo::world::WorldModel model(orvo::world::WorldParams::for_type(WORLD_PARAMS, 0));
    model.set_team("orvo", orvo::perception::Side::left);
    model.place(-3, 1, 0); // where it asked to be beamed, 2.2 m and 30 degrees off
    orvo::perception::PerceptionReader reader;
    orvo::perception::Perception now;
    for (int cycle = 0; cycle < 150; ++cycle) {
        const double yaw_speed = 2.0 * std::cos(2 * M_PI * cycle / 150.0);
        const std::string& got = robot.step("(he1 " + std::to_string(yaw_speed) + ")");
        trainer.update(std::chrono::milliseconds(0));
        ASSERT_TRUE(reader.read(got, now));
        model.update(now, {});
    }
    EXPECT_NEAR(model.pose().x, -4, 0.2);
    EXPECT_NEAR(model.pose().y, 3, 0.2);
    EXPECT_NEAR(model.pose().heading_deg, 30, 3);
}

} // namespace
