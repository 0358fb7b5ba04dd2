#ifndef ORVO_TESTS_SUPPORT_LOOPBACK_H
#define ORVO_TESTS_SUPPORT_LOOPBACK_H

#include <orvo/net/comm_unit.h>
#include <orvo/net/tcp_socket.h>
#include <orvo/protocol/framing.h>

#include <support/open_fds.h>

#include <gtest/gtest.h>

#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <cstdint>
#include <memory>
#include <string>

namespace orvo_test {

constexpr unsigned int loopback = 0x7F000001;
/// Longest any test waits for the network.
constexpr int wait_ms = 5000;

/// Every test of a group must give back the descriptors it opened.
class NoDescriptorLeak : public ::testing::Test {
protected:
    void SetUp() override { before = open_fds(); }
    void TearDown() override { EXPECT_EQ(open_fds(), before) << "descriptor leak"; }

private:
    long before = 0;
};

/// Makes every blocking receive and send on `fd` give up after wait_ms.
inline void bound_waits(int fd) {
    const timeval limit{wait_ms / 1000, 0};
    ASSERT_EQ(setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit), 0);
    ASSERT_EQ(setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit), 0);
}

inline bool readable(int fd, int ms = wait_ms) {
    pollfd entry{fd, POLLIN, 0};
    return poll(&entry, 1, ms) == 1;
}

/// A loopback address nothing listens on (the port is released on return).
inline orvo::net::Addr released_port() {
    orvo::net::TCPSocket reserved(orvo::net::Addr(0, loopback));
    return reserved.getName();
}

/// Up to `count` bytes from `socket`, as many as arrive within the bounded waits.
inline std::string read_bytes(orvo::net::Socket& socket, std::size_t count) {
    std::string bytes(count, '\0');
    std::size_t have = 0;
    while (have < count && readable(socket.getFD())) {
        const int n = socket.recv(&bytes[have], static_cast<unsigned int>(count - have));
        if (n <= 0) {
            break;
        }
        have += static_cast<std::size_t>(n);
    }
    bytes.resize(have);
    return bytes;
}

/// `payload` behind a big-endian length prefix announcing `length` bytes.
inline std::string frame(const std::string& payload, std::uint32_t length) {
    std::string bytes(orvo::protocol::length_prefix_size, '\0');
    orvo::protocol::write_length(length, bytes.data());
    return bytes + payload;
}

inline std::string frame(const std::string& payload) {
    return frame(payload, static_cast<std::uint32_t>(payload.size()));
}

/// The payload of the next frame on `socket`; "" when none comes whole within `ms`.
inline std::string next_frame(orvo::net::Socket& socket, int ms = wait_ms) {
    if (!readable(socket.getFD(), ms)) {
        return "";
    }
    const std::string prefix = read_bytes(socket, 4);
    if (prefix.size() < 4) {
        return "";
    }
    const std::uint32_t size =
        boost::endian::load_big_u32(reinterpret_cast<const unsigned char*>(prefix.data()));
    const std::string payload = read_bytes(socket, size);
    return payload.size() == size ? payload : "";
}

/// A listening socket on an ephemeral loopback port.
struct Listener {
    Listener() : socket(orvo::net::Addr(0, loopback)) {
        socket.listen(4);
        bound_waits(socket.getFD());
    }
    orvo::net::Addr address() const { return socket.getName(); }
    std::unique_ptr<orvo::net::TCPSocket> accept() {
        orvo::net::Addr peer;
        std::unique_ptr<orvo::net::TCPSocket> accepted(
            static_cast<orvo::net::TCPSocket*>(socket.accept(peer)));
        bound_waits(accepted->getFD());
        return accepted;
    }
    orvo::net::TCPSocket socket;
};

/// A CommUnit connected to a server the test controls byte by byte.
class ServedCommUnit : public NoDescriptorLeak {
protected:
    void SetUp() override {
        NoDescriptorLeak::SetUp();
        listener = std::make_unique<Listener>();
        unit = std::make_unique<orvo::net::CommUnit>();
        ASSERT_TRUE(unit->configure_run("127.0.0.1", listener->address().getPort(), 7));
        server = listener->accept();
    }
    void TearDown() override {
        server.reset();
        unit.reset();
        listener.reset();
        NoDescriptorLeak::TearDown();
    }

    /// Sends `bytes` whole from the server and waits (bounded) until the unit can read.
    void serve(const std::string& bytes) {
        for (std::size_t sent = 0; sent < bytes.size();) {
            const int n =
                server->send(bytes.data() + sent, static_cast<unsigned int>(bytes.size() - sent));
            ASSERT_GT(n, 0) << "the unit stopped taking data";
            sent += static_cast<std::size_t>(n);
        }
        ASSERT_TRUE(readable(unit_fd()));
    }

    int unit_fd() { return unit->get_socket().getFD(); }

    /// The server goes away without a goodbye: the unit's side sees a reset.
    void reset_connection() {
        const linger abort_on_close{1, 0};
        ASSERT_EQ(setsockopt(server->getFD(), SOL_SOCKET, SO_LINGER, &abort_on_close,
                             sizeof abort_on_close),
                  0);
        server.reset();
        ASSERT_TRUE(readable(unit_fd()));
    }

    std::unique_ptr<Listener> listener;
    std::unique_ptr<orvo::net::CommUnit> unit;
    std::unique_ptr<orvo::net::TCPSocket> server;
};

} // namespace orvo_test

#endif
