#ifndef ORVO_DEMO_TEAM_TALK_H
#define ORVO_DEMO_TEAM_TALK_H

#include "roles.h"

#include <orvo/perception/perception.h>

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace demo {

/// What a player tells its team-mates when its turn comes: its number, where
/// it is, the ball as it believes it and how far it is from it, and whether
/// it is the one going for the ball. Positions in the team's frame, which
/// every team-mate shares.
struct MateReport {
    int number = 0;
    Spot self;
    /// Seconds since the speaker last saw the ball (or took it from a mate);
    /// unset: it has not lately.
    std::optional<double> ball_age;
    Spot ball;
    double ball_distance = 0;
    bool chasing = false;
    double heard_at = -1; ///< the listener's server time when heard; < 0: never
};

/// The report as a text the server carries (13 characters), and back; a
/// text of another kind reads as nothing.
std::string encode(const MateReport& report);
std::optional<MateReport> decode(std::string_view text);

/// The team's talk: robots take turns, since a listener hears one team-mate
/// every second cycle at most and one of two who speak together is lost. Number N
/// speaks in the first cycle of turn N of eleven, each turn `turn_cycles`
/// long, so each speaks every 11 turns.
class TeamTalk {
public:
    static constexpr int max_number = 11;

    explicit TeamTalk(int turn_cycles = 2) : turn_cycles_(turn_cycles) {}
    /// Whether number `number` speaks at server time `now` (s).
    bool my_turn(int number, double now) const;
    /// Keeps what the team-mates of `team` said in `perception` (own words
    /// and other teams' are left), stamped with `now`; returns how many.
    int listen(const orvo::perception::Perception& perception, const std::string& team,
               int own_number, double now);
    /// The last report of each number, index 1 to 11 (an unheard one has
    /// heard_at < 0).
    const std::array<MateReport, max_number + 1>& reports() const { return reports_; }
    /// Forgets every report (after a goal, the team starts afresh).
    void forget();

private:
    int turn_cycles_;
    std::array<MateReport, max_number + 1> reports_{};
};

} // namespace demo

#endif
