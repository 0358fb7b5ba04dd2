#include <orvo/debug/debug_drawings.h>

#include <support/loopback.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

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

} // namespace
