// Reading one perception is the largest fixed share of the demo agent's
// cycle; measured on the messages recorded from a real server (0.6 to 1.7 kB).

#include "perception.h"

#include <benchmark/benchmark.h>

#include <fstream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> recorded() {
    std::ifstream file(SERVER_MESSAGES);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

void ReadRecordedPerception(benchmark::State& state) {
    const auto messages = recorded();
    demo::PerceptionParser parser;
    demo::Perception perception;
    std::size_t next = 0;
    std::size_t bytes = 0;
    for (auto _ : state) {
        const std::string& message = messages[next];
        benchmark::DoNotOptimize(parser.parse(message, perception));
        bytes += message.size();
        next = (next + 1) % messages.size();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}
BENCHMARK(ReadRecordedPerception);

// A stand-in perception with ten team-mates in sight.
void ReadStandInPerceptionWithVision(benchmark::State& state) {
    std::string message = "(time (now 1.02))(GS (unum 7) (team left) (sl 0) (sr 0) (t 0.00) (pm "
                          "BeforeKickOff))(GYR (n torso) (rt 0.00 0.00 0.00))(ACC (n torso) (a "
                          "0.00 0.00 9.81))(HJ (n hj1) (ax 12.00))(HJ (n hj2) (ax 0.00))(mypos "
                          "-7.50 0.00 0.35)(See";
    for (int id = 1; id <= 11; ++id) {
        if (id != 7) {
            message +=
                " (P (team orvo) (id " + std::to_string(id) + ") (head (pol 5.12 -37.25 0.00)))";
        }
    }
    message += ")";
    demo::PerceptionParser parser;
    demo::Perception perception;
    for (auto _ : state) {
        benchmark::DoNotOptimize(parser.parse(message, perception));
    }
}
BENCHMARK(ReadStandInPerceptionWithVision);

} // namespace

BENCHMARK_MAIN();
