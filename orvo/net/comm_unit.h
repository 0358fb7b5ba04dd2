#ifndef ORVO_NET_COMM_UNIT_H
#define ORVO_NET_COMM_UNIT_H

#include <orvo/core/export.h>
#include <orvo/humanoid/base/constructable.h>
#include <orvo/net/frame_reader.h>
#include <orvo/net/socket_stream_buf.h>
#include <orvo/net/tcp_socket.h>

#include <chrono>
#include <istream>
#include <string>

namespace orvo::net {

/// The agent's one TCP connection to the simulation server, registered as
/// "communit". Messages travel as frames: a 4-byte big-endian payload length,
/// then the payload. The Messenger configures it during its own init.
///
/// Two ways to receive; a connection uses one of them only. get_message() is
/// the historical one: it polls without blocking and uses one 16384-byte
/// buffer shared by every CommUnit, so only one of them may receive at a time,
/// and it loses a frame that arrives in the same read as another.
/// receive_message() loses nothing and can wait for the next frame.
class ORVO_API CommUnit : public Constructable {
public:
    /// Opens the socket (close-on-exec) without connecting it.
    CommUnit();
    ~CommUnit() override;

    void link(Class_Map& classes) override;
    void init() override;
    /// Closes the connection if the last configure_run made one.
    void finalize() override;
    std::string get_name() const override;

    /// Remembers the three values and connects; true when connected. An
    /// unknown host raises HostNotFound. After a failure the socket stays
    /// closed: reconnecting takes a new CommUnit.
    bool configure_run(const std::string& host, unsigned int port, unsigned int value);
    /// Binds to any local address, resolves `host` and connects. A bind or
    /// connect failure closes the socket and gives false.
    bool open_connection(const std::string& host, unsigned int port);
    /// Sends `msg` as one frame in a single write; an empty message sends
    /// nothing. Write failures are not reported.
    void write_message(const std::string& msg);
    /// One received payload, cut at its first NUL, or "" when no whole frame
    /// is readable now. Bytes that arrive in the same read after a frame are
    /// lost; a payload longer than 16380 bytes cannot be received whole.
    std::string get_message();
    /// The next whole frame's payload into `payload`, waiting at most `wait`
    /// (0: only what is readable now); see FrameReader::read. A frame over
    /// FrameReader::default_limit closes the socket, then FrameTooLarge
    /// propagates. A closed socket gives Received::closed.
    Received receive_message(std::string& payload, std::chrono::milliseconds wait);
    /// Whether the connection is readable; waits for it when `block`.
    bool SelectInput(bool block);
    /// Closes the socket; is_connected() keeps its value.
    void close_connection();

    const std::string& get_host() const { return host; }
    unsigned int get_port() const { return port; }
    /// Handed on by configure_run; the connection itself does not use it.
    unsigned int get_run_value() const { return run_value; }
    /// Whether the last configure_run connected.
    bool is_connected() const { return connected; }
    TCPSocket& get_socket() { return socket; }
    /// Stream view of the connection (no framing).
    std::istream& get_input() { return input; }

private:
    TCPSocket socket;
    SocketStreamBuf stream_buffer;
    bool connected = false;
    std::istream input;
    unsigned int run_value = 15096;
    unsigned int port = 3100;
    std::string host = "localhost";
    FrameReader reader;
};

} // namespace orvo::net

extern "C" ORVO_API orvo::Constructable* create_communit();

#endif
