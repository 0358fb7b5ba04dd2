#include "loopback.h"
#include "read_script.h"

#include <orvo/net/comm_unit.h>

#include <gtest/gtest.h>

#include <sys/socket.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

using orvo::net::Addr;
using orvo::net::CommUnit;
using orvo::net::Socket;
using orvo::net::TCPSocket;
using namespace std::string_literals;

namespace {

std::string frame(const std::string& payload, std::uint32_t length) {
    std::string bytes(4, '\0');
    bytes[0] = static_cast<char>(length >> 24);
    bytes[1] = static_cast<char>(length >> 16);
    bytes[2] = static_cast<char>(length >> 8);
    bytes[3] = static_cast<char>(length);
    return bytes + payload;
}

std::string frame(const std::string& payload) {
    return frame(payload, static_cast<std::uint32_t>(payload.size()));
}

/// A CommUnit connected to a test server on an ephemeral loopback port.
class CommUnitTest : public orvo_test::NoDescriptorLeak {
protected:
    void SetUp() override {
        NoDescriptorLeak::SetUp();
        listener = std::make_unique<orvo_test::Listener>();
        unit = std::make_unique<CommUnit>();
        ASSERT_TRUE(unit->configure_run("127.0.0.1", listener->address().getPort(), 7));
        Addr peer;
        server.reset(static_cast<TCPSocket*>(listener->socket.accept(peer)));
        orvo_test::bound_waits(server->getFD());
    }
    void TearDown() override {
        orvo_test::clear_read_script();
        server.reset();
        unit.reset();
        listener.reset();
        NoDescriptorLeak::TearDown();
    }

    /// Queues `bytes` at the unit and waits (bounded) until they are readable.
    void serve(const std::string& bytes) {
        ASSERT_EQ(server->send(bytes.data(), bytes.size()), static_cast<int>(bytes.size()));
        ASSERT_TRUE(orvo_test::readable(unit->get_socket().getFD()));
    }

    /// What the server has received, up to `count` bytes.
    std::string received(std::size_t count) {
        std::string bytes(count, '\0');
        std::size_t have = 0;
        while (have < count && orvo_test::readable(server->getFD())) {
            const int n = server->recv(&bytes[have], count - have);
            if (n <= 0) {
                break;
            }
            have += n;
        }
        bytes.resize(have);
        return bytes;
    }

    int unit_fd() { return unit->get_socket().getFD(); }

    std::unique_ptr<orvo_test::Listener> listener;
    std::unique_ptr<CommUnit> unit;
    std::unique_ptr<TCPSocket> server;
};

using CommUnitSetupTest = orvo_test::NoDescriptorLeak;

} // namespace

TEST_F(CommUnitSetupTest, DefaultsBeforeAnyConfiguration) {
    CommUnit unit;
    EXPECT_EQ(unit.get_name(), "communit");
    EXPECT_EQ(unit.get_host(), "localhost");
    EXPECT_EQ(unit.get_port(), 3100u);
    EXPECT_EQ(unit.get_run_value(), 15096u);
    EXPECT_FALSE(unit.is_connected());
    EXPECT_TRUE(unit.get_socket().isOpen());
    EXPECT_FALSE(unit.get_socket().isConnected());

    std::unique_ptr<orvo::Constructable> made(create_communit());
    EXPECT_EQ(made->get_name(), "communit");
    EXPECT_NE(dynamic_cast<CommUnit*>(made.get()), nullptr);
}

