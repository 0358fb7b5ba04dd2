#ifndef ORVO_TESTS_HARDENING_FAULTY_SERVER_H
#define ORVO_TESTS_HARDENING_FAULTY_SERVER_H

#include <orvo/net/comm_unit.h>

#include <net/loopback.h>

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <memory>
#include <string>

namespace orvo_test {

inline std::string frame(const std::string& payload, std::uint32_t length) {
    std::string bytes(4, '\0');
    for (int i = 0; i < 4; ++i) {
        bytes[i] = static_cast<char>(length >> (8 * (3 - i)));
    }
    return bytes + payload;
}

inline std::string frame(const std::string& payload) {
    return frame(payload, static_cast<std::uint32_t>(payload.size()));
}

/// Stops the test program when a test hangs, long before the suite's own
/// time limit: the receive path must never wait for the server.
class Watchdog {
public:
    explicit Watchdog(unsigned int seconds) { alarm(seconds); }
    ~Watchdog() { alarm(0); }
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;
};

/// A CommUnit connected to a server that the test controls byte by byte.
class FaultyServerTest : public NoDescriptorLeak {
protected:
    void SetUp() override {
        NoDescriptorLeak::SetUp();
        listener = std::make_unique<Listener>();
        unit = std::make_unique<orvo::net::CommUnit>();
        ASSERT_TRUE(unit->configure_run("127.0.0.1", listener->address().getPort(), 0));
        orvo::net::Addr peer;
        server.reset(static_cast<orvo::net::TCPSocket*>(listener->socket.accept(peer)));
        bound_waits(server->getFD());
    }
    void TearDown() override {
        server.reset();
        unit.reset();
        listener.reset();
        NoDescriptorLeak::TearDown();
    }

    /// Sends `bytes` whole from the server (bounded by the socket's send time-out).
    void serve(const std::string& bytes) {
        std::size_t sent = 0;
        while (sent < bytes.size()) {
            const int n =
                server->send(bytes.data() + sent, static_cast<unsigned int>(bytes.size() - sent));
            ASSERT_GT(n, 0) << "the agent stopped taking data";
            sent += static_cast<std::size_t>(n);
        }
    }

    /// Waits (bounded) until the agent's side has something to read.
    void await_agent_input() { ASSERT_TRUE(readable(unit_fd())); }

    /// The server goes away without a goodbye: the agent's side sees a reset.
    void reset_connection() {
        const linger abort_on_close{1, 0};
        ASSERT_EQ(setsockopt(server->getFD(), SOL_SOCKET, SO_LINGER, &abort_on_close,
                             sizeof abort_on_close),
                  0);
        server.reset();
    }

    /// Whether the agent's side has reached the end of the stream (nothing
    /// left to read and the server gone).
    bool agent_input_ended() {
        char byte;
        return readable(unit_fd(), 0) && recv(unit_fd(), &byte, 1, MSG_PEEK | MSG_DONTWAIT) <= 0;
    }

    int unit_fd() { return unit->get_socket().getFD(); }

    Watchdog watchdog{30};
    std::unique_ptr<Listener> listener;
    std::unique_ptr<orvo::net::CommUnit> unit;
    std::unique_ptr<orvo::net::TCPSocket> server;
};

} // namespace orvo_test

#endif
