// What the legs' kinematics cost a walk each cycle: a sole's pose from the
// angles, and the angles for a sole (hip yaw-pitch given, or all six).
#include <benchmark/benchmark.h>

#include <orvo/body/kinematics.h>

namespace {

using orvo::body::BodyModel;
using orvo::body::Leg;
using orvo::body::LegAngles;

// A walking stance: knees bent, the foot turned out a little.
const LegAngles stance{-10, 5, 35, -60, 30, -5};

void foot_pose(benchmark::State& state) {
    const BodyModel body = BodyModel::for_type(0);
    for (auto _ : state) {
        benchmark::DoNotOptimize(orvo::body::foot_pose(body, Leg::left, stance));
    }
}
BENCHMARK(foot_pose);

void solve_leg_given_hip_yaw_pitch(benchmark::State& state) {
    const BodyModel body = BodyModel::for_type(0);
    const Eigen::Isometry3d sole = orvo::body::foot_pose(body, Leg::left, stance);
    for (auto _ : state) {
        benchmark::DoNotOptimize(orvo::body::solve_leg(body, Leg::left, sole, -10));
    }
}
BENCHMARK(solve_leg_given_hip_yaw_pitch);

void solve_leg_all_six(benchmark::State& state) {
    const BodyModel body = BodyModel::for_type(0);
    const Eigen::Isometry3d sole = orvo::body::foot_pose(body, Leg::left, stance);
    for (auto _ : state) {
        benchmark::DoNotOptimize(orvo::body::solve_leg(body, Leg::left, sole));
    }
}
BENCHMARK(solve_leg_all_six);

} // namespace

BENCHMARK_MAIN();