TEST_F(CommUnitSetupTest, UnreachableServerLeavesTheSocketClosed) {
    Addr refused;
    {
        TCPSocket reserved(Addr(0, orvo_test::loopback));
        refused = reserved.getName(); // released again: nothing listens there
    }
    CommUnit unit;
    EXPECT_FALSE(unit.configure_run("127.0.0.1", refused.getPort(), 1));
    EXPECT_FALSE(unit.is_connected());
    EXPECT_FALSE(unit.get_socket().isOpen());
    EXPECT_EQ(unit.get_socket().getFD(), 0);
    EXPECT_EQ(unit.get_host(), "127.0.0.1");
    EXPECT_EQ(unit.get_port(), refused.getPort());
    EXPECT_EQ(unit.get_run_value(), 1u);

    // The closed socket cannot bind again: reconnecting takes a new unit.
    orvo_test::Listener listener;
    EXPECT_FALSE(unit.configure_run("127.0.0.1", listener.address().getPort(), 1));
    // Nothing is read from or written to descriptor 0 meanwhile.
    unit.write_message("(init)");
    EXPECT_FALSE(unit.SelectInput(false));
    EXPECT_EQ(unit.get_message(), "");
}

TEST_F(CommUnitSetupTest, UnknownHostPropagates) {
    CommUnit unit;
    EXPECT_THROW(unit.configure_run("no-such-host.invalid", 3100, 1), orvo::net::HostNotFound);
}

TEST_F(CommUnitTest, ConnectsAndFinalizeCloses) {
    EXPECT_TRUE(unit->is_connected());
    EXPECT_EQ(unit->get_run_value(), 7u);
    EXPECT_EQ(server->getPeer(), unit->get_socket().getName());
    unit->finalize();
    EXPECT_FALSE(unit->is_connected());
    EXPECT_FALSE(unit->get_socket().isOpen());
    unit->finalize();
}

TEST_F(CommUnitTest, CloseConnectionKeepsTheConnectedFlag) {
    unit->close_connection();
    EXPECT_FALSE(unit->get_socket().isOpen());
    EXPECT_TRUE(unit->is_connected());
    unit->finalize(); // closing again is harmless
}

TEST_F(CommUnitTest, WritesOneFramePerMessage) {
    unit->write_message("(init)");
    EXPECT_EQ(received(10), "\x00\x00\x00\x06(init)"s);

    unit->write_message(""); // nothing at all goes out
    unit->write_message("x");
    EXPECT_EQ(received(5), "\x00\x00\x00\x01x"s);

    const std::string big(70000, 'b');
    unit->write_message(big);
    EXPECT_EQ(received(4), "\x00\x01\x11\x70"s);
    EXPECT_EQ(received(big.size()), big);
}

TEST_F(CommUnitTest, FrameInOnePiece) {
    serve(frame("(time (now 1.5))"));
    EXPECT_TRUE(unit->SelectInput(true));
    EXPECT_TRUE(unit->SelectInput(false));
    EXPECT_EQ(unit->get_message(), "(time (now 1.5))");
    EXPECT_EQ(unit->get_message(), "");
}

TEST_F(CommUnitTest, FrameInTwoPieces) {
    serve(frame("hello"));
    orvo_test::script_reads(unit_fd(), {4}); // the prefix alone, then the payload
    EXPECT_EQ(unit->get_message(), "hello");
}

// The write position advances by the running payload count rather than by
// the last read, so from the third piece on (or when the first piece already
// held payload) the payload lands past a gap that keeps older bytes, and the
// text runs to the NUL placed after the last piece.
TEST_F(CommUnitTest, FrameInThreePiecesKeepsTheGapsOfTheRunningCount) {
    serve(frame(std::string(100, 'x')));
    ASSERT_EQ(unit->get_message(), std::string(100, 'x'));

    serve(frame("abcdef"));
    orvo_test::script_reads(unit_fd(), {4, 3, 3});
    EXPECT_EQ(unit->get_message(), "abcdefxxx");

    serve(frame("abcdef"));
    orvo_test::script_reads(unit_fd(), {6, 4});
    EXPECT_EQ(unit->get_message(), "abcdefxx");

    serve(frame(std::string(100, 'y')));
    ASSERT_EQ(unit->get_message(), std::string(100, 'y'));
    serve(frame("0123456789"));
    orvo_test::script_reads(unit_fd(), {4, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1});
    // Byte k lands at payload offset k(k+1)/2; the gaps keep the 'y's.
    EXPECT_EQ(unit->get_message(), "01y2yy3yyy4yyyy5yyyyy6yyyyyy7yyyyyyy8yyyyyyyy9yyyyyyyyy");
}

