#include <orvo/net/comm_unit.h>
#include <orvo/net/frame_reader.h>

#include <support/loopback.h>

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
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

using FrameReaderTest = orvo_test::NoDescriptorLeak;
using CommUnitReceiveTest = orvo_test::ServedCommUnit;

} // namespace

// Empty frames, NULs, several frames in one read, a frame whose rest comes in
// the next read, and the peer closing there instead.
TEST_F(FrameReaderTest, FramesOutEqualFramesInWhereverTheStreamIsCut) {
    const std::vector<std::string> frames{
        "(time (now 1.5))", "", "\0\0\0x"s, "(see)", "1", "22", "", "(hear)", "(a)", "(b)"};
    std::string stream;
    std::vector<std::size_t> ends; // where each frame ends in the stream
    for (const auto& payload : frames) {
        stream += frame(payload);
        ends.push_back(stream.size());
    }
    for (std::size_t cut = 1; cut < stream.size(); ++cut) {
        for (bool rest_comes : {true, false}) {
            SCOPED_TRACE("cut at " + std::to_string(cut) + (rest_comes ? "" : ", then closed"));
            Pieces pieces;
            FrameReader reader;
            pieces.send(stream.substr(0, cut));
            auto [out, result] = drain(reader, pieces.fd());
            EXPECT_EQ(result, Received::timed_out);
            if (rest_comes) {
                pieces.send(stream.substr(cut));
            }
            pieces.end();
            auto [more, end_result] = drain(reader, pieces.fd());
            EXPECT_EQ(end_result, Received::closed);
            out.insert(out.end(), more.begin(), more.end());
            const auto whole = rest_comes
                                   ? ends.size()
                                   : std::upper_bound(ends.begin(), ends.end(), cut) - ends.begin();
            EXPECT_EQ(out, std::vector<std::string>(frames.begin(), frames.begin() + whole));
            EXPECT_EQ(reader.buffered(), 0u);
        }
    }
    // One byte per read, every read queued before the first call.
    Pieces pieces;
    for (char byte : stream) {
        pieces.send(std::string(1, byte));
    }
    pieces.end();
    FrameReader reader;
    EXPECT_EQ(drain(reader, pieces.fd()), std::make_pair(frames, Received::closed));
}

TEST_F(FrameReaderTest, PrefixOverTheLimitIsAnErrorAfterTheFramesBeforeIt) {
    const std::vector<std::pair<std::uint32_t, std::uint32_t>> cases{
        {16, 17}, {FrameReader::default_limit, 0xFFFFFFFF}}; // limit, announced
    for (const auto& [limit, announced] : cases) {
        Pieces pieces;
        FrameReader reader(limit);
        const std::string largest(std::min<std::uint32_t>(limit, 100), 'f'); // 16: the largest
        pieces.send(frame(largest) + frame("", announced) + frame("(never)"));
        std::string payload;
        ASSERT_EQ(reader.read(pieces.fd(), payload, 0ms), Received::message);
        EXPECT_EQ(payload, largest);
        try {
            reader.read(pieces.fd(), payload, 0ms);
            ADD_FAILURE() << "no FrameTooLarge";
        } catch (const FrameTooLarge& error) {
            EXPECT_EQ(error.announced(), announced);
            EXPECT_EQ(error.limit(), limit);
            EXPECT_EQ(error.what(), "frame of " + std::to_string(announced) +
                                        " bytes announced, the limit is " + std::to_string(limit) +
                                        " bytes");
        }
        EXPECT_EQ(reader.read(pieces.fd(), payload, 0ms), Received::closed);
    }
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
