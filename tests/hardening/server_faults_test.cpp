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
#include <ostream>
#include <string>
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

    /// Nothing left to read and the server gone.
    bool agent_input_ended() {
        char byte;
        return orvo_test::readable(unit_fd(), 0) &&
               recv(unit_fd(), &byte, 1, MSG_PEEK | MSG_DONTWAIT) <= 0;
    }
};

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
