// The stand-in server as the agents see it: a real process on loopback.

#include "drawing_wire.h"

#include <orvo/net/udp_socket.h>

#include <examples/child_process.h>
#include <support/loopback.h>
#include <support/scratch_dir.h>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

namespace {

using namespace std::chrono_literals;
using orvo::net::Addr;
using orvo_test::count_of;
using orvo_test::loopback;

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
    std::string receive() {
        const std::string prefix = orvo_test::read_bytes(socket, 4);
        if (prefix.size() < 4) {
            return "";
        }
        std::uint32_t size = 0;
        for (unsigned char byte : prefix) {
            size = size << 8 | byte;
        }
        const std::string text = orvo_test::read_bytes(socket, size);
        return text.size() == size ? text : "";
    }
    orvo::net::TCPSocket socket;
};

void send_cell(unsigned port, std::uint8_t header, float x) {
    orvo::net::UDPSocket udp(Addr(0, loopback));
    const Addr to(static_cast<unsigned short>(port), loopback);
    const char opening[] = {0x03, 0x00, static_cast<char>(header)};
    udp.send(opening, sizeof opening, to);
    const demo::wire::Corner corners[] = {{x, 1}, {x + 1, -1}, {x - 1, -1}};
    unsigned char buffer[demo::wire::max_shape_size];
    const auto size =
        demo::wire::encode(demo::wire::Kind::polygon, header, "cell", {}, corners, 3, buffer);
    udp.send(reinterpret_cast<const char*>(buffer), static_cast<unsigned>(size), to);
}