TEST_F(CommUnitTest, PayloadIsCutAtItsFirstNul) {
    serve(frame("ab\0cd"s));
    EXPECT_EQ(unit->get_message(), "ab");
}

TEST_F(CommUnitTest, SecondFrameOfTheSameReadIsLost) {
    serve(frame("one") + frame("two"));
    EXPECT_EQ(unit->get_message(), "one");
    EXPECT_EQ(unit->get_message(), "");
}

TEST_F(CommUnitTest, NothingPendingGivesEmptyWithoutBlocking) {
    EXPECT_FALSE(unit->SelectInput(false));
    EXPECT_EQ(unit->get_message(), "");
}

TEST_F(CommUnitTest, IncompleteFramesAreDropped) {
    serve("\x00\x00"s); // a prefix cut short
    EXPECT_EQ(unit->get_message(), "");

    serve(frame("abc", 10)); // the rest of the payload never comes
    EXPECT_EQ(unit->get_message(), "");

    serve(frame("next"));
    EXPECT_EQ(unit->get_message(), "next");
}

TEST_F(CommUnitTest, ClosedConnectionGivesEmpty) {
    server->close();
    ASSERT_TRUE(orvo_test::readable(unit_fd()));
    EXPECT_EQ(unit->get_message(), "");
    EXPECT_EQ(unit->get_message(), "");
}

TEST_F(CommUnitTest, ConnectionEndingInsideAFrameGivesEmpty) {
    serve(frame("abc", 10));
    server->close();
    ASSERT_TRUE(orvo_test::readable(unit_fd()));
    orvo_test::script_reads(unit_fd(), {5});
    EXPECT_EQ(unit->get_message(), "");
}

TEST_F(CommUnitTest, FailedFirstReadReturnsThePreviousMessage) {
    serve(frame("(see)"));
    ASSERT_EQ(unit->get_message(), "(see)");

    // A reset from the server makes the next read fail.
    const linger abort_on_close{1, 0};
    ASSERT_EQ(
        setsockopt(server->getFD(), SOL_SOCKET, SO_LINGER, &abort_on_close, sizeof abort_on_close),
        0);
    server->close();
    ASSERT_TRUE(orvo_test::readable(unit_fd()));
    EXPECT_EQ(unit->get_message(), "(see)");
    EXPECT_EQ(unit->get_message(), ""); // then the connection reads as closed
}

TEST_F(CommUnitTest, FailedFirstReadBeforeAnyMessageGivesEmpty) {
    // A fresh process has never received anything into the shared buffer.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            serve(frame("unread"));
            orvo_test::fail_next_read(unit_fd(), EIO);
            std::exit(unit->get_message().empty() ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST_F(CommUnitTest, HugeLengthPrefixNeverWritesPastTheBuffer) {
    const std::string payload(20000, 'a');
    const auto drain = [this] {
        orvo_test::clear_read_script();
        while (orvo_test::readable(unit_fd(), 50)) {
            unit->get_message(); // the rest of the announced frame
        }
    };

    serve(frame(payload, 0xFFFFFFFF));
    std::string text = unit->get_message();
    EXPECT_LE(text.size(), 16380u);
    EXPECT_EQ(text.find_first_not_of('a'), std::string::npos);
    drain();

    // In small pieces the running count jumps past the end of the buffer.
    serve(frame(payload, 0xFFFFFFFF));
    orvo_test::script_reads(unit_fd(), {1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000});
    EXPECT_LE(unit->get_message().size(), 16380u);
    drain();

    // Only the buffer's worth arrives before the peer stops sending.
    serve(frame(std::string(16380, 'c'), 0xFFFFFFFF));
    orvo_test::script_reads(unit_fd(), {16384});
    text = unit->get_message();
    EXPECT_TRUE(text.empty()) << text.size() << " bytes";
}
