// Game statistics from monitor streams: the server's recorded sample changed
// where a game would change it, and a game recorded on the real server (a
// goal, robots led across the field, a robot that collapses and is called
// for it).
#include "game_stats.h"

#include <orvo/monitor/play_modes.h>

#include <support/text.h>

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace {

using game_stats::Collector;
using game_stats::GameStats;
using orvo::monitor::Side;

using orvo_test::count_of;

/// The sample stream (robots 1 and 2 of the left team, PlayOn, 30 messages
/// 0.04 s apart) with robot 1's torso moved and headers changed per message.
class SampleGame : public ::testing::Test {
protected:
    void SetUp() override {
        lines = orvo_test::read_lines(MONITOR_SAMPLE);
        ASSERT_EQ(lines.size(), 30u);
    }

    /// Message `i` with robot 1's torso (the node placed at (-5, 2)) at
    /// (x, y), upright or on its back.
    std::string torso_at(std::size_t i, double x, double y, bool lying) const {
        const std::string at = std::to_string(x) + ' ' + std::to_string(y);
        return orvo_test::moved(lines[0], lines[i], "-5 2 0.4 1)",
                                lying ? "0 1 0 0 0 0 1 0 1 0 0 0 " + at + " 0.1 1"
                                      : "1 0 0 0 0 1 0 0 0 0 1 0 " + at + " 0.38 1");
    }

    /// Message `i` with `header` in place of its own.
    std::string with_header(std::size_t i, const std::string& header) const {
        return header + lines[i].substr(lines[i].find("(RDS 0 1)"));
    }

    std::vector<std::string> lines;
};

TEST_F(SampleGame, RobotsWalkAndFallAsTheirTorsoShows) {
    struct Pose {
        double x, y;
        bool lying;
    };
    struct Case {
        const char* what;
        std::map<std::size_t, Pose> poses; ///< by message
        double walked;
        int falls;
    };
    std::map<std::size_t, Pose> metre;
    for (std::size_t i = 2; i <= 11; ++i) {
        metre[i] = {-5 + 0.1 * static_cast<double>(i - 1), 2, false};
    }
    const Case cases[] = {
        {"standing still", {}, 0, 0},
        {"a metre in ten steps", metre, 1.0, 0},
        {"swaying by 2 cm",
         {{2, {-4.98, 2, false}}, {3, {-5.0, 2, false}}, {4, {-4.98, 2, false}}},
         0,
         0},
        {"placed 5 m away", {{2, {0, 2, false}}}, 0, 0},
        {"a fall and a slide on the ground", {{5, {-5, 2, true}}, {6, {-4, 2, true}}}, 0, 1},
        {"up again for half a second, then down",
         {{5, {-5, 2, true}}, {6, {-5, 2, false}}, {20, {-5, 2, true}}},
         0,
         2},
        {"up for a moment only",
         {{5, {-5, 2, true}}, {6, {-5, 2, false}}, {9, {-5, 2, true}}},
         0,
         1},
    };
    for (const Case& c : cases) {
        Collector collector;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const auto pose = c.poses.find(i);
            collector.add(pose == c.poses.end()
                              ? lines[i]
                              : torso_at(i, pose->second.x, pose->second.y, pose->second.lying));
        }
        const GameStats stats = collector.result();
        ASSERT_EQ(stats.robots.size(), 2u) << c.what;
        const auto& one = stats.robots[0];
        EXPECT_EQ(one.number, 1) << c.what;
        EXPECT_NEAR(one.walked, c.walked, 1e-3) << c.what;
        EXPECT_EQ(one.falls, c.falls) << c.what;
        EXPECT_NEAR(one.on_field, 30 * 0.04, 1e-9) << c.what;
        EXPECT_NEAR(one.falls_per_minute(), c.falls * 60 / 1.2, 1e-9) << c.what;
        EXPECT_EQ(stats.robots[1].walked, 0) << c.what;
    }
}

