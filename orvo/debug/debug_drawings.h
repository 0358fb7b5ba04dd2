#ifndef ORVO_DEBUG_DEBUG_DRAWINGS_H
#define ORVO_DEBUG_DEBUG_DRAWINGS_H

#include <orvo/core/export.h>
#include <orvo/debug/drawing_command.h>
#include <orvo/net/addr.h>
#include <orvo/net/udp_socket.h>

#include <boost/noncopyable.hpp>

#include <memory>
#include <string>
#include <vector>

namespace orvo {

/// Collects the drawing commands an agent produces during one cycle and sends
/// them as UDP datagrams to a debug viewer, tagged with the agent's team and
/// number; prints whatever the viewer sends back on standard error.
///
/// Per cycle the viewer receives an opening datagram 0x03 0x00 <header>, then
/// one datagram per command in the order they were added, each exactly the
/// bytes and length the command's serialize() reported. A command that reports
/// more than DrawingCommand::max_size bytes (or a negative length) is rejected:
/// its datagram is not sent, the other commands still are. Sending and
/// receiving errors are ignored; only construction and init() throw.
///
/// Before init() there is no viewer: send() and receive() do nothing, while
/// clear() and execute() still free the commands.
class ORVO_API DebugDrawings : private boost::noncopyable {
public:
    /// Opens the UDP socket; throws net::OpenErr when that fails.
    DebugDrawings();
    /// Frees the commands still held and closes the socket; safe without init().
    ~DebugDrawings();

    /// Binds to `local_port` on every interface (address reuse on, non-blocking)
    /// and sends to `host`:`port`. Ports are narrowed to 16 bits. Throws
    /// net::HostNotFound when `host` cannot be resolved and net::BindErr when
    /// the local port cannot be bound (also on a second call: the socket is
    /// bound already).
    void init(const char* host, int port, int local_port);

    /// Only the lowest bit of `team` is kept, in bit 7 of the header.
    void setTeam(int team);
    /// Replaces the low seven bits; an id above 127 carries into the team bit
    /// (the header stays 8 bits wide).
    void setId(int id);
    unsigned char getHeader() const { return header; }

    /// Takes ownership of `command`, also when appending fails. Commands are
    /// sent whatever their activation: filtering is the caller's choice.
    void addDrawing(DrawingCommand* command);
    const std::vector<DrawingCommand*>& getDrawings() const { return drawings; }

    /// Keeps the list sorted (byte order); an equal name is added again.
    void activateDrawing(std::string name);
    /// Removes the first equal entry, if any.
    void deactivateDrawing(std::string name);
    /// Always true: every drawing is shown, whatever the list holds.
    bool isDrawingActive(std::string name);
    const std::vector<std::string>& getActiveDrawings() const { return active_drawings; }

    /// The caller's own per-cycle mark; reset by clear(), otherwise unused here.
    bool getUserFlag() const { return user_flag; }
    void setUserFlag(bool on) { user_flag = on; }

    /// The collector's socket, e.g. to learn the local port it was bound to.
    const net::UDPSocket& getSocket() const { return socket; }

    /// Sends the opening datagram and every command; the commands stay held.
    void send();
    /// Frees every command and empties the list; resets the user flag.
    void clear();
    /// Reads one pending reply of the viewer, if any, without waiting, and
    /// writes "received: <text>" and an end of line to standard error. At most
    /// 1023 bytes are read; the text ends at its first NUL byte.
    void receive();
    /// The per-cycle call: send(), clear(), receive().
    void execute();

private:
    unsigned char header = 0;
    std::vector<DrawingCommand*> drawings;
    std::vector<std::string> active_drawings;
    bool user_flag = false;
    net::UDPSocket socket;
    std::unique_ptr<net::Addr> destination;
    std::unique_ptr<net::Addr> local;
};

} // namespace orvo

#endif
