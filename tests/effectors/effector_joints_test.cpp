#include <support/failure.h>
#include <support/joint_agent.h>

#include <gtest/gtest.h>

#include <boost/any.hpp>

#include <cmath>
#include <memory>
#include <regex>
#include <sstream>

namespace {

using orvo::robot::Joint;
using orvo::robot::JointSet;
using orvo::robot::JointValues;

/// The joint components with their knowledge base, connected to a server
/// the test reads frame by frame.
class JointComponents : public ::testing::Test {
protected:
    std::string next_frame(int ms = orvo_test::wait_ms) {
        return orvo_test::next_frame(*server, ms);
    }

    orvo_test::Listener listener;
    orvo_test::JointAgent agent{listener.address().getPort()};
    std::unique_ptr<orvo::net::TCPSocket> server = listener.accept();
    orvo::knowledgebase::ActionLog& log = agent.log;
    orvo::effectors::Effector_Joints& effector = agent.effector;
    orvo::skills::Skill_Joints& skill = agent.skill;
};

TEST_F(JointComponents, TheEffectorSendsTheGivenJointsInOneMessage) {
    agent.actions("stand", 1, 10);
    JointValues speeds{};
    JointSet joints;
    for (const auto& [joint, speed] : {std::pair{Joint::neck_yaw, 0.5},
                                       {Joint::neck_pitch, -0.3},
                                       {Joint::left_shoulder_pitch, 10.0}, // over the limit
                                       {Joint::right_ankle_roll, -0.0001}}) {
        speeds[orvo::robot::index(joint)] = speed;
        joints.set(orvo::robot::index(joint));
    }
    effector(speeds, joints);
    effector(speeds, JointSet()); // nothing to send
    const std::string sent = "(he1 0.500)(he2 -0.300)(lae1 6.140)(rle6 0.000)";
    EXPECT_EQ(next_frame(), sent);
    EXPECT_EQ(next_frame(100), "");
    const auto& recorded = log.get_current_action()->second->get_effector("effector_joints");
    EXPECT_EQ(recorded->get_message(), sent);
    EXPECT_EQ(boost::any_cast<JointSet>(recorded->get_property("joints").get_value()), joints);
    EXPECT_EQ(boost::any_cast<JointValues>(recorded->get_property("speeds").get_value())[2], 6.14);
}

TEST_F(JointComponents, TheSkillSendsEveryJointOfTheRobotOncePerCycle) {
    const auto pose = std::make_shared<orvo::skills::Motion>(
        orvo::skills::Motion::parse("0.2 neck_yaw=30 left_toe=60 right_knee_pitch=-20", "pose"));
    for (const int type : {0, 4}) {
        SCOPED_TRACE(type);
        skill.set_robot_type(type);
        skill.player().play(pose);
        for (std::size_t i = 0; i < orvo::robot::joint_count; ++i) {
            if (!pose->joints().test(i)) {
                skill.player().hold(static_cast<Joint>(i), 0);
            }
        }
        JointValues angles{};
        for (int cycle = 0; cycle < 3; ++cycle) {
            agent.actions("stand", 10 * type + cycle, 10);
            skill(angles, 0.02 * cycle);
            const std::string frame = next_frame();
            // Every joint of the type once, in the table's order.
            std::size_t joint = 0;
            const std::regex command(R"(\(([a-z]+[0-9]) (-?[0-9]+\.[0-9]{3})\))");
            for (std::sregex_iterator at(frame.begin(), frame.end(), command), end; at != end;
                 ++at, ++joint) {
                ASSERT_LT(joint, orvo::robot::joint_count);
                EXPECT_EQ((*at)[1].str(), orvo::robot::joint_table()[joint].effector);
                EXPECT_LE(std::fabs(std::stod((*at)[2])), orvo::robot::max_joint_speed_rad);
            }
            EXPECT_EQ(joint, orvo::robot::joints_of_type(type)) << frame;
            EXPECT_EQ(log.get_current_action()->second->get_effector_chain(), frame);
        }
        EXPECT_EQ(next_frame(100), "");
        std::ostringstream record;
        log.get_current_action()->second->get_skill_chain().front()->print(record);
        // 0.104 of the way after 0.04 s; only type 4 drives (and counts) its toes.
        EXPECT_EQ(record.str(),
                  "skill_joints: pose, " + std::to_string(orvo::robot::joints_of_type(type)) +
                      " joints, worst error " + (type == 4 ? "6.24" : "3.12") + " deg");
    }
}

// A collaborator of the wrong class links as null; the first cycle would
// then call through it. Init refuses instead.
TEST(JointComponentsInit, ACollaboratorOfAnotherClassFailsInit) {
    struct Stranger : orvo::Constructable {
        void link(orvo::Class_Map&) override {}
        std::string get_name() const override { return "stranger"; }
    };
    const std::pair<const char*, const char*> cases[] = {
        {"messenger", "\"messenger\" is not a Messenger"},
        {"injector_effector", "\"injector_effector\" is not an Injector_Effector"},
        {"injector_skill", "\"injector_skill\" is not an Injector_Skill"},
        {"effector_joints", "\"effector_joints\" is not an Effector_Joints"}};
    for (const auto& [name, message] : cases) {
        orvo::communication::Messenger messenger;
        orvo::knowledgebase::injectors::Injector_Skill skills;
        orvo::knowledgebase::injectors::Injector_Effector effectors;
        orvo::effectors::Effector_Joints effector;
        orvo::skills::Skill_Joints skill;
        Stranger stranger;
        orvo::Class_Map classes{{"messenger", &messenger},
                                {"injector_skill", &skills},
                                {"injector_effector", &effectors},
                                {"effector_joints", &effector}};
        classes[name] = &stranger;
        const bool skill_side =
            std::string(name).rfind("injector_e", 0) != 0 && std::string(name) != "messenger";
        orvo::Constructable& component =
            skill_side ? static_cast<orvo::Constructable&>(skill) : effector;
        component.link(classes);
        const std::string got = orvo_test::failure<orvo::LogicException>([&] { component.init(); });
        EXPECT_EQ(got.substr(got.find(" | ") + 3), message) << got;
    }
}

} // namespace
