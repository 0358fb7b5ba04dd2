#include <orvo/net/frame_reader.h>
#include <orvo/protocol/framing.h>

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>

namespace orvo::net {

namespace {

constexpr std::size_t prefix_size = protocol::length_prefix_size;
// Several perceptions of a few kilobytes each: reads seldom need to compact.
constexpr std::size_t initial_capacity = 65536;

using Clock = std::chrono::steady_clock;

/// Waits until `fd` is readable or `deadline` has passed; false when it passed.
/// An interrupted wait goes on with the time that is left.
bool wait_readable(int fd, Clock::time_point deadline) {
    for (;;) {
        const auto left = deadline - Clock::now();
        if (left <= Clock::duration::zero()) {
            return false;
        }
        // Rounded up, so the wait never ends before the deadline and spins.
        const auto ms = std::chrono::ceil<std::chrono::milliseconds>(left).count();
        pollfd entry{fd, POLLIN, 0};
        const int ready = ::poll(&entry, 1, static_cast<int>(std::min<decltype(ms)>(ms, INT_MAX)));
        if (ready > 0) {
            return true; // readable, closed or failed: the next recv tells which
        }
        if (ready < 0 && errno != EINTR) {
            return false;
        }
    }
}

Clock::time_point deadline_after(std::chrono::milliseconds wait) {
    const auto now = Clock::now();
    // Saturates instead of overflowing for waits like milliseconds::max().
    if (wait >=
        std::chrono::duration_cast<std::chrono::milliseconds>(Clock::time_point::max() - now)) {
        return Clock::time_point::max();
    }
    return now + wait;
}

} // namespace

FrameTooLarge::FrameTooLarge(std::uint32_t announced, std::uint32_t limit)
    : SocketError(EMSGSIZE), announced_length(announced), limit_length(limit) {
    std::snprintf(text, sizeof text, "frame of %u bytes announced, the limit is %u bytes",
                  static_cast<unsigned>(announced), static_cast<unsigned>(limit));
}

FrameTooLarge::~FrameTooLarge() = default;

const char* FrameTooLarge::what() const noexcept {
    return text;
}

FrameReader::FrameReader(std::uint32_t limit) : max_payload(limit) {}

FrameReader::~FrameReader() = default;

Received FrameReader::read(int fd, std::string& payload, std::chrono::milliseconds wait) {
    bool waiting = false;
    Clock::time_point deadline;
    for (;;) {
        if (take_frame(payload)) {
            return Received::message;
        }
        if (ended) {
            begin = end = 0; // a partial frame will never be completed
            return Received::closed;
        }
        const std::size_t held = end - begin;
        make_room(held < prefix_size ? prefix_size - held
                                     : prefix_size + protocol::read_length(&buffer[begin]) - held);
        // Trying first costs nothing when data is there, which under load is
        // the common case; only an empty queue pays for the wait.
        const ssize_t got = ::recv(fd, &buffer[end], capacity - end, MSG_DONTWAIT);
        if (got > 0) {
            end += static_cast<std::size_t>(got);
            continue;
        }
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got == 0 || (errno != EAGAIN && errno != EWOULDBLOCK)) {
            // Closed or reset: nothing more will come, and the frames already
            // whole were handed out before this read.
            ended = true;
            continue;
        }
        if (wait <= std::chrono::milliseconds::zero()) {
            return Received::timed_out;
        }
        if (!waiting) {
            waiting = true;
            deadline = deadline_after(wait);
        }
        if (!wait_readable(fd, deadline)) {
            return Received::timed_out;
        }
    }
}

bool FrameReader::take_frame(std::string& payload) {
    const std::size_t held = end - begin;
    if (held < prefix_size) {
        return false;
    }
    const std::uint32_t length = protocol::read_length(&buffer[begin]);
    if (length > max_payload) {
        // Nothing after this prefix can be framed any more.
        ended = true;
        begin = end = 0;
        throw FrameTooLarge(length, max_payload);
    }
    if (held - prefix_size < length) {
        return false;
    }
    payload.assign(&buffer[begin + prefix_size], length);
    begin += prefix_size + length;
    if (begin == end) {
        begin = end = 0; // the usual case: no bytes to move
    }
    return true;
}

void FrameReader::make_room(std::size_t needed) {
    const std::size_t wanted = std::max(needed, min_room);
    if (capacity - end >= wanted) {
        return;
    }
    const std::size_t held = end - begin;
    if (capacity - held >= wanted) {
        std::memmove(&buffer[0], &buffer[begin], held);
    } else {
        const std::size_t grown = std::max({capacity * 2, held + wanted, initial_capacity});
        std::unique_ptr<char[]> larger(new char[grown]);
        if (held > 0) {
            std::memcpy(&larger[0], &buffer[begin], held);
        }
        buffer = std::move(larger);
        capacity = grown;
    }
    begin = 0;
    end = held;
}

} // namespace orvo::net
