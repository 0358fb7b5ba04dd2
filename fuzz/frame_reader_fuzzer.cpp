// Feeds the lossless receive path random frame sequences cut at random points
// and checks that the frames out are the frames in.
//
// The reader reads from one end of a local SOCK_SEQPACKET pair: every piece
// the fuzzer writes at the other end comes out of exactly one recv(), so the
// cuts decide where each read ends. A piece is at most FrameReader::min_room
// bytes, the room the reader promises every read; a reader that offered less
// would lose the piece's tail and fail the comparison.
//
// Input: a 2-byte limit (big-endian), then commands, one byte each, followed
// by their operands.
//   'p' n:u16 bytes[n]   append a frame whose payload is taken from the input
//   'f' n:u16 b          append a frame of n bytes b
//   'o' n:u32            append a length prefix above the limit (limit + 1 + n)
//   'h' n:u16            append a frame of n bytes 'h' without its last byte;
//                        nothing is appended after it
//   'c' n:u16            cut the stream n + 1 bytes after the previous cut
//   'r'                  read everything readable after the piece that ends
//                        at the latest cut
// Anything else is skipped. After the last piece the reader reads what is
// readable, the peer ends the stream, and the reader reads to the end.
//
// Findings besides crashes, sanitizer reports and hangs: a frame out that
// differs from the frame in at its position, a frame missing at the end, a
// missing or misplaced FrameTooLarge, and a result other than closed once the
// stream has ended.
#include <orvo/net/frame_reader.h>
#include <orvo/protocol/framing.h>

#include "fuzz_input.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

using orvo::net::FrameReader;
using orvo::net::FrameTooLarge;
using orvo::net::Received;

using fuzz::broken_harness;
using fuzz::Input;

namespace {

[[noreturn]] void finding(const char* what) {
    fuzz::finding("frame reader", what);
}

std::string prefix(std::uint32_t length) {
    std::string bytes(orvo::protocol::length_prefix_size, '\0');
    orvo::protocol::write_length(length, bytes.data());
    return bytes;
}

/// The byte stream a peer sends and what a correct reader makes of it.
struct Stream {
    /// Longer streams add nothing but time: a few reads' worth is enough.
    static constexpr std::size_t max_size = 1u << 16;

    std::uint32_t limit = 0;
    std::string bytes;
    std::vector<std::string> frames; ///< payloads expected, in order
    bool oversize = false;           ///< the frames end in a prefix above the limit
    std::uint32_t announced = 0;     ///< that prefix
    bool truncated = false;          ///< a partial frame ends the stream

