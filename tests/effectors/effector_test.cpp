#include <orvo/communication/messenger.h>
#include <orvo/effectors/effector.h>
#include <orvo/knowledgebase/actionlog.h>
#include <orvo/knowledgebase/descriptors/descriptor_effector.h>
#include <orvo/knowledgebase/descriptors/descriptor_skill.h>
#include <orvo/knowledgebase/injectors/injector_action.h>
#include <orvo/knowledgebase/injectors/injector_effector.h>
#include <orvo/knowledgebase/injectors/injector_skill.h>
#include <orvo/skills/skill.h>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

namespace {

namespace kb = orvo::knowledgebase;
using orvo::communication::Messenger;

/// A plug-in effector: sends its command and reports the invocation.
class Head : public orvo::effectors::Effector {
public:
    std::string get_name() const override { return "head"; }

    void operator()(const std::string& command) {
        messenger->send_message(command.c_str());
        boost::shared_ptr<kb::descriptors::Descriptor_Effector> done =
            boost::make_shared<Turned>(command);
        (*effector_injector)(done);
    }

private:
    struct Turned : kb::descriptors::Descriptor_Effector {
        explicit Turned(const std::string& command) : Descriptor_Effector("head", command, false) {}
        std::ostream& print(std::ostream& out) const override { return out << message; }
    };
};

/// A plug-in skill that reports its run.
class Look : public orvo::skills::Skill {
public:
    std::string get_name() const override { return "look"; }

    void operator()() {
        boost::shared_ptr<kb::descriptors::Descriptor_Skill> run = boost::make_shared<Looked>();
        (*skill_injector)(run);
    }

private:
    struct Looked : kb::descriptors::Descriptor_Skill {
        Looked() : Descriptor_Skill("look") {}
        std::ostream& print(std::ostream& out) const override { return out << id; }
    };
};

void expect_link_failure(Head& head, orvo::Class_Map& classes, const std::string& missing_name) {
    try {
        head.link(classes);
        FAIL() << "no exception";
    } catch (const orvo::LinkException& missing) {
        EXPECT_EQ(missing.get_source(),
                  "effectors/src/effector.cpp: In function 'link' (line 42): ");
        EXPECT_EQ(missing.get_message(),
                  "Error while linking <head>\n\t-> class <" + missing_name + "> not found");
        EXPECT_EQ(missing.get_type(), "LinkException");
    }
}

TEST(Effector, AMissingMessengerStopsTheLinkBeforeTheInjector) {
    kb::injectors::Injector_Effector injector;
    orvo::Class_Map classes{{"injector_effector", &injector}};
    Head head;
    expect_link_failure(head, classes, "messenger");
    EXPECT_EQ(head.get_messenger(), nullptr);
    EXPECT_EQ(head.get_effector_injector(), nullptr);
}

TEST(Effector, AMissingInjectorIsReportedAfterTheMessengerWasFound) {
    Messenger messenger;
    orvo::Class_Map classes{{"messenger", &messenger}};
    Head head;
    expect_link_failure(head, classes, "injector_effector");
    EXPECT_EQ(head.get_messenger(), &messenger);
    EXPECT_EQ(head.get_effector_injector(), nullptr);
}

TEST(Effector, AnActionTravelsFromBehaviorThroughSkillAndEffectorIntoTheLog) {
    kb::ActionLog log;
    Messenger messenger;
    kb::injectors::Injector_Action actions;
    kb::injectors::Injector_Skill skills;
    kb::injectors::Injector_Effector effectors;
    orvo::Class_Map classes{{"actionlog", &log},
                            {"messenger", &messenger},
                            {"injector_action", &actions},
                            {"injector_skill", &skills},
                            {"injector_effector", &effectors}};
    Head head;
    Look look;
    for (orvo::Constructable* component :
         std::initializer_list<orvo::Constructable*>{&actions, &skills, &effectors, &head, &look}) {
        component->link(classes);
    }
    EXPECT_EQ(head.get_messenger(), &messenger);
    EXPECT_EQ(head.get_effector_injector(), &effectors);
    EXPECT_EQ(look.get_skill_injector(), &skills);

    actions("watch_ball", 12, 50);
    look();
    // The messenger is not connected here; its send is a quiet no-op.
    head("(he1 10)");
    head("(he1 20)");
    EXPECT_EQ(log.to_eval(), "(log (action (initiator watch_ball)(skill_chain (skill (id "
                             "look)))(effectors (effector (id head)))))");
    EXPECT_EQ(log.current_action->second->get_effector_chain(), "(he1 20)");
}

} // namespace
