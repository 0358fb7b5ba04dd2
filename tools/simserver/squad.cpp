#include "squad.h"

#include <chrono>
#include <cmath>

namespace orvo::sim {

// Only the first robot waits long for a perception: once it has one, the
// others' have been sent too; a robot that has just connected may get its
// first a cycle later, so it is asked again next cycle.
int Squad::join(int type, const std::string& team) {
    const bool first = robots_.empty();
    const std::chrono::milliseconds wait(first ? 10000 : 500);
    robots_.push_back(connect_at_rest("127.0.0.1", port_, RobotEntry{type, 0, team, wait}));
    SimRobot& fresh = *robots_.back();
    const std::size_t others = robots_.size() - 1;
    int perceptions = 0;
    for (int cycle = 0; cycle < 100; ++cycle) {
        for (std::size_t i = 0; i < others; ++i) {
            robots_[i]->send("");
        }
        // The "init" goes out only after the first perception has come.
        if (perceptions > 0) {
            fresh.send(perceptions == 1 ? "(init (unum 0)(teamname " + team + "))" : "");
        }
        for (std::size_t i = 0; i < others; ++i) {
            robots_[i]->receive();
        }
        try {
            fresh.receive();
            ++perceptions;
        } catch (const SimRobotError&) {
            if (first || perceptions > 0) {
                throw;
            }
            continue;
        }
        if (const int number = number_in(fresh.last()); number != 0) {
            numbers_.push_back(number);
            return number;
        }
    }
    throw SimRobotError("a robot of team " + team + " got no number within 100 cycles");
}

const SquadHeard& Squad::step(const std::vector<std::string>& commands) {
    for (std::size_t i = 0; i < robots_.size(); ++i) {
        robots_[i]->send(i < commands.size() ? commands[i] : "");
    }
    heard_.resize(robots_.size());
    for (std::size_t i = 0; i < robots_.size(); ++i) {
        heard_[i].clear();
        if (!reader_.read(robots_[i]->receive(), seen_)) {
            continue; // heard nothing readable
        }
        heard_[i].assign(seen_.heard.begin(), seen_.heard.end());
        if (i == 0 && seen_.has_time) {
            cycle_ = std::llround(seen_.time / 0.02);
        }
    }
    return heard_;
}

} // namespace orvo::sim
