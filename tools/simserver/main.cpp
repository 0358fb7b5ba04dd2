// orvo_simserver: runs one real simulation server on free loopback ports until
// SIGTERM or SIGINT, for scripts that need a server of their own.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string>

#include <csignal>
#include <unistd.h>

#include "sim_server.h"

namespace {

constexpr const char* usage =
    "usage: orvo_simserver [--realtime] [--agent-port N] [--monitor-port N]\n"
    "                      [--ready-file F] [--log F]\n"
    "Starts the real simulation server (sync mode unless --realtime) on the given\n"
    "ports (0 or absent: free ones), writes \"PID AGENT-PORT MONITOR-PORT\" to the\n"
    "ready file once both ports listen, and stops it on SIGTERM or SIGINT.\n";

struct Arguments {
    orvo::sim::SimServerOptions options;
    std::string ready_file;
};

int port_argument(const std::string& text) {
    std::size_t used = 0;
    const int port = std::stoi(text, &used);
    if (used != text.size() || port < 0 || port > 65535) {
        throw std::invalid_argument(text);
    }
    return port;
}

bool parse(int argc, char** argv, Arguments& out) {
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const bool has_value = i + 1 < argc;
        if (arg == "--realtime") {
            out.options.sync = false;
        } else if (arg == "--agent-port" && has_value) {
            out.options.agent_port = port_argument(argv[++i]);
        } else if (arg == "--monitor-port" && has_value) {
            out.options.monitor_port = port_argument(argv[++i]);
        } else if (arg == "--ready-file" && has_value) {
            out.ready_file = argv[++i];
        } else if (arg == "--log" && has_value) {
            out.options.log_path = argv[++i];
        } else {
            return false;
        }
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    Arguments arguments;
    try {
        if (!parse(argc, argv, arguments)) {
            std::cerr << usage;
            return 2;
        }
    } catch (const std::exception&) {
        std::cerr << "orvo_simserver: a port is a number from 0 to 65535\n" << usage;
        return 2;
    }
    sigset_t stops;
    sigemptyset(&stops);
    sigaddset(&stops, SIGTERM);
    sigaddset(&stops, SIGINT);
    sigprocmask(SIG_BLOCK, &stops, nullptr);
    try {
        orvo::sim::SimServer server(arguments.options);
        if (!arguments.ready_file.empty()) {
            const std::string temporary = arguments.ready_file + ".part";
            std::ofstream(temporary) << server.pid() << ' ' << server.agent_port() << ' '
                                     << server.monitor_port() << '\n';
            std::rename(temporary.c_str(), arguments.ready_file.c_str());
        }
        std::cerr << "orvo_simserver: pid " << server.pid()
                  << ", agents on 127.0.0.1:" << server.agent_port()
                  << ", monitor on 127.0.0.1:" << server.monitor_port() << '\n';
        const timespec tick{0, 100 * 1000 * 1000};
        while (sigtimedwait(&stops, nullptr, &tick) < 0) {
            if (!server.running()) {
                std::cerr << "orvo_simserver: the server ended on its own; its output:\n"
                          << server.log_tail();
                return 1;
            }
        }
        server.stop();
    } catch (const orvo::sim::SimServerError& error) {
        std::cerr << "orvo_simserver: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
