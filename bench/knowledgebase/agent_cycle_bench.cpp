// One agent cycle against the knowledge base: a behavior injects its action
// (trimming the log to its retention span), three skills and two effectors
// report, and a plug-in reads the previous action back. The log is held at a
// steady size: every cycle trims exactly one entry and adds one.

#include <orvo/knowledgebase/actionlog.h>
#include <orvo/knowledgebase/extractors/extractor_action.h>
#include <orvo/knowledgebase/injectors/injector_action.h>
#include <orvo/knowledgebase/injectors/injector_effector.h>
#include <orvo/knowledgebase/injectors/injector_skill.h>

#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>

namespace {

namespace kb = orvo::knowledgebase;
namespace desc = orvo::knowledgebase::descriptors;

class Skill_Run : public desc::Descriptor_Skill {
public:
    using Descriptor_Skill::Descriptor_Skill;
    std::ostream& print(std::ostream& out) const override { return out << id; }
};

class Effector_Run : public desc::Descriptor_Effector {
public:
    Effector_Run(const std::string& id, const std::string& message)
        : Descriptor_Effector(id, message, false) {}
    std::ostream& print(std::ostream& out) const override { return out << id; }
};

struct Knowledge_Base {
    kb::ActionLog log;
    kb::injectors::Injector_Action inject_action;
    kb::injectors::Injector_Skill inject_skill;
    kb::injectors::Injector_Effector inject_effector;
    kb::extractors::Extractor_Action extract;
    unsigned int time = 0;

    Knowledge_Base() {
        orvo::Class_Map classes{{"actionlog", &log}};
        inject_action.link(classes);
        inject_skill.link(classes);
        inject_effector.link(classes);
        extract.link(classes);
    }

    void cycle(unsigned int retention) {
        static const std::string behavior = "approach_ball";
        static const std::string skills[] = {"walk", "turn", "kick"};
        static const std::string effectors[][2] = {{"legs", "(lj 0.5)"}, {"head", "(he 1.0)"}};
        inject_action(behavior, time, retention);
        for (const auto& id : skills) {
            boost::shared_ptr<desc::Descriptor_Skill> run = boost::make_shared<Skill_Run>(id);
            inject_skill(run);
        }
        for (const auto& effector : effectors) {
            boost::shared_ptr<desc::Descriptor_Effector> run =
                boost::make_shared<Effector_Run>(effector[0], effector[1]);
            inject_effector(run);
        }
        benchmark::DoNotOptimize(extract(1));
        ++time;
    }
};

void agent_cycle(benchmark::State& state) {
    const auto entries = static_cast<unsigned int>(state.range(0));
    Knowledge_Base base;
    for (unsigned int filled = 0; filled < entries; ++filled) {
        base.cycle(entries);
    }
    for (auto _ : state) {
        base.cycle(entries);
    }
    if (base.log.get_actions().size() != entries) {
        state.SkipWithError("the log did not stay at its size");
    }
}

BENCHMARK(agent_cycle)->Arg(10)->Arg(1000)->Arg(100000);

} // namespace

BENCHMARK_MAIN();
