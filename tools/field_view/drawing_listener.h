#ifndef ORVO_FIELD_VIEW_DRAWING_LISTENER_H
#define ORVO_FIELD_VIEW_DRAWING_LISTENER_H

#include "drawing_store.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/udp.hpp>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace field_view {

/// Receives the agents' drawing datagrams on a UDP port into a store, on the
/// thread that runs the io_context. After every burst of datagrams (all that
/// were waiting) it calls `changed` once.
class DrawingListener {
public:
    /// Binds `address`:`port` (0: any free one); throws boost::system::system_error.
    DrawingListener(boost::asio::io_context& io, const std::string& address, unsigned short port,
                    DrawingStore& store, std::function<void()> changed);
    DrawingListener(const DrawingListener&) = delete;
    DrawingListener& operator=(const DrawingListener&) = delete;

    unsigned short port() const { return bound_port; }
    /// Datagrams the system dropped before this listener could read them (its
    /// receive buffer was full).
    std::uint64_t overflowed() const { return dropped; }
    /// Stops listening; the pending wait ends without touching the store.
    void stop();

private:
    void wait();
    void drain();

    boost::asio::ip::udp::socket socket;
    DrawingStore& store;
    std::function<void()> changed;
    std::vector<unsigned char> buffer;
    unsigned short bound_port = 0;
    std::uint64_t dropped = 0;
};

} // namespace field_view

#endif
