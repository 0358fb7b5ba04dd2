#include "drawing_listener.h"

#include <boost/asio/ip/address.hpp>

#include <sys/socket.h>

#include <cerrno>
#include <cstring>

namespace field_view {

namespace {
// Room for a few cycles of 22 agents even when the reader is held up.
constexpr int receive_buffer_bytes = 4 << 20;
// Datagrams read in one go before the other work of the thread gets its turn,
// so that a flood cannot keep the page from being served.
constexpr int burst = 512;
} // namespace

DrawingListener::DrawingListener(boost::asio::io_context& io, const std::string& address,
                                 unsigned short port, DrawingStore& store,
                                 std::function<void()> changed)
    : socket(io), store(store), changed(std::move(changed)),
      // A UDP datagram never exceeds 64 KiB: nothing arrives cut short, so an
      // oversize datagram is seen whole and rejected as such.
      buffer(65536) {
    const boost::asio::ip::udp::endpoint endpoint(boost::asio::ip::make_address(address), port);
    socket.open(endpoint.protocol());
    socket.set_option(boost::asio::socket_base::receive_buffer_size(receive_buffer_bytes));
    const int on = 1;
    // Lets the system report how many datagrams it had to drop for want of room.
    setsockopt(socket.native_handle(), SOL_SOCKET, SO_RXQ_OVFL, &on, sizeof on);
    socket.bind(endpoint);
    socket.non_blocking(true);
    bound_port = socket.local_endpoint().port();
    wait();
}

void DrawingListener::stop() {
    boost::system::error_code ignored;
    socket.close(ignored);
}

void DrawingListener::wait() {
    socket.async_wait(boost::asio::socket_base::wait_read,
                      [this](const boost::system::error_code& error) {
                          if (error) {
                              return;
                          }
                          drain();
                          wait();
                      });
}

void DrawingListener::drain() {
    bool any = false;
    for (int read = 0; read < burst; ++read) {
        iovec part{buffer.data(), buffer.size()};
        alignas(cmsghdr) unsigned char control[CMSG_SPACE(sizeof(std::uint32_t))];
        msghdr message{};
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        message.msg_control = control;
        message.msg_controllen = sizeof control;
        const ssize_t n = recvmsg(socket.native_handle(), &message, MSG_DONTWAIT);
        if (n < 0) {
            break;
        }
        for (cmsghdr* c = CMSG_FIRSTHDR(&message); c != nullptr; c = CMSG_NXTHDR(&message, c)) {
            if (c->cmsg_level == SOL_SOCKET && c->cmsg_type == SO_RXQ_OVFL) {
                std::uint32_t total = 0;
                std::memcpy(&total, CMSG_DATA(c), sizeof total);
                dropped = total;
            }
        }
        store.add(buffer.data(), static_cast<std::size_t>(n));
        any = true;
    }
    if (any && changed) {
        changed();
    }
}

} // namespace field_view
