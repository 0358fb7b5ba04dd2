// The monitor reader on a recorded stream: 22 robots of types 0 to 4, every
// joint swinging (most are down and still swinging), the ball rolling; the
// whole scene that holds them all, then 1.6 s of game time in updates, as
// bench/monitor/record_game.cpp recorded it from a real server.
//
// Besides the time per message, each benchmark reports cpu_per_game_s, the
// CPU seconds spent per second of game time (the server sends an update every
// 0.04 s), and the allocations per update once the reader holds the scene.
#include "support/allocation_counter.h"

#include <orvo/monitor/scene_reader.h>

#include <benchmark/benchmark.h>

#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr double game_seconds_per_update = 0.04;

std::vector<std::string> recorded() {
    std::ifstream file(MONITOR_GAME);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

bool whole_scene(const std::string& message) {
    return message.find("(RSG") != std::string::npos;
}

void report(benchmark::State& state, std::size_t updates, long allocated) {
    state.counters["cpu_per_game_s"] = benchmark::Counter(
        static_cast<double>(updates) * game_seconds_per_update,
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.counters["allocs_per_update"] =
        benchmark::Counter(static_cast<double>(allocated) / static_cast<double>(updates),
                           benchmark::Counter::kAvgIterations);
}

/// The updates alone, the reader holding the scene: a game's steady cost.
void Updates(benchmark::State& state) {
    const auto lines = recorded();
    orvo::monitor::SceneReader reader;
    std::vector<const std::string*> updates;
    for (const std::string& line : lines) {
        reader.read(line);
        if (!whole_scene(line)) {
            updates.push_back(&line);
        }
    }
    if (updates.empty() || reader.truth().robots.size() != 22 || reader.counts().malformed != 0 ||
        reader.counts().mismatched != 0) {
        state.SkipWithError("the recorded stream did not read as 22 robots");
        return;
    }
    std::size_t bytes = 0;
    for (const std::string* update : updates) {
        bytes += update->size();
    }
    const long before = allocations();
    for (auto _ : state) {
        for (const std::string* update : updates) {
            benchmark::DoNotOptimize(reader.read(*update));
        }
    }
    report(state, updates.size(), allocations() - before);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
}
BENCHMARK(Updates)->Unit(benchmark::kMillisecond);

/// Every message, the whole scenes included, by a new reader each time.
void WholeStream(benchmark::State& state) {
    const auto lines = recorded();
    std::size_t updates = 0;
    for (const std::string& line : lines) {
        updates += whole_scene(line) ? 0 : 1;
    }
    for (auto _ : state) {
        orvo::monitor::SceneReader reader;
        for (const std::string& line : lines) {
            benchmark::DoNotOptimize(reader.read(line));
        }
    }
    state.counters["cpu_per_game_s"] = benchmark::Counter(
        static_cast<double>(updates) * game_seconds_per_update,
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(WholeStream)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
