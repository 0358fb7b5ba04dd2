#include "loopback.h"

#include <orvo/net/tcp_socket.h>
#include <orvo/net/udp_socket.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <string>

using orvo::net::Addr;
using orvo::net::Socket;
using orvo::net::TCPSocket;
using orvo::net::UDPSocket;
using orvo_test::loopback;

namespace {

using SocketTest = orvo_test::NoDescriptorLeak;

int int_option(int fd, int level, int option) {
    int value = -1;
    socklen_t len = sizeof value;
    EXPECT_EQ(getsockopt(fd, level, option, &value, &len), 0);
    return value;
}

} // namespace

TEST_F(SocketTest, TcpConnectAcceptAndTalkBothWays) {
    orvo_test::Listener listener;
    TCPSocket client(Addr(0, loopback), listener.address());
    EXPECT_TRUE(client.isOpen());
    EXPECT_TRUE(client.isConnected());

    Addr peer;
    const Addr seen_through_copy = peer;
    std::unique_ptr<Socket> server(listener.socket.accept(peer));
    EXPECT_TRUE(server->isConnected());
    // The peer is written into the shared body: copies see it.
    EXPECT_EQ(seen_through_copy, client.getName());
    EXPECT_EQ(seen_through_copy.getHostStr(), "127.0.0.1");
    EXPECT_EQ(server->getPeer(), client.getName());
    EXPECT_EQ(client.getDest(), listener.address());
    orvo_test::bound_waits(server->getFD());

    char buffer[16] = {};
    EXPECT_EQ(client.send("ping", 4, 0, Socket::CHECK), 4);
    EXPECT_EQ(server->recv(buffer, sizeof buffer, 0, Socket::CHECK), 4);
    EXPECT_EQ(std::string(buffer, 4), "ping");
    EXPECT_EQ(server->send("pong!", 5), 5);
    EXPECT_EQ(client.recv(buffer, sizeof buffer), 5);
    EXPECT_EQ(std::string(buffer, 5), "pong!");
}

TEST_F(SocketTest, AcceptKeepsTheCachedHostTextOfTheAddress) {
    orvo_test::Listener listener;
    TCPSocket client(Addr(0, loopback), listener.address());
    Addr peer(1, std::string("localhost"));
    std::unique_ptr<Socket> server(listener.socket.accept(peer));
    EXPECT_EQ(peer.getPort(), client.getName().getPort());
    EXPECT_EQ(peer.getHostStr(), "localhost");
}

TEST_F(SocketTest, UdpDatagramsCarryTheirSender) {
    UDPSocket receiver(Addr(0, loopback));
    UDPSocket sender(Addr(0, loopback));
    orvo_test::bound_waits(receiver.getFD());
    EXPECT_FALSE(receiver.isConnected());

    EXPECT_EQ(sender.send("hello", 5, receiver.getName()), 5);
    Addr from(9, 9u);
    const Addr old_body = from;
    char buffer[16];
    EXPECT_EQ(receiver.recv(buffer, sizeof buffer, from), 5);
    EXPECT_EQ(from, sender.getName());
    EXPECT_EQ(old_body, Addr(9, 9u)) << "from must stop sharing its old body";

    // A failing receive still replaces the address.
    receiver.setNonBlocking(true);
    Addr untouched(9, 9u);
    const Addr alias = untouched;
    EXPECT_EQ(receiver.recv(buffer, sizeof buffer, untouched), -1);
    EXPECT_EQ(errno, EAGAIN);
    EXPECT_NE(&alias.getAddr(), &untouched.getAddr());

    UDPSocket connected(Addr(0, loopback), receiver.getName());
    EXPECT_TRUE(connected.isConnected());
    EXPECT_EQ(connected.send("x", 1), 1);
    receiver.setNonBlocking(false);
    EXPECT_EQ(receiver.recv(buffer, sizeof buffer, from), 1);
    EXPECT_EQ(from, connected.getName());
}

