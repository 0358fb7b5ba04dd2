// The retry rules of checked sends and receives, proven on calls that a real
// signal interrupts: the handler is installed without SA_RESTART, so a blocked
// call comes back with EINTR, and a per-thread timer keeps interrupting it.
#include <orvo/net/frame_reader.h>
#include <orvo/net/tcp_socket.h>
#include <orvo/net/udp_socket.h>

#include <support/loopback.h>

#include <gtest/gtest.h>

#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

using orvo::net::Addr;
using orvo::net::Socket;
using orvo::net::UDPSocket;

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
    if (++interruptions >= 3) {
        if (wake_fd >= 0) {
            sendto(wake_fd, "w", 1, 0, reinterpret_cast<const sockaddr*>(&wake_to), sizeof wake_to);
        }
        while (drain_fd >= 0 && read(drain_fd, sink, sizeof sink) > 0) {
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
        wake_fd = drain_fd = -1;
    }
    Interrupter(const Interrupter&) = delete;
    Interrupter& operator=(const Interrupter&) = delete;

private:
    struct sigaction previous {};
    timer_t timer{};
};

/// A connection whose client side has a full send buffer, so a blocking send waits.
struct FullPair : orvo_test::TcpPair {
    FullPair() {
        const int small = 4096;
        setsockopt(client->getFD(), SOL_SOCKET, SO_SNDBUF, &small, sizeof small);
        setsockopt(server->getFD(), SOL_SOCKET, SO_RCVBUF, &small, sizeof small);
        client->setNonBlocking(true);
        static const char chunk[4096] = {};
        for (int rounds = 0; rounds < 10000; ++rounds) {
            if (client->send(chunk, sizeof chunk, 0, Socket::DONT_CHECK) <= 0) {
                break;
            }
        }
        EXPECT_EQ(errno, EAGAIN);
        client->setNonBlocking(false);
    }
};

using InterruptTest = orvo_test::NoDescriptorLeak;

} // namespace

TEST_F(InterruptTest, UncheckedCallsReturnEintr) {
    UDPSocket socket(Addr(0, orvo_test::loopback));
    orvo_test::bound_waits(socket.getFD());
    FullPair pair;
    char buffer[4];
    Addr from;
    Interrupter interrupter;
    for (int call = 0; call < 3; ++call) {
        errno = 0;
        const int result = call == 0 ? socket.recv(buffer, sizeof buffer, 0, Socket::DONT_CHECK)
                           : call == 1
                               ? socket.recv(buffer, sizeof buffer, from, 0, Socket::DONT_CHECK)
                               : pair.client->send("x", 1, 0, Socket::DONT_CHECK);
        EXPECT_EQ(result, -1) << "call " << call;
        EXPECT_EQ(errno, EINTR) << "call " << call;
    }
}

// Only the third interruption ends the wait: the checked call outlived two.
TEST_F(InterruptTest, CheckedCallsRepeatInterruptedCalls) {
    UDPSocket socket(Addr(0, orvo_test::loopback));
    UDPSocket waker;
    orvo_test::bound_waits(socket.getFD());
    char buffer[4];
    for (int overload = 0; overload < 2; ++overload) {
        wake_to = socket.getName().getAddr();
        Interrupter interrupter;
        wake_fd = waker.getFD();
        Addr from;
        EXPECT_EQ(overload == 0 ? socket.recv(buffer, sizeof buffer, 0, Socket::CHECK)
                                : socket.recv(buffer, sizeof buffer, from, 0),
                  1);
        EXPECT_GE(interruptions, 3);
        EXPECT_EQ(from.getPort(), overload == 0 ? 0 : waker.getName().getPort());
    }

    FullPair pair;
    pair.server->setNonBlocking(true);
    Interrupter interrupter;
    drain_fd = pair.server->getFD();
    EXPECT_EQ(pair.client->send("x", 1, 0, Socket::CHECK), 1);
    EXPECT_GE(interruptions, 3);
}

TEST_F(InterruptTest, CheckedSendRepeatsWhileTheBufferIsFull) {
    FullPair pair;
    pair.client->setNonBlocking(true);
    errno = 0;
    ASSERT_EQ(pair.client->send("x", 1, 0, Socket::DONT_CHECK), -1);
    ASSERT_EQ(errno, EAGAIN);
    std::thread reader([fd = pair.server->getFD()] {
        static char drained[65536];
        // Late enough that the send below has met the full buffer first.
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        while (orvo_test::readable(fd, 300) && read(fd, drained, sizeof drained) > 0) {
        }
    });
    EXPECT_EQ(pair.client->send("x", 1, 0, Socket::CHECK), 1);
    reader.join();
}

TEST_F(InterruptTest, FrameReaderWaitOutlivesInterruptions) {
    orvo_test::TcpPair pair;
    orvo::net::FrameReader reader;
    std::string payload;
    Interrupter interrupter;
    EXPECT_EQ(reader.read(pair.client->getFD(), payload, std::chrono::milliseconds(200)),
              orvo::net::Received::timed_out);
    EXPECT_GE(interruptions, 3);
}
