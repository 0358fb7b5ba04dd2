// orvo_world_replay: how each localization method scores on recordings.
#include "replay.h"

#include <cstdio>
#include <iostream>
#include <string>

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "usage: orvo_world_replay PARAMS.json RECORDING...\n";
        return 2;
    }
    const auto params = orvo::world::WorldParams::load(argv[1]);
    const std::pair<const char*, orvo::world::Method> methods[] = {
        {"particles", orvo::world::Method::particles},
        {"particles+fit", orvo::world::Method::particles_and_fit},
        {"fit", orvo::world::Method::fit}};
    for (int i = 2; i < argc; ++i) {
        const auto frames = orvo::record::read_recording_file(argv[i]);
        const std::pair<const char*, orvo::record::Handicap> handicaps[] = {
            {"as seen", {}},
            {"1 landmark", {1, 0}},
            {"lines only, first spot", {0, 0, true}},
            {"false steps", {8, 0.01}},
            {"1 landmark, false steps", {1, 0.01}}};
        for (const auto& [hname, handicap] : handicaps)
            for (const auto& [name, method] : methods) {
                const auto s = orvo::record::replay(frames, params, method, handicap);
                std::printf(
                    "%s [%s] %-14s frames %4d moves %d  position median %.3f m p95 %.3f m  heading "
                    "median %.2f deg  ball median %.3f m  worst recovery %.2f s\n",
                    argv[i], hname, name, s.frames, s.moves, s.position_median_m, s.position_p95_m,
                    s.heading_median_deg, s.ball_median_m, s.recovery_worst_s);
            }
    }
    return 0;
}
