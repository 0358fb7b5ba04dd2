// orvo_drill: trials of one skill on a real simulation server, measured by
// the monitor. One subcommand per skill; each prints one JSON object per run
// on stdout, progress on stderr and a summary table at the end.
#include "drill_options.h"
#include "drills.h"
#include "sim_server.h"
#include "stop_signal.h"

#include <cstring>
#include <iostream>

namespace {

struct Drill {
    const char* name;
    const char* usage;
    int (*run)(orvo::drill::Arguments&);
};

const Drill drills[] = {
    {"walk", orvo::drill::walk_usage, orvo::drill::run_walk},
    {"localize", orvo::drill::localize_usage, orvo::drill::run_localize},
    {"kick", orvo::drill::kick_usage, orvo::drill::run_kick},
    {"getup", orvo::drill::getup_usage, orvo::drill::run_getup},
    {"roll", orvo::drill::roll_usage, orvo::drill::run_roll},
    {"plan", orvo::drill::plan_usage, orvo::drill::run_plan},
    {"reach", orvo::drill::reach_usage, orvo::drill::run_reach},
};

void print_usage() {
    std::cerr << "usage: orvo_drill DRILL [options]\n";
    for (const Drill& drill : drills) {
        std::cerr << drill.usage;
    }
    std::cerr << "common options: --type T (0-4) --runs N --seconds S --params FILE --seed N\n"
                 "                --server HOST:PORT --monitor-port P (else a server per run)\n";
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        print_usage();
        return 2;
    }
    for (const Drill& drill : drills) {
        if (std::strcmp(argv[1], drill.name) != 0) {
            continue;
        }
        orvo::drill::Arguments arguments({argv + 2, argv + argc});
        orvo::drill::catch_stop_signals();
        try {
            return drill.run(arguments);
        } catch (const orvo::drill::Stopped& stopped) {
            std::cerr << "orvo_drill " << drill.name << ": " << stopped.what() << '\n';
            return 128 + stopped.signal();
        } catch (const orvo::drill::UsageError& error) {
            std::cerr << "orvo_drill " << drill.name << ": " << error.what() << '\n';
            print_usage();
            return 2;
        } catch (const orvo::sim::SimServerError& error) {
            std::cerr << "orvo_drill: the simulation server failed: " << error.what() << '\n';
            return 3;
        } catch (const std::exception& error) {
            std::cerr << "orvo_drill " << drill.name << ": " << error.what() << '\n';
            return 1;
        }
    }
    std::cerr << "orvo_drill: no drill \"" << argv[1] << "\"\n";
    print_usage();
    return 2;
}
