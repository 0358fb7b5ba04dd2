#include "page_server.h"

#include <chrono>

namespace field_view::detail {

namespace {
// A browser that opened a connection and went quiet must not hold it forever.
constexpr std::chrono::seconds request_timeout{30};
// A closing handshake with a peer that no longer answers ends after this.
constexpr std::chrono::seconds close_timeout{1};

http::response<http::string_body> response(const http::request<http::string_body>& request,
                                           http::status status, const char* type,
                                           std::string body) {
    http::response<http::string_body> answer{status, request.version()};
    answer.set(http::field::server, "orvo_viewer");
    answer.set(http::field::content_type, type);
    answer.set(http::field::cache_control, "no-store");
    answer.keep_alive(request.keep_alive());
    answer.body() = std::move(body);
    answer.prepare_payload();
    if (request.method() == http::verb::head) {
        answer.body().clear();
    }
    return answer;
}
} // namespace

HttpSession::HttpSession(tcp::socket socket, std::shared_ptr<PageServer> server)
    : stream(std::move(socket)), server(std::move(server)) {}

void HttpSession::start() {
    read();
}

void HttpSession::close() {
    boost::system::error_code ignored;
    stream.socket().shutdown(tcp::socket::shutdown_both, ignored);
    stream.close();
}

void HttpSession::read() {
    request = {};
    stream.expires_after(request_timeout);
    http::async_read(
        stream, buffer, request,
        [self = shared_from_this()](const boost::system::error_code& error, std::size_t) {
            if (error || self->server->stopping()) {
                self->close();
                return;
            }
            self->answer();
        });
}

void HttpSession::answer() {
    if (websocket::is_upgrade(request) && request.target() == "/live") {
        stream.expires_never();
        std::make_shared<WebSocketSession>(std::move(stream), server)->start(std::move(request));
        return;
    }
    http::response<http::string_body> answer;
    if (request.method() != http::verb::get && request.method() != http::verb::head) {
        answer = response(request, http::status::method_not_allowed, "text/plain",
                          "only GET and HEAD\n");
    } else if (request.target() == "/" || request.target() == "/index.html") {
        answer = response(request, http::status::ok, "text/html; charset=utf-8",
                          page_html(server->picture()));
    } else if (request.target() == "/field.svg") {
        answer = response(request, http::status::ok, "image/svg+xml",
                          "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + server->picture());
    } else {
        answer = response(request, http::status::not_found, "text/plain", "not found\n");
    }
    auto message = std::make_shared<http::response<http::string_body>>(std::move(answer));
    http::async_write(
        stream, *message,
        [self = shared_from_this(), message](const boost::system::error_code& error, std::size_t) {
            if (error || !message->keep_alive()) {
                self->close();
                return;
            }
            self->read();
        });
}

WebSocketSession::WebSocketSession(beast::tcp_stream stream, std::shared_ptr<PageServer> server)
    : socket(std::move(stream)), server(std::move(server)) {}

void WebSocketSession::start(http::request<http::string_body> upgrade) {
    auto timeouts = websocket::stream_base::timeout::suggested(beast::role_type::server);
    timeouts.handshake_timeout = close_timeout;
    socket.set_option(timeouts);
    socket.set_option(websocket::stream_base::decorator(
        [](websocket::response_type& answer) { answer.set(http::field::server, "orvo_viewer"); }));
    // The upgrade request must outlive the handshake.
    auto request = std::make_shared<http::request<http::string_body>>(std::move(upgrade));
    socket.async_accept(
        *request, [self = shared_from_this(), request](const boost::system::error_code& error) {
            if (error || self->server->stopping()) {
                return;
            }
            self->joined = true;
            self->server->join(self);
            self->socket.text(true);
            self->send(std::make_shared<const std::string>(self->server->picture()));
            self->read();
        });
}

void WebSocketSession::send(std::shared_ptr<const std::string> picture) {
    if (writing) {
        pending = std::move(picture);
        return;
    }
    write(std::move(picture));
}

void WebSocketSession::write(std::shared_ptr<const std::string> picture) {
    writing = true;
    const asio::const_buffer bytes(picture->data(), picture->size());
    socket.async_write(bytes, [self = shared_from_this(),
                               picture](const boost::system::error_code& error, std::size_t) {
        self->writing = false;
        if (error) {
            self->leave();
            return;
        }
        if (self->pending) {
            self->write(std::move(self->pending));
        }
    });
}

void WebSocketSession::read() {
    // The page sends nothing; reading lets control frames and a close through.
    socket.async_read(
        incoming, [self = shared_from_this()](const boost::system::error_code& error, std::size_t) {
            if (error) {
                self->leave();
                return;
            }
            self->incoming.consume(self->incoming.size());
            self->read();
        });
}

void WebSocketSession::leave() {
    if (joined) {
        joined = false;
        server->leave(shared_from_this());
    }
}

void WebSocketSession::close() {
    pending.reset();
    socket.async_close(websocket::close_code::going_away,
                       [self = shared_from_this()](const boost::system::error_code&) {
                           self->leave();
                           beast::get_lowest_layer(self->socket).close();
                       });
}

} // namespace field_view::detail
