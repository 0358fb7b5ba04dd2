#ifndef ORVO_STANDIN_REFEREE_H
#define ORVO_STANDIN_REFEREE_H

#include "agent.h"

#include <orvo/protocol/play_modes.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace standin {

using orvo::protocol::PlayMode;

using Agents = std::vector<std::unique_ptr<Agent>>;

/// The rules a real server enforces on joining, placing and the play modes.
/// Refusals are silent towards the agent, as there; they become notes.
class Referee {
public:
    /// A second of game time after the kick-off the game goes on in PlayOn.
    static constexpr unsigned kickoff_cycles = 50;

    PlayMode mode() const { return current; }
    /// Seconds of game time at `cycle`: none before the kick-off.
    double game_time(unsigned cycle) const;
    /// Kicks off at `cycle` for `side` (0 left); only before the kick-off.
    bool kick_off(int side, unsigned cycle, const Agents& agents);
    /// Moves on to the play mode of `cycle`.
    void advance(unsigned cycle);
    unsigned kickoff_cycle() const { return kicked_off; }
    PlayMode kickoff_mode() const { return kicked_off_as; }
    unsigned play_on_cycle() const { return kicked_off == 0 ? 0 : kicked_off + kickoff_cycles; }

    /// "(init (unum N)(teamname NAME))" of `agent` at `cycle`: joins it or
    /// notes why not.
    void init(Agent& agent, std::string_view command, unsigned cycle, const Agents& agents);
    /// "(beam X Y ROT)" in the agent's own team frame: places it or notes why not.
    void beam(Agent& agent, std::string_view command, unsigned cycle);

private:
    std::string refusal(const Agent& agent, std::string_view team, const Agents& agents) const;

    PlayMode current = PlayMode::BeforeKickOff;
    unsigned kicked_off = 0;
    PlayMode kicked_off_as = PlayMode::KickOff_Left;
    std::vector<std::string> teams;
};

} // namespace standin

#endif
