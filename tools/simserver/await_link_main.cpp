// orvo_await_link: waits until an agent process has connected to a server's
// port (and, given the server's process, until the server has accepted the
// connection), so that scripts can start robots one after another: a server
// refuses robots whose connections arrive in the same cycle.
#include <chrono>
#include <iostream>
#include <string>
#include <thread>

#include <csignal>

#include "socket_table.h"

namespace {

constexpr const char* usage =
    "usage: orvo_await_link --pid AGENT --port PORT [--server-pid PID] [--timeout SECONDS]\n"
    "Exits 0 once process AGENT holds a connection to PORT (and process PID, when\n"
    "given, holds its other end); 1 when AGENT ends or the time (default 20 s) runs out.\n";

} // namespace

int main(int argc, char** argv) {
    long agent = 0, server = 0, port = 0;
    double timeout = 20;
    try {
        for (int i = 1; i + 1 < argc; i += 2) {
            const std::string arg = argv[i];
            const std::string value = argv[i + 1];
            if (arg == "--pid") {
                agent = std::stol(value);
            } else if (arg == "--port") {
                port = std::stol(value);
            } else if (arg == "--server-pid") {
                server = std::stol(value);
            } else if (arg == "--timeout") {
                timeout = std::stod(value);
            } else {
                throw std::invalid_argument(arg);
            }
        }
    } catch (const std::exception&) {
        agent = 0;
    }
    if (argc % 2 == 0 || agent <= 0 || port <= 0 || port > 65535) {
        std::cerr << usage;
        return 2;
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(timeout);
    while (std::chrono::steady_clock::now() < deadline && ::kill(agent, 0) == 0) {
        if (orvo::sim::linked(agent, port, server)) {
            return 0;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return 1;
}
