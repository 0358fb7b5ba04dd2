// The drawing viewer as a user sees it: a real process on loopback, drawing
// datagrams in, a real HTTP and WebSocket client out.

#include "drawing_store.h"
#include <orvo/protocol/drawing_wire.h>
#include <orvo/protocol/framing.h>

#include <examples/child_process.h>
#include <support/loopback.h>
#include <support/scratch_dir.h>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ip/udp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/use_future.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/websocket.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <future>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
namespace asio = boost::asio;
namespace beast = boost::beast;
namespace websocket = boost::beast::websocket;
using orvo::protocol::drawing::Kind;
using orvo_test::count_of;

std::string bytes_of(Kind kind, std::uint8_t header, const char* name,
                     std::vector<orvo::protocol::drawing::Corner> corners) {
    unsigned char buffer[orvo::protocol::drawing::max_shape_size];
    const auto size = orvo::protocol::drawing::encode(kind, header, name, {200, 40, 40},
                                                      corners.data(), corners.size(), buffer);
    return std::string(reinterpret_cast<const char*>(buffer), size);
}

std::string opening(std::uint8_t header) {
    return std::string{0x03, 0x00, static_cast<char>(header)};
}

/// A viewer process on free ports, and the client side of both of them. The
/// clients' operations run on a thread of their own.
class Viewer : public ::testing::Test {
protected:
    void SetUp() override { start({}); }

    void start(const std::vector<std::string>& more) {
        std::vector<std::string> arguments{VIEWER,     "--drawing-port", "0",     "--http-port",
                                           "0",        "--ports-file",   "ports", "--svg",
                                           "final.svg"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        process.emplace(arguments, dir.path.string(), "out.txt", "err.txt");
        ASSERT_TRUE(orvo_test::wait_for_file("ports", 5s)) << process->error_text();
        unsigned short udp_port = 0, http_port = 0;
        std::ifstream("ports") >> udp_port >> http_port;
        drawings = {asio::ip::address_v4::loopback(), udp_port};
        http = {asio::ip::address_v4::loopback(), http_port};
        udp.open(asio::ip::udp::v4());
    }
    void TearDown() override {
        io.stop();
        runner.join();
    }

    void send(const std::string& datagram) { udp.send_to(asio::buffer(datagram), drawings); }

    /// The result of an operation that has no time limit of its own (an error
    /// is thrown here); the streams' operations are bounded by their own limits.
    template <class T> T within(std::future<T> result) {
        if (result.wait_for(5s) != std::future_status::ready) {
            throw std::runtime_error("no answer within 5 s");
        }
        return result.get();
    }

    void open_live() {
        beast::get_lowest_layer(live).expires_after(5s);
        beast::get_lowest_layer(live).async_connect(http, asio::use_future).get();
        beast::get_lowest_layer(live).expires_never();
        live.set_option(websocket::stream_base::timeout{5s, 5s, false});
        live.async_handshake("127.0.0.1", "/live", asio::use_future).get();
    }

    std::string next_picture() {
        beast::flat_buffer buffer;
        live.async_read(buffer, asio::use_future).get();
        return beast::buffers_to_string(buffer.data());
    }

    /// The first picture that contains every text of `wanted`.
    std::string picture_with(const std::vector<std::string>& wanted) {
        for (;;) {
            const std::string picture = next_picture();
            if (std::all_of(wanted.begin(), wanted.end(), [&](const std::string& text) {
                    return picture.find(text) != std::string::npos;
                })) {
                return picture;
            }
        }
    }

    orvo_test::ScratchDir dir;
    std::optional<orvo_test::ChildProcess> process;
    asio::io_context io;
    std::optional<asio::executor_work_guard<asio::io_context::executor_type>> work{
        io.get_executor()};
    std::thread runner{[this] { io.run(); }};
    asio::ip::udp::socket udp{io};
    asio::ip::udp::endpoint drawings;
    asio::ip::tcp::endpoint http;
    websocket::stream<beast::tcp_stream> live{io};
};

TEST_F(Viewer, PushesEachAgentsLatestBatchAndDropsMalformedDatagrams) {
    open_live();
    EXPECT_NE(next_picture().find("0 agents drawing"), std::string::npos);

    // Left 3 and right 3 share a number but not a team; left 3's second batch
    // replaces its first and leaves right 3 alone.
    send(opening(0x03));
    send(bytes_of(Kind::polygon, 0x03, "cell", {{-5, 5}, {-1, 5}, {-1, -5}}));
    send(opening(0x83));
    send(bytes_of(Kind::point, 0x83, "me", {{-2, 0}}));
    send(opening(0x03));
    send(bytes_of(Kind::line, 0x03, "to_centroid", {{-4, 0}, {-3, 1}}));
    std::string picture = picture_with({"2 agents drawing, 6 datagrams"});
    EXPECT_EQ(count_of(picture, "data-side=\"left\" data-unum=\"3\""), 1u);
    EXPECT_NE(picture.find("class=\"line\" data-side=\"left\" data-unum=\"3\""), std::string::npos);
    // Right 3 drew at -2 in its own frame: +2 on the field, 60 px right of the centre (525).
    EXPECT_NE(picture.find("class=\"point\" data-side=\"right\" data-unum=\"3\" data-name=\"me\" "
                           "cx=\"555.0\""),
              std::string::npos);

    const std::string good = bytes_of(Kind::point, 0x05, "me", {{0, 0}});
    std::string unknown = good;
    unknown[0] = 0x42;
    std::string oversize = good + std::string(2000, '\x01');
    std::string miscounted = good;
    miscounted[3 + 2 + 3] = 2; // a point with two corners
    for (const std::string& bad : {std::string("\x03"), std::string("\x03\x00", 2), unknown,
                                   oversize, miscounted, good.substr(0, good.size() - 1)}) {
        send(bad);
    }
    send(good);
    picture_with({"data-unum=\"5\"", "6 malformed"});

    process->signal(SIGTERM);
    EXPECT_EQ(process->wait_for(5s), 0) << process->error_text();
    EXPECT_NE(process->output_text().find("13 received, 3 batches, 4 shapes, 6 malformed"),
              std::string::npos)
        << process->output_text();
    EXPECT_NE(orvo_test::ChildProcess::read("final.svg").find("data-unum=\"5\""),
              std::string::npos);
}

TEST(DrawingStore, KeepsABatchBounded) {
    field_view::DrawingStore store;
    const std::string shape = bytes_of(Kind::point, 0x01, "me", {{0, 0}});
    const auto* data = reinterpret_cast<const unsigned char*>(shape.data());
    for (std::size_t i = 0; i < field_view::DrawingStore::max_batch + 10; ++i) {
        store.add(data, shape.size());
    }
    EXPECT_EQ(store.drawings().at(0x01).size(), field_view::DrawingStore::max_batch);
    EXPECT_EQ(store.counts().malformed, 10u);
    store.add(reinterpret_cast<const unsigned char*>("\x03\x00\x01"), 3);
    EXPECT_TRUE(store.drawings().at(0x01).empty());
}

/// The viewer against a monitor port this test plays: the server's recorded
/// sample, a header of its own, and a server that goes and comes back.
class ViewerOfAGame : public Viewer {
protected:
    void SetUp() override {
        acceptor.open(asio::ip::tcp::v4());
        acceptor.bind({asio::ip::address_v4::loopback(), 0});
        acceptor.listen();
        start({"--monitor", "127.0.0.1:" + std::to_string(acceptor.local_endpoint().port())});
        sample = orvo_test::read_lines(MONITOR_SAMPLE);
    }

