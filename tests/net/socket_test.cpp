#include <orvo/net/tcp_socket.h>
#include <orvo/net/udp_socket.h>

#include <support/loopback.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>

#include <cerrno>
#include <string>

using orvo::net::Addr;
using orvo::net::Socket;
using orvo::net::TCPSocket;
using orvo::net::UDPSocket;
using orvo_test::loopback;

namespace {

using SocketTest = orvo_test::NoDescriptorLeak;

bool close_on_exec(const Socket& socket) {
    return (fcntl(socket.getFD(), F_GETFD) & FD_CLOEXEC) != 0;
}

} // namespace

TEST_F(SocketTest, TcpConnectAcceptAndTalkBothWays) {
    orvo_test::Listener listener;
    TCPSocket client(Addr(0, loopback), listener.address());
    EXPECT_TRUE(client.isConnected());

    Addr peer(1, std::string("localhost"));
    const Addr copy = peer;
    std::unique_ptr<Socket> server(listener.socket.accept(peer));
    EXPECT_TRUE(server->isConnected());
    // The peer lands in the shared body; the cached host text stays.
    EXPECT_EQ(copy, client.getName());
    EXPECT_EQ(copy.getHostStr(), "localhost");
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

TEST_F(SocketTest, LifecycleAndCloseOnExec) {
    UDPSocket socket;
    ASSERT_TRUE(socket.isOpen());
    EXPECT_FALSE(socket.isConnected());
    EXPECT_TRUE(close_on_exec(socket));
    // Switching off passes the complement of the flag, which still clears it.
    EXPECT_EQ(socket.setCloseOnExec(false), 0);
    EXPECT_FALSE(close_on_exec(socket));

    socket.open(); // a fresh descriptor replaces the old one
    EXPECT_TRUE(close_on_exec(socket));
    for (int twice = 0; twice < 2; ++twice) {
        socket.close();
        EXPECT_EQ(socket.getFD(), 0);
        EXPECT_FALSE(socket.isOpen());
    }
}

TEST_F(SocketTest, FailuresThrowTheirErrorClassAndKeepNoDescriptor) {
    // Failing constructors close what they opened (the fixture counts).
    orvo_test::Listener listener;
    EXPECT_THROW(TCPSocket{listener.address()}, orvo::net::BindErr);
    EXPECT_THROW(UDPSocket(Addr(0, loopback), Addr(1, std::string("no-such-host.invalid"))),
                 orvo::net::HostNotFound);
    try {
        TCPSocket(Addr(0, loopback), orvo_test::released_port());
        FAIL() << "connected to a closed port";
    } catch (const orvo::net::ConnectErr& error) {
        EXPECT_EQ(error.err(), ECONNREFUSED);
    }

    // Out of descriptors. The sanitizer runtime may need files when it first
    // meets a type: one socket of the same kind is made before the limit
    // falls, and the limit is lifted before anything else runs.
    { UDPSocket warm; }
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit none{0, limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    int error = 0;
    try {
        UDPSocket starved;
    } catch (const orvo::net::OpenErr& open_error) {
        setrlimit(RLIMIT_NOFILE, &limit);
        error = open_error.err();
    }
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_EQ(error, EMFILE);
}
