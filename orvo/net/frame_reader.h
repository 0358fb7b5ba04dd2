#ifndef ORVO_NET_FRAME_READER_H
#define ORVO_NET_FRAME_READER_H

#include <orvo/core/export.h>
#include <orvo/net/errors.h>
#include <orvo/protocol/framing.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace orvo::net {

/// What FrameReader::read found.
enum class Received {
    message,   ///< a whole frame; its payload may be empty (a frame of length 0)
    timed_out, ///< no whole frame arrived within the wait
    closed,    ///< the peer has gone and every whole frame was handed out
};

/// A peer announced a frame longer than the reader's limit. The stream cannot
/// be trusted past that prefix, so the connection is to be closed.
class ORVO_API FrameTooLarge : public SocketError {
public:
    FrameTooLarge(std::uint32_t announced, std::uint32_t limit);
    ~FrameTooLarge() override;

    std::uint32_t announced() const { return announced_length; }
    std::uint32_t limit() const { return limit_length; }
    /// Names the announced length and the limit.
    const char* what() const noexcept override;

private:
    std::uint32_t announced_length;
    std::uint32_t limit_length;
    char text[96];
};

/// Reads length-prefixed frames (4-byte big-endian payload length, then the
/// payload) from one connection without losing any: what a read brings beyond
/// the frame handed out, and a frame whose rest has not arrived yet, stay here
/// for the next call. Frames come out whole and in arrival order, wherever
/// the network split them. One reader per connection.
class ORVO_API FrameReader {
public:
    static constexpr std::uint32_t default_limit = protocol::max_frame_size;
    /// Every receive offers at least this many bytes of room, so a read never
    /// has to be cut short by the reader.
    static constexpr std::size_t min_room = 16384;

    explicit FrameReader(std::uint32_t limit = default_limit);
    ~FrameReader();
    FrameReader(const FrameReader&) = delete;
    FrameReader& operator=(const FrameReader&) = delete;

    /// Next whole frame from `fd` into `payload` (the whole payload, NULs
    /// included; its capacity is reused), waiting at most `wait` for it
    /// (0: take only what is readable now). `payload` changes only on
    /// Received::message. Received::closed once the peer closed (or reset)
    /// the connection and every whole frame was handed out; a partial frame
    /// at that point is discarded. Throws FrameTooLarge when the next frame
    /// announces more than limit() bytes; from then on the reader reports
    /// closed, and the caller closes the connection.
    Received read(int fd, std::string& payload, std::chrono::milliseconds wait);

    std::uint32_t limit() const { return max_payload; }
    /// Bytes received and not yet handed out.
    std::size_t buffered() const { return end - begin; }

private:
    /// Hands out the frame at `begin` if it is whole; throws if oversize.
    bool take_frame(std::string& payload);
    /// Room for at least `needed` more bytes behind `end`, and min_room.
    void make_room(std::size_t needed);

    std::uint32_t max_payload;
    std::unique_ptr<char[]> buffer;
    std::size_t capacity = 0;
    std::size_t begin = 0; ///< first unread byte
    std::size_t end = 0;   ///< one past the last received byte
    bool ended = false;    ///< the peer has gone; nothing more will arrive
};

} // namespace orvo::net

#endif
