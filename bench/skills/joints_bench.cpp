// Joint control for a robot of 22 joints: one cycle of the controller alone
// (goal: under 1 us), with the motion player choosing the targets, and the
// whole skill as a team runs it: action, targets, speeds, the one message
// formatted and handed to an unconnected messenger, both records made.

#include <orvo/communication/messenger.h>
#include <orvo/effectors/effector_joints.h>
#include <orvo/knowledgebase/actionlog.h>
#include <orvo/knowledgebase/injectors/injector_action.h>
#include <orvo/knowledgebase/injectors/injector_effector.h>
#include <orvo/knowledgebase/injectors/injector_skill.h>
#include <orvo/skills/joint_controller.h>
#include <orvo/skills/motion_player.h>
#include <orvo/skills/skill_joints.h>

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <memory>

namespace {

namespace robot = orvo::robot;
using orvo::skills::Motion;

std::shared_ptr<const Motion> motion(const char* name) {
    return std::make_shared<Motion>(
        Motion::load(std::string(ORVO_MOTIONS) + "/" + name + ".motion"));
}

/// Readings that wander a little around mid-range, so no cycle is trivial;
/// computed ahead, so the benchmarks time the joint control alone.
struct Readings {
    static constexpr int sets = 64;
    std::array<robot::JointValues, sets> table{};
    int cycle = 0;
    Readings() {
        for (int k = 0; k < sets; ++k) {
            for (std::size_t i = 0; i < robot::joint_count; ++i) {
                table[k][i] = 10.0 * std::sin(0.1 * k + static_cast<double>(i));
            }
        }
    }
    const robot::JointValues& next() { return table[++cycle % sets]; }
};

void BM_ControllerCycle(benchmark::State& state) {
    orvo::skills::JointController controller;
    const robot::JointSet joints = robot::joints_of(0);
    robot::JointValues targets{};
    robot::JointValues rates{};
    robot::JointValues speeds{};
    for (std::size_t i = 0; i < robot::joint_count; ++i) {
        targets[i] = 5.0 * static_cast<double>(i) - 50.0;
        rates[i] = static_cast<double>(i);
    }
    Readings readings;
    for (auto _ : state) {
        controller.step(targets, rates, readings.next(), joints, speeds);
        benchmark::DoNotOptimize(speeds);
    }
}
BENCHMARK(BM_ControllerCycle);

void BM_PlayerAndControllerCycle(benchmark::State& state) {
    orvo::skills::MotionPlayer player;
    orvo::skills::JointController controller;
    player.play(motion("ready"));
    player.play(motion("head_scan"), true);
    player.play(motion("wave"));
    const robot::JointSet joints = robot::joints_of(0);
    robot::JointValues speeds{};
    Readings readings;
    for (auto _ : state) {
        const robot::JointValues& angles = readings.next();
        // Loops within the wave, so it never ends.
        player.update(0.02 * (readings.cycle % 100), angles);
        controller.step(player.targets(), player.rates(), angles, joints, speeds);
        benchmark::DoNotOptimize(speeds);
    }
}
BENCHMARK(BM_PlayerAndControllerCycle);

void BM_SkillCycle(benchmark::State& state) {
    namespace kb = orvo::knowledgebase;
    kb::ActionLog log;
    orvo::communication::Messenger messenger; // unconnected: sending is a no-op
    kb::injectors::Injector_Action actions;
    kb::injectors::Injector_Skill skills;
    kb::injectors::Injector_Effector effectors;
    orvo::effectors::Effector_Joints effector;
    orvo::skills::Skill_Joints skill;
    orvo::Class_Map classes{{"actionlog", &log},
                            {"messenger", &messenger},
                            {"injector_action", &actions},
                            {"injector_skill", &skills},
                            {"injector_effector", &effectors},
                            {"effector_joints", &effector}};
    for (orvo::Constructable* component : std::initializer_list<orvo::Constructable*>{
             &actions, &skills, &effectors, &effector, &skill}) {
        component->link(classes);
    }
    skill.player().play(motion("ready"));
    skill.player().play(motion("head_scan"), true);
    Readings readings;
    for (auto _ : state) {
        const robot::JointValues& angles = readings.next();
        actions("stand", static_cast<unsigned int>(readings.cycle), 25);
        skill(angles, 0.02 * readings.cycle);
    }
    benchmark::DoNotOptimize(effector.get_command());
}
BENCHMARK(BM_SkillCycle);

} // namespace

BENCHMARK_MAIN();
