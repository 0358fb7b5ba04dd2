// The drawing viewer as a user sees it: a real process on loopback, drawing
// datagrams in, a real HTTP and WebSocket client out.

#include "drawing_store.h"
#include "drawing_wire.h"

#include <examples/child_process.h>
#include <support/loopback.h>
#include <support/scratch_dir.h>

#include <boost/asio/connect.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>

#include <gtest/gtest.h>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <optional>
#include <regex>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
namespace websocket = boost::beast::websocket;
using demo::wire::Kind;
using orvo_test::count_of;

std::string bytes_of(Kind kind, std::uint8_t header, const char* name,
                     std::vector<demo::wire::Corner> corners) {
    unsigned char buffer[demo::wire::max_shape_size];
    const auto size = demo::wire::encode(kind, header, name, {200, 40, 40}, corners.data(),
                                         corners.size(), buffer);
    return std::string(reinterpret_cast<const char*>(buffer), size);
}

std::string opening(std::uint8_t header) {
    return std::string{0x03, 0x00, static_cast<char>(header)};
}

/// A viewer process on free ports, and the client side of both of them.
class Viewer : public ::testing::Test {
protected:
    void SetUp() override {
        process.emplace(std::vector<std::string>{VIEWER, "--drawing-port", "0", "--http-port", "0",
                                                 "--ports-file", "ports", "--svg", "final.svg"},
                        dir.path.string(), "out.txt", "err.txt");
        ASSERT_TRUE(orvo_test::wait_for_file("ports", 5s)) << process->error_text();
        std::ifstream("ports") >> udp_port >> http_port;
        udp = socket(AF_INET, SOCK_DGRAM, 0);
        ASSERT_GE(udp, 0);
    }
    void TearDown() override {
        ::close(udp);
        process->wait_for(0ms);
    }

    void send(const std::string& datagram) const {
        sockaddr_in to{};
        to.sin_family = AF_INET;
        to.sin_port = htons(udp_port);
        to.sin_addr.s_addr = htonl(orvo_test::loopback);
        ASSERT_EQ(sendto(udp, datagram.data(), datagram.size(), 0,
                         reinterpret_cast<const sockaddr*>(&to), sizeof to),
                  static_cast<ssize_t>(datagram.size()));
    }

    /// Runs the started operations until `done` or the bounded wait ends.
    bool run_until(const bool& done) {
        io.restart();
        const auto deadline = std::chrono::steady_clock::now() + 5s;
        while (!done && std::chrono::steady_clock::now() < deadline) {
            io.run_one_for(50ms);
        }
        return done;
    }

    http::response<http::string_body> get(const std::string& target) {
        beast::tcp_stream stream(io);
        bool done = false;
        boost::system::error_code failure;
        http::request<http::empty_body> request{http::verb::get, target, 11};
        request.set(http::field::host, "127.0.0.1");
        http::response<http::string_body> response;
        beast::flat_buffer buffer;
        stream.async_connect(endpoint(), [&](boost::system::error_code error) {
            if ((failure = error)) {
                done = true;
                return;
            }
            http::async_write(stream, request, [&](boost::system::error_code error, std::size_t) {
                if ((failure = error)) {
                    done = true;
                    return;
                }
                http::async_read(stream, buffer, response,
                                 [&](boost::system::error_code error, std::size_t) {
                                     failure = error;
                                     done = true;
                                 });
            });
        });
        EXPECT_TRUE(run_until(done)) << "no answer to GET " << target;
        EXPECT_FALSE(failure) << failure.message();
        return response;
    }

    void open_live() {
        bool done = false;
        boost::system::error_code failure;
        beast::get_lowest_layer(live).async_connect(endpoint(), [&](boost::system::error_code e) {
            if ((failure = e)) {
                done = true;
                return;
            }
            live.async_handshake("127.0.0.1", "/live", [&](boost::system::error_code error) {
                failure = error;
                done = true;
            });
        });
        ASSERT_TRUE(run_until(done));
        ASSERT_FALSE(failure) << failure.message();
    }

