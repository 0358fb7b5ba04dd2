#ifndef ORVO_TESTS_SUPPORT_JOINT_AGENT_H
#define ORVO_TESTS_SUPPORT_JOINT_AGENT_H

#include <orvo/communication/messenger.h>
#include <orvo/effectors/effector_joints.h>
#include <orvo/effectors/effector_say.h>
#include <orvo/knowledgebase/actionlog.h>
#include <orvo/knowledgebase/injectors/injector_action.h>
#include <orvo/knowledgebase/injectors/injector_effector.h>
#include <orvo/knowledgebase/injectors/injector_skill.h>
#include <orvo/net/comm_unit.h>
#include <orvo/skills/skill_joints.h>

#include <support/loopback.h>

namespace orvo_test {

/// An agent of nothing but joint control, speech and its knowledge base, linked as
/// an Architect would link it and connected to the server at `port`.
struct JointAgent {
    struct ServerAt : orvo::communication::Configuration {
        explicit ServerAt(unsigned int port) {
            server_host = "127.0.0.1";
            server_port = port;
        }
    };

    explicit JointAgent(unsigned int port) : configuration(port) {
        orvo::Class_Map classes{{"actionlog", &log},
                                {"communit", &communit},
                                {"configuration", &configuration},
                                {"messenger", &messenger},
                                {"injector_action", &actions},
                                {"injector_skill", &skills},
                                {"injector_effector", &effectors},
                                {"effector_joints", &effector},
                                {"effector_say", &say},
                                {"skill_joints", &skill}};
        for (auto& [name, component] : classes) {
            component->link(classes);
        }
        messenger.init();
        effector.init();
        say.init();
        skill.init();
        bound_waits(communit.get_socket().getFD());
    }
    ~JointAgent() { communit.finalize(); }

    orvo::knowledgebase::ActionLog log;
    orvo::net::CommUnit communit;
    ServerAt configuration;
    orvo::communication::Messenger messenger;
    orvo::knowledgebase::injectors::Injector_Action actions;
    orvo::knowledgebase::injectors::Injector_Skill skills;
    orvo::knowledgebase::injectors::Injector_Effector effectors;
    orvo::effectors::Effector_Joints effector;
    orvo::effectors::Effector_Say say;
    orvo::skills::Skill_Joints skill;
};

} // namespace orvo_test

#endif
