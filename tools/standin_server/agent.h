#ifndef ORVO_STANDIN_AGENT_H
#define ORVO_STANDIN_AGENT_H

#include "body.h"
#include "link.h"

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace standin {

using Clock = std::chrono::steady_clock;

/// Something the server refused or ignored, told once per kind in the summary.
struct Note {
    unsigned cycle = 0; ///< the first time
    std::string text;
    unsigned times = 1;
};

/// One connected agent as the server sees it: its connection, its robot and
/// its place in the game, and what the summary reports of it.
struct Agent {
    Agent(int fd, int number_, unsigned cycle)
        : link(fd), number(number_), connected_cycle(cycle) {}

    bool joined() const { return joined_cycle != 0; }
    /// Records `text` once; later occurrences only count.
    void note(unsigned cycle, std::string text);

    Link link;
    int number;               ///< connection order, from 1
    unsigned connected_cycle; ///< the server cycle during which the connection arrived
    bool in_game = false;     ///< not left out for connecting with another
    bool scene = false;       ///< its robot exists
    /// Whether it perceives this cycle: its robot exists from the cycle after
    /// the connection and the scene, as on a real server.
    bool perceives() const { return in_game && scene && !link.closed(); }
    Body body;

    std::string team;
    int side = 0; ///< 0 left, 1 right
    int unum = 0;
    unsigned joined_cycle = 0;
    bool announce = false; ///< the next game state tells the number and side, once
    std::vector<Note> notes;

    float x = 0, y = 0, z = 0.35f, rotation = 0; ///< field frame, degrees
    std::optional<std::pair<float, float>> kickoff_position;

    std::string held;               ///< a perception held back to go out with the next one
    std::vector<std::string> heard; ///< "(hear ...)" elements for the next perception

    bool awaiting = false; ///< a perception went out and its "(syn)" has not come
    Clock::time_point perception_sent;
    unsigned perceptions = 0, pairs = 0, answered = 0, messages = 0, beams = 0, joint_commands = 0,
             ignored = 0, drawings = 0;
    std::vector<double> latencies_us;
};

inline void Agent::note(unsigned cycle, std::string text) {
    for (Note& known : notes) {
        if (known.text == text) {
            ++known.times;
            return;
        }
    }
    notes.push_back(Note{cycle, std::move(text)});
}

} // namespace standin

#endif
