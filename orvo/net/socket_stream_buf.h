#ifndef ORVO_NET_SOCKET_STREAM_BUF_H
#define ORVO_NET_SOCKET_STREAM_BUF_H

#include <orvo/core/export.h>
#include <orvo/net/addr.h>
#include <orvo/net/socket.h>

#include <memory>
#include <streambuf>

namespace orvo::net {

/// Standard stream access to a socket. Output is gathered and sent in one
/// call when the buffer fills or the stream is flushed (to the connected peer,
/// or to `peer` while unconnected); input is fetched one socket read at a
/// time. A received datagram or segment that is the single byte 0xFF reads
/// as end of stream.
class ORVO_API SocketStreamBuf : public std::streambuf {
public:
    /// `socket` is not owned and must outlive the buffer. With `fixed_peer`
    /// false, the first datagram an unconnected socket receives connects it
    /// to its sender.
    explicit SocketStreamBuf(Socket* socket, int buffer_size = 8192, bool fixed_peer = true,
                             const Addr& peer = Addr());
    /// Flushes pending output.
    ~SocketStreamBuf() override;

    SocketStreamBuf(const SocketStreamBuf&) = delete;
    SocketStreamBuf& operator=(const SocketStreamBuf&) = delete;

protected:
    int sync() override;
    int_type underflow() override;
    /// Returns 0 (not `c`) once `c` is stored; EOF when pending output could
    /// not be sent.
    int_type overflow(int_type c = traits_type::eof()) override;
    /// Sends what is pending in one call; true when the call sent something.
    /// A partial send's unsent tail is dropped by the caller.
    virtual bool writeData();

    Socket* socket;
    Addr peer;
    int buffer_size;
    std::unique_ptr<char[]> in_buffer;
    std::unique_ptr<char[]> out_buffer;
    /// Bytes kept at the front of in_buffer across a refill.
    unsigned int putback_count = 0;
    char putback_char = 0;
    bool fixed_peer;

private:
    void reset_put_area();
};

} // namespace orvo::net

#endif
