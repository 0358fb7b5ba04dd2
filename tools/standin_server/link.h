#ifndef ORVO_STANDIN_LINK_H
#define ORVO_STANDIN_LINK_H

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace standin {

/// std::runtime_error naming `what` and the current errno.
std::runtime_error system_error(const std::string& what);

/// A non-blocking socket of `type` (SOCK_STREAM listening, or SOCK_DGRAM)
/// bound to 127.0.0.1:`port` (0: any free one); `port` becomes the bound one.
int open_loopback(int type, unsigned& port);

/// One non-blocking TCP connection speaking 4-byte big-endian framed
/// messages: whatever a read brings is kept until its frames are whole, and
/// writes that the peer cannot take yet wait in an output buffer.
class Link {
public:
    explicit Link(int fd) : fd_(fd) {}
    ~Link() { close(); }
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

    int fd() const { return fd_; }
    bool closed() const { return fd_ < 0; }
    bool wants_to_write() const { return !output.empty(); }
    /// Bytes of whole frames received so far, prefixes included.
    std::uint64_t bytes_received() const { return received; }

    /// Reads what has arrived and hands every whole frame's payload to
    /// `on_frame`; closes on end of stream, on an error and on an oversize frame.
    void receive(const std::function<void(std::string_view)>& on_frame);
    /// Queues `bytes` (whole frames, prefixes included) and writes as much as
    /// the peer takes, all of it in one write when it can.
    void send(std::string_view bytes);
    void flush();
    void close();

private:
    int fd_;
    std::string input;
    std::string output;
    std::uint64_t received = 0;
};

} // namespace standin

#endif
