#include "faulty_server.h"

#include <orvo/net/socket_stream_buf.h>

#include <gtest/gtest.h>

#include <sys/socket.h>

#include <cerrno>
#include <csignal>
#include <ostream>

namespace {

// Writing to a connection whose peer has gone raises SIGPIPE unless the
// writer asks otherwise; its default action ends the process. These tests
// keep that default, so a write path without protection kills the test
// program instead of failing an expectation.
class BrokenPeer : public orvo_test::FaultyServerTest {
protected:
    void SetUp() override {
        previous = std::signal(SIGPIPE, SIG_DFL);
        FaultyServerTest::SetUp();
    }
    void TearDown() override {
        FaultyServerTest::TearDown();
        std::signal(SIGPIPE, previous);
    }

    /// Writes until the connection reports that the peer is gone, as a
    /// send() that is told not to raise the signal sees it.
    void write_until_broken() {
        for (int attempt = 0; attempt < 50; ++attempt) {
            unit->write_message("(beam -3 0 0)");
            orvo_test::readable(unit_fd(), 100); // the peer's reset arrives
            if (connection_broken()) {
                return;
            }
        }
        FAIL() << "the connection never broke";
    }

    bool connection_broken() {
        int error = 0;
        socklen_t length = sizeof error;
        getsockopt(unit_fd(), SOL_SOCKET, SO_ERROR, &error, &length);
        if (error == EPIPE || error == ECONNRESET) {
            return true;
        }
        const char probe = 0;
        return ::send(unit_fd(), &probe, 0, MSG_NOSIGNAL) < 0 &&
               (errno == EPIPE || errno == ECONNRESET);
    }

    void (*previous)(int) = SIG_DFL;
};

TEST_F(BrokenPeer, WritesAfterTheServerClosedDoNotKillTheAgent) {
    server.reset();
    write_until_broken();
    // The connection is known to be broken now: these meet EPIPE.
    unit->write_message("(say bye)");
    unit->write_message("(say bye)");
    EXPECT_LE(unit->get_message().size(), 16380u);
}

TEST_F(BrokenPeer, WritesAfterTheServerResetDoNotKillTheAgent) {
    reset_connection();
    await_agent_input();
    unit->write_message("(say bye)");
    unit->write_message("(say bye)");
    EXPECT_TRUE(connection_broken());
}

TEST_F(BrokenPeer, StreamFlushToAServerThatResetDoesNotKillTheAgent) {
    orvo::net::SocketStreamBuf buffer(&unit->get_socket(), 64, true);
    std::ostream output(&buffer);
    reset_connection();
    await_agent_input();
    output << "(say bye)" << std::flush;
    output << std::string(200, 'z') << std::flush;
    EXPECT_FALSE(output.good()) << "a flush that sent nothing is reported";
}

} // namespace