    /// The next picture pushed, or "" when none comes within the bounded wait.
    std::string next_picture() {
        beast::flat_buffer buffer;
        bool done = false;
        boost::system::error_code failure;
        live.async_read(buffer, [&](boost::system::error_code error, std::size_t) {
            failure = error;
            done = true;
        });
        if (!run_until(done)) {
            beast::get_lowest_layer(live).close();
            run_until(done);
            return "";
        }
        return failure ? "" : beast::buffers_to_string(buffer.data());
    }

    /// Pictures until one contains every text of `wanted`; "" if none does in time.
    std::string picture_with(const std::vector<std::string>& wanted) {
        for (std::string picture = next_picture(); !picture.empty(); picture = next_picture()) {
            bool all = true;
            for (const auto& text : wanted) {
                all = all && picture.find(text) != std::string::npos;
            }
            if (all) {
                return picture;
            }
        }
        return "";
    }

    asio::ip::tcp::endpoint endpoint() const {
        return {asio::ip::address_v4::loopback(), http_port};
    }

    orvo_test::ScratchDir dir;
    std::optional<orvo_test::ChildProcess> process;
    unsigned short udp_port = 0;
    unsigned short http_port = 0;
    int udp = -1;
    asio::io_context io;
    websocket::stream<beast::tcp_stream> live{io};
};

TEST_F(Viewer, ServesASelfContainedPageAndTheSnapshot) {
    const auto page = get("/");
    EXPECT_EQ(page.result(), http::status::ok);
    EXPECT_EQ(page[http::field::content_type], "text/html; charset=utf-8");
    EXPECT_NE(page.body().find("<svg"), std::string::npos);
    EXPECT_NE(page.body().find("new WebSocket("), std::string::npos);
    // Offline: nothing the page would fetch, the SVG namespace name aside.
    const std::regex fetched(R"((src|href)\s*=|url\(|@import|https?://(?!www\.w3\.org/2000/svg"))");
    EXPECT_FALSE(std::regex_search(page.body(), fetched));

    send(opening(0x07));
    send(bytes_of(Kind::point, 0x07, "me", {{1, 2}}));
    for (int tries = 0; tries < 100; ++tries) {
        if (get("/field.svg").body().find("data-unum=\"7\"") != std::string::npos) {
            break;
        }
        std::this_thread::sleep_for(10ms);
    }
    const auto snapshot = get("/field.svg");
    EXPECT_EQ(snapshot[http::field::content_type], "image/svg+xml");
    EXPECT_EQ(count_of(snapshot.body(), "class=\"point\" data-side=\"left\" data-unum=\"7\""), 1u);
    EXPECT_EQ(get("/elsewhere").result(), http::status::not_found);
}

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
    ASSERT_FALSE(picture.empty()) << process->output_text();
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
    picture = picture_with({"data-unum=\"5\"", "6 malformed"});
    EXPECT_FALSE(picture.empty()) << process->output_text();

    process->signal(SIGTERM);
    EXPECT_EQ(process->wait_for(5s), 0) << process->error_text();
    EXPECT_NE(process->output_text().find("13 received, 3 batches, 4 shapes, 6 malformed"),
              std::string::npos)
        << process->output_text();
    EXPECT_NE(orvo_test::ChildProcess::read("final.svg").find("data-unum=\"5\""),
              std::string::npos);
}

TEST_F(Viewer, PushesAtMostTwentyFiveTimesASecond) {
    open_live();
    ASSERT_FALSE(next_picture().empty());
    const auto start = std::chrono::steady_clock::now();
    int pictures = 0;
    // Far more batches than pictures: 400 in about a second.
    for (int batch = 0; batch < 400; ++batch) {
        send(opening(0x01));
        send(bytes_of(Kind::point, 0x01, "me", {{batch * 0.01f, 0}}));
        std::this_thread::sleep_for(2500us);
    }
    for (std::string picture = next_picture(); !picture.empty(); picture = next_picture()) {
        ++pictures;
        if (picture.find("800 datagrams") != std::string::npos) {
            break;
        }
    }
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_LE(pictures, 25 * seconds + 2) << pictures << " pictures in " << seconds << " s";
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

} // namespace
