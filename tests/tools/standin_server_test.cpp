// The stand-in server as the agents see it: a real process on loopback.

#include "drawing_wire.h"

#include <examples/child_process.h>
#include <support/scratch_dir.h>

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>

namespace {

using namespace std::chrono_literals;

/// A bare protocol client with a bounded receive.
class Client {
public:
    explicit Client(unsigned port) {
        fd = socket(AF_INET, SOCK_STREAM, 0);
        timeval timeout{5, 0};
        setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        connected = connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    }
    ~Client() { close(fd); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    void send_message(const std::string& text) const {
        std::string frame(4, '\0');
        const auto size = static_cast<std::uint32_t>(text.size());
        for (int i = 0; i < 4; ++i) {
            frame[i] = static_cast<char>(size >> (24 - 8 * i));
        }
        frame += text;
        ASSERT_EQ(send(fd, frame.data(), frame.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(frame.size()));
    }
    /// One whole frame, or "" on time-out or end of stream.
    std::string receive() const {
        unsigned char prefix[4];
        if (!read_all(prefix, 4)) {
            return "";
        }
        const std::uint32_t size = (std::uint32_t{prefix[0]} << 24) |
                                   (std::uint32_t{prefix[1]} << 16) |
                                   (std::uint32_t{prefix[2]} << 8) | prefix[3];
        std::string text(size, '\0');
        return read_all(text.data(), size) ? text : "";
    }

    int fd = -1;
    bool connected = false;

private:
    bool read_all(void* into, std::size_t size) const {
        auto* at = static_cast<char*>(into);
        while (size > 0) {
            const ssize_t n = recv(fd, at, size, 0);
            if (n <= 0) {
                return false;
            }
            at += n;
            size -= static_cast<std::size_t>(n);
        }
        return true;
    }
};

void send_datagram(unsigned port, const unsigned char* data, std::size_t size) {
    const int fd = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    sendto(fd, data, size, 0, reinterpret_cast<sockaddr*>(&address), sizeof address);
    close(fd);
}

void send_cell(unsigned port, std::uint8_t header, float x) {
    const unsigned char opening[] = {0x03, 0x00, header};
    send_datagram(port, opening, sizeof opening);
    const demo::wire::Corner corners[] = {{x, 1}, {x + 1, -1}, {x - 1, -1}};
    unsigned char buffer[demo::wire::max_shape_size];
    const auto size =
        demo::wire::encode(demo::wire::Kind::polygon, header, "cell", {}, corners, 3, buffer);
    send_datagram(port, buffer, size);
}

std::size_t count(const std::string& text, const std::string& what) {
    std::size_t found = 0;
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
        ++found;
    }
    return found;
}

class StandinServer : public ::testing::Test {
protected:
    void start(const std::vector<std::string>& extra) {
        std::vector<std::string> argv = {
            STANDIN_SERVER, "--port",          "0",     "--drawing-port", "0",
            "--ports-file", "ports",           "--log", "log.txt",        "--svg",
            "field.svg",    "--start-timeout", "10"};
        argv.insert(argv.end(), extra.begin(), extra.end());
        const std::string dir = scratch.path.string();
        server = std::make_unique<orvo_test::ChildProcess>(argv, dir, dir + "/out.txt",
                                                           dir + "/err.txt");
        ASSERT_TRUE(orvo_test::wait_for_file("ports", 10s)) << server->error_text();
        std::ifstream("ports") >> tcp >> udp;
    }

