// orvo_standin_server: a stand-in 3D soccer simulation server for the demo
// and the end-to-end tests. See --help.

#include "standin_server.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <stdexcept>
#include <string>

namespace {

const char* const usage =
    R"usage(usage: orvo_standin_server [options]

A stand-in for a 3D soccer simulation server, on 127.0.0.1. Agents connect
over TCP and exchange 4-byte big-endian framed s-expressions: each cycle
(20 ms of simulated time) every agent gets "(time (now T))(GS ...)(mypos X Y Z)"
and, every third cycle, "(See ...)" with its team-mates. "(beam X Y ROT)" moves
an agent, joint speeds such as "(he1 0.5)" are counted (the head's applied),
"(syn)" ends an agent's answer and anything else is ignored. Debug drawings
arrive as UDP datagrams. At the end a summary goes to standard output and the
field with every agent and its drawings to an SVG file.

options:
  --port N           TCP port for the agents (default 3100; 0 picks a free one)
  --drawing-port N   UDP port for debug drawings (default 15096; 0 picks a free one)
  --agents N         agents to wait for before the first cycle (default 1, at most 22)
  --cycles N         cycles to run (default 500)
  --sync             step as soon as every agent has sent "(syn)" (default:
                     real time, 50 cycles per second)
  --start-timeout S  seconds to wait for the agents (default 30)
  --cycle-timeout S  seconds a --sync cycle waits for a late agent (default 1)
  --svg FILE         picture written at the end (default field.svg)
  --svg-every N      also write FILE-<cycle>.svg every N cycles
  --log FILE         every received message: connection, unum, cycle, text
  --ports-file FILE  write "TCP-PORT UDP-PORT" there once listening
  --help             this text
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

double to_seconds(const std::string& option, const char* text) {
    char* end = nullptr;
    const double value = std::strtod(text, &end);
    if (*text == '\0' || *end != '\0' || !(value > 0) || value > 3600) {
        throw std::invalid_argument(option + ": not a number of seconds (0 to 3600): " + text);
    }
    return value;
}

} // namespace

int main(int argc, char** argv) {
    standin::Options options;
    try {
        for (int i = 1; i < argc; ++i) {
            const std::string option = argv[i];
            if (option == "--help" || option == "-h") {
                std::cout << usage;
                return 0;
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
            const char* value = argv[++i];
            if (option == "--port") {
                options.port = to_unsigned(option, value, 65535);
            } else if (option == "--drawing-port") {
                options.drawing_port = to_unsigned(option, value, 65535);
            } else if (option == "--agents") {
                options.agents = to_unsigned(option, value, 22);
            } else if (option == "--cycles") {
                options.cycles = to_unsigned(option, value, 10000000);
            } else if (option == "--start-timeout") {
                options.start_timeout = to_seconds(option, value);
            } else if (option == "--cycle-timeout") {
                options.cycle_timeout = to_seconds(option, value);
            } else if (option == "--svg") {
                options.svg_path = value;
            } else if (option == "--svg-every") {
                options.svg_every = to_unsigned(option, value, 10000000);
            } else if (option == "--log") {
                options.log_path = value;
            } else if (option == "--ports-file") {
                options.ports_file = value;
            } else {
                throw std::invalid_argument("unknown option " + option);
            }
        }
    } catch (const std::invalid_argument& error) {
        std::cerr << "orvo_standin_server: " << error.what() << "\n(see --help)\n";
        return 2;
    }

    try {
        standin::StandinServer server(options);
        server.open();
        std::cerr << "stand-in server: agents on 127.0.0.1:" << server.tcp_port()
                  << ", drawings on udp 127.0.0.1:" << server.udp_port() << std::endl;
        std::signal(SIGPIPE, SIG_IGN);
        const int status = server.run(std::cerr);
        server.print_summary(std::cout);
        return status;
    } catch (const std::exception& error) {
        std::cerr << "orvo_standin_server: " << error.what() << '\n';
        return 1;
    }
}
