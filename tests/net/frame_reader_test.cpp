#include <orvo/net/comm_unit.h>
#include <orvo/net/frame_reader.h>

#include <support/loopback.h>

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

using orvo::net::FrameReader;
using orvo::net::FrameTooLarge;
using orvo::net::Received;
using orvo_test::frame;
using namespace std::chrono_literals;
using namespace std::string_literals;

namespace {

/// A local connection that keeps message boundaries: each piece sent arrives
/// as exactly one read at the reader's end, so a test decides the split points.
class Pieces {
public:
    Pieces() { EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, fds), 0); }
    ~Pieces() {
        close(fds[0]);
        close(fds[1]);
    }
    Pieces(const Pieces&) = delete;
    Pieces& operator=(const Pieces&) = delete;

    void send(const std::string& piece) {
        ASSERT_EQ(::send(fds[1], piece.data(), piece.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(piece.size()));
    }
    void end() { shutdown(fds[1], SHUT_WR); }
    int fd() const { return fds[0]; }

private:
    int fds[2] = {-1, -1};
};

/// Every frame readable now, then the result that ended the run.
std::pair<std::vector<std::string>, Received> drain(FrameReader& reader, int fd) {
    std::vector<std::string> frames;
    std::string payload;
    Received result;
    while ((result = reader.read(fd, payload, 0ms)) == Received::message) {
        frames.push_back(payload);
    }
    return {frames, result};
}

std::string joined(const std::vector<std::string>& frames) {
    std::string bytes;
    for (const auto& payload : frames) {
        bytes += frame(payload);
    }
    return bytes;
}

/// One step of a conversation: send a piece, end the stream, or read once and
/// expect a result (a message's payload, or FrameTooLarge).
struct Step {
    enum Kind { send, end, message, timed_out, closed, too_large } kind;
    std::string bytes;
};

struct Conversation {
    const char* name;
    std::uint32_t limit;
    std::vector<Step> steps;
};

using FrameReaderTest = orvo_test::NoDescriptorLeak;
using CommUnitReceiveTest = orvo_test::ServedCommUnit;

} // namespace

TEST_F(FrameReaderTest, FramesOutEqualFramesInWhereverTheStreamIsCut) {
    const std::vector<std::string> frames{"(time (now 1.5))", "", "\0\0\0x"s, "(see)", "(hear)"};
    const std::string stream = joined(frames);
    // Each cut read as it arrives, and with both pieces queued before reading.
    for (bool queued : {false, true}) {
        for (std::size_t cut = 1; cut < stream.size(); ++cut) {
            SCOPED_TRACE("cut at " + std::to_string(cut) + (queued ? ", queued" : ""));
            Pieces pieces;
            FrameReader reader;
            std::vector<std::string> out;
            for (const auto& piece : {stream.substr(0, cut), stream.substr(cut)}) {
                pieces.send(piece);
                if (!queued) {
                    auto [got, result] = drain(reader, pieces.fd());
                    EXPECT_EQ(result, Received::timed_out);
                    out.insert(out.end(), got.begin(), got.end());
                }
            }
            pieces.end();
            auto [got, result] = drain(reader, pieces.fd());
            out.insert(out.end(), got.begin(), got.end());
            EXPECT_EQ(result, Received::closed);
            EXPECT_EQ(out, frames);
        }
    }
    // One byte per read.
    Pieces pieces;
    for (char byte : stream) {
        pieces.send(std::string(1, byte));
    }
    pieces.end();
    FrameReader reader;
    EXPECT_EQ(drain(reader, pieces.fd()), std::make_pair(frames, Received::closed));
}

