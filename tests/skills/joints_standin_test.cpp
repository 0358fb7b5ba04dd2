// Joint control against the stand-in server, a real process on loopback: the
// joint components send their one message a cycle, the server turns the joints.

#include <examples/child_process.h>
#include <support/joint_agent.h>
#include <support/scratch_dir.h>

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <regex>

namespace {

using namespace std::chrono_literals;
namespace robot = orvo::robot;

/// Reads the next perception: its time (s) and every joint angle it reports.
bool perceive(orvo_test::JointAgent& agent, double& now, robot::JointValues& angles) {
    const std::string text = orvo_test::next_frame(agent.communit.get_socket());
    if (text.empty()) {
        return false;
    }
    now = std::strtod(text.c_str() + text.find("(now ") + 5, nullptr);
    static const std::regex joint(R"(\(HJ \(n ([a-z0-9]+)\) \(ax (-?[0-9.]+)\)\))");
    for (std::sregex_iterator at(text.begin(), text.end(), joint), end; at != end; ++at) {
        if (const auto which = robot::joint_by_perceptor((*at)[1].str())) {
            angles[robot::index(*which)] = std::stod((*at)[2].str());
        }
    }
    return true;
}

TEST(JointsOnTheStandin, EveryJointReachesItsTargetWithinTwoDegrees) {
    orvo_test::ScratchDir scratch;
    const std::string dir = scratch.path.string() + "/";
    orvo_test::ChildProcess server({STANDIN_SERVER, "--port", "0", "--drawing-port", "0",
                                    "--monitor-port", "0", "--ports-file", "ports", "--agents", "1",
                                    "--cycles", "3000", "--sync", "--svg", "field.svg",
                                    "--start-timeout", "10"},
                                   dir, dir + "out.txt", dir + "err.txt");
    ASSERT_TRUE(orvo_test::wait_for_file("ports", 10s)) << server.error_text();
    unsigned port = 0;
    std::ifstream("ports") >> port;

    constexpr int bound = 50; // a 240-degree swing at the speed limit takes 35 cycles
    for (const int type : {4, 0}) {
        SCOPED_TRACE("type " + std::to_string(type));
        orvo_test::JointAgent agent(port);
        agent.messenger.send_message(
            ("(scene rsg/agent/nao/nao_hetero.rsg " + std::to_string(type) + ")").c_str());
        agent.skill.set_robot_type(type);
        // Near one end of each range, the head beyond its range.
        robot::JointValues targets{};
        for (const auto& joint : robot::joint_table()) {
            targets[robot::index(joint.joint)] =
                joint.min_deg + 0.9 * (joint.max_deg - joint.min_deg);
            agent.skill.player().hold(joint.joint, targets[robot::index(joint.joint)]);
        }
        agent.skill.player().hold(robot::Joint::neck_yaw, -150);
        targets[robot::index(robot::Joint::neck_yaw)] = -120;

        double now = 0;
        robot::JointValues angles{};
        for (int cycle = 0; cycle <= bound; ++cycle) {
            ASSERT_TRUE(perceive(agent, now, angles)) << server.error_text();
            agent.actions("hold", static_cast<unsigned>(cycle), 5);
            agent.skill(angles, now);
            agent.messenger.send_message("(syn)");
        }
        for (std::size_t i = 0; i < robot::joints_of_type(type); ++i) {
            EXPECT_NEAR(angles[i], targets[i], 2.0) << robot::joint_table()[i].name;
        }
        EXPECT_LT(agent.skill.worst_error(), 2.0);
    }
}

} // namespace
