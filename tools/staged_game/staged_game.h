#ifndef ORVO_TOOLS_STAGED_GAME_STAGED_GAME_H
#define ORVO_TOOLS_STAGED_GAME_STAGED_GAME_H

#include <atomic>
#include <string>

namespace orvo::sim {

struct StagedGameOptions {
    int left = 3;  ///< robots of the left team
    int right = 2; ///< robots of the right team
    /// Game time to play after the kick-off (s); 0: until stopped.
    double seconds = 0;
    /// One cycle per 20 ms of wall time, so that a person can watch; else as
    /// fast as the server steps.
    bool paced = false;
    /// The scripted moments: a robot led across the field, a goal, a fall.
    bool scripted = true;
    /// Receives "SERVER-PID AGENT-PORT MONITOR-PORT" once every robot is on
    /// the field and placed.
    std::string ready_file;
    /// Where the server's own output goes (empty: nowhere kept).
    std::string log_path;
    /// Where the monitor stream goes, one message per line, from the first
    /// robot's joining on (empty: not recorded).
    std::string record_path;
};

/// A game staged on a real server of its own, in sync mode: bare robots of
/// two teams join and hold their joints, the trainer places them in a
/// formation, starts the game and, when scripted, walks one robot of each
/// team towards the ball by small placements, shoots the ball into the right
/// goal and makes one robot collapse, where it lies until the referee calls
/// it incapable. For watching the live page and for
/// recording games without a team that plays.
///
/// Returns once `seconds` of game time have passed or `stop` is set; the
/// server it started is stopped by then. Throws when the server or a robot
/// fails.
void run_staged_game(const StagedGameOptions& options, const std::atomic<bool>& stop);

} // namespace orvo::sim

#endif