TEST_F(FrameReaderTest, ConversationsKeepEveryFrameInOrder) {
    const std::vector<std::string> ten{"0", "1", "22", "333", "", "5", "(6)", "7", "8", "9"};
    const std::string big(70000, 'b'); // more than the reader holds at first
    const std::string half = frame("(second)").substr(0, 6);
    const std::string rest = frame("(second)").substr(6);
    std::vector<Step> ten_in_one_read{{Step::send, joined(ten)}};
    for (const auto& payload : ten) {
        ten_in_one_read.push_back({Step::message, payload});
    }
    const std::vector<Conversation> conversations{
        {"two frames in one read",
         1024,
         {{Step::send, frame("(a)") + frame("(b)")},
          {Step::message, "(a)"},
          {Step::message, "(b)"},
          {Step::timed_out, ""}}},
        {"ten frames in one read", 1024, ten_in_one_read},
        {"a frame whose rest arrives later",
         1024,
         {{Step::send, frame("(first)") + half},
          {Step::message, "(first)"},
          {Step::timed_out, ""},
          {Step::send, rest},
          {Step::message, "(second)"}}},
        {"a frame larger than the first buffer, in pieces",
         FrameReader::default_limit,
         {{Step::send, frame(big).substr(0, 20000)},
          {Step::timed_out, ""},
          {Step::send, frame(big).substr(20000, 30000)},
          {Step::send, frame(big).substr(50000) + frame("(after)")},
          {Step::message, big},
          {Step::message, "(after)"}}},
        {"closing mid-frame",
         1024,
         {{Step::send, frame("(last)") + half},
          {Step::end, ""},
          {Step::message, "(last)"},
          {Step::closed, ""},
          {Step::closed, ""}}},
        {"closing between frames", 1024, {{Step::end, ""}, {Step::closed, ""}}},
        {"a prefix over the limit, after whole frames",
         16,
         {{Step::send, frame(std::string(16, 'f')) + frame("", 17) + frame("(never)")},
          {Step::message, std::string(16, 'f')},
          {Step::too_large, ""},
          {Step::closed, ""}}},
        {"the largest prefix",
         FrameReader::default_limit,
         {{Step::send, frame("", 0xFFFFFFFF)}, {Step::too_large, ""}, {Step::closed, ""}}},
    };
    for (const auto& [name, limit, steps] : conversations) {
        SCOPED_TRACE(name);
        Pieces pieces;
        FrameReader reader(limit);
        std::string payload;
        for (const auto& [kind, bytes] : steps) {
            switch (kind) {
            case Step::send:
                pieces.send(bytes);
                break;
            case Step::end:
                pieces.end();
                break;
            case Step::too_large:
                try {
                    reader.read(pieces.fd(), payload, 0ms);
                    ADD_FAILURE() << "no FrameTooLarge";
                } catch (const FrameTooLarge& error) {
                    EXPECT_EQ(error.limit(), limit);
                    EXPECT_EQ(error.what(), "frame of " + std::to_string(error.announced()) +
                                                " bytes announced, the limit is " +
                                                std::to_string(limit) + " bytes");
                }
                break;
            default: {
                const Received expected = kind == Step::message     ? Received::message
                                          : kind == Step::timed_out ? Received::timed_out
                                                                    : Received::closed;
                payload = "unchanged";
                EXPECT_EQ(reader.read(pieces.fd(), payload, 0ms), expected);
                EXPECT_EQ(payload, kind == Step::message ? bytes : "unchanged");
            }
            }
        }
        EXPECT_EQ(reader.buffered(), 0u);
    }
}

TEST_F(FrameReaderTest, WaitsForTheNextFrameAtMostAsLongAsAsked) {
    Pieces pieces;
    FrameReader reader;
    std::string payload;
    EXPECT_EQ(reader.read(pieces.fd(), payload, 20ms), Received::timed_out);

    std::thread late([&] {
        std::this_thread::sleep_for(20ms);
        pieces.send(frame("(late)").substr(0, 5));
        std::this_thread::sleep_for(20ms);
        pieces.send(frame("(late)").substr(5));
    });
    EXPECT_EQ(reader.read(pieces.fd(), payload, std::chrono::milliseconds(orvo_test::wait_ms)),
              Received::message);
    late.join();
    EXPECT_EQ(payload, "(late)");

    // The payload's storage is reused: no allocation per frame once warm.
    const std::string warm(2700, 'w');
    pieces.send(frame(warm) + frame(warm));
    ASSERT_EQ(reader.read(pieces.fd(), payload, 0ms), Received::message);
    const char* storage = payload.data();
    ASSERT_EQ(reader.read(pieces.fd(), payload, 0ms), Received::message);
    EXPECT_EQ(payload.data(), storage);
    EXPECT_EQ(payload, warm);
}

TEST_F(CommUnitReceiveTest, LosesNothingOverTcpAndClosesOnAnOversizePrefix) {
    const std::string largest(FrameReader::default_limit, 'L');
    const std::string stream = frame("(a)") + frame("(b)") + frame(largest);
    std::thread sender([&] {
        for (std::size_t sent = 0; sent < stream.size();) {
            const int n = server->send(&stream[sent], stream.size() - sent);
            ASSERT_GT(n, 0);
            sent += static_cast<std::size_t>(n);
        }
    });
    std::string payload;
    for (const auto& expected : {"(a)"s, "(b)"s, largest}) {
        ASSERT_EQ(unit->receive_message(payload, std::chrono::milliseconds(orvo_test::wait_ms)),
                  Received::message);
        EXPECT_EQ(payload, expected);
    }
    sender.join();
    EXPECT_EQ(unit->receive_message(payload, 0ms), Received::timed_out);

    serve(frame("", FrameReader::default_limit + 1));
    EXPECT_THROW(unit->receive_message(payload, 0ms), FrameTooLarge);
    EXPECT_FALSE(unit->get_socket().isOpen());
    char byte;
    ASSERT_TRUE(orvo_test::readable(server->getFD()));
    EXPECT_EQ(server->recv(&byte, 1), 0) << "the server sees the end";
    EXPECT_EQ(unit->receive_message(payload, 0ms), Received::closed);
}

TEST_F(FrameReaderTest, ClosedUnitLeavesDescriptorZeroAlone) {
    Pieces pieces;
    const int saved = dup(0);
    ASSERT_GE(dup2(pieces.fd(), 0), 0);
    pieces.send(frame("(stdin)"));
    {
        orvo::net::CommUnit unit;
        unit.close_connection();
        std::string payload;
        EXPECT_EQ(unit.receive_message(payload, 10ms), Received::closed);
    }
    EXPECT_TRUE(orvo_test::readable(0, 0)) << "the frame is still unread";
    if (saved >= 0) {
        dup2(saved, 0);
        close(saved);
    } else {
        close(0);
    }
}
