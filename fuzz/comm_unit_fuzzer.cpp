// Drives the server connection's receive path with fuzzed byte streams cut
// into fuzzed pieces.
//
// The CommUnit's descriptor is replaced by one end of a local SOCK_SEQPACKET
// pair: every piece the fuzzer writes at the other end comes out of exactly one
// read(), so the pieces decide where each read of get_message() ends, also in
// the middle of its loop over a frame's remainder. The code under test is the
// same select()/read() path a TCP connection takes; the only difference is that
// a piece longer than a read's room loses its tail, which for get_message() is
// just a read that returned fewer bytes.
//
// Input: a sequence of commands, one byte each, followed by their operands.
//   'r'                   call get_message()
//   'p' n:u16 bytes[n]    write a piece of n bytes taken from the input
//   'f' len:u32 n:u16 b   write a piece: the length prefix len, then n bytes b
//   'z' n:u16 b           write a piece of n bytes b
//   'x'                   the peer stops writing (end of stream)
// Numbers are big-endian; anything else is skipped. At the end the peer closes
// and the agent reads until every piece is consumed.
//
// Findings besides crashes, sanitizer reports and hangs: a result longer than
// the buffer allows or holding a NUL, and a result that does not begin with the
// payload of the piece the call read first (the whole payload when that piece
// is one complete frame).
#include <orvo/net/comm_unit.h>
#include <orvo/protocol/framing.h>

#include "fuzz_input.h"

#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <deque>
#include <string>

using fuzz::broken_harness;
using fuzz::Input;

namespace {

constexpr std::size_t buffer_size = 16384;
constexpr std::size_t prefix_size = 4;

[[noreturn]] void finding(const char* what, const std::string& detail) {
    fuzz::finding("receive path", what + (" (" + std::to_string(detail.size()) + " bytes)"));
}

/// Whether a piece is waiting at `fd` (the end of the stream does not count).
bool piece_waiting(int fd) {
    int next_piece = 0;
    if (ioctl(fd, FIONREAD, &next_piece) != 0) {
        broken_harness("FIONREAD");
    }
    return next_piece > 0;
}

class Session {
public:
    Session() {
        int pair[2];
        if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, pair) != 0) {
            broken_harness("socketpair");
        }
        agent_fd = unit.get_socket().getFD();
        // The CommUnit keeps owning its descriptor number and closes it.
        if (dup2(pair[0], agent_fd) < 0) {
            broken_harness("dup2");
        }
        close(pair[0]);
        peer = pair[1];
    }
    ~Session() {
        if (peer >= 0) {
            close(peer);
        }
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void write(const std::string& piece) {
        // An empty piece would read as the end of the stream, which a TCP
        // peer can only signal by closing: 'x' does that.
        if (piece.empty() || ended) {
            return;
        }
        for (int attempt = 0; attempt < 64; ++attempt) {
            if (send(peer, piece.data(), piece.size(), MSG_DONTWAIT | MSG_NOSIGNAL) >= 0) {
                if (tracked) {
                    pending.push_back(piece);
                }
                return;
            }
            if (errno != EAGAIN && errno != EWOULDBLOCK) {
                broken_harness("send");
            }
            receive(); // the agent reads faster than a full queue would let us write
        }
    }

    void end_stream() {
        if (!ended && shutdown(peer, SHUT_WR) != 0) {
            broken_harness("shutdown");
        }
        ended = true;
    }

    void receive() {
        const std::string message = unit.get_message();
        if (message.size() > buffer_size - prefix_size) {
            finding("result longer than the buffer", message);
        }
        if (message.find('\0') != std::string::npos) {
            finding("result holds a NUL", message);
        }
        if (tracked && !pending.empty()) {
            check_begins_with_first_piece(message);
        }
        // Which pieces the call consumed is known only when none is left.
        if (!piece_waiting(agent_fd)) {
            pending.clear();
            tracked = true;
        } else {
            tracked = false;
        }
    }

    void drain() {
        end_stream();
        // Every call consumes at least one piece, so the loop is bounded by
        // the pieces written.
        for (int calls = 0; calls < 100000; ++calls) {
            receive();
            if (tracked) {
                return;
            }
        }
        finding("pieces never consumed", "");
    }

private:
    void check_begins_with_first_piece(const std::string& message) {
        const std::string& first = pending.front();
        const std::string read = first.substr(0, buffer_size);
        if (read.size() < prefix_size) {
            if (!message.empty()) {
                finding("result from a piece shorter than a length prefix", message);
            }
            return;
        }
        const std::string payload = read.substr(prefix_size);
        const std::size_t nul = payload.find('\0');
        const std::uint32_t length = orvo::protocol::read_length(read.data());
        // A frame whose rest never comes may be dropped ("") at any point.
        const bool complete = length <= payload.size();
        if (!complete && message.empty()) {
            return;
        }
        if (nul != std::string::npos) {
            if (message != payload.substr(0, nul)) {
                finding("payload not cut at its first NUL", message);
            }
        } else if (complete) {
            if (message != payload) {
                finding("complete frame not returned whole", message);
            }
        } else if (message.compare(0, payload.size(), payload) != 0) {
            finding("result does not begin with the payload read", message);
        }
    }

    orvo::net::CommUnit unit;
    int agent_fd = -1;
    int peer = -1;
    bool ended = false;
    bool tracked = true;             ///< `pending` is exactly what the agent has not read
    std::deque<std::string> pending; ///< pieces written and not yet read
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    Session session;
    while (!input.done()) {
        switch (input.byte()) {
        case 'r':
            session.receive();
            break;
        case 'p': {
            const std::uint32_t count = input.number(2);
            session.write(input.bytes(count));
            break;
        }
        case 'f': {
            std::string piece(prefix_size, '\0');
            orvo::protocol::write_length(input.number(4), piece.data());
            const std::uint32_t count = input.number(2);
            piece.append(count, static_cast<char>(input.byte()));
            session.write(piece);
            break;
        }
        case 'z': {
            const std::uint32_t count = input.number(2);
            session.write(std::string(count, static_cast<char>(input.byte())));
            break;
        }
        case 'x':
            session.end_stream();
            break;
        default:
            break;
        }
    }
    session.drain();
    return 0;
}