    /// Waits for the viewer's connection and sends it `messages`, each as a frame.
    asio::ip::tcp::socket serve(const std::vector<std::string>& messages) {
        auto server = within(acceptor.async_accept(asio::use_future));
        std::string frames;
        for (const auto& message : messages) {
            orvo::protocol::append_frame(frames, message);
        }
        asio::write(server, asio::buffer(frames));
        return server;
    }

    asio::ip::tcp::acceptor acceptor{io};
    std::vector<std::string> sample;
};

TEST_F(ViewerOfAGame, DrawsTheGameAndFollowsTheServerWhenItComesBack) {
    ASSERT_EQ(sample.size(), 30u);
    const std::string update = sample[1].substr(sample[1].find("(RDS 0 1)"));
    auto server = serve({sample[0], "((time 75.3)(score_left 2)(score_right 1))" + update});
    open_live();
    // Robot 1 of the left team stands at (-5, 2): 345 px right, 285 px down.
    picture_with({"data-score-left=\"2\" data-score-right=\"1\"", "data-clock=\"01:15\"",
                  "data-mode=\"PlayOn\"", "data-team-left=\"probe\"",
                  "class=\"robot\" data-side=\"left\" data-unum=\"1\"",
                  "<circle cx=\"345.0\" cy=\"285.0\" r=\"12\"", "class=\"ball\"", "monitor live"});

    server.close();
    picture_with({"monitor no server ("});
    server = serve({sample[0]});
    // "live" shows as soon as the viewer is connected again; the new server's
    // clock only once its first message has been read.
    const std::string picture = picture_with({"monitor live", "data-clock=\"00:01\""});
    EXPECT_EQ(count_of(picture, "class=\"robot\""), 2u);

    process->signal(SIGTERM);
    EXPECT_EQ(process->wait_for(5s), 0) << process->error_text();
    EXPECT_NE(process->output_text().find("monitor: 3 messages, live"), std::string::npos)
        << process->output_text();
}

} // namespace
