// Round trip of a framed 1 KB message through a loopback echo server: the
// CommUnit against a client that makes the same system calls by hand.
#include <orvo/net/comm_unit.h>
#include <orvo/protocol/framing.h>

#include <benchmark/benchmark.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

/// Echoes every whole frame back in one write, like a server answering at once.
class EchoServer {
public:
    EchoServer() {
        listener = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in addr{};
        addr.sin_family = AF_INET;
        addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t len = sizeof addr;
        if (bind(listener, reinterpret_cast<sockaddr*>(&addr), len) != 0 ||
            listen(listener, 1) != 0 ||
            getsockname(listener, reinterpret_cast<sockaddr*>(&addr), &len) != 0) {
            throw std::runtime_error("echo server");
        }
        port = ntohs(addr.sin_port);
        worker = std::thread([this] { serve(); });
    }
    ~EchoServer() {
        worker.join();
        close(listener);
    }

    unsigned short port = 0;

private:
    static bool read_all(int fd, char* to, std::size_t count) {
        while (count > 0) {
            const ssize_t n = read(fd, to, count);
            if (n <= 0) {
                return false;
            }
            to += n;
            count -= static_cast<std::size_t>(n);
        }
        return true;
    }

    void serve() {
        const int fd = accept(listener, nullptr, nullptr);
        const int on = 1;
        setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        static char frame[65536];
        while (read_all(fd, frame, 4)) {
            const std::uint32_t length = orvo::protocol::read_length(frame);
            if (length > sizeof frame - 4 || !read_all(fd, frame + 4, length)) {
                break;
            }
            if (write(fd, frame, 4 + length) != static_cast<ssize_t>(4 + length)) {
                break;
            }
        }
        close(fd);
    }

    int listener = -1;
    std::thread worker;
};

const std::string payload(1024, 'm');

void BM_CommUnitRoundTrip(benchmark::State& state) {
    EchoServer server;
    orvo::net::CommUnit unit;
    if (!unit.configure_run("127.0.0.1", server.port, 0)) {
        state.SkipWithError("no connection");
        return;
    }
    const int on = 1;
    setsockopt(unit.get_socket().getFD(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    for (auto _ : state) {
        unit.write_message(payload);
        std::string reply;
        while (reply.empty()) {
            unit.SelectInput(true);
            reply = unit.get_message();
        }
        benchmark::DoNotOptimize(reply);
    }
    unit.finalize();
}

/// The plain system calls: one write of prefix and payload, a blocking select,
/// a read into a static buffer and the payload copied out.
void BM_DirectRoundTrip(benchmark::State& state) {
    EchoServer server;
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_port = htons(server.port);
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0) {
        state.SkipWithError("no connection");
        return;
    }
    const int on = 1;
    setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    static char buffer[16384];
    for (auto _ : state) {
        const std::string frame = orvo::protocol::frame(payload);
        if (write(fd, frame.data(), frame.size()) != static_cast<ssize_t>(frame.size())) {
            state.SkipWithError("short write");
            break;
        }

        std::size_t have = 0;
        std::uint32_t expected = 0;
        while (have < 4 || have < 4 + expected) {
            fd_set readable;
            FD_ZERO(&readable);
            FD_SET(fd, &readable);
            select(fd + 1, &readable, nullptr, nullptr, nullptr);
            const ssize_t n = read(fd, buffer + have, sizeof buffer - have);
            if (n <= 0) {
                state.SkipWithError("connection lost");
                break;
            }
            have += static_cast<std::size_t>(n);
            if (have >= 4) {
                expected = orvo::protocol::read_length(buffer);
            }
        }
        std::string reply(buffer + 4, strnlen(buffer + 4, have - 4));
        benchmark::DoNotOptimize(reply);
    }
    close(fd);
}

} // namespace

BENCHMARK(BM_CommUnitRoundTrip)->UseRealTime();
BENCHMARK(BM_DirectRoundTrip)->UseRealTime();
BENCHMARK_MAIN();