class StandinServer : public ::testing::Test {
protected:
    /// Starts the server with the common options and `extra`; waits for its ports.
    void start(const std::vector<std::string>& extra) {
        server = run(std::vector<std::string>{"--port", "0", "--drawing-port", "0", "--ports-file",
                                              "ports", "--log", "log.txt", "--svg", "field.svg",
                                              "--start-timeout", "10"},
                     extra);
        ASSERT_TRUE(orvo_test::wait_for_file("ports", 10s)) << server->error_text();
        std::ifstream("ports") >> tcp >> udp;
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
    /// Waits (bounded) for the server to end; its summary.
    std::string finish() {
        EXPECT_EQ(server->wait_for(10s), 0) << server->error_text();
        return server->output_text();
    }

    orvo_test::ScratchDir scratch;
    std::unique_ptr<orvo_test::ChildProcess> server;
    unsigned tcp = 0, udp = 0;
    int runs = 0;
};

TEST_F(StandinServer, SyncModeServesBeamsAssignsNumbersAndReportsEverything) {
    start({"--agents", "2", "--cycles", "4", "--sync"});
    Client first(tcp), second(tcp);
    for (Client* client : {&first, &second}) {
        client->send_message("(scene rsg/agent/nao/nao.rsg)");
        client->send_message("(init (unum 0)(teamname blue))");
    }
    for (int cycle = 1; cycle <= 4; ++cycle) {
        const std::string a = first.receive(), b = second.receive();
        ASSERT_EQ(a.rfind("(time (now ", 0), 0u) << a;
        EXPECT_NE(a.find("(GS (unum 1) (team left)"), std::string::npos) << a;
        EXPECT_NE(b.find("(GS (unum 2) (team left)"), std::string::npos) << b;
        // Vision comes on the first of every three cycles and shows the team-mate.
        EXPECT_EQ(a.find("(See (P (team blue) (id 2) (head (pol ") != std::string::npos,
                  cycle % 3 == 1)
            << a;
        EXPECT_EQ(a.find("(mypos -3.00 2.00 0.35)") != std::string::npos, cycle > 1) << a;
        first.send_message("(beam -3 2 0)");
        first.send_message("(he1 0.5)(he2 0.1)(dance 1)");
        send_cell(udp, 0x01, -3);
        first.send_message("(syn)");
        send_cell(udp, 0x02, -8);
        second.send_message("(syn)");
    }
    EXPECT_EQ(first.receive(), ""); // the server closes the connections when done
    const std::string summary = finish();
    EXPECT_NE(summary.find("4 cycles (0.08 s simulated)"), std::string::npos) << summary;
    EXPECT_NE(summary.find("sync mode, 2 agents"), std::string::npos) << summary;
    // agent 1: 4 cycles answered, 2 + 3*4 messages, 4 beams, 8 joints, 4 drawings
    EXPECT_NE(summary.find("blue            1       4        4       14"), std::string::npos)
        << summary;
    EXPECT_NE(summary.find(" 4      8        4   "), std::string::npos) << summary;
    EXPECT_NE(summary.find("over 8 answers"), std::string::npos) << summary;

    // The log keeps each agent's messages in the order they were sent.
    std::istringstream log(orvo_test::ChildProcess::read("log.txt"));
    std::string first_agent;
    for (std::string line; std::getline(log, line);) {
        first_agent += line.rfind("1\t", 0) == 0 ? line + "\n" : "";
    }
    EXPECT_EQ(first_agent.rfind("1\t0\t0\t(scene rsg/agent/nao/nao.rsg)\n1\t0\t0\t(init ", 0), 0u)
        << first_agent;
    EXPECT_NE(first_agent.find("1\t1\t2\t(beam -3 2 0)\n1\t1\t2\t(he1 0.5)(he2 0.1)(dance "
                               "1)\n1\t1\t2\t(syn)\n1\t1\t3\t(beam"),
              std::string::npos)
        << first_agent;
    const std::string svg = orvo_test::ChildProcess::read("field.svg");
    EXPECT_EQ(count_of(svg, "class=\"cell\""), 2u); // each agent's latest batch only
    EXPECT_EQ(count_of(svg, "class=\"agent\""), 2u);
}

TEST_F(StandinServer, ASilentAgentDelaysASyncCycleOnlyUntilTheTimeout) {
    start({"--agents", "1", "--cycles", "2", "--sync", "--cycle-timeout", "0.1"});
    Client mute(tcp);
    EXPECT_NE(mute.receive(), "");
    EXPECT_NE(mute.receive(), "");
    EXPECT_NE(finish().find("2 cycles"), std::string::npos);
    EXPECT_NE(server->error_text().find("did not answer"), std::string::npos);
}

TEST_F(StandinServer, BrokenFramesCloseOnlyTheOffendingAgent) {
    start({"--agents", "2", "--cycles", "3", "--sync", "--cycle-timeout", "2"});
    Client good(tcp), bad(tcp);
    ASSERT_NE(bad.receive(), "");
    bad.send_raw(orvo_test::frame("(", 0x7fffffff));
    for (int cycle = 0; cycle < 3; ++cycle) {
        ASSERT_NE(good.receive(), "");
        good.send_message("(syn)");
    }
    EXPECT_NE(finish().find("over 3 answers"), std::string::npos) << server->output_text();
}

TEST_F(StandinServer, TheGameEndsEarlyWhenTheLastAgentLeaves) {
    start({"--agents", "1", "--cycles", "1000", "--sync"});
    {
        Client leaving(tcp);
        for (int cycle = 0; cycle < 2; ++cycle) {
            ASSERT_NE(leaving.receive(), "");
            leaving.send_message("(syn)");
        }
        ASSERT_NE(leaving.receive(), "");
    }
    // The third perception was sent, so the third cycle counts as played.
    const std::string summary = finish();
    EXPECT_NE(summary.find("stand-in server: 3 cycles (0.06 s simulated)"), std::string::npos)
        << summary;
    EXPECT_NE(summary.find("over 2 answers"), std::string::npos);
}

TEST_F(StandinServer, BadOptionsAreRefusedWithAReason) {
    const struct {
        std::vector<std::string> args;
        int status;
        std::string text;
    } cases[] = {{{"--cycles", "ten"}, 2, "--cycles: not a number"},
                 {{"--help"}, 0, "--sync"},
                 {{"--port", "0", "--drawing-port", "0", "--start-timeout", "0.2"},
                  1,
                  "no agent connected"}};
    for (const auto& c : cases) {
        auto process = run(c.args);
        EXPECT_EQ(process->wait_for(10s), c.status) << c.text;
        EXPECT_NE((process->output_text() + process->error_text()).find(c.text), std::string::npos);
    }
}

} // namespace
