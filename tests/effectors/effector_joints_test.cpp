#include <support/joint_agent.h>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <regex>
#include <sstream>

namespace {

using orvo::robot::Joint;
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

TEST_F(JointComponents, SayingSendsACarriedTextAndRefusesOneTheServerWouldDrop) {
    agent.actions("talk", 0, 10);
    for (const std::string& text :
         {std::string("a\"b"), std::string("a b"), std::string(21, 'x')}) {
        EXPECT_FALSE(agent.say(text)) << text;
        EXPECT_NE(agent.say.refusal(), "") << text;
    }
    EXPECT_EQ(next_frame(100), "");
    ASSERT_TRUE(agent.say("p1:-3.5,2;b+4"));
    EXPECT_EQ(agent.say.refusal(), "");
    EXPECT_EQ(next_frame(), "(say p1:-3.5,2;b+4)");
    EXPECT_EQ(log.get_current_action()->second->get_effector_chain(), "(say p1:-3.5,2;b+4)");
}

} // namespace
