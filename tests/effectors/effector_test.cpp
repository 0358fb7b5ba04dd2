#include <orvo/communication/messenger.h>
#include <orvo/effectors/effector.h>
#include <orvo/knowledgebase/actionlog.h>
#include <orvo/knowledgebase/descriptors/descriptor_effector.h>
#include <orvo/knowledgebase/descriptors/descriptor_skill.h>
#include <orvo/knowledgebase/injectors/injector_action.h>
#include <orvo/knowledgebase/injectors/injector_effector.h>
#include <orvo/knowledgebase/injectors/injector_skill.h>
#include <orvo/skills/skill.h>

#include "support/failure.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

namespace {

namespace kb = orvo::knowledgebase;

/// A plug-in effector: sends its command and reports the invocation.
struct Head : orvo::effectors::Effector {
    std::string get_name() const override { return "head"; }
    void operator()(const std::string& command) {
        messenger->send_message(command.c_str());
        boost::shared_ptr<kb::descriptors::Descriptor_Effector> done =
            boost::make_shared<Turned>(command);
        (*effector_injector)(done);
    }
    struct Turned : kb::descriptors::Descriptor_Effector {
        explicit Turned(const std::string& command) : Descriptor_Effector("head", command, false) {}
        std::ostream& print(std::ostream& out) const override { return out << message; }
    };
};

/// A plug-in skill that reports its run.
struct Look : orvo::skills::Skill {
    std::string get_name() const override { return "look"; }
    void operator()() {
        boost::shared_ptr<kb::descriptors::Descriptor_Skill> run = boost::make_shared<Looked>();
        (*skill_injector)(run);
    }
    struct Looked : kb::descriptors::Descriptor_Skill {
        Looked() : Descriptor_Skill("look") {}
        std::ostream& print(std::ostream& out) const override { return out << id; }
    };
};

TEST(Effector, LinkNeedsTheMessengerFirstAndThenTheInjector) {
    orvo::communication::Messenger messenger;
    kb::injectors::Injector_Effector injector;
    const std::string at = "LinkException @ effectors/src/effector.cpp: In function 'link' (line "
                           "42):  | Error while linking <head>\n\t-> class <";
    for (auto* present : std::initializer_list<orvo::Constructable*>{&injector, &messenger}) {
        orvo::Class_Map classes{{present->get_name(), present}};
        Head head;
        const bool has_messenger = present == &messenger;
        EXPECT_EQ(orvo_test::failure<orvo::LinkException>([&] { head.link(classes); }),
                  at + (has_messenger ? "injector_effector" : "messenger") + "> not found");
        EXPECT_EQ(head.get_messenger(), has_messenger ? &messenger : nullptr);
        EXPECT_EQ(head.get_effector_injector(), nullptr);
    }
}

TEST(Effector, AnActionTravelsFromBehaviorThroughSkillAndEffectorIntoTheLog) {
    kb::ActionLog log;
    orvo::communication::Messenger messenger;
    kb::injectors::Injector_Action actions;
    kb::injectors::Injector_Skill skills;
    kb::injectors::Injector_Effector effectors;
    Head head;
    Look look;
    orvo::Class_Map classes{{"actionlog", &log},
                            {"messenger", &messenger},
                            {"injector_action", &actions},
                            {"injector_skill", &skills},
                            {"injector_effector", &effectors}};
    for (orvo::Constructable* component :
         std::initializer_list<orvo::Constructable*>{&actions, &skills, &effectors, &head, &look}) {
        component->link(classes);
    }
    EXPECT_EQ(head.get_effector_injector(), &effectors);
    EXPECT_EQ(look.get_skill_injector(), &skills);

    actions("watch_ball", 12, 50);
    look();
    // The messenger is not connected here; its send is a quiet no-op.
    head("(he1 10)");
    head("(he1 20)");
    EXPECT_EQ(log.to_eval(), "(log (action (initiator watch_ball)(skill_chain (skill (id "
                             "look)))(effectors (effector (id head)))))");
    EXPECT_EQ(log.get_current_action()->second->get_effector_chain(), "(he1 20)");
}

} // namespace
