// The beliefs as drawings: the pose always, the ball once seen, other robots
// while recently seen, each encoded in the viewer's layout.
#include <gtest/gtest.h>

#include <orvo/beliefs/belief_drawings.h>
#include <orvo/perception/perception_reader.h>
#include <orvo/protocol/drawing_wire.h>

#include <set>
#include <string>

namespace {

std::set<std::string> drawn(const orvo::world::WorldModel& world, double now) {
    orvo::DebugDrawings drawings;
    orvo::beliefs::draw_beliefs(world, drawings, now);
    std::set<std::string> names;
    unsigned char buffer[orvo::DrawingCommand::max_size];
    for (orvo::DrawingCommand* command : drawings.getDrawings()) {
        const int size = command->serialize(0, buffer);
        EXPECT_GT(size, 0);
        EXPECT_LE(size, orvo::DrawingCommand::max_size);
        names.insert(command->name);
    }
    drawings.clear();
    return names;
}

TEST(BeliefDrawings, ShowWhatTheRobotBelieves) {
    orvo::world::WorldModel world(orvo::world::WorldParams::for_type(PARAMS_DIR "/world", 0));
    world.set_team("orvo", orvo::perception::Side::left);
    world.place(-5, 0, 0);
    EXPECT_EQ(drawn(world, 0), (std::set<std::string>{"belief.pose", "belief.pose_spread"}));
    orvo::perception::Perception now;
    ASSERT_TRUE(orvo::perception::PerceptionReader().read(
        "(time (now 1.0))(See (B (pol 2 10 -10)) (P (team orvo) (id 3) (head (pol 4 20 0)))"
        " (P (team them) (id 7) (head (pol 6 -30 0))))",
        now));
    world.update(now, {});
    EXPECT_EQ(drawn(world, 1.0), (std::set<std::string>{"belief.pose", "belief.pose_spread",
                                                        "belief.ball", "belief.ball_velocity",
                                                        "belief.mate.3", "belief.opponent.7"}));
    // Three seconds later the robots are no longer drawn; the ball still is.
    EXPECT_EQ(drawn(world, 4.0).count("belief.mate.3"), 0u);
    EXPECT_EQ(drawn(world, 4.0).count("belief.ball"), 1u);
}

} // namespace
