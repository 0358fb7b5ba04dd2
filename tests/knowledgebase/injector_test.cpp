#include "named_descriptors.h"

#include <orvo/knowledgebase/injectors/injector.h>
#include <orvo/knowledgebase/mappers/mapper.h>

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

namespace {

using orvo::knowledgebase::descriptors::Descriptor_Action;
using namespace orvo_test;
using Action = boost::shared_ptr<Descriptor_Action>;

/// An action injector of a plug-in that records its stickiness calls.
class StickyInjector : public kb::injectors::Injector_Action {
public:
    void apply_stickiness(Action previous, Action next) override {
        calls.emplace_back(std::move(previous), std::move(next));
    }
    std::vector<std::pair<Action, Action>> calls;
};

struct StickyLog : LinkedLog {
    StickyInjector sticky;
    StickyLog() { sticky.link(classes); }
    const Action& current() const { return log.current_action->second; }
};

TEST(InjectorAction, FirstInjectionCreatesTheCurrentActionAndSetsTheStartTime) {
    StickyLog linked;
    linked.sticky("approach_ball", 42, 10);
    ASSERT_EQ(linked.log.actions.size(), 1u);
    EXPECT_TRUE(linked.log.previous_action == linked.log.actions.end());
    ASSERT_TRUE(linked.log.current_action == linked.log.actions.find(42));
    EXPECT_EQ(linked.current()->get_initiator(), "approach_ball");
    EXPECT_EQ(linked.log.start_time, 42u);
    EXPECT_TRUE(linked.sticky.calls.empty());
}

TEST(InjectorAction, StickinessFollowsOnlyAnActionWithEffectors) {
    StickyLog linked;
    linked.sticky("first", 1, 10);
    linked.sticky("second", 2, 10);
    EXPECT_TRUE(linked.sticky.calls.empty());

    linked.add_effector("legs");
    const Action with_effector = linked.current();
    linked.sticky("third", 3, 10);
    ASSERT_EQ(linked.sticky.calls.size(), 1u);
    EXPECT_EQ(linked.sticky.calls[0].first, with_effector);
    EXPECT_EQ(linked.sticky.calls[0].second, linked.current());
    EXPECT_EQ(linked.current()->get_initiator(), "third");
    EXPECT_TRUE(linked.log.previous_action == linked.log.actions.find(2));
    EXPECT_EQ(linked.log.start_time, 1u);
}

TEST(InjectorAction, FirstActionOfATimeStaysAndBothMarksMeetOnIt) {
    StickyLog linked;
    linked.sticky("first", 5, 10);
    linked.add_effector("legs");
    const Action first = linked.current();
    linked.sticky("second", 5, 10);
    ASSERT_EQ(linked.log.actions.size(), 1u);
    EXPECT_EQ(linked.current(), first);
    EXPECT_TRUE(linked.log.previous_action == linked.log.current_action);
    // The hook still saw the action that the log then dropped.
    ASSERT_EQ(linked.sticky.calls.size(), 1u);
    EXPECT_EQ(linked.sticky.calls[0].first, first);
    EXPECT_EQ(linked.sticky.calls[0].second->get_initiator(), "second");
    EXPECT_EQ(linked.sticky.calls[0].second.use_count(), 1);
}

TEST(InjectorAction, ARetentionOfZeroKeepsOnlyTheNewestAction) {
    LinkedLog linked;
    for (unsigned int time = 1; time <= 5; ++time) {
        linked.inject_action("b" + std::to_string(time), time, 0);
        ASSERT_EQ(linked.log.actions.size(), 1u);
        EXPECT_EQ(linked.initiator_at(time), "b" + std::to_string(time));
    }
}

TEST(InjectorAction, TrimsToTheRetentionSpanUpToNow) {
    LinkedLog linked;
    for (unsigned int time = 1; time <= 9; ++time) {
        linked.inject_action("b", time, 100);
    }
    linked.inject_action("now", 10, 5);
    std::vector<unsigned int> kept;
    for (const auto& entry : linked.log.actions) {
        kept.push_back(entry.first);
    }
    EXPECT_EQ(kept, (std::vector<unsigned int>{6, 7, 8, 9, 10}));
}

TEST(InjectorAction, AClockThatWentBackClearsNewerEntries) {
    LinkedLog linked;
    linked.inject_action("b", 6, 100);
    linked.inject_action("b", 8, 100);
    linked.inject_action("back", 3, 1000);
    ASSERT_EQ(linked.log.actions.size(), 1u);
    EXPECT_EQ(linked.initiator_at(3), "back");
    // Only a retention beyond the wrapped gap keeps them.
    linked.inject_action("b", 9, 100);
    linked.inject_action("back", 4, 0xFFFFFFFFu);
    EXPECT_EQ(linked.log.actions.size(), 3u);
}

TEST(InjectorAction, MarksOnTrimmedEntriesMoveToTheEnd) {
    StickyLog linked;
    linked.sticky("first", 1, 1);
    linked.add_effector("legs");
    // Retention 1 erases the current entry before the new one is made.
    linked.sticky("second", 2, 1);
    EXPECT_TRUE(linked.sticky.calls.empty());
    EXPECT_TRUE(linked.log.previous_action == linked.log.actions.end());
    EXPECT_EQ(linked.current()->get_initiator(), "second");

    linked.add_effector("legs");
    linked.sticky("third", 3, 2);
    ASSERT_EQ(linked.sticky.calls.size(), 1u);
    linked.sticky.resize_action_log(10, 1);
    EXPECT_TRUE(linked.log.actions.empty());
    EXPECT_TRUE(linked.log.current_action == linked.log.actions.end());
    EXPECT_TRUE(linked.log.previous_action == linked.log.actions.end());
    EXPECT_EQ(linked.log.to_eval(), "(log )");
}

TEST(InjectorAction, EachInstanceSetsTheStartTimeOnItsOwnFirstInjection) {
    LinkedLog linked;
    linked.inject_action("b", 3, 100);
    linked.inject_action("b", 4, 100);
    EXPECT_EQ(linked.log.start_time, 3u);
    kb::injectors::Injector_Action second;
    second.link(linked.classes);
    second("b", 7, 100);
    EXPECT_EQ(linked.log.start_time, 7u);
    linked.inject_action("b", 8, 100);
    second("b", 9, 100);
    EXPECT_EQ(linked.log.start_time, 7u);
}

TEST(InjectorSkill, AppendsEverySkillCallToTheCurrentAction) {
    LinkedLog linked;
    linked.inject_action("b", 1, 10);
    linked.add_skill("walk");
    linked.inject_action("c", 2, 10);
    linked.add_skill("walk");
    linked.add_skill("turn");
    linked.add_skill("walk");
    EXPECT_EQ(linked.log.to_eval(), "(log (action (initiator c)(skill_chain (skill (id walk)) "
                                    "(skill (id turn)) (skill (id walk)))(effectors)))");
    EXPECT_EQ(linked.log.actions.at(1)->get_skill_chain().size(), 1u);
}

TEST(InjectorEffector, KeepsTheLatestInvocationOfAnEffector) {
    LinkedLog linked;
    linked.inject_action("b", 1, 10);
    auto first = effector("legs", "(first)");
    auto second = effector("legs", "(second)");
    linked.inject_effector(first);
    linked.inject_effector(second);
    linked.add_effector("head", "(head)");
    const Action& action = linked.log.current_action->second;
    EXPECT_EQ(action->get_effectors().size(), 2u);
    EXPECT_EQ(action->get_effector("legs"), second);
    EXPECT_EQ(first.use_count(), 1);
    EXPECT_EQ(action->get_effector_chain(), "(head)(second)");
    // add_effector on the same action still keeps what is there.
    action->add_effector(effector("legs", "(third)"));
    EXPECT_EQ(action->get_effector("legs"), second);
}

TEST(Components, AreCreatedByTheirFactoriesUnderTheirNames) {
    using Created = std::unique_ptr<orvo::Constructable, void (*)(orvo::Constructable*)>;
    const std::pair<orvo::Constructable* (*)(), const char*> factories[] = {
        {create_injector_action, "injector_action"},
        {create_injector_skill, "injector_skill"},
        {create_injector_effector, "injector_effector"},
        {create_extractor_action, "extractor_action"},
        {create_actionlog, "actionlog"}};
    for (const auto& [factory, name] : factories) {
        Created created(factory(), destroy);
        EXPECT_EQ(created->get_name(), name);
    }
    Created action(create_injector_action(), destroy);
    EXPECT_NE(dynamic_cast<kb::injectors::Injector_Action*>(action.get()), nullptr);
}

template <class Component> void expect_link_failure(const std::string& location) {
    Component component;
    orvo::Class_Map classes;
    try {
        component.link(classes);
        FAIL() << "no exception";
    } catch (const orvo::LinkException& missing) {
        EXPECT_EQ(missing.get_source(), location);
        EXPECT_EQ(missing.get_message(), "Error while linking <" + component.get_name() +
                                             ">\n\t-> class <actionlog> not found");
        EXPECT_EQ(missing.get_type(), "LinkException");
    }
    EXPECT_EQ(component.get_action_log(), nullptr);
}

TEST(Injectors, ReportAMissingLogFromTheirOwnLinkLocation) {
    expect_link_failure<kb::injectors::Injector_Action>(
        "knowledgebase/injectors/src/injector_action.cpp: In function 'link' (line 101): ");
    expect_link_failure<kb::injectors::Injector_Skill>(
        "knowledgebase/injectors/src/injector_skill.cpp: In function 'link' (line 45): ");
    expect_link_failure<kb::injectors::Injector_Effector>(
        "knowledgebase/injectors/src/injector_effector.cpp: In function 'link' (line 78): ");
    expect_link_failure<kb::extractors::Extractor_Action>(
        "knowledgebase/extractors/src/extractor_action.cpp: In function 'link' (line 62): ");
}

/// A plug-in mapper that records when it runs.
class RecordingMapper : public kb::mappers::Mapper {
public:
    RecordingMapper(std::vector<int>& runs, int tag) : runs(runs), tag(tag) {}
    void link(orvo::Class_Map&) override {}
    std::string get_name() const override { return "recording_mapper"; }
    void operator()() override { runs.push_back(tag); }

private:
    std::vector<int>& runs;
    int tag;
};

class MappingInjector : public kb::injectors::Injector_Skill {
public:
    void add(kb::mappers::Mapper& mapper) { mappers.push_back(&mapper); }
};

TEST(Injectors, InvokeTheirMappersInListOrder) {
    std::vector<int> runs;
    RecordingMapper first(runs, 1);
    RecordingMapper second(runs, 2);
    MappingInjector injector;
    injector.invoke_mappers();
    EXPECT_TRUE(runs.empty());
    injector.add(second);
    injector.add(first);
    injector.add(second);
    injector.invoke_mappers();
    EXPECT_EQ(runs, (std::vector<int>{2, 1, 2}));
}

} // namespace
