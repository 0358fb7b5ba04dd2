// orvo_standin_server: a stand-in 3D soccer simulation server for the demo
// and the end-to-end tests. See --help.

#include "standin_server.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>

namespace {

const char* const usage =
    R"usage(usage: orvo_standin_server [options]

A stand-in for a 3D soccer simulation server on 127.0.0.1 that keeps a real
server's rules. Agents connect over TCP and exchange 4-byte big-endian framed
s-expressions. The clock runs from start-up (cycle 1, 20 ms of simulated time
per cycle); an agent gets a perception every cycle from the cycle after it
connected and sent its scene, before any init: time, game state, joints,
gyroscope, accelerometer, foot forces,
"(See ...)" every third cycle, heard messages, and "(mypos X Y Z)", which a
real server never sends.

Rules, as a real server has them (each refusal is a line of the summary):
  - "(scene rsg/agent/nao/nao_hetero.rsg T)" makes a robot of type T (0 to 4;
    "(scene rsg/agent/nao/nao.rsg)" is type 0);
  - "(init (unum N)(teamname NAME))" is ignored before the robot's first
    perception (so also in the scene's message), and refused when its team would have more than 7 robots of
    one type or more than 9 of two types together; N 0 picks a number;
  - agents that connect in the same cycle are not taken into the game;
  - "(beam X Y ROT)" acts only before the kick-off, in the team's own half
    and frame (the right team's is mirrored);
  - play modes: BeforeKickOff, KickOff_Left after the kick-off ("(kickOff
    Left)" on the monitor port, or --kickoff-after), PlayOn 1 s later;
  - joint speeds such as "(he1 0.5)" (rad/s) turn every joint of the robot's
    type, up to 6.14 rad/s and within its range; "(say WORD)" is heard by all.
"(syn)" ends an agent's answer; anything else is ignored. Debug drawings
arrive as UDP datagrams. At the end a summary goes to standard output and the
field with every agent and its drawings to an SVG file.

options:
  --port N            TCP port for the agents (default 3100; 0 picks a free one)
  --drawing-port N    UDP port for debug drawings (default 15096; 0: a free one)
  --monitor-port N    TCP port for monitor commands (default 3200; 0: a free one)
  --agents N          agents the run expects (default 1, at most 22)
  --cycles N          server cycles to run from start-up (default 500); the run
                      also ends when every agent has gone after one joined
  --kickoff-after N   kick off at cycle N (default 0: only by a monitor command)
  --sync              step as soon as every agent has sent "(syn)", once the
                      expected agents are there (default: real time)
  --pairs SHARE       share of real-time cycles in which a perception is held
                      back and written with the next one (default 0.125; 0: never)
  --slowdown F        cycles take F times 20 ms of wall time (default 1)
  --start-timeout S   seconds to wait for the first agent (default 30); a --sync
                      run steps on answers after this even if some are missing
  --cycle-timeout S   seconds a --sync cycle waits for a late agent (default 1)
  --svg FILE          picture written at the end (default field.svg)
  --svg-every N       also write FILE-<cycle>.svg every N cycles
  --log FILE          every received message: connection, unum, cycle, text
  --ports-file FILE   write "TCP-PORT UDP-PORT MONITOR-PORT" there once listening
  --http-port N       serve the field and the drawings live on a page at
                      http://127.0.0.1:N/ while the run lasts (0: a free one)
  --help              this text
)usage";

unsigned to_unsigned(const std::string& option, const char* text, unsigned limit) {
    char* end = nullptr;
    errno = 0;
    const unsigned long value = std::strtoul(text, &end, 10);
    if (*text == '\0' || *end != '\0' || errno != 0 || value > limit || text[0] == '-') {
        throw std::invalid_argument(option + ": not a number from 0 to " + std::to_string(limit) +
                                    ": " + text);
    }
    return static_cast<unsigned>(value);
}

/// A number in [low, high] (or (low, high] unless `low_included`); `what` names it in the error.
double to_real(const std::string& option, const char* text, double low, double high,
               bool low_included, const char* what) {
    char* end = nullptr;
    const double value = std::strtod(text, &end);
    if (*text == '\0' || *end != '\0' || !(low_included ? value >= low : value > low) ||
        !(value <= high)) {
        throw std::invalid_argument(option + ": not " + what + ": " + text);
    }
    return value;
}

/// Sets the option that takes `value`; throws std::invalid_argument for a
/// bad value or an unknown option.
void set_option(standin::Options& options, const std::string& option, const char* value) {
    if (option == "--port") {
        options.port = to_unsigned(option, value, 65535);
    } else if (option == "--drawing-port") {
        options.drawing_port = to_unsigned(option, value, 65535);
    } else if (option == "--monitor-port") {
        options.monitor_port = to_unsigned(option, value, 65535);
    } else if (option == "--agents") {
        options.agents = to_unsigned(option, value, 22);
    } else if (option == "--cycles") {
        options.cycles = to_unsigned(option, value, 10000000);
    } else if (option == "--kickoff-after") {
        options.kickoff_after = to_unsigned(option, value, 10000000);
    } else if (option == "--pairs") {
        options.pairs = to_real(option, value, 0, 1, true, "a share from 0 to 1");
    } else if (option == "--slowdown") {
        options.slowdown = to_real(option, value, 1, 100, true, "a factor from 1 to 100");
    } else if (option == "--start-timeout") {
        options.start_timeout =
            to_real(option, value, 0, 3600, false, "a number of seconds (0 to 3600)");
    } else if (option == "--cycle-timeout") {
        options.cycle_timeout =
            to_real(option, value, 0, 3600, false, "a number of seconds (0 to 3600)");
    } else if (option == "--svg") {
        options.svg_path = value;
    } else if (option == "--svg-every") {
        options.svg_every = to_unsigned(option, value, 10000000);
    } else if (option == "--log") {
        options.log_path = value;
    } else if (option == "--ports-file") {
        options.ports_file = value;
    } else if (option == "--http-port") {
        options.live = true;
        options.http_port = to_unsigned(option, value, 65535);
    } else {
        throw std::invalid_argument("unknown option " + option);
    }
}

/// The options of the command line; none when it asks for the usage text.
std::optional<standin::Options> parse_options(int argc, char** argv) {
    standin::Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        if (option == "--help" || option == "-h") {
            return std::nullopt;
        }
        if (option == "--sync") {
            options.sync = true;
            continue;
        }
        if (i + 1 >= argc) {
            throw std::invalid_argument(option == "" || option[0] != '-'
                                            ? "unexpected argument: " + option
                                            : option + " needs a value");
        }
        set_option(options, option, argv[++i]);
    }
    return options;
}

/// Runs the server to its end; the exit status.
int serve(const standin::Options& options) {
    standin::StandinServer server(options);
    server.open();
    std::cerr << "stand-in server: agents on 127.0.0.1:" << server.tcp_port()
              << ", drawings on udp 127.0.0.1:" << server.udp_port()
              << ", monitor on 127.0.0.1:" << server.monitor_port() << std::endl;
    if (server.http_port() != 0) {
        std::cerr << "stand-in server: live page http://127.0.0.1:" << server.http_port() << '/'
                  << std::endl;
    }
    std::signal(SIGPIPE, SIG_IGN);
    const int status = server.run(std::cerr);
    server.print_summary(std::cout);
    return status;
}

} // namespace

int main(int argc, char** argv) {
    std::optional<standin::Options> options;
    try {
        options = parse_options(argc, argv);
    } catch (const std::invalid_argument& error) {
        std::cerr << "orvo_standin_server: " << error.what() << "\n(see --help)\n";
        return 2;
    }
    if (!options) {
        std::cout << usage;
        return 0;
    }
    try {
        return serve(*options);
    } catch (const std::exception& error) {
        std::cerr << "orvo_standin_server: " << error.what() << '\n';
        return 1;
    }
}
