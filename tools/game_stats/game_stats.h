#ifndef ORVO_TOOLS_GAME_STATS_GAME_STATS_H
#define ORVO_TOOLS_GAME_STATS_GAME_STATS_H

#include <orvo/monitor/scene_reader.h>

#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace game_stats {

using orvo::monitor::Side;

struct RobotStats {
    Side side = Side::left;
    int number = 0;
    double walked = 0;   ///< metres walked upright (placements and slides left out)
    int falls = 0;       ///< times it went from upright to fallen
    double on_field = 0; ///< server time it was in the scene (s)
    double falls_per_minute() const { return on_field > 0 ? falls * 60.0 / on_field : 0; }
};

struct Goal {
    double game_time = 0;
    double at = 0; ///< server time since the record began (s)
    Side side = Side::left;
    int score_left = 0, score_right = 0;
};

/// A stretch of the record with one value: a play mode, or the team nearest
/// the ball (-1: nobody on the field, or not during PlayOn).
struct Stretch {
    double from = 0, to = 0; ///< server time since the record began (s)
    int value = 0;
};

struct GameStats {
    std::string team_left, team_right;
    int score_left = 0, score_right = 0;
    long messages = 0, malformed = 0;
    /// Server time the record covers: one monitor interval per message (s).
    double seconds = 0;
    double interval = 0; ///< the monitor's interval (s), from the record's clock
    double first_game_time = 0, last_game_time = 0;
    std::vector<Goal> goals;
    /// Time in PlayOn with each team's robot nearest the ball (s).
    double possession[2] = {0, 0};
    /// Time in PlayOn with two or more of a team's robots within a metre of
    /// the ball (s): a team that agrees on one robot for the ball keeps it low.
    double crowded[2] = {0, 0};
    /// Server time in each play mode (s), by the mode's number.
    std::map<int, double> mode_seconds;
    std::vector<orvo::monitor::Foul> fouls;
    std::vector<double> foul_at;    ///< server time of each foul since the record began (s)
    std::vector<RobotStats> robots; ///< left team first, by number
    std::vector<Stretch> modes, nearest;

    int fouls_of(Side side) const;
};

/// Reads a game's monitor record a message at a time and keeps its
/// statistics. A robot counts as fallen as RobotTruth::fallen() says, and as
/// up again once it has stood for half a second: a torso swaying about the
/// limit is one fall, not many. A foul the referee announces in every cycle
/// it holds the robot counts once.
class Collector {
public:
    /// The monitor's interval when the record's clock does not tell (the
    /// game time stands still before the kick-off): the server's 0.04 s.
    static constexpr double default_interval = 0.04;

    void add(std::string_view message);
    /// The statistics of everything added so far.
    GameStats result() const;

private:
    struct Track {
        RobotStats stats;
        double anchor[2] = {0, 0};
        bool anchored = false;
        bool down = false;
        long up_messages = 0;
    };

    void follow(const orvo::monitor::RobotTruth& robot);
    void note_possession();
    void note_goals();
    void note_foul(const orvo::monitor::Foul& foul, double at);
    static void extend(std::vector<Stretch>& stretches, double from, double to, int value);

    orvo::monitor::SceneReader reader;
    std::map<std::pair<int, int>, Track> tracks;
    GameStats stats;
    std::map<long, long> deltas; ///< game-time steps between messages (ms) and how often
    double last_time = 0;
    std::size_t fouls_read = 0;
    /// When each robot was last called for each kind of foul (game time).
    std::map<std::tuple<int, int, int>, double> last_foul;
    int last_left = 0, last_right = 0;
};

/// The statistics of a record file: one monitor message per line. Throws
/// std::runtime_error when the file cannot be read.
GameStats read_record(const std::string& path);

/// The statistics as a Markdown document.
std::string markdown_table(const GameStats& stats);

/// The game over time (play modes, the team nearest the ball, goals, fouls)
/// and each robot's walk and falls, as an SVG picture.
std::string plot_svg(const GameStats& stats);

/// "home (left)", or "left" when the team has no name.
std::string team_label(const GameStats& stats, Side side);

} // namespace game_stats

#endif
