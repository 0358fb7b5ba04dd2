// The retry rules of checked sends and receives, proven on calls that a real
// signal interrupts: the handler is installed without SA_RESTART, so a blocked
// call comes back with EINTR, and a per-thread timer keeps interrupting it.
#include "loopback.h"

#include <orvo/net/tcp_socket.h>
#include <orvo/net/udp_socket.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

using orvo::net::Addr;
using orvo::net::Socket;
using orvo::net::UDPSocket;
using orvo_test::loopback;

namespace {

volatile sig_atomic_t interruptions = 0;
// From the third interruption on, the handler ends the wait: it sends a
// datagram from wake_fd to wake_to, or drains drain_fd. -1 disables.
int wake_fd = -1;
sockaddr_in wake_to{};
int drain_fd = -1;
char sink[65536];

void on_alarm(int) {
    const int saved = errno;
    ++interruptions;
    if (interruptions >= 3) {
        if (wake_fd >= 0) {
            sendto(wake_fd, "w", 1, 0, reinterpret_cast<const sockaddr*>(&wake_to), sizeof wake_to);
        }
        if (drain_fd >= 0) {
            while (read(drain_fd, sink, sizeof sink) > 0) {
            }
        }
    }
    errno = saved;
}

/// SIGALRM every 20 ms to the calling thread for the object's lifetime.
class Interrupter {
public:
    Interrupter() {
        interruptions = 0;
        struct sigaction action {};
        action.sa_handler = on_alarm;
        sigemptyset(&action.sa_mask);
        action.sa_flags = 0; // no SA_RESTART: blocked calls return EINTR
        EXPECT_EQ(sigaction(SIGALRM, &action, &previous), 0);

        sigevent event{};
        event.sigev_notify = SIGEV_THREAD_ID;
        event.sigev_signo = SIGALRM;
        event._sigev_un._tid = gettid();
        EXPECT_EQ(timer_create(CLOCK_MONOTONIC, &event, &timer), 0);
        const itimerspec every{{0, 20'000'000}, {0, 20'000'000}};
        EXPECT_EQ(timer_settime(timer, 0, &every, nullptr), 0);
    }
    ~Interrupter() {
        timer_delete(timer);
        sigaction(SIGALRM, &previous, nullptr);
        wake_fd = -1;
        drain_fd = -1;
    }
    Interrupter(const Interrupter&) = delete;
    Interrupter& operator=(const Interrupter&) = delete;

private:
    struct sigaction previous {};
    timer_t timer{};
};

using InterruptTest = orvo_test::NoDescriptorLeak;

/// Queues data on `pair.client` until its send buffer is full, so that a
/// blocking send waits.
void fill(orvo_test::TcpPair& pair) {
    const int small = 4096;
    setsockopt(pair.client->getFD(), SOL_SOCKET, SO_SNDBUF, &small, sizeof small);
    setsockopt(pair.server->getFD(), SOL_SOCKET, SO_RCVBUF, &small, sizeof small);
    pair.client->setNonBlocking(true);
    static const char chunk[4096] = {};
    int rounds = 0;
    while (pair.client->send(chunk, sizeof chunk, 0, Socket::DONT_CHECK) > 0 && ++rounds < 10000) {
    }
    ASSERT_EQ(errno, EAGAIN);
    pair.client->setNonBlocking(false);
}

} // namespace

TEST_F(InterruptTest, UncheckedReceiveReturnsEintr) {
    UDPSocket socket(Addr(0, loopback));
    orvo_test::bound_waits(socket.getFD());
    char buffer[4];
    Addr from;
    Interrupter interrupter;
    errno = 0;
    EXPECT_EQ(socket.recv(buffer, sizeof buffer, 0, Socket::DONT_CHECK), -1);
    EXPECT_EQ(errno, EINTR);
    errno = 0;
    EXPECT_EQ(socket.recv(buffer, sizeof buffer, from, 0, Socket::DONT_CHECK), -1);
    EXPECT_EQ(errno, EINTR);
}

TEST_F(InterruptTest, CheckedReceiveRepeatsInterruptedCalls) {
    UDPSocket socket(Addr(0, loopback));
    UDPSocket waker;
    orvo_test::bound_waits(socket.getFD());
    char buffer[4];

    for (int overload = 0; overload < 2; ++overload) {
        wake_to = socket.getName().getAddr();
        Interrupter interrupter;
        wake_fd = waker.getFD();
        Addr from;
        const int received = overload == 0 ? socket.recv(buffer, sizeof buffer, 0, Socket::CHECK)
                                           : socket.recv(buffer, sizeof buffer, from, 0);
        EXPECT_EQ(received, 1) << "overload " << overload;
        // Only the third interruption sent data: the call outlived two of them.
        EXPECT_GE(interruptions, 3);
        if (overload == 1) {
            EXPECT_EQ(from.getPort(), waker.getName().getPort());
        }
    }
}

TEST_F(InterruptTest, UncheckedSendReturnsEintr) {
    orvo_test::TcpPair pair;
    fill(pair);
    Interrupter interrupter;
    errno = 0;
    EXPECT_EQ(pair.client->send("x", 1, 0, Socket::DONT_CHECK), -1);
    EXPECT_EQ(errno, EINTR);
}

TEST_F(InterruptTest, CheckedSendRepeatsInterruptedCalls) {
    orvo_test::TcpPair pair;
    fill(pair);
    pair.server->setNonBlocking(true);
    Interrupter interrupter;
    drain_fd = pair.server->getFD();
    EXPECT_EQ(pair.client->send("x", 1, 0, Socket::CHECK), 1);
    EXPECT_GE(interruptions, 3);
}

TEST_F(InterruptTest, CheckedSendRepeatsWhileTheBufferIsFull) {
    orvo_test::TcpPair pair;
    fill(pair);
    pair.client->setNonBlocking(true);
    errno = 0;
    ASSERT_EQ(pair.client->send("x", 1, 0, Socket::DONT_CHECK), -1);
    ASSERT_EQ(errno, EAGAIN);

    std::thread reader([fd = pair.server->getFD()] {
        static char drained[65536];
        // Late enough that the send below has met the full buffer first.
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        // Drains until the sender has been quiet for a while.
        while (orvo_test::readable(fd, 300) && read(fd, drained, sizeof drained) > 0) {
        }
    });
    EXPECT_EQ(pair.client->send("x", 1, 0, Socket::CHECK), 1);
    reader.join();
}
