// The stand-in server's account of a run.

#include "standin_server.h"

#include <orvo/protocol/constants.h>

#include <algorithm>
#include <cstdio>

namespace standin {

namespace {

double seconds_between(Clock::time_point from, Clock::time_point to) {
    return std::chrono::duration<double>(to - from).count();
}

/// One row of the agents' table; `latencies` are the agent's, sorted.
void print_agent_row(std::ostream& out, const Agent& agent, const std::vector<double>& latencies) {
    char latency[96] = "-";
    if (!latencies.empty()) {
        std::snprintf(latency, sizeof latency, "%.0f / %.0f / %.0f", latencies.front(),
                      latencies[latencies.size() / 2], latencies.back());
    }
    char joined[16] = "never";
    if (agent.joined()) {
        std::snprintf(joined, sizeof joined, "%u", agent.joined_cycle);
    }
    char kickoff[48] = "-";
    if (agent.kickoff_position) {
        std::snprintf(kickoff, sizeof kickoff, "%.2f %.2f", agent.kickoff_position->first,
                      agent.kickoff_position->second);
    }
    char line[512];
    std::snprintf(line, sizeof line,
                  "%5d %4d %-12.12s %4d %6s %11u %5u %8u %8u %8llu %5u %6u %8u %-13s %s\n",
                  agent.number, agent.body.type(), agent.team.empty() ? "-" : agent.team.c_str(),
                  agent.unum, joined, agent.perceptions, agent.pairs, agent.answered,
                  agent.messages, static_cast<unsigned long long>(agent.link.bytes_received()),
                  agent.beams, agent.joint_commands, agent.drawings, kickoff, latency);
    out << line;
}

/// What a real server would not have told the agents: one line for each kind.
void print_notes(std::ostream& out, const Agents& agents) {
    for (const auto& agent : agents) {
        for (const Note& note : agent->notes) {
            out << "agent " << agent->number << ": cycle " << note.cycle << ": " << note.text;
            if (note.times > 1) {
                out << " (" << note.times << " times)";
            }
            out << '\n';
        }
    }
}

} // namespace

void StandinServer::print_summary(std::ostream& out) const {
    print_run(out);
    out << "agent type team         unum joined perceptions pairs answered messages    bytes beams"
           " joints drawings kick-off x y   latency us min / median / max\n";
    std::vector<double> all;
    for (const auto& agent : agents) {
        std::vector<double> sorted = agent->latencies_us;
        std::sort(sorted.begin(), sorted.end());
        all.insert(all.end(), sorted.begin(), sorted.end());
        print_agent_row(out, *agent, sorted);
    }
    print_notes(out, agents);
    if (!all.empty()) {
        std::sort(all.begin(), all.end());
        char line[256];
        std::snprintf(line, sizeof line,
                      "all agents: latency us min %.0f, median %.0f, max %.0f over %zu answers\n",
                      all.front(), all[all.size() / 2], all.back(), all.size());
        out << line;
    }
    if (drawings.counts().malformed != 0) {
        out << "malformed drawing datagrams: " << drawings.counts().malformed << '\n';
    }
    out << "picture: " << options.svg_path << '\n';
}

void StandinServer::print_run(std::ostream& out) const {
    char line[512];
    const char* mode = options.sync ? "sync mode" : "real-time mode";
    std::snprintf(line, sizeof line,
                  "stand-in server: %u cycles (%.2f s simulated) in %.2f s wall time, %s "
                  "(slowdown %g, pairs %g), %zu agents (%u expected)\n",
                  cycle, cycle * orvo::protocol::cycle_seconds, seconds_between(started, finished),
                  mode, options.slowdown, options.sync ? 0.0 : options.pairs, agents.size(),
                  options.agents);
    out << line;
    if (agents.size() < options.agents) {
        out << "missing: " << options.agents - agents.size() << " of the " << options.agents
            << " expected agents never connected\n";
    }
    out << "play modes: BeforeKickOff from cycle 1";
    if (referee.kickoff_cycle() != 0) {
        out << ", " << orvo::protocol::name_of(referee.kickoff_mode()) << " from cycle "
            << referee.kickoff_cycle();
        if (referee.play_on_cycle() <= cycle) {
            out << ", PlayOn from cycle " << referee.play_on_cycle();
        }
    }
    out << '\n';
}

} // namespace standin
