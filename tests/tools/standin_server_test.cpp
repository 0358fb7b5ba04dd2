// The stand-in server as the agents see it: a real process on loopback.

#include <orvo/protocol/drawing_wire.h>

#include <orvo/net/udp_socket.h>
#include <orvo/robot/joints.h>

#include <examples/child_process.h>
#include <support/loopback.h>
#include <support/scratch_dir.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <regex>
#include <string>

namespace {

using namespace std::chrono_literals;
using orvo::net::Addr;
using orvo_test::count_of;
using orvo_test::loopback;

/// The number after `key` in `text` (e.g. "(n llj7) (ax "), NaN when absent.
double number_after(const std::string& text, const std::string& key) {
    const auto at = text.find(key);
    return at == std::string::npos ? std::nan("")
                                   : std::strtod(text.c_str() + at + key.size(), nullptr);
}

/// A bare protocol client; every receive is bounded.
struct Client {
    explicit Client(unsigned port)
        : socket(Addr(0, loopback), Addr(static_cast<unsigned short>(port), loopback)) {
        orvo_test::bound_waits(socket.getFD());
    }
    void send_message(const std::string& text) { send_raw(orvo_test::frame(text)); }
    void send_raw(const std::string& bytes) {
        ASSERT_EQ(socket.send(bytes.data(), static_cast<unsigned>(bytes.size()), MSG_NOSIGNAL),
                  static_cast<int>(bytes.size()));
    }
    /// One whole frame, or "" on time-out or end of stream.
    std::string receive() { return orvo_test::next_frame(socket); }
    /// Perceptions until one holds `wanted` (which is returned), at most `limit`; "" if none.
    std::string receive_until(const std::string& wanted, int limit = 100) {
        for (int i = 0; i < limit; ++i) {
            const std::string text = receive();
            if (text.empty() || text.find(wanted) != std::string::npos) {
                return text;
            }
        }
        return "";
    }
    orvo::net::TCPSocket socket;
};

void send_cell(unsigned port, std::uint8_t header, float x) {
    orvo::net::UDPSocket udp(Addr(0, loopback));
    const Addr to(static_cast<unsigned short>(port), loopback);
    const char opening[] = {0x03, 0x00, static_cast<char>(header)};
    udp.send(opening, sizeof opening, to);
    const orvo::protocol::drawing::Corner corners[] = {{x, 1}, {x + 1, -1}, {x - 1, -1}};
    unsigned char buffer[orvo::protocol::drawing::max_shape_size];
    const auto size = orvo::protocol::drawing::encode(orvo::protocol::drawing::Kind::polygon,
                                                      header, "cell", {}, corners, 3, buffer);
    udp.send(reinterpret_cast<const char*>(buffer), static_cast<unsigned>(size), to);
}

class StandinServer : public ::testing::Test {
protected:
    /// Starts the server with the common options and `extra`; waits for its ports.
    void start(const std::vector<std::string>& extra) {
        server =
            run(std::vector<std::string>{"--port", "0", "--drawing-port", "0", "--monitor-port",
                                         "0", "--ports-file", "ports", "--log", "log.txt", "--svg",
                                         "field.svg", "--start-timeout", "10"},
                extra);
        ASSERT_TRUE(orvo_test::wait_for_file("ports", 10s)) << server->error_text();
        std::ifstream("ports") >> tcp >> udp >> monitor;
    }
    std::unique_ptr<orvo_test::ChildProcess> run(std::vector<std::string> args,
                                                 const std::vector<std::string>& extra = {}) {
        args.insert(args.begin(), STANDIN_SERVER);
        args.insert(args.end(), extra.begin(), extra.end());
        const std::string dir = scratch.path.string() + "/";
        ++runs;
        return std::make_unique<orvo_test::ChildProcess>(
            args, dir, dir + std::to_string(runs) + ".out", dir + std::to_string(runs) + ".err");
    }
    /// A robot of `type` that has had its first perception, so that it may
    /// join; connections made one after another this way arrive in cycles of their own.
    std::unique_ptr<Client> arrive(int type) {
        auto client = std::make_unique<Client>(tcp);
        client->send_message("(scene rsg/agent/nao/nao_hetero.rsg " + std::to_string(type) + ")");
        EXPECT_NE(client->receive(), "");
        return client;
    }
    /// Sends the init; the number the server gave, or 0.
    static int join(Client& client, const std::string& team) {
        client.send_message("(init (unum 0)(teamname " + team + "))");
        const std::string state = client.receive_until("(GS (unum ", 10);
        return state.empty() ? 0 : static_cast<int>(number_after(state, "(GS (unum "));
    }
    /// Waits (bounded) for the server to end; its summary.
    std::string finish() {
        EXPECT_EQ(server->wait_for(10s), 0) << server->error_text();
        return server->output_text();
    }

