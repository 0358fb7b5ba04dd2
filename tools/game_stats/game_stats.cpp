#include "game_stats.h"

#include <orvo/monitor/play_modes.h>
#include <orvo/protocol/constants.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <stdexcept>

namespace game_stats {

namespace {

// Until the result, every time is counted in messages: the monitor's
// interval is known only once the record's clock has run for a while.

/// Less than this from where a robot was last counted is a torso swaying
/// in place, not walking.
constexpr double min_step = 0.05;
/// More than this between two sightings is a placement by the trainer or
/// the referee, not walking.
constexpr double max_step = 1.0;
/// Messages upright (half a second at the server's interval) before a robot
/// that fell counts as up again.
constexpr long up_again = 12;
/// The referee holds a robot it has called up in the air for half a second
/// and announces the foul again in every cycle of the hold: the same foul
/// of the same robot within this time is that one foul.
constexpr double hold = 1.0;
/// Robots this far outside the lines were put off the field by the referee
/// and play no part in who is nearest the ball.
constexpr double off_field = 1.0;

int side_index(Side side) {
    return side == Side::left ? 0 : 1;
}

bool on_field(const orvo::monitor::RobotTruth& robot) {
    return std::abs(robot.x) <= orvo::protocol::field_length / 2 + off_field &&
           std::abs(robot.y) <= orvo::protocol::field_width / 2 + off_field;
}

} // namespace

int GameStats::fouls_of(Side side) const {
    return static_cast<int>(std::count_if(fouls.begin(), fouls.end(),
                                          [side](const auto& foul) { return foul.side == side; }));
}

void Collector::add(std::string_view message) {
    reader.read(message);
    const auto& truth = reader.truth();
    if (stats.messages == 0) {
        stats.first_game_time = truth.time;
    } else if (truth.time > last_time) {
        ++deltas[std::lround((truth.time - last_time) * 1000)];
    }
    last_time = truth.time;
    stats.last_game_time = truth.time;
    const double at = static_cast<double>(stats.messages++);
    stats.mode_seconds[truth.play_mode] += 1;
    extend(stats.modes, at, at + 1, truth.play_mode);
    for (const auto& robot : truth.robots) {
        follow(robot);
    }
    note_possession();
    note_goals();
    for (; fouls_read < truth.fouls.size(); ++fouls_read) {
        note_foul(truth.fouls[fouls_read], at);
    }
}

void Collector::note_foul(const orvo::monitor::Foul& foul, double at) {
    const auto key = std::make_tuple(side_index(foul.side), foul.number, foul.type);
    const auto last = last_foul.find(key);
    const bool held = last != last_foul.end() && foul.time - last->second <= hold;
    last_foul[key] = foul.time;
    if (!held) {
        stats.fouls.push_back(foul);
        stats.foul_at.push_back(at);
    }
}

void Collector::follow(const orvo::monitor::RobotTruth& robot) {
    if (robot.number <= 0) {
        return; // joining: the server has not numbered it yet
    }
    const auto key = std::make_pair(side_index(robot.side), robot.number);
    const bool seen = tracks.count(key) > 0;
    Track& track = tracks[key];
    track.stats.side = robot.side;
    track.stats.number = robot.number;
    track.stats.on_field += 1;
    const bool fallen = robot.fallen();
    if (fallen) {
        // A robot first seen lying was not seen to fall.
        track.stats.falls += seen && !track.down ? 1 : 0;
        track.down = true;
        track.up_messages = 0;
        track.anchored = false; // a slide on the ground is no walk
        return;
    }
    if (++track.up_messages >= up_again || !seen) {
        track.down = false;
    }
    const double dx = robot.x - track.anchor[0], dy = robot.y - track.anchor[1];
    const double step = std::hypot(dx, dy);
    if (track.anchored && step < min_step) {
        return;
    }
    if (track.anchored && step <= max_step) {
        track.stats.walked += step;
    }
    track.anchor[0] = robot.x;
    track.anchor[1] = robot.y;
    track.anchored = true;
}

void Collector::note_possession() {
    const auto& truth = reader.truth();
    int nearest = -1;
    if (truth.play_mode == orvo::monitor::play_mode_number("PlayOn")) {
        double best = 0;
        int at_ball[2] = {0, 0};
        for (const auto& robot : truth.robots) {
            const double distance = std::hypot(robot.x - truth.ball[0], robot.y - truth.ball[1]);
            if (on_field(robot) && (nearest < 0 || distance < best)) {
                best = distance;
                nearest = side_index(robot.side);
            }
            at_ball[side_index(robot.side)] += on_field(robot) && distance < 1.0 ? 1 : 0;
        }
        for (int side = 0; side < 2; ++side) {
            stats.crowded[side] += at_ball[side] >= 2 ? 1 : 0;
        }
    }
    if (nearest >= 0) {
        stats.possession[nearest] += 1;
    }
    const double at = static_cast<double>(stats.messages - 1);
    extend(stats.nearest, at, at + 1, nearest);
}

void Collector::note_goals() {
    const auto& truth = reader.truth();
    const double at = static_cast<double>(stats.messages - 1);
    // A score that goes down is a new game on the same connection.
    for (int n = last_left + 1; n <= truth.score_left; ++n) {
        stats.goals.push_back({truth.time, at, Side::left, n, truth.score_right});
    }
    for (int n = last_right + 1; n <= truth.score_right; ++n) {
        stats.goals.push_back({truth.time, at, Side::right, truth.score_left, n});
    }
    last_left = truth.score_left;
    last_right = truth.score_right;
}

void Collector::extend(std::vector<Stretch>& stretches, double from, double to, int value) {
    if (!stretches.empty() && stretches.back().value == value && stretches.back().to == from) {
        stretches.back().to = to;
    } else {
        stretches.push_back({from, to, value});
    }
}

GameStats Collector::result() const {
    GameStats out = stats;
    // The clock's most common step is the interval; a step of several
    // intervals (a stalled stream) or a paused clock must not set it.
    out.interval = default_interval;
    long most = 0;
    for (const auto& [milliseconds, count] : deltas) {
        if (count > most) {
            most = count;
            out.interval = milliseconds / 1000.0;
        }
    }
    const double k = out.interval;
    out.seconds = static_cast<double>(out.messages) * k;
    for (auto& entry : out.mode_seconds) {
        entry.second *= k;
    }
    out.possession[0] *= k;
    out.possession[1] *= k;
    out.crowded[0] *= k;
    out.crowded[1] *= k;
    for (auto* stretches : {&out.modes, &out.nearest}) {
        for (auto& stretch : *stretches) {
            stretch.from *= k;
            stretch.to *= k;
        }
    }
    for (auto& goal : out.goals) {
        goal.at *= k;
    }
    for (auto& at : out.foul_at) {
        at *= k;
    }
    for (const auto& entry : tracks) {
        out.robots.push_back(entry.second.stats);
        out.robots.back().on_field *= k;
    }
    const auto& truth = reader.truth();
    out.team_left = truth.team_left;
    out.team_right = truth.team_right;
    out.score_left = truth.score_left;
    out.score_right = truth.score_right;
    out.malformed = reader.counts().malformed;
    return out;
}

GameStats read_record(const std::string& path) {
    std::ifstream in(path);
    if (!in) {
        throw std::runtime_error("cannot read " + path);
    }
    Collector collector;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty()) {
            collector.add(line);
        }
    }
    if (in.bad()) {
        throw std::runtime_error("cannot read " + path);
    }
    return collector.result();
}

std::string team_label(const GameStats& stats, Side side) {
    const std::string& name = side == Side::left ? stats.team_left : stats.team_right;
    const char* where = side == Side::left ? "left" : "right";
    return name.empty() ? where : name + " (" + where + ")";
}

} // namespace game_stats
