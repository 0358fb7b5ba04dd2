#include "named_descriptors.h"
#include "support/failure.h"

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
struct StickyInjector : kb::injectors::Injector_Action {
    void apply_stickiness(Action previous, Action next) override {
        calls.emplace_back(std::move(previous), std::move(next));
    }
    std::vector<std::pair<Action, Action>> calls;
};

struct StickyLog : LinkedLog {
    StickyInjector sticky;
    StickyLog() { sticky.link(classes); }
    const Action& current() const { return log.get_current_action()->second; }
    bool marks_at(unsigned int previous, unsigned int current) const {
        return log.get_previous_action() == log.get_actions().find(previous) &&
               log.get_current_action() == log.get_actions().find(current);
    }
};

TEST(InjectorAction, StickinessFollowsOnlyAnActionWithEffectors) {
    StickyLog linked;
    linked.sticky("first", 1, 10);
    EXPECT_TRUE(linked.marks_at(~0u, 1)); // no previous: find() gives the end
    linked.sticky("second", 2, 10);
    EXPECT_TRUE(linked.sticky.calls.empty());

    linked.add_effector("legs");
    const Action with_effector = linked.current();
    linked.sticky("third", 3, 10);
    ASSERT_EQ(linked.sticky.calls.size(), 1u);
    EXPECT_EQ(linked.sticky.calls[0].first, with_effector);
    EXPECT_EQ(linked.sticky.calls[0].second, linked.current());
    EXPECT_EQ(linked.current()->get_initiator(), "third");
    EXPECT_TRUE(linked.marks_at(2, 3));
    EXPECT_EQ(linked.log.get_start_time(), 1u);
}

TEST(InjectorAction, FirstActionOfATimeStaysAndBothMarksMeetOnIt) {
    StickyLog linked;
    linked.sticky("first", 5, 10);
    linked.add_effector("legs");
    const Action first = linked.current();
    linked.sticky("second", 5, 10);
    ASSERT_EQ(linked.log.get_actions().size(), 1u);
    EXPECT_EQ(linked.log.get_actions().begin()->first, 5u);
    EXPECT_EQ(linked.current(), first);
    EXPECT_TRUE(linked.marks_at(5, 5));
    // The hook still saw the action that the log then dropped.
    ASSERT_EQ(linked.sticky.calls.size(), 1u);
    EXPECT_EQ(linked.sticky.calls[0].first, first);
    EXPECT_EQ(linked.sticky.calls[0].second->get_initiator(), "second");
    EXPECT_EQ(linked.sticky.calls[0].second.use_count(), 1);
}

TEST(InjectorAction, MarksOnTrimmedEntriesMoveToTheEnd) {
    StickyLog linked;
    linked.sticky("first", 1, 1);
    linked.add_effector("legs");
    // Retention 1 erases the current entry before the new one is made.
    linked.sticky("second", 2, 1);
    EXPECT_TRUE(linked.sticky.calls.empty());
    EXPECT_TRUE(linked.marks_at(~0u, 2));

    linked.add_effector("legs");
    linked.sticky("third", 3, 2);
    ASSERT_EQ(linked.sticky.calls.size(), 1u);
    linked.sticky.resize_action_log(10, 1);
    EXPECT_TRUE(linked.log.get_actions().empty());
    EXPECT_TRUE(linked.marks_at(~0u, ~0u));
}

TEST(InjectorSkillAndEffector, AppendEverySkillAndReplaceAnEffectorsInvocation) {
    LinkedLog linked;
    linked.inject_action("b", 1, 10);
    linked.add_skill("walk");
    linked.inject_action("c", 2, 10);
    for (const char* id : {"walk", "turn", "walk"}) {
        linked.add_skill(id);
    }
    auto first = effector("legs", "(first)");
    auto second = effector("legs", "(second)");
    linked.inject_effector(first);
    linked.inject_effector(second);
    linked.add_effector("head", "(head)");
    EXPECT_EQ(linked.log.to_eval(), "(log (action (initiator c)(skill_chain (skill (id walk)) "
                                    "(skill (id turn)) (skill (id walk)))(effectors (effector (id "
                                    "head)) (effector (id legs)))))");
    EXPECT_EQ(linked.log.get_actions().at(1)->get_skill_chain().size(), 1u);
    const Action& action = linked.log.get_current_action()->second;
    EXPECT_EQ(action->get_effector("legs"), second);
    EXPECT_EQ(first.use_count(), 1);
    EXPECT_EQ(action->get_effector_chain(), "(head)(second)");
    // add_effector on the same action still keeps what is there.
    action->add_effector(effector("legs", "(third)"));
    EXPECT_EQ(action->get_effector("legs"), second);
}

TEST(Components, AreCreatedUnderTheirNamesAndReportAMissingLogFromTheirLinkLocation) {
    using Created = std::unique_ptr<orvo::Constructable, void (*)(orvo::Constructable*)>;
    const struct {
        orvo::Constructable* (*factory)();
        const char* name;
        const char* file; ///< where link() reports the missing log, if it needs one
        int line;
    } components[] = {{create_injector_action, "injector_action", "injectors", 101},
                      {create_injector_skill, "injector_skill", "injectors", 45},
                      {create_injector_effector, "injector_effector", "injectors", 78},
                      {create_extractor_action, "extractor_action", "extractors", 62},
                      {create_actionlog, "actionlog", nullptr, 0}};
    for (const auto& component : components) {
        Created created(component.factory(), destroy);
        EXPECT_EQ(created->get_name(), component.name);
        orvo::Class_Map classes;
        if (component.file != nullptr) {
            EXPECT_EQ(failure<orvo::LinkException>([&] { created->link(classes); }),
                      "LinkException @ knowledgebase/" + std::string(component.file) + "/src/" +
                          component.name + ".cpp: In function 'link' (line " +
                          std::to_string(component.line) + "):  | Error while linking <" +
                          component.name + ">\n\t-> class <actionlog> not found");
        }
    }
    Created action(create_injector_action(), destroy);
    EXPECT_NE(dynamic_cast<kb::injectors::Injector_Action*>(action.get()), nullptr);
}

} // namespace
