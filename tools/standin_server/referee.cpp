#include "referee.h"

#include "commands.h"
#include "field_svg.h"

#include <orvo/protocol/constants.h>

#include <algorithm>
#include <array>

namespace standin {

namespace {
using orvo::protocol::cycle_seconds;
constexpr int players_per_team = 11;
// A team must mix robot types: at most this many of one type, and of any two together.
constexpr int max_of_one_type = 7;
constexpr int max_of_two_types = 9;
} // namespace

double Referee::game_time(unsigned cycle) const {
    return kicked_off == 0 || cycle < kicked_off ? 0.0 : (cycle - kicked_off + 1) * cycle_seconds;
}

bool Referee::kick_off(int side, unsigned cycle, const Agents& agents) {
    if (current != PlayMode::BeforeKickOff) {
        return false;
    }
    current = side == 0 ? PlayMode::KickOff_Left : PlayMode::KickOff_Right;
    kicked_off_as = current;
    kicked_off = cycle;
    for (const auto& agent : agents) {
        if (agent->joined()) {
            agent->kickoff_position = std::make_pair(agent->x, agent->y);
        }
    }
    return true;
}

void Referee::advance(unsigned cycle) {
    if (kicked_off != 0 && cycle >= play_on_cycle()) {
        current = PlayMode::PlayOn;
    }
}

std::string Referee::refusal(const Agent& agent, std::string_view team,
                             const Agents& agents) const {
    if (team.empty()) {
        return "init without a team name ignored";
    }
    if (teams.size() == 2 && std::find(teams.begin(), teams.end(), team) == teams.end()) {
        return "init refused: two other teams already play";
    }
    std::array<int, orvo::robot::robot_types> of_type{};
    int players = 0;
    // A robot that left the field no longer counts.
    for (const auto& other : agents) {
        if (other->joined() && !other->link.closed() && other->team == team) {
            ++of_type[static_cast<std::size_t>(other->body.type())];
            ++players;
        }
    }
    const std::string in_team = " in team " + std::string(team);
    if (players >= players_per_team) {
        return "init refused: " + std::to_string(players_per_team) + " players already" + in_team;
    }
    const int type = agent.body.type();
    auto& mine = of_type[static_cast<std::size_t>(type)];
    ++mine;
    if (mine > max_of_one_type) {
        return "init refused: it would be robot " + std::to_string(mine) + " of type " +
               std::to_string(type) + in_team + " (at most " + std::to_string(max_of_one_type) +
               " of one type)";
    }
    for (int other = 0; other < orvo::robot::robot_types; ++other) {
        const int together = mine + of_type[static_cast<std::size_t>(other)];
        if (other != type && together > max_of_two_types) {
            return "init refused: types " + std::to_string(std::min(type, other)) + " and " +
                   std::to_string(std::max(type, other)) + " would be " + std::to_string(together) +
                   " robots" + in_team + " (at most " + std::to_string(max_of_two_types) +
                   " of two types)";
        }
    }
    return "";
}

void Referee::init(Agent& agent, std::string_view command, unsigned cycle, const Agents& agents) {
    // An agent left out of the game (it connected with another) has its note already.
    if (agent.joined() || (!agent.in_game && agent.connected_cycle < cycle)) {
        ++agent.ignored;
        return;
    }
    if (!agent.scene) {
        agent.note(cycle, "init before a scene ignored: there is no robot to join");
        return;
    }
    if (agent.perceptions == 0) {
        // The robot of a scene comes into being when the server next steps.
        agent.note(cycle, "init before the robot's first perception ignored");
        return;
    }
    const std::string team(value_of(command, "teamname").value_or(""));
    if (const std::string why = refusal(agent, team, agents); !why.empty()) {
        agent.note(cycle, why);
        return;
    }
    if (std::find(teams.begin(), teams.end(), team) == teams.end()) {
        teams.push_back(team);
    }
    agent.team = team;
    agent.side = teams.front() == team ? 0 : 1;
    const auto taken = [&](int unum) {
        return std::any_of(agents.begin(), agents.end(), [&](const auto& other) {
            return other->joined() && !other->link.closed() && other->team == team &&
                   other->unum == unum;
        });
    };
    // 0, a number out of range or a taken one: the next free number.
    const auto wanted = to_number(value_of(command, "unum").value_or(""));
    int unum =
        wanted && *wanted >= 1 && *wanted <= players_per_team ? static_cast<int>(*wanted) : 0;
    for (int candidate = 1; unum == 0 || taken(unum); ++candidate) {
        unum = candidate;
    }
    agent.unum = unum;
    agent.joined_cycle = cycle;
    agent.announce = true;
}

void Referee::beam(Agent& agent, std::string_view command, unsigned cycle) {
    const auto values = numbers(command);
    if (!values || values->size() != 3) {
        ++agent.ignored;
        return;
    }
    if (!agent.joined()) {
        agent.note(cycle, "beam ignored: the agent has not joined a team");
        return;
    }
    if (current != PlayMode::BeforeKickOff) {
        // The stand-in has no ball play, hence no goals after which beaming is allowed again.
        agent.note(cycle, "beam ignored after the kick-off");
        return;
    }
    // The team's own frame has its goal at negative x; a beam stays in the own half.
    const double x = (*values)[0], y = (*values)[1], rotation = (*values)[2];
    const auto own_x = static_cast<float>(std::clamp(x, -field_view::field_length / 2.0, 0.0));
    const auto own_y = static_cast<float>(
        std::clamp(y, -field_view::field_width / 2.0, field_view::field_width / 2.0));
    const float mirror = agent.side == 0 ? 1.0f : -1.0f;
    // Adding zero keeps a mirrored 0 from printing as -0.00.
    agent.x = mirror * own_x + 0.0f;
    agent.y = mirror * own_y + 0.0f;
    agent.rotation = static_cast<float>(rotation) + (agent.side == 0 ? 0.0f : 180.0f);
    ++agent.beams;
}

} // namespace standin
