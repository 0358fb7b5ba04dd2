// What the server does with the messages of agents and monitors.

#include "standin_server.h"

#include "commands.h"

#include <orvo/protocol/constants.h>

#include <cmath>
#include <cstdio>

namespace standin {

namespace {
constexpr std::size_t max_say = 20;
using orvo::protocol::degrees_per_radian;
} // namespace

void StandinServer::handle_message(Agent& agent, std::string_view message) {
    const auto received = Clock::now();
    ++agent.messages;
    if (log.is_open()) {
        log << agent.number << '\t' << agent.unum << '\t' << cycle << '\t' << message << '\n';
    }
    for (const Command& command : split_commands(message)) {
        if (command.name == "syn") {
            if (agent.awaiting) {
                agent.awaiting = false;
                ++agent.answered;
                agent.latencies_us.push_back(
                    std::chrono::duration<double, std::micro>(received - agent.perception_sent)
                        .count());
            }
        } else if (command.name == "scene") {
            handle_scene(agent, command.text);
        } else if (command.name == "init") {
            referee.init(agent, command.text, cycle, agents);
        } else if (command.name == "beam") {
            referee.beam(agent, command.text, cycle);
        } else if (command.name == "say") {
            say(agent, command.text);
        } else {
            // Joint speeds such as "(he1 0.5)" or "(lle3 -1)", in rad/s.
            const auto args = arguments(command.text);
            const auto speed = args.size() == 1 ? to_number(args[0]) : std::nullopt;
            if (speed && agent.body.command(command.name, *speed)) {
                ++agent.joint_commands;
            } else {
                ++agent.ignored;
            }
        }
    }
}

void StandinServer::handle_scene(Agent& agent, std::string_view command) {
    const auto args = arguments(command);
    const bool hetero = args.size() == 2 && args[0] == "rsg/agent/nao/nao_hetero.rsg";
    const double type = hetero ? to_number(args[1]).value_or(-1) : -1;
    if (agent.scene) {
        agent.note(cycle, "second scene ignored: the robot exists");
    } else if (args.size() == 1 && args[0] == "rsg/agent/nao/nao.rsg") {
        agent.scene = true;
    } else if (type >= 0 && type < orvo::robot::robot_types && type == std::floor(type)) {
        agent.scene = true;
        agent.body.set_type(static_cast<int>(type));
    } else {
        agent.note(cycle, "scene not known: " + std::string(command));
    }
}

void StandinServer::say(Agent& speaker, std::string_view command) {
    const auto args = arguments(command);
    if (!speaker.joined() || args.size() != 1 || args[0].size() > max_say) {
        ++speaker.ignored;
        return;
    }
    char time[32];
    std::snprintf(time, sizeof time, " %.2f ", referee.game_time(cycle));
    const std::string text = " " + std::string(args[0]) + ")";
    for (auto& listener : agents) {
        if (!listener->joined() || listener->link.closed()) {
            continue;
        }
        char from[32] = "self";
        if (listener.get() != &speaker) {
            // Where the voice comes from, as the listener faces.
            const double azimuth =
                std::atan2(speaker.y - listener->y, speaker.x - listener->x) * degrees_per_radian;
            std::snprintf(from, sizeof from, "%.2f",
                          std::remainder(azimuth - listener->rotation, 360.0));
        }
        listener->heard.push_back("(hear " + speaker.team + time + from + text);
    }
}

void StandinServer::handle_monitor(std::string_view message) {
    for (const Command& command : split_commands(message)) {
        const auto args = arguments(command.text);
        if (command.name == "kickOff" && args.size() == 1 &&
            (args[0] == "Left" || args[0] == "Right")) {
            kickoff_side = args[0] == "Left" ? 0 : 1;
        }
    }
}

} // namespace standin
