#include "faulty_server.h"

#include <gtest/gtest.h>

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <iostream>
#include <string>
#include <unordered_map>
#include <vector>

using orvo_test::frame;

namespace {

using ReceiveFaults = orvo_test::FaultyServerTest;

// The agent waits the usual way (a blocking SelectInput) for every drop; no
// drop completes a length prefix, so each is lost on its own and the stream
// is clean again for the next frame.
TEST_F(ReceiveFaults, DrippedFrameIsLostAndTheNextFrameArrivesWhole) {
    const std::string dripped = frame("(time (now 12.34))");
    for (std::size_t drop : {1u, 2u, 3u, 5u, 7u}) {
        for (std::size_t at = 0; at < dripped.size(); at += drop) {
            serve(dripped.substr(at, drop));
            ASSERT_TRUE(unit->SelectInput(true));
            EXPECT_EQ(unit->get_message(), "") << "drops of " << drop << " at " << at;
        }
        serve(frame("(after)"));
        await_agent_input();
        EXPECT_EQ(unit->get_message(), "(after)") << "after drops of " << drop;
    }
}

TEST_F(ReceiveFaults, HugeLengthPrefixThenCloseGivesEmptyTexts) {
    serve(frame("(partial", 0xFFFFFFFF));
    server.reset();
    await_agent_input();
    for (int call = 0; call < 4; ++call) {
        EXPECT_EQ(unit->get_message(), "") << "call " << call;
    }
    EXPECT_TRUE(agent_input_ended());
}

// Frames longer than the receive buffer, announced or not, with the server
// closing right after them: whatever comes out is cut to the buffer and holds
// only payload bytes, and the agent reaches the end of the stream.
class OversizedFrame : public orvo_test::FaultyServerTest,
                       public ::testing::WithParamInterface<std::uint32_t> {};

TEST_P(OversizedFrame, ResultsAreCutToTheBufferAndTheStreamEnds) {
    const std::uint32_t announced = GetParam();
    const std::string payload(std::min<std::uint32_t>(announced, 40000), 'x');
    serve(frame(payload, announced));
    server.reset();
    await_agent_input();

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

TEST_F(ReceiveFaults, ResetInsideAFrame) {
    serve(frame("(before)"));
    await_agent_input();
    ASSERT_EQ(unit->get_message(), "(before)");

    serve(frame("(cut " + std::string(50, 'y'), 100));
    await_agent_input();
    EXPECT_EQ(unit->get_message(), "") << "the rest of the frame has not come";

    reset_connection();
    await_agent_input();
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
TEST_F(ReceiveFaults, FloodFasterThanTheAgentReads) {
    std::string stream;
    std::unordered_map<std::string, int> index_of;
    for (int i = 0; i < 5000; ++i) {
        const std::string payload =
            "(frame " + std::to_string(i) + " " + std::string(i % 300, 'p') + ")";
        index_of.emplace(payload, i);
        stream += frame(payload);
    }

    std::vector<std::string> results;
    std::size_t sent = 0;
    while (sent < stream.size()) {
        while (sent < stream.size()) {
            const ssize_t n = ::send(server->getFD(), stream.data() + sent, stream.size() - sent,
                                     MSG_DONTWAIT | MSG_NOSIGNAL);
            if (n < 0) {
                ASSERT_TRUE(errno == EAGAIN || errno == EWOULDBLOCK) << errno;
                break;
            }
            sent += static_cast<std::size_t>(n);
        }
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
    await_agent_input();
    EXPECT_EQ(unit->get_message(), "(end)");
}

} // namespace
