#include <orvo/debug/debug_drawings.h>

#include <support/loopback.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using orvo::DebugDrawings;
using orvo::DrawingCommand;
using orvo::net::Addr;
using orvo::net::UDPSocket;

namespace {

int alive = 0;

/// Fills the whole share of the buffer it may use, to the last byte.
class FullCommand : public DrawingCommand {
public:
    FullCommand() : DrawingCommand("full") { ++alive; }
    ~FullCommand() override { --alive; }
    int serialize(int header, unsigned char* buffer) override {
        std::fill(buffer, buffer + max_size, static_cast<unsigned char>(header));
        return max_size;
    }
};

using DebugFaults = orvo_test::NoDescriptorLeak;

TEST_F(DebugFaults, ViewerThatWentAwayCostsNothingButTheDatagrams) {
    const int port = UDPSocket(Addr(0, orvo_test::loopback)).getName().getPort();
    DebugDrawings drawings;
    drawings.init("127.0.0.1", port, 0);
    alive = 0;
    testing::internal::CaptureStderr();
    for (int cycle = 0; cycle < 50; ++cycle) {
        for (int i = 0; i < (cycle % 2 == 0 ? 3 : 400); ++i) {
            drawings.addDrawing(new FullCommand);
        }
        drawings.execute();
        ASSERT_EQ(alive, 0) << "cycle " << cycle;
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// The viewer answers far more often than the agent runs cycles: every cycle
// prints at most one reply, bounded to the read size, and never waits.
TEST_F(DebugFaults, RepliesFasterThanCyclesArePrintedOneAtATime) {
    UDPSocket viewer(Addr(0, orvo_test::loopback));
    DebugDrawings drawings;
    drawings.init("127.0.0.1", viewer.getName().getPort(), 0);
    const Addr agent(drawings.getSocket().getName().getPort(), orvo_test::loopback);

    const std::vector<std::string> replies{"", "ok", std::string(1500, 'r'),
                                           std::string("\0hidden", 7)};
    std::string expected;
    int sent = 0;
    for (int i = 0; i < 60; ++i) {
        const std::string& reply = replies[i % replies.size()];
        ASSERT_EQ(viewer.send(reply.data(), static_cast<unsigned int>(reply.size()), agent),
                  static_cast<int>(reply.size()));
        ++sent;
        if (!reply.empty()) {
            // Printed up to the read size and the first NUL.
            expected += "received: " + std::string(reply.substr(0, 1023).c_str()) + "\n";
        }
    }
    testing::internal::CaptureStderr();
    for (int cycle = 0; cycle < sent + 5; ++cycle) {
        drawings.execute();
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), expected);
}

} // namespace
