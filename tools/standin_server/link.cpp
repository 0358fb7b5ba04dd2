#include "link.h"

#include <orvo/protocol/framing.h>

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace standin {

namespace {
// A peer that stopped reading is let go once this much waits for it.
constexpr std::size_t max_backlog = 1u << 20;
} // namespace

std::runtime_error system_error(const std::string& what) {
    return std::runtime_error(what + ": " + std::strerror(errno));
}

int open_loopback(int type, unsigned& port) {
    if (port > 65535) {
        throw std::runtime_error("port out of range (0-65535): " + std::to_string(port));
    }
    const int fd = socket(AF_INET, type | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (fd < 0) {
        throw system_error("socket");
    }
    const int yes = 1;
    setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) < 0 ||
        getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size) < 0 ||
        (type == SOCK_STREAM && listen(fd, 64) < 0)) {
        const auto error = system_error("cannot listen on 127.0.0.1:" + std::to_string(port));
        ::close(fd);
        throw error;
    }
    port = ntohs(address.sin_port);
    return fd;
}

void Link::receive(const std::function<void(std::string_view)>& on_frame) {
    char buffer[65536];
    for (;;) {
        const ssize_t n = recv(fd_, buffer, sizeof buffer, 0);
        if (n == 0 || (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)) {
            close();
            break;
        }
        if (n < 0) {
            break;
        }
        input.append(buffer, static_cast<std::size_t>(n));
        // Agents write each command as a frame of its own; acknowledging at
        // once keeps their small writes from waiting for a delayed ACK.
        const int yes = 1;
        setsockopt(fd_, IPPROTO_TCP, TCP_QUICKACK, &yes, sizeof yes);
        if (static_cast<std::size_t>(n) < sizeof buffer) {
            break;
        }
    }
    // Frames that arrived before the peer closed still count.
    std::size_t at = 0;
    constexpr std::size_t prefix = orvo::protocol::length_prefix_size;
    while (input.size() - at >= prefix) {
        const std::uint32_t length = orvo::protocol::read_length(input.data() + at);
        if (length > orvo::protocol::max_frame_size) {
            close();
            input.clear();
            return;
        }
        if (input.size() - at - prefix < length) {
            break;
        }
        received += prefix + length;
        on_frame(std::string_view(input).substr(at + prefix, length));
        at += prefix + length;
    }
    input.erase(0, at);
}

void Link::send(std::string_view bytes) {
    if (closed()) {
        return;
    }
    if (output.size() > max_backlog) {
        close();
        return;
    }
    output += bytes;
    flush();
}

void Link::flush() {
    while (!closed() && !output.empty()) {
        const ssize_t n = ::send(fd_, output.data(), output.size(), MSG_NOSIGNAL);
        if (n < 0) {
            if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) {
                close();
            }
            return;
        }
        output.erase(0, static_cast<std::size_t>(n));
    }
}

void Link::close() {
    if (fd_ >= 0) {
        ::close(fd_);
        fd_ = -1;
        output.clear();
    }
}

} // namespace standin
