#ifndef ORVO_TESTS_NET_LOOPBACK_H
#define ORVO_TESTS_NET_LOOPBACK_H

#include <orvo/net/tcp_socket.h>

#include <support/open_fds.h>

#include <gtest/gtest.h>

#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <memory>

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

/// A listening socket on an ephemeral loopback port.
struct Listener {
    Listener() : socket(orvo::net::Addr(0, loopback)) {
        socket.listen(4);
        bound_waits(socket.getFD());
    }
    orvo::net::Addr address() const { return socket.getName(); }
    orvo::net::TCPSocket socket;
};

/// Both ends of one loopback TCP connection.
struct TcpPair {
    TcpPair() {
        client = std::make_unique<orvo::net::TCPSocket>(orvo::net::Addr(0, loopback),
                                                        listener.address());
        orvo::net::Addr peer;
        server.reset(static_cast<orvo::net::TCPSocket*>(listener.socket.accept(peer)));
        bound_waits(client->getFD());
        bound_waits(server->getFD());
    }
    Listener listener;
    std::unique_ptr<orvo::net::TCPSocket> client;
    std::unique_ptr<orvo::net::TCPSocket> server;
};

} // namespace orvo_test

#endif
