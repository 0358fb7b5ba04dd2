// A server that misbehaves byte by byte: the agent's receive path returns ""
// or a whole message and never crashes, blocks or reads outside its buffer,
// and writes to a server that went away never kill the agent.
#include <orvo/net/socket_stream_buf.h>

#include <support/loopback.h>

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <iostream>
#include <ostream>
#include <string>
#include <unordered_map>
#include <vector>

using orvo_test::frame;

namespace {

class ServerFaults : public orvo_test::ServedCommUnit {
protected:
    // A hang stops the program long before the suite's own time limit.
    void SetUp() override {
        alarm(30);
        ServedCommUnit::SetUp();
    }
    void TearDown() override {
        ServedCommUnit::TearDown();
        alarm(0);
    }

    /// The server goes away without a goodbye: the agent's side sees a reset.
    void reset_connection() {
        const linger abort_on_close{1, 0};
        ASSERT_EQ(setsockopt(server->getFD(), SOL_SOCKET, SO_LINGER, &abort_on_close,
                             sizeof abort_on_close),
                  0);
        server.reset();
        ASSERT_TRUE(orvo_test::readable(unit_fd()));
    }

    /// Nothing left to read and the server gone.
    bool agent_input_ended() {
        char byte;
        return orvo_test::readable(unit_fd(), 0) &&
               recv(unit_fd(), &byte, 1, MSG_PEEK | MSG_DONTWAIT) <= 0;
    }
};

// The agent waits the usual way (a blocking SelectInput) for every drop; no
// drop completes a length prefix, so each is lost on its own and the stream
// is clean again for the next frame.
TEST_F(ServerFaults, DrippedFrameIsLostAndTheNextFrameArrivesWhole) {
    const std::string dripped = frame("(time (now 12.34))");
    for (std::size_t drop : {1u, 2u, 3u, 5u, 7u}) {
        for (std::size_t at = 0; at < dripped.size(); at += drop) {
            serve(dripped.substr(at, drop));
            ASSERT_TRUE(unit->SelectInput(true));
            EXPECT_EQ(unit->get_message(), "") << "drops of " << drop << " at " << at;
        }
        serve(frame("(after)"));
        EXPECT_EQ(unit->get_message(), "(after)") << "after drops of " << drop;
    }
}

// Frames longer than the receive buffer, announced or not, with the server
// closing right after them: whatever comes out is cut to the buffer and holds
// only payload bytes, and the agent reaches the end of the stream.
class OversizedFrame : public ServerFaults, public ::testing::WithParamInterface<std::uint32_t> {};

TEST_P(OversizedFrame, ResultsAreCutToTheBufferAndTheStreamEnds) {
    const std::uint32_t announced = GetParam();
    const std::string payload(std::min<std::uint32_t>(announced, 40000), 'x');
    serve(frame(payload, announced));
    server.reset();
    std::vector<std::string> results;
    for (int call = 0; call < 1000 && !agent_input_ended(); ++call) {
        results.push_back(unit->get_message());
    }
    EXPECT_TRUE(agent_input_ended());
    for (const auto& text : results) {
        EXPECT_LE(text.size(), 16380u);
        EXPECT_EQ(text.find_first_not_of('x'), std::string::npos);
    }
    if (announced == 16380) {
        ASSERT_FALSE(results.empty());
        EXPECT_EQ(results.front(), payload) << "the largest frame that fits comes whole";
    }
}

INSTANTIATE_TEST_SUITE_P(Announced, OversizedFrame,
                         ::testing::Values(16380u, 16381u, 40000u, 0x7FFFFFFFu, 0xFFFFFFFFu));

TEST_F(ServerFaults, ResetInsideAFrame) {
    serve(frame("(before)"));
    ASSERT_EQ(unit->get_message(), "(before)");
    serve(frame("(cut " + std::string(50, 'y'), 100));
    EXPECT_EQ(unit->get_message(), "") << "the rest of the frame has not come";

    reset_connection();
    // The failed read is not told apart from data. The frame dropped above
    // overwrote the buffer, so nothing may come back as a message from it.
    EXPECT_EQ(unit->get_message(), "");
    EXPECT_EQ(unit->get_message(), "");
    EXPECT_TRUE(agent_input_ended());
}

// The server fills the connection's buffers completely before the agent
// takes each message, until its whole stream is out. Reads then start in the
// middle of frames, which the framing cannot recover from; what the agent
// gets must still be bounded, every whole message must be a fresh one, and
// once the flood is over the next frame arrives whole.
TEST_F(ServerFaults, FloodFasterThanTheAgentReads) {
    std::string stream;
    std::unordered_map<std::string, int> index_of;
    for (int i = 0; i < 5000; ++i) {
        const std::string payload =
            "(frame " + std::to_string(i) + " " + std::string(i % 300, 'p') + ")";
        index_of.emplace(payload, i);
        stream += frame(payload);
    }
    std::vector<std::string> results;
    for (std::size_t sent = 0; sent < stream.size();) {
        ssize_t n = 0;
        while (sent < stream.size() &&
               (n = ::send(server->getFD(), stream.data() + sent, stream.size() - sent,
                           MSG_DONTWAIT | MSG_NOSIGNAL)) > 0) {
            sent += static_cast<std::size_t>(n);
        }
        ASSERT_TRUE(n >= 0 || errno == EAGAIN) << errno;
        results.push_back(unit->get_message());
    }
    while (orvo_test::readable(unit_fd(), 0)) {
        results.push_back(unit->get_message());
    }

    int whole = 0;
    int last_index = -1;
    for (const auto& text : results) {
        ASSERT_LE(text.size(), 16380u);
        const auto known = index_of.find(text);
        if (known != index_of.end()) {
            EXPECT_GT(known->second, last_index) << "message delivered twice or out of order";
            last_index = known->second;
            ++whole;
        }
    }
    EXPECT_GE(whole, 1) << "the first frame starts the first read";
    std::cout << results.size() << " receives during the flood, " << whole << " whole messages"
              << std::endl;
    serve(frame("(end)"));
    EXPECT_EQ(unit->get_message(), "(end)");
}

// Writing to a connection whose peer has gone raises SIGPIPE unless the
// writer asks otherwise, and its default action ends the process: these tests
// restore that default, so an unprotected write kills the test program.
class BrokenPeer : public ServerFaults {
protected:
    void SetUp() override {
        previous = std::signal(SIGPIPE, SIG_DFL);
        ServerFaults::SetUp();
    }
    void TearDown() override {
        ServerFaults::TearDown();
        std::signal(SIGPIPE, previous);
    }
    void (*previous)(int) = SIG_DFL;
};

TEST_F(BrokenPeer, WritesAfterTheServerClosedDoNotKillTheAgent) {
    server.reset();
    // The first write draws a reset; from then on writes meet EPIPE.
    for (int attempt = 0; attempt < 50; ++attempt) {
        unit->write_message("(beam -3 0 0)");
        orvo_test::readable(unit_fd(), 100);
    }
    const char probe = 0;
    EXPECT_LT(::send(unit_fd(), &probe, 1, MSG_NOSIGNAL), 0) << "the connection never broke";
    EXPECT_TRUE(errno == EPIPE || errno == ECONNRESET) << errno;
    unit->write_message("(say bye)");
    EXPECT_LE(unit->get_message().size(), 16380u);
}

TEST_F(BrokenPeer, StreamFlushToAServerThatResetDoesNotKillTheAgent) {
    orvo::net::SocketStreamBuf buffer(&unit->get_socket(), 64, true);
    std::ostream output(&buffer);
    reset_connection();
    output << "(say bye)" << std::flush;
    output << std::string(200, 'z') << std::flush;
    EXPECT_FALSE(output.good()) << "a flush that sent nothing is reported";
}

} // namespace
