// orvo_staged_game: a game staged on a real server of its own, for watching
// the live page and recording games before a team plays. See --help.
#include "staged_game.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>

namespace {

const char* const usage = R"usage(usage: orvo_staged_game [options]

Starts a real simulation server (sync mode) on free loopback ports, joins bare
robots of two teams ("home" on the left, "away" on the right) that hold their
joints, places them through the monitor port and starts the game. Scripted
moments (unless --still): home 2 and away 2 are led towards the ball, the ball
is shot into the right goal at 1 s, play resumes at 6 s, home 3 collapses at
7 s and lies until the referee calls it (some 15 s later). Stops after --seconds of game time, or on SIGINT or SIGTERM,
and stops the server it started.

options:
  --left N          robots of the left team (default 3, at most 11)
  --right N         robots of the right team (default 2, at most 11)
  --seconds S       game time to play (default: until stopped)
  --paced           one cycle per 20 ms of wall time, as a person watches
  --still           no scripted moments: the robots stand where placed
  --ready-file F    receives "SERVER-PID AGENT-PORT MONITOR-PORT" once all play
  --log F           the server's own output
  --record F        the monitor stream, one message per line, from the start
  --help            this text
)usage";

std::atomic<bool> stop_requested{false};

extern "C" void request_stop(int) {
    stop_requested = true;
}

int count_of(const std::string& option, const std::string& text) {
    std::size_t used = 0;
    const int value = std::stoi(text, &used);
    if (used != text.size() || value < 0 || value > 11) {
        throw std::invalid_argument(option + ": not a number of robots (0 to 11): " + text);
    }
    return value;
}

orvo::sim::StagedGameOptions parse(int argc, char** argv) {
    orvo::sim::StagedGameOptions options;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        if (option == "--paced") {
            options.paced = true;
            continue;
        }
        if (option == "--still") {
            options.scripted = false;
            continue;
        }
        if (i + 1 >= argc) {
            throw std::invalid_argument(option + " needs a value, or is unknown");
        }
        const std::string value = argv[++i];
        if (option == "--left") {
            options.left = count_of(option, value);
        } else if (option == "--right") {
            options.right = count_of(option, value);
        } else if (option == "--seconds") {
            options.seconds = std::stod(value);
        } else if (option == "--ready-file") {
            options.ready_file = value;
        } else if (option == "--log") {
            options.log_path = value;
        } else if (option == "--record") {
            options.record_path = value;
        } else {
            throw std::invalid_argument("unknown option: " + option);
        }
    }
    if (options.left + options.right == 0) {
        throw std::invalid_argument("a game needs a robot");
    }
    return options;
}

} // namespace

int main(int argc, char** argv) {
    orvo::sim::StagedGameOptions options;
    try {
        if (argc == 2 && std::string(argv[1]) == "--help") {
            std::cout << usage;
            return 0;
        }
        options = parse(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "orvo_staged_game: " << error.what() << " (see --help)\n";
        return 2;
    }
    std::signal(SIGINT, request_stop);
    std::signal(SIGTERM, request_stop);
    try {
        orvo::sim::run_staged_game(options, stop_requested);
    } catch (const std::exception& error) {
        std::cerr << "orvo_staged_game: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
