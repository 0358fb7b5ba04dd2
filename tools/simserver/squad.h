#ifndef ORVO_TOOLS_SIMSERVER_SQUAD_H
#define ORVO_TOOLS_SIMSERVER_SQUAD_H

#include <orvo/perception/perception.h>
#include <orvo/perception/perception_reader.h>

#include <memory>
#include <string>
#include <vector>

#include "sim_robot.h"

namespace orvo::sim {

/// What each robot of a squad heard in one perception, by join order.
using SquadHeard = std::vector<std::vector<perception::Heard>>;

/// Robots of a server in sync mode, stepped together from one thread: each
/// cycle all send, then all receive, so a test knows which cycle every
/// command and every perception belongs to.
class Squad {
public:
    explicit Squad(int port) : port_(port) {}

    /// Connects a robot while the others wait for the next cycle, and keeps
    /// them answering while it joins (the server steps only once all have).
    /// Returns the number the server gave.
    int join(int type, const std::string& team);
    /// One cycle: robot i sends commands[i] and "(syn)" (missing entries send
    /// nothing else), then every robot receives; returns what each heard.
    const SquadHeard& step(const std::vector<std::string>& commands = {});

    /// The server cycle of the last perception (its clock over 20 ms).
    long long cycle() const { return cycle_; }
    int number(std::size_t i) const { return numbers_.at(i); }
    std::size_t size() const { return robots_.size(); }

private:
    int port_;
    std::vector<std::unique_ptr<SimRobot>> robots_;
    std::vector<int> numbers_;
    perception::PerceptionReader reader_;
    perception::Perception seen_;
    SquadHeard heard_;
    long long cycle_ = 0;
};

} // namespace orvo::sim

#endif