    orvo_test::ScratchDir scratch;
    std::unique_ptr<orvo_test::ChildProcess> server;
    unsigned tcp = 0;
    unsigned udp = 0;
};

TEST_F(StandinServer, SyncModeServesBeamsAssignsNumbersAndReportsEverything) {
    start({"--agents", "2", "--cycles", "4", "--sync"});
    Client first(tcp);
    Client second(tcp);
    ASSERT_TRUE(first.connected && second.connected);
    for (Client* client : {&first, &second}) {
        client->send_message("(scene rsg/agent/nao/nao.rsg)");
        client->send_message("(init (unum 0)(teamname blue))");
    }

    for (int cycle = 1; cycle <= 4; ++cycle) {
        const std::string a = first.receive();
        const std::string b = second.receive();
        ASSERT_EQ(a.rfind("(time (now ", 0), 0u) << a;
        EXPECT_NE(a.find("(GS (unum 1) (team left)"), std::string::npos) << a;
        EXPECT_NE(b.find("(GS (unum 2) (team left)"), std::string::npos) << b;
        if (cycle % 3 == 1) {
            // Vision comes on the first of every three cycles and shows the team-mate.
            EXPECT_NE(a.find("(See (P (team blue) (id 2) (head (pol "), std::string::npos) << a;
        } else {
            EXPECT_EQ(a.find("(See"), std::string::npos) << a;
        }
        if (cycle > 1) {
            EXPECT_NE(a.find("(mypos -3.00 2.00 0.35)"), std::string::npos) << a;
        }
        first.send_message("(beam -3 2 0)");
        first.send_message("(he1 0.5)(he2 0.1)(dance 1)");
        send_cell(udp, 0x01, -3);
        first.send_message("(syn)");
        send_cell(udp, 0x02, -8);
        second.send_message("(syn)");
    }
    EXPECT_EQ(first.receive(), ""); // the server closes the connections when done
    ASSERT_EQ(server->wait_for(10s), 0) << server->error_text();

    const std::string summary = server->output_text();
    EXPECT_NE(summary.find("4 cycles (0.08 s simulated)"), std::string::npos) << summary;
    EXPECT_NE(summary.find("sync mode, 2 agents"), std::string::npos) << summary;
    // agent 1: 4 cycles answered, 2 + 3*4 messages, 4 beams, 8 joints, 4 drawings
    EXPECT_NE(summary.find("blue            1       4        4       14"), std::string::npos)
        << summary;
    EXPECT_NE(summary.find(" 4      8        4   "), std::string::npos) << summary;
    EXPECT_NE(summary.find("over 8 answers"), std::string::npos) << summary;

    // The log keeps each agent's messages in the order they were sent.
    std::ifstream log("log.txt");
    std::string first_agent;
    for (std::string line; std::getline(log, line);) {
        if (line.rfind("1\t", 0) == 0) {
            first_agent += line + "\n";
        }
    }
    EXPECT_EQ(first_agent.substr(0, 66),
              "1\t0\t0\t(scene rsg/agent/nao/nao.rsg)\n1\t0\t0\t(init (unum 0)(teamname ")
        << first_agent;
    EXPECT_NE(first_agent.find("1\t1\t2\t(beam -3 2 0)\n1\t1\t2\t(he1 0.5)(he2 0.1)(dance "
                               "1)\n1\t1\t2\t(syn)\n1\t1\t3\t(beam"),
              std::string::npos)
        << first_agent;

    const std::string svg = orvo_test::ChildProcess::read("field.svg");
    EXPECT_EQ(count(svg, "class=\"cell\""), 2u); // each agent's latest batch only
    EXPECT_EQ(count(svg, "class=\"agent\""), 2u);
}

TEST_F(StandinServer, ASilentAgentDelaysASyncCycleOnlyUntilTheTimeout) {
    start({"--agents", "1", "--cycles", "2", "--sync", "--cycle-timeout", "0.1"});
    Client mute(tcp);
    ASSERT_TRUE(mute.connected);
    EXPECT_NE(mute.receive(), "");
    EXPECT_NE(mute.receive(), "");
    ASSERT_EQ(server->wait_for(10s), 0);
    EXPECT_NE(server->error_text().find("did not answer"), std::string::npos);
    EXPECT_NE(server->output_text().find("2 cycles"), std::string::npos);
}

TEST_F(StandinServer, BrokenFramesCloseOnlyTheOffendingAgent) {
    start({"--agents", "2", "--cycles", "3", "--sync", "--cycle-timeout", "2"});
    Client good(tcp);
    Client bad(tcp);
    ASSERT_TRUE(good.connected && bad.connected);
    ASSERT_NE(bad.receive(), "");
    const unsigned char huge[] = {0x7f, 0xff, 0xff, 0xff, '('};
    ASSERT_EQ(send(bad.fd, huge, sizeof huge, MSG_NOSIGNAL), 5);
    for (int cycle = 0; cycle < 3; ++cycle) {
        ASSERT_NE(good.receive(), "");
        good.send_message("(syn)");
    }
    ASSERT_EQ(server->wait_for(10s), 0);
    EXPECT_NE(server->output_text().find("over 3 answers"), std::string::npos)
        << server->output_text();
}

TEST_F(StandinServer, TheGameEndsEarlyWhenTheLastAgentLeaves) {
    start({"--agents", "1", "--cycles", "1000", "--sync"});
    {
        Client leaving(tcp);
        ASSERT_TRUE(leaving.connected);
        for (int cycle = 0; cycle < 2; ++cycle) {
            ASSERT_NE(leaving.receive(), "");
            leaving.send_message("(syn)");
        }
        ASSERT_NE(leaving.receive(), "");
    }
    ASSERT_EQ(server->wait_for(10s), 0);
    // The third perception was sent, so the third cycle counts as played.
    EXPECT_NE(server->output_text().find("stand-in server: 3 cycles (0.06 s simulated)"),
              std::string::npos)
        << server->output_text();
    EXPECT_NE(server->output_text().find("over 2 answers"), std::string::npos);
}

TEST(StandinServerOptions, BadOptionsAreRefusedWithAReason) {
    orvo_test::ScratchDir scratch;
    const std::string dir = scratch.path.string();
    orvo_test::ChildProcess bad({STANDIN_SERVER, "--cycles", "ten"}, dir, dir + "/o", dir + "/e");
    EXPECT_EQ(bad.wait_for(10s), 2);
    EXPECT_NE(bad.error_text().find("--cycles: not a number"), std::string::npos);

    orvo_test::ChildProcess help({STANDIN_SERVER, "--help"}, dir, dir + "/o2", dir + "/e2");
    EXPECT_EQ(help.wait_for(10s), 0);
    EXPECT_NE(help.output_text().find("--sync"), std::string::npos);

    orvo_test::ChildProcess nobody(
        {STANDIN_SERVER, "--port", "0", "--drawing-port", "0", "--start-timeout", "0.2"}, dir,
        dir + "/o3", dir + "/e3");
    EXPECT_EQ(nobody.wait_for(10s), 1);
    EXPECT_NE(nobody.error_text().find("no agent connected"), std::string::npos);
}

} // namespace
