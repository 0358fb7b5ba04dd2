// orvo_talk_probe: measures on a real server of its own (sync mode) what the
// "say" effector carries and who hears it: which characters, how long a
// message, how far, how many per cycle, and what two speakers in one cycle
// give. Three robots of team "orvo" (A speaks, B listens, C speaks too) and
// one of "rivals" (R); every robot answers each cycle in lockstep, so every
// line of the report names the cycle a message was said in.
#include <orvo/monitor/monitor_client.h>
#include <orvo/perception/perception_reader.h>

#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "sim_server.h"
#include "squad.h"

namespace {

using namespace orvo;

constexpr int A = 0, B = 1, C = 2, R = 3;
using Heard = sim::SquadHeard;
using sim::Squad;

std::string say(const std::string& text) {
    return "(say " + text + ")";
}

// What robot `listener` heard from a team-mate this cycle ("-": nothing).
std::string from_mate(const Heard& heard, int listener) {
    std::string out;
    const std::string team = listener == R ? "rivals" : "orvo";
    for (const perception::Heard& h : heard[listener]) {
        if (!h.self) {
            out += (out.empty() ? "" : ",") + (h.team == team ? "" : h.team + ":") + h.text;
        }
    }
    return out.empty() ? "-" : out;
}

void rest(Squad& squad, int cycles) {
    for (int c = 0; c < cycles; ++c) {
        squad.step({});
    }
}

// Said in one cycle, heard in the next perception; a speaker hears itself.
// A says a new word every cycle: how many reach the others.
void every_cycle(Squad& squad) {
    std::printf("A says a new word every cycle (heard in the perception after the say):\n");
    for (int c = 0; c < 6; ++c) {
        const Heard& heard = squad.step({say("a" + std::to_string(c))});
        std::string self = "-";
        for (const perception::Heard& h : heard[A]) {
            self = h.self ? h.text : self;
        }
        std::printf(
            "  perception %lld after saying a%d | A itself: %s | B: %s | C: %s | R (rivals): %s\n",
            squad.cycle(), c, self.c_str(), from_mate(heard, B).c_str(),
            from_mate(heard, C).c_str(), from_mate(heard, R).c_str());
    }
}

// Whether the cycles a listener hears in are fixed by the clock or by its
// last hearing: one word after a rest, at each cycle parity.
void after_rest(Squad& squad) {
    std::printf("one word after a rest of 6 or 7 cycles:");
    for (int offset = 0; offset < 4; ++offset) {
        rest(squad, 6 + offset % 2);
        const long long said = squad.cycle() + 1;
        squad.step({say("w" + std::to_string(offset))});
        std::printf(" said in cycle %lld: B hears %s;", said, from_mate(squad.step({}), B).c_str());
    }
    std::printf("\n");
}

// Two team-mates: in the same cycle, and one or two cycles apart.
void two_mates(Squad& squad) {
    std::printf("A (2 m from B) and C (2.8 m) say in the same cycle: B hears");
    for (int i = 0; i < 3; ++i) {
        rest(squad, 4);
        squad.step({say("a"), "", say("c")});
        std::printf(" %s", from_mate(squad.step({}), B).c_str());
    }
    squad.step({"", "", "(beam -8 0.5 0)"});
    rest(squad, 10);
    std::printf("; C moved 0.5 m from B: B hears");
    for (int i = 0; i < 3; ++i) {
        rest(squad, 4);
        squad.step({say("a"), "", say("c")});
        std::printf(" %s", from_mate(squad.step({}), B).c_str());
    }
    for (int gap = 1; gap <= 3; ++gap) {
        rest(squad, 6);
        std::string heard;
        for (int c = 0; c <= gap + 1; ++c) {
            const std::string a = c == 0 ? say("a") : "", cc = c == gap ? say("c") : "";
            const std::string got = from_mate(squad.step({a, "", cc}), B);
            heard += got == "-" ? "" : got;
        }
        std::printf("\nA says, C says %d cycle(s) later: B hears %s", gap, heard.c_str());
    }
    rest(squad, 6);
    squad.step({say("a"), "", "", say("r")});
    const Heard& heard = squad.step({});
    std::printf("\nA and R (the other team) in the same cycle: B hears %s, R hears %s\n",
                from_mate(heard, B).c_str(), from_mate(heard, R).c_str());
}

// What B hears from A within `cycles` cycles after A says `text` once.
std::string heard_from_a(Squad& squad, const std::string& text, int cycles = 3) {
    rest(squad, 2);
    std::string out = "-";
    for (int c = 0; c < cycles; ++c) {
        const std::string got = from_mate(squad.step({c == 0 ? say(text) : ""}), B);
        out = got == "-" ? out : got;
    }
    return out;
}

void characters(Squad& squad) {
    std::string intact, lost;
    for (int byte = 0x20; byte < 0x80; ++byte) {
        const char c = static_cast<char>(byte);
        // A '"' opens a string to the end of the frame, and the "(syn)" is
        // lost: the server waits for it for good. Parentheses end the element.
        if (c == '(' || c == ')' || c == '"') {
            continue;
        }
        const std::string text = std::string("x") + c + "y";
        const std::string got = heard_from_a(squad, text);
        (got == text ? intact : lost) += c;
        if (got != text && got != "-") {
            std::printf("  '%s' heard as '%s'\n", text.c_str(), got.c_str());
        }
    }
    std::printf("printable characters heard intact inside \"x?y\": %s\n", intact.c_str());
    std::printf("printable characters not heard: '%s'\n", lost.c_str());
    for (const char* text :
         {"x\xc3\xa9y", "x\x7fy", "x\ty", "x y", "x'y", "123", "-1.50", "1e3", "0x1F", ".5"}) {
        std::string shown;
        for (const char* at = text; *at != '\0'; ++at) {
            char hex[8];
            std::snprintf(hex, sizeof hex, *at > 0x20 && *at < 0x7f ? "%c" : "\\x%02x",
                          static_cast<unsigned char>(*at));
            shown += hex;
        }
        std::printf("  '%s' heard as '%s'\n", shown.c_str(), heard_from_a(squad, text).c_str());
    }
}

void lengths(Squad& squad) {
    std::printf("length said -> heard:");
    for (std::size_t n = 15; n <= 26; ++n) {
        std::string text;
        for (std::size_t i = 0; i < n; ++i) {
            text += static_cast<char>('a' + i % 26);
        }
        const std::string got = heard_from_a(squad, text);
        std::printf(" %zu->%s", n, got == "-" ? "none" : std::to_string(got.size()).c_str());
    }
    std::printf("\n");
}

void distances(Squad& squad, monitor::MonitorClient& monitor) {
    monitor.kick_off(monitor::Side::left);
    monitor.play_mode("PlayOn");
    std::printf("A to B (m) -> B hears:");
    for (const double d : {10.0, 30.0, 45.0, 48.0, 49.0, 49.9, 50.1, 51.0, 60.0}) {
        monitor.place_robot(monitor::Side::left, squad.number(A), -35, 0, 0.4);
        monitor.place_robot(monitor::Side::left, squad.number(B), -35 + d, 0, 0.4);
        for (int c = 0; c < 6; ++c) {
            squad.step({});
            monitor.update(std::chrono::milliseconds(20));
        }
        const auto* a = monitor.robot(monitor::Side::left, squad.number(A));
        const auto* b = monitor.robot(monitor::Side::left, squad.number(B));
        const double apart = a && b ? std::hypot(a->x - b->x, a->y - b->y) : -1;
        const std::string got = heard_from_a(squad, "d" + std::to_string(d).substr(0, 4), 4);
        std::printf(" %.1f->%s", apart, got.c_str());
        std::fflush(stdout);
    }
    std::printf("\n");
}

void probe() {
    sim::SimServer server;
    Squad squad(server.agent_port());
    squad.join(0, "orvo");
    squad.join(1, "orvo");
    squad.join(2, "orvo");
    squad.join(0, "rivals");
    squad.step({"(beam -10 0 0)", "(beam -8 0 0)", "(beam -10 2 0)", "(beam -10 0 0)"});
    rest(squad, 10);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    every_cycle(squad);
    after_rest(squad);
    two_mates(squad);
    lengths(squad);
    characters(squad);
    monitor::MonitorClient monitor("127.0.0.1", server.monitor_port());
    distances(squad, monitor);
}

} // namespace

int main() {
    try {
        probe();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "orvo_talk_probe: %s\n", error.what());
        return 1;
    }
    return 0;
}
