#include "team_agent.h"

#include "play_soccer.h"
#include "posture.h"
#include "take_position.h"
#include "team_configuration.h"
#include "world_model.h"

#include <orvo/behaviors/behavior.h>
#include <orvo/communication/messenger.h>
#include <orvo/core/exception.h>
#include <orvo/knowledgebase/actionlog.h>
#include <orvo/net/comm_unit.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>

namespace demo {

namespace {
constexpr const char* source_file = "demo/team_agent.cpp";

std::string where(const char* function, int line) {
    return orvo::gen_ffl_string(source_file, function, line);
}
} // namespace

void TeamAgent::link(orvo::Class_Map& classes) {
    messenger = orvo::get_class<orvo::communication::Messenger>(*this, "messenger", classes);
    communit = orvo::get_class<orvo::net::CommUnit>(*this, "communit", classes);
    configuration = orvo::get_class<TeamConfiguration>(*this, "configuration", classes);
    world = orvo::get_class<WorldModel>(*this, "worldmodel", classes);
    action_log = orvo::get_class<orvo::knowledgebase::ActionLog>(*this, "actionlog", classes);
    take_position = orvo::get_class<TakePosition>(*this, "behavior_take_position", classes);
    spread_out = orvo::get_class<orvo::behaviors::Behavior>(*this, "behavior_spread_out", classes);
    hold_position =
        orvo::get_class<orvo::behaviors::Behavior>(*this, "behavior_hold_position", classes);
    play_soccer = orvo::get_class<PlaySoccer>(*this, "behavior_play", classes);
    posture = orvo::get_class<Posture>(*this, "skill_posture", classes);
}

void TeamAgent::run() {
    const Settings& settings = configuration->settings;
    if (settings.play) {
        // A playing team stands on its formation at the kick-off: spread out
        // or off its spot at random, the keeper stood up to 1.4 m off its
        // line and stepped off at the kick-off.
        take_position->set_jitter(0);
    }
    if (!communit->is_connected()) {
        throw orvo::Exception(where("run", __LINE__),
                              "cannot connect to the server at " + settings.host + ":" +
                                  std::to_string(settings.port) + " (is it running?)",
                              "Exception");
    }
    // Commands go out as several small frames per cycle; without this each
    // would wait for the acknowledgement of the one before.
    const int yes = 1;
    setsockopt(communit->get_socket().getFD(), IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);

    gate.open(settings.sync_lock);
    // The robot comes onto the field now; it joins the team with the first perception.
    char scene[64];
    std::snprintf(scene, sizeof scene, "(scene rsg/agent/nao/nao_hetero.rsg %u)", settings.type);
    messenger->send_message(scene);

    // Enough for a whole real game without growing in the middle of it.
    cycle_micros.reserve(settings.cycles != 0 && settings.cycles < 8192 ? settings.cycles : 8192);
    const std::chrono::milliseconds wait(std::chrono::seconds(settings.wait));
    // The game's length counts from the kick-off: however long the team took
    // to gather, every agent plays the same cycles of it.
    while (settings.cycles == 0 || !kicked_off ||
           clock.cycles() - before_kick_off < settings.cycles) {
        const orvo::net::Received got = messenger->receive(wait);
        if (got == orvo::net::Received::closed) {
            if (settings.cycles == 0) {
                break; // the game lasts as long as the server keeps the connection
            }
            report(std::cout);
            const unsigned played = kicked_off ? clock.cycles() - before_kick_off : 0;
            throw std::runtime_error("the server went away after " + std::to_string(played) +
                                     " of " + std::to_string(settings.cycles) +
                                     " cycles of the game");
        }
        if (got == orvo::net::Received::timed_out) {
            throw orvo::Exception(where("run", __LINE__),
                                  "no message from the server for " +
                                      std::to_string(settings.wait) + " s",
                                  "Exception");
        }
        const auto received = std::chrono::steady_clock::now();
        play(messenger->get_message());
        cycle_micros.push_back(
            std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - received)
                .count());
    }
    report(std::cout);
}

