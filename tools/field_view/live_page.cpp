#include "live_page.h"

#include "page_server.h"

#include <boost/asio/dispatch.hpp>

#include <algorithm>

namespace field_view {

namespace detail {

namespace {
tcp::acceptor listening(asio::io_context& io, unsigned short port) {
    tcp::acceptor acceptor(io);
    const tcp::endpoint endpoint(asio::ip::address_v4::loopback(), port);
    acceptor.open(endpoint.protocol());
    acceptor.set_option(asio::socket_base::reuse_address(true));
    acceptor.bind(endpoint);
    acceptor.listen();
    return acceptor;
}
} // namespace

PageServer::PageServer(asio::io_context& io, unsigned short port, LivePage::Render render)
    : io(io), acceptor(listening(io, port)), timer(io), render(std::move(render)),
      bound_port(acceptor.local_endpoint().port()) {}

void PageServer::start() {
    accept();
}

void PageServer::accept() {
    acceptor.async_accept(
        [self = shared_from_this()](const boost::system::error_code& error, tcp::socket socket) {
            if (self->stopped || error == asio::error::operation_aborted) {
                return;
            }
            if (!error) {
                auto session = std::make_shared<HttpSession>(std::move(socket), self);
                // Forget the connections that have ended, keep the others for stop().
                auto& list = self->requests;
                list.erase(std::remove_if(list.begin(), list.end(),
                                          [](const auto& entry) { return entry.expired(); }),
                           list.end());
                list.push_back(session);
                session->start();
            }
            self->accept();
        });
}

void PageServer::changed() {
    dirty = true;
    schedule();
}

void PageServer::schedule() {
    if (armed || stopped || !dirty || clients.empty()) {
        return;
    }
    armed = true;
    timer.expires_at(
        std::max(asio::steady_timer::clock_type::now(), last_push + LivePage::min_interval));
    timer.async_wait([self = shared_from_this()](const boost::system::error_code& error) {
        self->armed = false;
        if (!error && !self->stopped) {
            self->push();
        }
    });
}

void PageServer::push() {
    if (!dirty || clients.empty()) {
        return;
    }
    dirty = false;
    last_push = asio::steady_timer::clock_type::now();
    const auto picture = std::make_shared<const std::string>(render());
    ++pushes;
    // A client may leave while it is told; walk a copy.
    const auto receivers = clients;
    for (const auto& client : receivers) {
        client->send(picture);
    }
}

void PageServer::join(const std::shared_ptr<WebSocketSession>& client) {
    clients.insert(client);
    client_count = clients.size();
}

void PageServer::leave(const std::shared_ptr<WebSocketSession>& client) {
    clients.erase(client);
    client_count = clients.size();
}

void PageServer::stop() {
    if (stopped) {
        return;
    }
    stopped = true;
    boost::system::error_code ignored;
    acceptor.close(ignored);
    timer.cancel();
    for (const auto& entry : requests) {
        if (const auto session = entry.lock()) {
            session->close();
        }
    }
    requests.clear();
    // From now on only their pending operations keep the clients alive, so
    // that a peer that never answers the close cannot keep them beyond the
    // io_context.
    const auto leaving = std::move(clients);
    clients.clear();
    client_count = 0;
    for (const auto& client : leaving) {
        client->close();
    }
}

} // namespace detail

LivePage::LivePage(boost::asio::io_context& io, unsigned short port, Render render)
    : server(std::make_shared<detail::PageServer>(io, port, std::move(render))) {
    server->start();
}

LivePage::~LivePage() {
    stop();
}

unsigned short LivePage::port() const {
    return server->port();
}

void LivePage::changed() {
    boost::asio::dispatch(server->executor(), [server = server] { server->changed(); });
}

void LivePage::stop() {
    boost::asio::dispatch(server->executor(), [server = server] { server->stop(); });
}

std::uint64_t LivePage::pushes() const {
    return server->pushes;
}

std::size_t LivePage::clients() const {
    return server->client_count;
}

} // namespace field_view
