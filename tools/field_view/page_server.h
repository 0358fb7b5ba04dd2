#ifndef ORVO_FIELD_VIEW_PAGE_SERVER_H
#define ORVO_FIELD_VIEW_PAGE_SERVER_H

// The live page's connections; private to the field view library.

#include "live_page.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>

#include <atomic>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace field_view::detail {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
namespace websocket = boost::beast::websocket;
using tcp = boost::asio::ip::tcp;

class PageServer;

/// One HTTP connection: answers requests until the peer closes, or hands its
/// socket over to a WebSocket session when the peer asks for "/live".
class HttpSession : public std::enable_shared_from_this<HttpSession> {
public:
    HttpSession(tcp::socket socket, std::shared_ptr<PageServer> server);
    void start();
    void close();

private:
    void read();
    void answer();

    beast::tcp_stream stream;
    beast::flat_buffer buffer;
    http::request<http::string_body> request;
    std::shared_ptr<PageServer> server;
};

/// One WebSocket client: gets the current picture at once, then every pushed
/// one. A client that reads slower than pictures come gets the newest picture
/// when its previous write ends; the ones in between are skipped.
class WebSocketSession : public std::enable_shared_from_this<WebSocketSession> {
public:
    WebSocketSession(beast::tcp_stream stream, std::shared_ptr<PageServer> server);
    void start(http::request<http::string_body> upgrade);
    void send(std::shared_ptr<const std::string> picture);
    void close();

private:
    void read();
    void write(std::shared_ptr<const std::string> picture);
    void leave();

    websocket::stream<beast::tcp_stream> socket;
    beast::flat_buffer incoming;
    std::shared_ptr<const std::string> pending;
    bool writing = false;
    bool joined = false;
    std::shared_ptr<PageServer> server;
};

class PageServer : public std::enable_shared_from_this<PageServer> {
public:
    PageServer(asio::io_context& io, unsigned short port, LivePage::Render render);
    void start();
    void changed();
    void stop();
    void join(const std::shared_ptr<WebSocketSession>& client);
    void leave(const std::shared_ptr<WebSocketSession>& client);
    std::string picture() { return render(); }
    bool stopping() const { return stopped; }
    unsigned short port() const { return bound_port; }
    asio::io_context::executor_type executor() { return io.get_executor(); }

    std::atomic<std::uint64_t> pushes{0};
    std::atomic<std::size_t> client_count{0};

private:
    void accept();
    void schedule();
    void push();

    asio::io_context& io;
    tcp::acceptor acceptor;
    asio::steady_timer timer;
    LivePage::Render render;
    std::set<std::shared_ptr<WebSocketSession>> clients;
    std::vector<std::weak_ptr<HttpSession>> requests;
    bool dirty = false;
    bool armed = false;
    bool stopped = false;
    unsigned short bound_port = 0;
    asio::steady_timer::clock_type::time_point last_push{};
};

/// The page around a picture.
std::string page_html(const std::string& svg);

} // namespace field_view::detail

#endif