void TeamAgent::play(const std::string& message) {
    if (!reader.read(message, perception) || !perception.has_time) {
        ++unreadable; // still answered, so that a synchronous server goes on
    } else {
        lost_elements += perception.lost_elements;
        if (perception.lost_elements != 0 && lost_examples.size() < 3) {
            lost_examples.push_back(message); // shown after the report
        }
        clock.perceived(perception.time);
        world->update(perception);
        if (!kicked_off && world->kicked_off()) {
            kicked_off = true;
            before_kick_off = clock.cycles() - 1;
        }
        act();
    }
    world->drawings().execute();
    const SyncGate::Pass pass(gate);
    messenger->send_message("(syn)");
}

void TeamAgent::act() {
    if (!joined) {
        join();
        return;
    }
    // Until the server has told the agent its number, it cannot take its place.
    if (world->number() == 0) {
        return;
    }
    if (!world->may_beam()) {
        if (configuration->settings.play) {
            (*play_soccer)();
        } else {
            (*hold_position)();
        }
    } else if (!world->has_beamed()) {
        (*take_position)();
        placed_at = world->seconds();
    } else if (configuration->settings.play && !kicked_off) {
        // A robot beamed as it came onto the field sometimes falls landing
        // (its joints not yet in their posture); one second later it stands
        // in it, and a second beam puts it on its feet whatever happened.
        if (placed_at >= 0 && world->seconds() - placed_at >= replace_after_s) {
            (*take_position)();
            placed_at = -1;
        } else {
            (*hold_position)();
        }
    } else if (configuration->settings.play) {
        play_soccer->between_goals();
    } else {
        (*spread_out)();
    }
}

void TeamAgent::join() {
    // A server ignores an "init" that arrives before it has sent the robot a perception.
    char init[96];
    const Settings& settings = configuration->settings;
    std::snprintf(init, sizeof init, "(init (unum %u)(teamname %s))", settings.unum,
                  settings.team.c_str());
    messenger->send_message(init);
    joined = true;
}

void TeamAgent::report(std::ostream& out) {
    const Settings& settings = configuration->settings;
    out << "agent " << world->number() << " of team " << settings.team << " ("
        << (world->on_right_side() ? "right" : "left") << "): " << clock.cycles() << " cycles";
    if (unreadable != 0) {
        out << ", " << unreadable << " unreadable messages";
    }
    if (lost_elements != 0) {
        out << ", " << lost_elements << (lost_elements == 1 ? " element" : " elements")
            << " lost to values that are not numbers";
    }
    out << "\nperceptions: " << clock.received() << " received, " << clock.missed() << " missed\n";
    char joints[96];
    std::snprintf(joints, sizeof joints,
                  "joints: worst error %.1f degrees over the last %zu cycles\n",
                  posture->worst_recent_error(), Posture::window);
    out << joints;
    if (play_soccer != nullptr && play_soccer->talk_counts().played != 0) {
        const PlaySoccer::TalkCounts& talk = play_soccer->talk_counts();
        out << "talk: said " << talk.said << ", heard " << talk.heard
            << " from team-mates; went for the ball in " << talk.chased << " of " << talk.played
            << " cycles played\n";
    }
    out << '\n';
    action_log->print(out);
    out << '\n';
    if (action_log->get_current_action() != action_log->get_actions().end()) {
        out << "current action: " << action_log->to_eval() << '\n';
    }
    if (!cycle_micros.empty()) {
        std::vector<double> sorted = cycle_micros;
        std::sort(sorted.begin(), sorted.end());
        char line[192];
        std::snprintf(line, sizeof line,
                      "processing time per cycle (receive to send): min %.0f us, median %.0f us, "
                      "99%% %.0f us, max %.0f us over %zu cycles\n",
                      sorted.front(), sorted[sorted.size() / 2], sorted[sorted.size() * 99 / 100],
                      sorted.back(), sorted.size());
        out << line;
    }
    for (const std::string& example : lost_examples) {
        out << "perception with values that are not numbers: " << example << '\n';
    }
    out.flush();
}

} // namespace demo
