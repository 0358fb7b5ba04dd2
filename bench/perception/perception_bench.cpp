// The library's perception reader against the demo's first reader (a tree of
// views built per message, kept in this folder as legacy_*), in the same run,
// on the messages recorded from a real server: all 27 of them in turn, and
// the largest one alone (2132 bytes, kick-off with six team-mates in view).
// Besides time and bytes per second, each benchmark reports the allocations
// per message once both readers have read every message twice.

#include "legacy_perception.h"
#include "support/allocation_counter.h"

#include <orvo/perception/perception_reader.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> recorded() {
    std::vector<std::string> lines;
    for (const char* name : {"server-messages.txt", "team-messages.txt"}) {
        std::ifstream file(std::string(RECORDED_DIR) + "/" + name);
        for (std::string line; std::getline(file, line);) {
            lines.push_back(line);
        }
    }
    return lines;
}

std::vector<std::string> largest() {
    const auto all = recorded();
    return {*std::max_element(all.begin(), all.end(),
                              [](const auto& a, const auto& b) { return a.size() < b.size(); })};
}

struct Library {
    orvo::perception::PerceptionReader reader;
    orvo::perception::Perception perception;
    bool read(const std::string& message) { return reader.read(message, perception).ok(); }
};

struct Legacy {
    legacy::PerceptionParser parser;
    legacy::Perception perception;
    bool read(const std::string& message) { return parser.parse(message, perception); }
};

template <typename Reader> void read(benchmark::State& state, std::vector<std::string> messages) {
    Reader reader;
    for (int round = 0; round < 2; ++round) {
        for (const std::string& message : messages) {
            if (!reader.read(message)) {
                state.SkipWithError("a recorded message did not read");
                return;
            }
        }
    }
    std::size_t next = 0;
    std::size_t bytes = 0;
    const long allocations_before = allocations();
    for (auto _ : state) {
        const std::string& message = messages[next];
        benchmark::DoNotOptimize(reader.read(message));
        benchmark::ClobberMemory();
        bytes += message.size();
        next = next + 1 == messages.size() ? 0 : next + 1;
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
    state.counters["allocs/msg"] =
        benchmark::Counter(static_cast<double>(allocations() - allocations_before),
                           benchmark::Counter::kAvgIterations);
    state.counters["bytes/msg"] =
        benchmark::Counter(static_cast<double>(bytes), benchmark::Counter::kAvgIterations);
}

void library(benchmark::State& state, std::vector<std::string> messages) {
    read<Library>(state, std::move(messages));
}
void legacy_reader(benchmark::State& state, std::vector<std::string> messages) {
    read<Legacy>(state, std::move(messages));
}

BENCHMARK_CAPTURE(library, recorded, recorded())->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(legacy_reader, recorded, recorded())->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(library, largest, largest())->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(legacy_reader, largest, largest())->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
