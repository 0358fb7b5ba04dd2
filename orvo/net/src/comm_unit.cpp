#include <orvo/net/comm_unit.h>
#include <orvo/protocol/framing.h>

#include <poll.h>
#include <sys/select.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>

namespace orvo::net {

namespace {

constexpr std::size_t receive_size = 16384;
constexpr std::size_t prefix_size = protocol::length_prefix_size;

// Shared by every CommUnit: receiving is single-threaded by contract, and a
// returned message is copied out before the next call.
char receive_buffer[receive_size];
char* const receive_end = receive_buffer + receive_size;
// Whether the payload area still holds the last message handed out. A frame
// dropped as incomplete overwrites it, and a failed read must not bring that
// fragment back as if it were a message.
bool buffer_holds_message = false;

/// The payload text from the start of the buffer's payload up to the first
/// NUL, never past `end`.
std::string payload_text(const char* end) {
    const char* payload = receive_buffer + prefix_size;
    return std::string(payload, strnlen(payload, static_cast<std::size_t>(end - payload)));
}

bool nothing_readable() {
    return errno == EAGAIN || errno == EWOULDBLOCK;
}

} // namespace

CommUnit::CommUnit() : stream_buffer(&socket, 8192, true), input(&stream_buffer) {}

CommUnit::~CommUnit() = default;

void CommUnit::link(Class_Map&) {}

void CommUnit::init() {}

void CommUnit::finalize() {
    if (connected) {
        socket.close();
        connected = false;
    }
}

std::string CommUnit::get_name() const {
    return "communit";
}

bool CommUnit::configure_run(const std::string& host, unsigned int port, unsigned int value) {
    this->host = host;
    this->port = port;
    run_value = value;
    connected = open_connection(host, port);
    return connected;
}

bool CommUnit::open_connection(const std::string& host, unsigned int port) {
    if (!socket.isOpen()) {
        return false; // descriptor 0 is not ours to bind, whatever it is
    }
    try {
        socket.bind(Addr(0, Addr::ANY));
    } catch (const BindErr&) {
        socket.close();
        return false;
    }
    const Addr server(static_cast<unsigned short>(port), host);
    try {
        socket.connect(server);
    } catch (const ConnectErr&) {
        socket.close();
        return false;
    }
    return true;
}

void CommUnit::write_message(const std::string& msg) {
    // Without a descriptor, number 0 would be standard input.
    if (msg.empty() || !socket.isOpen() || msg.size() > UINT32_MAX - prefix_size) {
        return;
    }
    const std::string frame = protocol::frame(msg);
    // One call for the whole frame, as a plain write would make; the flag keeps
    // a server that went away from killing the agent with SIGPIPE.
    const ssize_t ignored = ::send(socket.getFD(), frame.data(), frame.size(), MSG_NOSIGNAL);
    static_cast<void>(ignored);
}

bool CommUnit::SelectInput(bool block) {
    if (!socket.isOpen()) {
        return false;
    }
    const int fd = socket.getFD();
    if (fd >= FD_SETSIZE) {
        // select() cannot hold this descriptor; poll() answers the same question.
        pollfd entry{fd, POLLIN, 0};
        return poll(&entry, 1, block ? -1 : 0) > 0;
    }
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(fd, &readable);
    timeval poll_only{0, 0};
    return select(fd + 1, &readable, nullptr, nullptr, block ? nullptr : &poll_only) > 0;
}

std::string CommUnit::get_message() {
    if (!socket.isOpen()) {
        return "";
    }
    const int fd = socket.getFD();
    // "Is anything readable, then read it" in one call: a read that must not
    // wait answers both, at half the system calls of a poll and a read.
    const ssize_t first = ::recv(fd, receive_buffer, receive_size, MSG_DONTWAIT);
    if (first < 0 && nothing_readable()) {
        return "";
    }
    if (first < 0) {
        // Not told apart from data: the previous message comes again.
        return buffer_holds_message ? payload_text(receive_end) : std::string();
    }
    if (static_cast<std::size_t>(first) < prefix_size) {
        return ""; // closed, or the prefix is incomplete: those bytes are lost
    }
    if (static_cast<std::size_t>(first) > prefix_size) {
        buffer_holds_message = false;
    }

    const std::uint32_t length = protocol::read_length(receive_buffer);
    std::size_t have = static_cast<std::size_t>(first) - prefix_size;
    char* position = receive_buffer + first;
    while (length > have) {
        // The position advances by the running payload count, not by the
        // bytes of the last read; peers rely on what that keeps. Reads stop at
        // the buffer's end, whatever the length prefix announces.
        if (position >= receive_end) {
            // The buffer is full: what is still readable stays unread; with
            // nothing readable the frame is incomplete and dropped as usual.
            char next;
            if (::recv(fd, &next, 1, MSG_PEEK | MSG_DONTWAIT) <= 0) {
                return "";
            }
            break;
        }
        const std::size_t room = std::min<std::size_t>(
            receive_size - have, static_cast<std::size_t>(receive_end - position));
        buffer_holds_message = false;
        const ssize_t more = ::recv(fd, position, room, MSG_DONTWAIT);
        if (more <= 0) {
            // Nothing more readable now, or the connection ended inside the
            // frame: the partial frame is dropped.
            return "";
        }
        have += static_cast<std::size_t>(more);
        position += std::min<std::size_t>(have, static_cast<std::size_t>(receive_end - position));
    }
    if (position < receive_end) {
        *position = '\0';
    }
    buffer_holds_message = true;
    return payload_text(position);
}

Received CommUnit::receive_message(std::string& payload, std::chrono::milliseconds wait) {
    if (!socket.isOpen()) {
        return Received::closed;
    }
    try {
        return reader.read(socket.getFD(), payload, wait);
    } catch (const FrameTooLarge&) {
        close_connection();
        throw;
    }
}

void CommUnit::close_connection() {
    socket.close();
}

} // namespace orvo::net

ORVO_COMPONENT_FACTORY(communit, orvo::net::CommUnit)
