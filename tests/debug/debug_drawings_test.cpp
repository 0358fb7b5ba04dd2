#include <orvo/debug/debug_drawings.h>

#include <support/loopback.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

namespace {

using orvo::DebugDrawings;
using orvo::DrawingCommand;
using orvo::net::Addr;
using orvo::net::UDPSocket;
using orvo_test::bound_waits;
using orvo_test::loopback;
using orvo_test::readable;
using Bytes = std::vector<unsigned char>;

int destroyed = 0;

/// Writes fixed bytes (optionally preceded by the header it is given) and
/// reports their length or one of its choosing; counts its destructions.
class TestCommand : public DrawingCommand {
public:
    explicit TestCommand(Bytes bytes, bool with_header = false, std::optional<int> reported = {})
        : DrawingCommand("test"), bytes(std::move(bytes)), with_header(with_header),
          reported(reported.value_or(static_cast<int>(this->bytes.size()) + with_header)) {}
    ~TestCommand() override { ++destroyed; }

    int serialize(int header, unsigned char* buffer) override {
        if (with_header) {
            *buffer++ = static_cast<unsigned char>(header);
        }
        std::copy(bytes.begin(), bytes.end(), buffer);
        return reported;
    }

private:
    Bytes bytes; // a member that needs destruction: leaks unless destroyed whole
    bool with_header;
    int reported;
};

/// The debug viewer: a UDP socket on the loopback interface.
struct Viewer {
    Viewer() : socket(Addr(0, loopback)) { bound_waits(socket.getFD()); }

    int port() const { return socket.getName().getPort(); }

    /// The next datagram, or nothing when none arrives in time.
    Bytes next() {
        if (!readable(socket.getFD())) {
            ADD_FAILURE() << "no datagram arrived";
            return {};
        }
        char data[2048];
        const int got = socket.recv(data, sizeof data, MSG_DONTWAIT, UDPSocket::DONT_CHECK);
        EXPECT_GE(got, 0) << std::strerror(errno);
        return got < 0 ? Bytes{} : Bytes(data, data + got);
    }

    bool idle() { return !readable(socket.getFD(), 0); }

    UDPSocket socket;
};

class DebugDrawingsTest : public orvo_test::NoDescriptorLeak {
protected:
    void SetUp() override {
        NoDescriptorLeak::SetUp();
        destroyed = 0;
    }

    /// A collector sending to the viewer from an ephemeral local port.
    void connect(DebugDrawings& drawings) {
        drawings.init("127.0.0.1", viewer.port(), 0);
        // The cycle must never wait for the viewer; a receive that wrongly
        // blocked would still give up instead of hanging.
        EXPECT_NE(fcntl(drawings.getSocket().getFD(), F_GETFL) & O_NONBLOCK, 0);
        bound_waits(drawings.getSocket().getFD());
    }

    Viewer viewer;
};

TEST_F(DebugDrawingsTest, OneDatagramPerCommandInOrderWithTheHeader) {
    DebugDrawings drawings;
    connect(drawings);
    drawings.setTeam(1);
    drawings.setId(5);
    drawings.addDrawing(new TestCommand({1, 2, 3}));
    drawings.addDrawing(new TestCommand({9}, true));
    // Reports more than it may, or a negative length: nothing of it leaves the host.
    for (const int reported : {DrawingCommand::max_size + 1, 1 << 20, -1}) {
        drawings.addDrawing(new TestCommand({2}, false, reported));
    }
    drawings.addDrawing(new TestCommand(Bytes(DrawingCommand::max_size - 1, 0xAB), true));
    drawings.addDrawing(new TestCommand({}));
    drawings.send();

    EXPECT_EQ(viewer.next(), (Bytes{0x03, 0x00, 0x85}));
    EXPECT_EQ(viewer.next(), (Bytes{1, 2, 3}));
    EXPECT_EQ(viewer.next(), (Bytes{0x85, 9}));
    Bytes full(DrawingCommand::max_size, 0xAB);
    full[0] = 0x85;
    EXPECT_EQ(viewer.next(), full);
    EXPECT_EQ(viewer.next(), Bytes{}); // an empty command is an empty datagram
    EXPECT_TRUE(viewer.idle());

    // send() keeps the commands for another round.
    EXPECT_EQ(drawings.getDrawings().size(), 7u);
    EXPECT_EQ(destroyed, 0);
}

} // namespace
