#include "read_script.h"

#include <orvo/net/comm_unit.h>

#include <support/loopback.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

using orvo::net::CommUnit;
using orvo_test::frame;
using namespace std::string_literals;

namespace {

class CommUnitTest : public orvo_test::ServedCommUnit {
protected:
    void TearDown() override {
        orvo_test::clear_read_script();
        ServedCommUnit::TearDown();
    }
    /// Serves `bytes` and lets the unit's reads take at most `limits` bytes each.
    std::string receive(const std::string& bytes, std::initializer_list<std::size_t> limits = {}) {
        serve(bytes);
        orvo_test::script_reads(unit_fd(), limits);
        return unit->get_message();
    }
};

using CommUnitSetupTest = orvo_test::NoDescriptorLeak;

} // namespace

TEST_F(CommUnitSetupTest, DefaultsAndServersThatCannotBeReached) {
    {
        std::unique_ptr<orvo::Constructable> made(create_communit());
        auto& unit = dynamic_cast<CommUnit&>(*made);
        EXPECT_EQ(unit.get_name(), "communit");
        EXPECT_EQ(unit.get_host(), "localhost");
        EXPECT_EQ(unit.get_port(), 3100u);
        EXPECT_EQ(unit.get_run_value(), 15096u);
        EXPECT_FALSE(unit.is_connected());
        EXPECT_TRUE(unit.get_socket().isOpen());
        EXPECT_THROW(unit.configure_run("no-such-host.invalid", 3100, 1), orvo::net::HostNotFound);
    }

    const unsigned int refused = orvo_test::released_port().getPort();
    CommUnit unit;
    EXPECT_FALSE(unit.configure_run("127.0.0.1", refused, 1));
    EXPECT_FALSE(unit.is_connected());
    EXPECT_FALSE(unit.get_socket().isOpen());
    EXPECT_EQ(unit.get_port(), refused);
    // The closed socket cannot bind again: reconnecting takes a new unit.
    orvo_test::Listener listener;
    EXPECT_FALSE(unit.configure_run("127.0.0.1", listener.address().getPort(), 1));
    // Nothing is read from or written to descriptor 0 meanwhile.
    unit.write_message("(init)");
    EXPECT_FALSE(unit.SelectInput(false));
    EXPECT_EQ(unit.get_message(), "");
}

TEST_F(CommUnitTest, WritesOneFramePerMessageUntilClosed) {
    EXPECT_TRUE(unit->is_connected());
    EXPECT_EQ(unit->get_run_value(), 7u);
    EXPECT_EQ(server->getPeer(), unit->get_socket().getName());

    unit->write_message("(init)");
    EXPECT_EQ(orvo_test::read_bytes(*server, 10), "\x00\x00\x00\x06(init)"s);
    unit->write_message(""); // nothing at all goes out
    unit->write_message("x");
    EXPECT_EQ(orvo_test::read_bytes(*server, 5), "\x00\x00\x00\x01x"s);
    const std::string big(70000, 'b');
    unit->write_message(big);
    EXPECT_EQ(orvo_test::read_bytes(*server, 4 + big.size()), "\x00\x01\x11\x70"s + big);

    unit->close_connection();
    EXPECT_FALSE(unit->get_socket().isOpen());
    EXPECT_TRUE(unit->is_connected());
    unit->finalize(); // closing again is harmless
    EXPECT_FALSE(unit->is_connected());
}

TEST_F(CommUnitTest, OneWholePayloadPerRead) {
    serve(frame("(time (now 1.5))"));
    EXPECT_TRUE(unit->SelectInput(true));
    EXPECT_EQ(unit->get_message(), "(time (now 1.5))");
    // Nothing pending: "" at once.
    EXPECT_FALSE(unit->SelectInput(false));
    EXPECT_EQ(unit->get_message(), "");

    EXPECT_EQ(receive(frame("hello"), {4}), "hello"); // the prefix alone, then the payload
    EXPECT_EQ(receive(frame("ab\0cd"s)), "ab");       // cut at the first NUL
    EXPECT_EQ(receive(frame("one") + frame("two")), "one");
    EXPECT_EQ(unit->get_message(), "") << "the second frame of a read is lost";

    EXPECT_EQ(receive("\x00\x00"s), "") << "a prefix cut short";
    EXPECT_EQ(receive(frame("abc", 10)), "") << "the rest of the payload never comes";
    EXPECT_EQ(receive(frame("next")), "next");
}

// The write position advances by the running payload count rather than by
// the last read, so from the third piece on (or when the first piece already
// held payload) the payload lands past a gap that keeps older bytes, and the
// text runs to the NUL placed after the last piece.
TEST_F(CommUnitTest, FrameInThreePiecesKeepsTheGapsOfTheRunningCount) {
    ASSERT_EQ(receive(frame(std::string(100, 'x'))), std::string(100, 'x'));
    EXPECT_EQ(receive(frame("abcdef"), {4, 3, 3}), "abcdefxxx");
    EXPECT_EQ(receive(frame("abcdef"), {6, 4}), "abcdefxx");

    ASSERT_EQ(receive(frame(std::string(100, 'y'))), std::string(100, 'y'));
    // Byte k lands at payload offset k(k+1)/2; the gaps keep the 'y's.
    EXPECT_EQ(receive(frame("0123456789"), {4, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}),
              "01y2yy3yyy4yyyy5yyyyy6yyyyyy7yyyyyyy8yyyyyyyy9yyyyyyyyy");
}

TEST_F(CommUnitTest, FailedFirstReadReturnsThePreviousMessage) {
    ASSERT_EQ(receive(frame("(see)")), "(see)");
    reset_connection(); // the next read fails
    EXPECT_EQ(unit->get_message(), "(see)");
    EXPECT_EQ(unit->get_message(), ""); // then the connection reads as closed
}