    void append(const std::string& payload) {
        if (truncated || bytes.size() >= max_size) {
            return;
        }
        bytes += prefix(static_cast<std::uint32_t>(payload.size())) + payload;
        if (oversize) {
            return; // beyond the error: never read
        }
        if (payload.size() > limit) {
            over(static_cast<std::uint32_t>(payload.size()));
        } else {
            frames.push_back(payload);
        }
    }
    void append_oversize(std::uint32_t extra) {
        const std::uint32_t length =
            limit + 1 + std::min<std::uint32_t>(extra, UINT32_MAX - limit - 1);
        if (!truncated && bytes.size() < max_size) {
            bytes += prefix(length);
            if (!oversize) {
                over(length);
            }
        }
    }
    void append_partial(std::uint32_t length) {
        if (truncated || length == 0 || bytes.size() >= max_size) {
            return;
        }
        bytes += prefix(length) + std::string(length - 1, 'h');
        if (!oversize && length > limit) {
            over(length);
        }
        truncated = true;
    }

private:
    void over(std::uint32_t length) {
        oversize = true;
        announced = length;
    }
};

class Session {
public:
    explicit Session(const Stream& stream) : stream(stream), reader(stream.limit) {
        int pair[2];
        if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, pair) != 0) {
            broken_harness("socketpair");
        }
        agent = pair[0];
        peer = pair[1];
    }
    ~Session() {
        close(agent);
        close(peer);
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    bool failed() const { return error_seen; }

    void write(const char* piece, std::size_t size) {
        for (int attempt = 0; attempt < 64 && !error_seen; ++attempt) {
            if (send(peer, piece, size, MSG_DONTWAIT | MSG_NOSIGNAL) >= 0) {
                return;
            }
            if (errno != EAGAIN && errno != EWOULDBLOCK) {
                broken_harness("send");
            }
            drain(); // the queue is full: the agent reads before we write on
        }
    }

    /// Reads until nothing whole is left; the result that ended it.
    Received drain() {
        for (;;) {
            Received result;
            try {
                result = reader.read(agent, payload, std::chrono::milliseconds(0));
            } catch (const FrameTooLarge& error) {
                if (!stream.oversize || next != stream.frames.size() || error_seen) {
                    finding("FrameTooLarge where no oversize prefix is due");
                }
                if (error.announced() != stream.announced || error.limit() != stream.limit) {
                    finding("FrameTooLarge names the wrong lengths");
                }
                error_seen = true;
                return Received::closed;
            }
            if (result != Received::message) {
                return result;
            }
            if (next >= stream.frames.size()) {
                finding("a frame out that was never sent, or past an oversize prefix");
            }
            if (payload != stream.frames[next]) {
                finding("a frame out differs from the frame in");
            }
            ++next;
        }
    }

    void finish() {
        const Received before_end = drain();
        if (stream.oversize != error_seen) {
            finding(error_seen ? "spurious FrameTooLarge" : "oversize prefix not reported");
        }
        if (error_seen) {
            if (reader.read(agent, payload, std::chrono::milliseconds(0)) != Received::closed) {
                finding("the reader goes on after FrameTooLarge");
            }
            return;
        }
        if (before_end != Received::timed_out || next != stream.frames.size()) {
            finding("whole frames left unread");
        }
        if (shutdown(peer, SHUT_WR) != 0) {
            broken_harness("shutdown");
        }
        if (drain() != Received::closed || next != stream.frames.size() ||
            reader.read(agent, payload, std::chrono::milliseconds(0)) != Received::closed) {
            finding("end of stream not reported as closed");
        }
    }

private:
    const Stream& stream;
    FrameReader reader;
    std::string payload;
    std::size_t next = 0; ///< index of the next frame expected
    bool error_seen = false;
    int agent = -1;
    int peer = -1;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    Stream stream;
    stream.limit = input.number(2);
    std::vector<std::size_t> cuts;
    std::set<std::size_t> read_after; // cut positions followed by a read
    std::size_t last_cut = 0;
    while (!input.done()) {
        switch (input.byte()) {
        case 'p':
            stream.append(input.bytes(input.number(2)));
            break;
        case 'f': {
            const std::uint32_t count = input.number(2);
            stream.append(std::string(count, static_cast<char>(input.byte())));
            break;
        }
        case 'o':
            stream.append_oversize(input.number(4));
            break;
        case 'h':
            stream.append_partial(input.number(2));
            break;
        case 'c':
            last_cut += input.number(2) + 1;
            cuts.push_back(last_cut);
            break;
        case 'r':
            read_after.insert(last_cut);
            break;
        default:
            break;
        }
    }

    Session session(stream);
    std::size_t from = 0;
    cuts.push_back(stream.bytes.size());
    for (const std::size_t cut : cuts) {
        const std::size_t to = std::min(cut, stream.bytes.size());
        // Longer pieces go as several, each within the room of one read.
        for (; from < to && !session.failed(); from += FrameReader::min_room) {
            session.write(&stream.bytes[from], std::min(to - from, FrameReader::min_room));
        }
        from = to;
        if (read_after.count(cut) != 0 && !session.failed()) {
            session.drain();
        }
    }
    session.finish();
    return 0;
}
