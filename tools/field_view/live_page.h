#ifndef ORVO_FIELD_VIEW_LIVE_PAGE_H
#define ORVO_FIELD_VIEW_LIVE_PAGE_H

#include <boost/asio/io_context.hpp>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace field_view {

namespace detail {
class PageServer;
}

/// A live page of the field on 127.0.0.1: "/" is a self-contained HTML page
/// (inline style and script, nothing fetched from elsewhere) that shows the
/// picture and replaces it with every picture pushed over the WebSocket
/// "/live"; "/field.svg" is the picture alone. Everything runs on the thread
/// that runs the io_context.
class LivePage {
public:
    /// Renders the current picture as an <svg> element; called on the
    /// io_context's thread, at most `max_rate` times a second for the pushes
    /// (plus once per page or client that asks).
    using Render = std::function<std::string()>;

    static constexpr int max_rate = 25;
    static constexpr std::chrono::milliseconds min_interval{1000 / max_rate};

    /// Listens on 127.0.0.1:`port` (0: any free one); throws boost::system::system_error.
    LivePage(boost::asio::io_context& io, unsigned short port, Render render);
    ~LivePage();
    LivePage(const LivePage&) = delete;
    LivePage& operator=(const LivePage&) = delete;

    unsigned short port() const;
    /// The picture changed: every client gets the new one, after at most
    /// min_interval, however often this is called. Safe from any thread.
    void changed();
    /// Closes the listener and every connection; safe from any thread.
    void stop();

    /// Pictures pushed (one count per push, whatever the number of clients).
    std::uint64_t pushes() const;
    std::size_t clients() const;

private:
    std::shared_ptr<detail::PageServer> server;
};

} // namespace field_view

#endif
