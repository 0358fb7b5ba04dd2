// orvo_monitor_record: a game's monitor stream into a file. See --help.
#include <orvo/monitor/monitor_client.h>
#include <orvo/monitor/play_modes.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

using namespace std::chrono_literals;

const char* const usage =
    R"usage(usage: orvo_monitor_record --monitor HOST:PORT --out FILE [options]

Connects to a simulation server's monitor port and writes every message it
sends to FILE, one message per line (line breaks inside a message become
blanks), until the game is over, the server closes the connection, the
--seconds have passed or SIGINT or SIGTERM comes. orvo_game_stats reads it.

options:
  --seconds S   stop after S seconds of game time from the first message
  --wait S      keep trying to connect for S seconds (default 10)
  --help        this text
)usage";

std::atomic<bool> stop_requested{false};

extern "C" void request_stop(int) {
    stop_requested = true;
}

struct Options {
    std::string host;
    int port = 0;
    std::string out;
    double seconds = 0;
    double wait = 10;
};

Options parse(int argc, char** argv) {
    Options options;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string option = argv[i], value = argv[i + 1];
        if (option == "--monitor") {
            const auto colon = value.rfind(':');
            if (colon == std::string::npos) {
                throw std::invalid_argument("--monitor: not HOST:PORT: " + value);
            }
            options.host = value.substr(0, colon);
            options.port = std::stoi(value.substr(colon + 1));
        } else if (option == "--out") {
            options.out = value;
        } else if (option == "--seconds") {
            options.seconds = std::stod(value);
        } else if (option == "--wait") {
            options.wait = std::stod(value);
        } else {
            throw std::invalid_argument("unknown option: " + option);
        }
    }
    if (argc % 2 == 0 || options.host.empty() || options.out.empty() || options.port <= 0 ||
        options.port > 65535) {
        throw std::invalid_argument("--monitor HOST:PORT and --out FILE are needed");
    }
    return options;
}

std::unique_ptr<orvo::monitor::MonitorClient> connect(const Options& options) {
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::duration<double>(options.wait);
    for (;;) {
        try {
            return std::make_unique<orvo::monitor::MonitorClient>(options.host, options.port);
        } catch (const std::exception&) {
            if (stop_requested || std::chrono::steady_clock::now() > deadline) {
                throw;
            }
            std::this_thread::sleep_for(200ms);
        }
    }
}

/// Records until the end; returns the number of messages written.
long record(const Options& options, std::ofstream& out) {
    auto monitor = connect(options);
    long messages = 0;
    std::string line;
    monitor->tap([&](std::string_view message) {
        line.assign(message.data(), message.size());
        std::replace(line.begin(), line.end(), '\n', ' ');
        out << line << '\n';
        ++messages;
    });
    const int game_over = orvo::monitor::play_mode_number("GameOver");
    double first_time = -1;
    while (!stop_requested) {
        try {
            monitor->update(100ms);
        } catch (const orvo::monitor::MonitorError&) {
            break; // the server has gone: the record ends with it
        }
        const auto& truth = monitor->truth();
        if (messages > 0 && first_time < 0) {
            first_time = truth.time;
        }
        if ((messages > 0 && truth.play_mode == game_over) ||
            (options.seconds > 0 && first_time >= 0 &&
             truth.time - first_time >= options.seconds)) {
            break;
        }
    }
    return messages;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::string(argv[1]) == "--help") {
        std::cout << usage;
        return 0;
    }
    Options options;
    try {
        options = parse(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "orvo_monitor_record: " << error.what() << " (see --help)\n";
        return 2;
    }
    std::signal(SIGINT, request_stop);
    std::signal(SIGTERM, request_stop);
    std::ofstream out(options.out, std::ios::binary | std::ios::trunc);
    if (!out) {
        std::cerr << "orvo_monitor_record: cannot write " << options.out << '\n';
        return 1;
    }
    try {
        const long messages = record(options, out);
        if (!out.flush()) {
            throw std::runtime_error("cannot write " + options.out);
        }
        std::cout << "orvo_monitor_record: " << messages << " messages in " << options.out << '\n';
    } catch (const std::exception& error) {
        std::cerr << "orvo_monitor_record: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