TEST_F(SocketTest, LifecycleAndCloseOnExec) {
    TCPSocket socket;
    ASSERT_TRUE(socket.isOpen());
    EXPECT_GT(socket.getFD(), 0);
    EXPECT_FALSE(socket.isConnected());
    EXPECT_EQ(fcntl(socket.getFD(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);

    EXPECT_EQ(socket.setCloseOnExec(false), 0);
    EXPECT_EQ(fcntl(socket.getFD(), F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_EQ(socket.setCloseOnExec(true), 0);
    EXPECT_EQ(fcntl(socket.getFD(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);

    const int old_fd = socket.getFD();
    socket.open(); // replaces the descriptor, closing the old one
    EXPECT_TRUE(socket.isOpen());
    EXPECT_EQ(fcntl(socket.getFD(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    EXPECT_TRUE(socket.getFD() == old_fd || fcntl(old_fd, F_GETFD) == -1);

    socket.close();
    EXPECT_EQ(socket.getFD(), 0);
    EXPECT_FALSE(socket.isOpen());
    EXPECT_FALSE(socket.isConnected());
    socket.close();
    EXPECT_EQ(socket.getFD(), 0);
}

TEST_F(SocketTest, SetUpFailuresThrowTheirErrorClass) {
    TCPSocket closed;
    closed.close();
    // A closed socket works on descriptor 0 and does not reopen itself.
    try {
        closed.bind(Addr(0, loopback));
        FAIL() << "bind on a closed socket succeeded";
    } catch (const orvo::net::BindErr& error) {
        EXPECT_EQ(error.err(), ENOTSOCK);
        EXPECT_STREQ(error.what(), strerror(ENOTSOCK));
    }
    EXPECT_FALSE(closed.isOpen());

    UDPSocket udp;
    Addr peer;
    try {
        udp.accept(peer);
        FAIL() << "a datagram socket accepted";
    } catch (const orvo::net::AcceptErr& error) {
        EXPECT_EQ(error.err(), 95);
    }
    EXPECT_THROW(udp.getPeer(), orvo::net::GetNameErr);
    EXPECT_THROW(udp.listen(1), orvo::net::ListenErr);
}

TEST_F(SocketTest, FailingConstructorsCloseTheirDescriptor) {
    orvo_test::Listener listener;
    // The listener's port is taken: bind fails after open.
    EXPECT_THROW(TCPSocket{listener.address()}, orvo::net::BindErr);
    EXPECT_THROW(UDPSocket(Addr(0, loopback), Addr(1, std::string("no-such-host.invalid"))),
                 orvo::net::HostNotFound);

    // Nothing listens on a port that was just released: connect is refused.
    Addr refused;
    {
        TCPSocket reserved(Addr(0, loopback));
        refused = reserved.getName();
    }
    try {
        TCPSocket(Addr(0, loopback), refused);
        FAIL() << "connected to a closed port";
    } catch (const orvo::net::ConnectErr& error) {
        EXPECT_EQ(error.err(), ECONNREFUSED);
    }
    // The fixture checks that none of the failed sockets kept a descriptor.
}

TEST_F(SocketTest, OptionSettersMakeTheirSystemCalls) {
    UDPSocket socket;
    const int fd = socket.getFD();

    EXPECT_EQ(socket.setNonBlocking(true), 0);
    EXPECT_NE(fcntl(fd, F_GETFL) & O_NONBLOCK, 0);
    EXPECT_EQ(socket.setNonBlocking(false), 0);
    EXPECT_EQ(fcntl(fd, F_GETFL) & O_NONBLOCK, 0);

    EXPECT_EQ(socket.setAsync(true), 0);
    EXPECT_NE(fcntl(fd, F_GETFL) & O_ASYNC, 0);
    EXPECT_EQ(socket.setAsync(false), 0);
    EXPECT_EQ(fcntl(fd, F_GETFL) & O_ASYNC, 0);

    EXPECT_EQ(socket.setBroadcast(true), 0);
    EXPECT_EQ(int_option(fd, SOL_SOCKET, SO_BROADCAST), 1);
    EXPECT_EQ(socket.setBroadcast(false), 0);
    EXPECT_EQ(int_option(fd, SOL_SOCKET, SO_BROADCAST), 0);

    EXPECT_EQ(socket.setReuseAddress(true), 0);
    EXPECT_EQ(int_option(fd, SOL_SOCKET, SO_REUSEADDR), 1);

    EXPECT_EQ(socket.setMulticastTTL(7), 0);
    unsigned char ttl = 0;
    socklen_t len = sizeof ttl;
    ASSERT_EQ(getsockopt(fd, IPPROTO_IP, IP_MULTICAST_TTL, &ttl, &len), 0);
    EXPECT_EQ(ttl, 7);
}

TEST_F(SocketTest, UnsupportedOperationsReportEperm) {
    UDPSocket socket(Addr(0, loopback));
    const int fd = socket.getFD();
    char buffer[4];
    Addr from;

    errno = 0;
    EXPECT_EQ(socket.joinMulticastGroup("239.0.0.1"), -1);
    EXPECT_EQ(errno, EPERM);
    errno = 0;
    EXPECT_EQ(socket.leaveMulticastGroup("239.0.0.1"), -1);
    EXPECT_EQ(errno, EPERM);
    errno = 0;
    EXPECT_EQ(socket.recv(100, buffer, sizeof buffer, 0), -1);
    EXPECT_EQ(errno, EPERM);
    errno = 0;
    EXPECT_EQ(socket.recv(100, buffer, sizeof buffer, from, 0), -1);
    EXPECT_EQ(errno, EPERM);
    EXPECT_EQ(socket.getFD(), fd);
}

TEST_F(SocketTest, CheckedReceiveDoesNotRetryWouldBlock) {
    UDPSocket socket(Addr(0, loopback));
    socket.setNonBlocking(true);
    char buffer[4];
    errno = 0;
    EXPECT_EQ(socket.recv(buffer, sizeof buffer, 0, Socket::CHECK), -1);
    EXPECT_EQ(errno, EAGAIN);
}

TEST_F(SocketTest, SendToAPeerThatWentAwayReturnsEpipeInsteadOfSignalling) {
    orvo_test::TcpPair pair;
    pair.server->close();
    // The first send draws a reset; later ones fail with EPIPE. Without the
    // no-signal flag the process would die of SIGPIPE here.
    const std::string data(1024, 'x');
    int result = 0;
    for (int attempt = 0; attempt < 100 && result >= 0; ++attempt) {
        result = pair.client->send(data.data(), data.size(), 0, Socket::DONT_CHECK);
        if (result >= 0) {
            orvo_test::readable(pair.client->getFD(), 10);
        }
    }
    EXPECT_EQ(result, -1);
    EXPECT_TRUE(errno == EPIPE || errno == ECONNRESET) << errno;
}
