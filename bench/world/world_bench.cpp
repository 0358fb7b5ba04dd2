// The world model's update per cycle, on the recorded perceptions of a robot
// moved across the field with its head scanning. The server sends a
// "(See ...)" every third cycle; the recording holds those, and the two
// cycles between them are replayed as the same perception without its vision,
// as the server sends them. Prints per method the median and 95th percentile
// time over all cycles and over the cycles with vision, and the allocations
// per update after a warm-up pass over the whole recording.
#include "recording.h"
#include "replay.h"
#include "support/allocation_counter.h"

#include <orvo/perception/perception_reader.h>
#include <orvo/world/world_model.h>

#include <chrono>
#include <cstdio>
#include <vector>

int main() {
    const auto frames =
        orvo::record::read_recording_file(std::string(WORLD_DATA) + "/type0_scan_kidnap.txt");
    std::vector<orvo::perception::Perception> perceptions(frames.size() * 3);
    orvo::perception::PerceptionReader reader;
    for (std::size_t i = 0; i < frames.size(); ++i)
        for (std::size_t k = 0; k < 3; ++k) {
            (void)reader.read(frames[i].payload, perceptions[3 * i + k]);
            perceptions[3 * i + k].has_vision = k == 2;
        }
    const auto params = orvo::world::WorldParams::for_type(WORLD_PARAMS, 0);
    const std::pair<const char*, orvo::world::Method> methods[] = {
        {"particles", orvo::world::Method::particles},
        {"particles+fit", orvo::world::Method::particles_and_fit},
        {"fit", orvo::world::Method::fit}};
    for (const auto& [name, method] : methods) {
        orvo::world::WorldModel model(params, method);
        model.set_team("orvo", orvo::perception::Side::left);
        model.place(frames[0].x, frames[0].y, frames[0].heading_deg);
        for (const auto& p : perceptions)
            model.update(p, {});
        std::vector<double> micros, seeing;
        micros.reserve(perceptions.size() * 3);
        seeing.reserve(perceptions.size());
        const long before = allocations();
        for (int round = 0; round < 3; ++round)
            for (const auto& p : perceptions) {
                const auto start = std::chrono::steady_clock::now();
                model.update(p, {0.001, 0, 0.01});
                const double took = std::chrono::duration<double, std::micro>(
                                        std::chrono::steady_clock::now() - start)
                                        .count();
                micros.push_back(took);
                if (p.has_vision)
                    seeing.push_back(took);
            }
        const long allocated = allocations() - before;
        std::printf("{\"method\": \"%s\", \"particles\": %d, \"updates\": %zu, "
                    "\"median_us\": %.1f, \"p95_us\": %.1f, \"vision_median_us\": %.1f, "
                    "\"vision_p95_us\": %.1f, \"allocations_per_update\": %.3f}\n",
                    name, params.particles, micros.size(), orvo::record::quantile(micros, 0.5),
                    orvo::record::quantile(micros, 0.95), orvo::record::quantile(seeing, 0.5),
                    orvo::record::quantile(seeing, 0.95),
                    static_cast<double>(allocated) / static_cast<double>(micros.size()));
    }
    return 0;
}