TEST_F(SampleGame, GoalsPlayModesAndPossessionFollowTheHeaders) {
    const int play_on = orvo::monitor::play_mode_number("PlayOn");
    const int goal_left = orvo::monitor::play_mode_number("Goal_Left");
    const int kick_off_right = orvo::monitor::play_mode_number("KickOff_Right");
    Collector collector;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string time =
            "(time " + std::to_string(1.48 + 0.04 * static_cast<double>(i)) + ")";
        std::string header;
        if (i == 10) {
            header = "(" + time + "(score_left 1)(play_mode 13))";
        } else if (i == 15) {
            header = "(" + time + "(play_mode 2))";
        } else if (i == 20) {
            // Two goals in one message, and one for the other side.
            header = "(" + time + "(score_left 3)(score_right 1)(play_mode 3)(foul 1 4 1 2))";
        }
        collector.add(header.empty() ? lines[i] : with_header(i, header));
    }
    const GameStats stats = collector.result();
    EXPECT_NEAR(stats.interval, 0.04, 1e-9);
    EXPECT_NEAR(stats.seconds, 1.2, 1e-9);
    ASSERT_EQ(stats.goals.size(), 4u);
    EXPECT_EQ(stats.goals[0].side, Side::left);
    EXPECT_NEAR(stats.goals[0].at, 0.4, 1e-9);
    EXPECT_EQ(stats.goals[3].side, Side::right);
    EXPECT_EQ(stats.goals[3].score_left, 3);
    EXPECT_EQ(stats.score_left, 3);
    EXPECT_NEAR(stats.mode_seconds.at(play_on), 20 * 0.04, 1e-9);
    EXPECT_NEAR(stats.mode_seconds.at(goal_left), 5 * 0.04, 1e-9);
    EXPECT_NEAR(stats.mode_seconds.at(kick_off_right), 5 * 0.04, 1e-9);
    // Only left robots are on the field: theirs whenever the ball is in play.
    EXPECT_NEAR(stats.possession[0], 20 * 0.04, 1e-9);
    EXPECT_EQ(stats.possession[1], 0);
    EXPECT_EQ(stats.fouls_of(Side::left), 1);
    EXPECT_NEAR(stats.foul_at.at(0), 0.8, 1e-9);

    const std::string plot = game_stats::plot_svg(stats);
    EXPECT_EQ(count_of(plot, "class=\"goal\""), 4u);
    EXPECT_EQ(count_of(plot, "class=\"foul\""), 1u);
    const std::string table = game_stats::markdown_table(stats);
    EXPECT_NE(table.find("| Goal_Left | 0.2 | 17 % |"), std::string::npos) << table;
    EXPECT_NE(table.find("| probe (left) | 2 | incapable |"), std::string::npos) << table;
}

TEST(RecordedGame, ShowsWhatTheStagedGameDid) {
    // Home 2 and away 2 were led 6.9 m and 4.9 m; the ball was shot into
    // the right goal; home 3 collapsed and lay until the referee called it.
    const GameStats stats = game_stats::read_record(STAGED_GAME);
    EXPECT_EQ(stats.malformed, 0);
    EXPECT_NEAR(stats.interval, 0.04, 1e-9);
    EXPECT_EQ(stats.team_left, "home");
    ASSERT_EQ(stats.goals.size(), 1u);
    EXPECT_EQ(stats.goals[0].side, Side::left);
    EXPECT_EQ(stats.score_left, 1);
    EXPECT_EQ(stats.score_right, 0);
    ASSERT_EQ(stats.fouls.size(), 1u);
    EXPECT_EQ(stats.fouls[0].type_name(), "incapable");
    EXPECT_EQ(stats.fouls[0].side, Side::left);
    EXPECT_EQ(stats.fouls[0].number, 3);

    double modes = 0;
    for (const auto& entry : stats.mode_seconds) {
        modes += entry.second;
    }
    EXPECT_NEAR(modes, stats.seconds, 1e-6);
    const double play_on = stats.mode_seconds.at(orvo::monitor::play_mode_number("PlayOn"));
    EXPECT_NEAR(stats.possession[0] + stats.possession[1], play_on, 1e-6);
    EXPECT_GT(stats.possession[0], stats.possession[1]);

    struct Expected {
        Side side;
        int number;
        double walked_min, walked_max;
        int falls;
    };
    const Expected robots[] = {{Side::left, 1, 0, 0.3, 0},
                               {Side::left, 2, 6.3, 7.3, 0},
                               {Side::left, 3, 0, 1.0, 1},
                               {Side::right, 1, 0, 0.3, 0},
                               {Side::right, 2, 4.5, 5.4, 0}};
    ASSERT_EQ(stats.robots.size(), std::size(robots));
    for (std::size_t i = 0; i < std::size(robots); ++i) {
        const auto& robot = stats.robots[i];
        EXPECT_EQ(robot.side, robots[i].side) << i;
        EXPECT_EQ(robot.number, robots[i].number) << i;
        EXPECT_GE(robot.walked, robots[i].walked_min) << i;
        EXPECT_LE(robot.walked, robots[i].walked_max) << i;
        EXPECT_EQ(robot.falls, robots[i].falls) << i;
        EXPECT_GT(robot.on_field, 0.9 * stats.seconds) << i;
    }
}

} // namespace
