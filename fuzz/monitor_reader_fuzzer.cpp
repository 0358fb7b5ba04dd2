// Feeds the monitor reader a sequence of messages, one per line of the input
// (as the server's stream is recorded), and checks what it keeps.
//
// Findings besides crashes, sanitizer reports and hangs: a robot looked up by
// side and number that is not in the robot list, a robot whose parts do not
// start with its torso, and a robot list that changes size without a whole
// scene.
#include <orvo/monitor/scene_reader.h>

#include "fuzz_input.h"

#include <cstdint>
#include <string_view>

namespace {

[[noreturn]] void finding(const char* what) {
    fuzz::finding("monitor reader", what);
}

void check(const orvo::monitor::SceneReader& reader) {
    const auto& truth = reader.truth();
    for (const auto& robot : truth.robots) {
        const auto* found = reader.robot(robot.side, robot.number);
        if (found == nullptr || found < truth.robots.data() ||
            found >= truth.robots.data() + truth.robots.size()) {
            finding("a robot in the list is not found by its side and number");
        }
        if (robot.parts.empty() || robot.parts.front().name != "torso") {
            finding("a robot's parts do not start with its torso");
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    orvo::monitor::SceneReader reader;
    std::size_t from = 0;
    while (from <= input.size()) {
        std::size_t to = input.find('\n', from);
        if (to == std::string_view::npos) {
            to = input.size();
        }
        const long scenes = reader.counts().scenes;
        const std::size_t robots = reader.truth().robots.size();
        reader.read(input.substr(from, to - from));
        if (reader.counts().scenes == scenes && reader.truth().robots.size() != robots) {
            finding("the robots changed without a whole scene");
        }
        check(reader);
        from = to + 1;
    }
    return 0;
}
