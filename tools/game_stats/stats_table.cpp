#include "game_stats.h"

#include <orvo/monitor/play_modes.h>

#include <cstdio>
#include <sstream>

namespace game_stats {

namespace {

std::string fixed(double value, int decimals = 1) {
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string share(double part, double whole) {
    return whole > 0 ? fixed(100.0 * part / whole, 0) + " %" : "-";
}

void write_goals(std::ostream& out, const GameStats& stats) {
    out << "## Goals\n\n";
    if (stats.goals.empty()) {
        out << "None.\n\n";
        return;
    }
    out << "| game time (s) | scored by | score |\n|---:|---|---|\n";
    for (const auto& goal : stats.goals) {
        out << "| " << fixed(goal.game_time) << " | " << team_label(stats, goal.side) << " | "
            << goal.score_left << " : " << goal.score_right << " |\n";
    }
    out << '\n';
}

void write_possession(std::ostream& out, const GameStats& stats) {
    const double total = stats.possession[0] + stats.possession[1];
    out << "## Possession\n\nThe team whose robot is nearest the ball, during PlayOn, and the "
           "time two or more of its robots were within a metre of the ball.\n\n"
        << "| team | time (s) | share | two at the ball (s) |\n|---|---:|---:|---:|\n";
    for (const Side side : {Side::left, Side::right}) {
        const int index = side == Side::left ? 0 : 1;
        const double time = stats.possession[index];
        out << "| " << team_label(stats, side) << " | " << fixed(time) << " | "
            << share(time, total) << " | " << fixed(stats.crowded[index]) << " |\n";
    }
    out << '\n';
}

void write_fouls(std::ostream& out, const GameStats& stats) {
    out << "## Fouls\n\nAs the referee calls them in the monitor's header.\n\n"
        << "| team | fouls |\n|---|---:|\n";
    for (const Side side : {Side::left, Side::right}) {
        out << "| " << team_label(stats, side) << " | " << stats.fouls_of(side) << " |\n";
    }
    if (!stats.fouls.empty()) {
        out << "\n| # | game time (s) | team | robot | foul |\n|---:|---:|---|---:|---|\n";
        for (const auto& foul : stats.fouls) {
            out << "| " << foul.index << " | " << fixed(foul.time) << " | "
                << team_label(stats, foul.side) << " | " << foul.number << " | " << foul.type_name()
                << " |\n";
        }
    }
    out << '\n';
}

void write_modes(std::ostream& out, const GameStats& stats) {
    out << "## Time in each play mode\n\n| play mode | time (s) | share |\n|---|---:|---:|\n";
    for (const auto& [mode, seconds] : stats.mode_seconds) {
        const auto name = orvo::monitor::play_mode_name(mode);
        out << "| " << (name.empty() ? "mode " + std::to_string(mode) : std::string(name)) << " | "
            << fixed(seconds) << " | " << share(seconds, stats.seconds) << " |\n";
    }
    out << '\n';
}

void write_robots(std::ostream& out, const GameStats& stats) {
    out << "## Robots\n\nWalked: metres the torso covered upright, in steps of at least 5 cm; "
           "a jump of over 1 m between two updates (a placement) is left out. A fall: the "
           "torso's up axis more than 53 degrees from the vertical, or the torso below 0.25 m; "
           "up again after half a second upright.\n\n"
        << "| team | robot | walked (m) | falls | on the field (s) | falls per minute |\n"
        << "|---|---:|---:|---:|---:|---:|\n";
    for (const auto& robot : stats.robots) {
        out << "| " << team_label(stats, robot.side) << " | " << robot.number << " | "
            << fixed(robot.walked) << " | " << robot.falls << " | " << fixed(robot.on_field)
            << " | " << fixed(robot.falls_per_minute(), 2) << " |\n";
    }
    out << '\n';
}

} // namespace

std::string markdown_table(const GameStats& stats) {
    std::ostringstream out;
    out << "# " << team_label(stats, Side::left) << ' ' << stats.score_left << " : "
        << stats.score_right << ' ' << team_label(stats, Side::right) << "\n\n"
        << stats.messages << " monitor messages, " << fixed(stats.seconds)
        << " s of server time (one message every " << fixed(stats.interval, 2) << " s), game time "
        << fixed(stats.first_game_time) << " to " << fixed(stats.last_game_time) << " s, "
        << stats.malformed << " malformed.\n\n";
    write_goals(out, stats);
    write_possession(out, stats);
    write_fouls(out, stats);
    write_modes(out, stats);
    write_robots(out, stats);
    return out.str();
}

} // namespace game_stats