    orvo_test::ScratchDir scratch;
    std::unique_ptr<orvo_test::ChildProcess> server;
    unsigned tcp = 0, udp = 0, monitor = 0;
    int runs = 0;
};

TEST_F(StandinServer, SyncModeServesBeamsAssignsNumbersAndReportsEverything) {
    start({"--agents", "2", "--cycles", "1000", "--sync", "--cycle-timeout", "5"});
    auto first = arrive(0);
    EXPECT_EQ(join(*first, "blue"), 1);
    // Both are there: from now on every cycle waits for both answers.
    auto second = arrive(0);
    while (orvo_test::readable(first->socket.getFD(), 100)) {
        first->receive(); // the cycles played at the real-time pace
    }
    second->send_message("(init (unum 0)(teamname blue))");
    first->send_message("(syn)");
    second->send_message("(syn)");
    EXPECT_NE(first->receive(), "");
    EXPECT_NE(second->receive().find("(GS (unum 2) (team left)"), std::string::npos);
    int seen = 0;
    for (int cycle = 0; cycle < 4; ++cycle) {
        first->send_message("(beam -3 2 0)");
        first->send_message("(he1 0.5)(he2 0.1)(dance 1)");
        send_cell(udp, 0x01, -3);
        first->send_message("(syn)");
        send_cell(udp, 0x02, -8);
        second->send_message("(beam -1 0 0)(syn)");
        const std::string a = first->receive(), b = second->receive();
        ASSERT_EQ(a.rfind("(time (now ", 0), 0u) << a;
        EXPECT_EQ(b.find("(unum"), std::string::npos) << b; // the number is told once
        EXPECT_NE(a.find("(mypos -3.00 2.00 0.35)"), std::string::npos) << a;
        seen += a.find(" (P (team blue) (id 2) (head (pol 2.83 -4") != std::string::npos;
    }
    EXPECT_GE(seen, 1); // vision every third cycle shows the team-mate
    first.reset();
    second.reset();
    const std::string summary = finish(); // the last agent gone, the run ends
    EXPECT_NE(summary.find("sync mode (slowdown 1, pairs 0), 2 agents (2 expected)\nplay modes: "),
              std::string::npos)
        << summary;
    // agent 1: type 0, number 1, no pairs, 4 beams, 8 joint commands, 4 drawings
    EXPECT_TRUE(std::regex_search(
        summary,
        std::regex("\n    1    0 blue            1 +\\d+ +\\d+     0 +\\d+ +\\d+ +\\d+     "
                   "4      8        4 -      ")))
        << summary;
    EXPECT_NE(summary.find("all agents: latency us min "), std::string::npos) << summary;

    const std::string svg = orvo_test::ChildProcess::read("field.svg");
    EXPECT_EQ(count_of(svg, "class=\"cell\""), 2u); // each agent's latest batch only
    EXPECT_EQ(count_of(svg, "class=\"agent\""), 2u);
}

TEST_F(StandinServer, JoiningFollowsTheRealServersRules) {
    start({"--agents", "12", "--cycles", "3000"});
    // An init in the same breath as the scene comes before the first perception.
    auto early = std::make_unique<Client>(tcp);
    early->send_message("(scene rsg/agent/nao/nao.rsg)(init (unum 0)(teamname blue))");
    EXPECT_EQ(early->receive_until("(unum", 10), "");
    // Seven of type 0 and two of type 1 join; an eighth of type 0 and a third
    // of type 1 (ten of two types) do not; a robot of type 2 still does.
    const struct {
        int type;
        int unum;
    } robots[] = {{0, 1}, {0, 2}, {0, 3}, {0, 4}, {0, 5}, {0, 6},
                  {0, 7}, {1, 8}, {1, 9}, {0, 0}, {1, 0}, {2, 10}};
    std::vector<std::unique_ptr<Client>> team;
    for (const auto& robot : robots) {
        team.push_back(arrive(robot.type));
        EXPECT_EQ(join(*team.back(), "blue"), robot.unum) << "type " << robot.type;
    }
    early.reset();
    team.clear();
    const std::string summary = finish();
    for (const char* line :
         {"\nagent 1: cycle \\d+: init before the robot's first perception ignored\n",
          "\nagent 11: cycle \\d+: init refused: it would be robot 8 of type 0 in team blue \\(at "
          "most 7 of one type\\)\n",
          "\nagent 12: cycle \\d+: init refused: types 0 and 1 would be 10 robots in team blue "
          "\\(at most 9 of two types\\)\n",
          "\n    1    0 -               0  never ", "\n   13    2 blue           10 +\\d+ "}) {
        EXPECT_TRUE(std::regex_search(summary, std::regex(line))) << line << "\n" << summary;
    }
}

TEST_F(StandinServer, JointsTurnWithinTheirSpeedLimitAndRangeForTheRobotsType) {
    start({"--agents", "1", "--cycles", "3000", "--sync"});
    const struct {
        int type;
        std::size_t joints;
        double ankle_pitch, ankle_roll; ///< degrees turned in a cycle at full speed
    } robots[] = {{4, 24, 7.04, 7.04}, {0, 22, 7.04, 7.04}, {2, 22, 10.09, 3.98}};
    for (const auto& robot : robots) {
        SCOPED_TRACE("type " + std::to_string(robot.type));
        auto client = arrive(robot.type);
        // Toes exist on type 4 only; every speed is limited to 6.14 rad/s but
        // type 2's ankles: pitch 8.81, roll 3.47.
        client->send_message("(lle7 100)(he1 -1)(rae2 -100)(lle5 100)(lle6 100)(syn)");
        std::string state = client->receive();
        EXPECT_EQ(count_of(state, "(HJ (n "), robot.joints) << state;
        EXPECT_EQ(count_of(state, "(HJ (n llj7)"), robot.type == 4 ? 1u : 0u);
        EXPECT_NEAR(number_after(state, "(n hj1) (ax "), -1.15, 0.01);
        EXPECT_NEAR(number_after(state, "(n raj2) (ax "), -7.04, 0.01);
        EXPECT_NEAR(number_after(state, "(n llj5) (ax "), robot.ankle_pitch, 0.01);
        EXPECT_NEAR(number_after(state, "(n llj6) (ax "), robot.ankle_roll, 0.01);
        for (int cycle = 0; cycle < 30; ++cycle) {
            client->send_message("(syn)");
            state = client->receive();
        }
        // Each joint stops at its end of the range.
        EXPECT_NEAR(number_after(state, "(n raj2) (ax "), -95, 0.01);
        EXPECT_NEAR(number_after(state, "(n hj1) (ax "), -35.52, 0.01);
        if (robot.type == 4) {
            EXPECT_NEAR(number_after(state, "(n llj7) (ax "), 70, 0.01);
        }
        for (const auto& joint : orvo::robot::joint_table()) {
            EXPECT_EQ(count_of(state, "(HJ (n " + std::string(joint.perceptor) + ") (ax "),
                      static_cast<std::size_t>(joint.joint) < robot.joints ? 1u : 0u);
        }
    }
}

TEST_F(StandinServer, BadOptionsAreRefusedWithAReason) {
    const struct {
        std::vector<std::string> args;
        int status;
        std::string text;
    } cases[] = {
        {{"--cycles", "ten"}, 2, "--cycles: not a number"},
        {{"--pairs", "2"}, 2, "--pairs: not a share from 0 to 1: 2"},
        {{"--slowdown", "0.5"}, 2, "--slowdown: not a factor from 1 to 100"},
        {{"--help"}, 0, "--kickoff-after N"},
        {{"--port", "0", "--drawing-port", "0", "--monitor-port", "0", "--start-timeout", "0.2"},
         1,
         "no agent connected"}};
    for (const auto& c : cases) {
        auto process = run(c.args);
        EXPECT_EQ(process->wait_for(10s), c.status) << c.text;
        EXPECT_NE((process->output_text() + process->error_text()).find(c.text), std::string::npos);
    }
}

} // namespace
