#ifndef ORVO_NET_TCP_SOCKET_H
#define ORVO_NET_TCP_SOCKET_H

#include <orvo/net/socket.h>

namespace orvo::net {

/// A stream socket. Every constructor that fails part-way closes what it
/// opened before the error propagates.
class ORVO_API TCPSocket : public Socket {
public:
    TCPSocket();
    explicit TCPSocket(const Addr& local);
    TCPSocket(const Addr& local, const Addr& remote);
    /// Adopts a connected descriptor, as accept() hands them out.
    explicit TCPSocket(int fd);
    ~TCPSocket() override;

    Socket* accept(Addr& peer) override;

protected:
    void doOpen(int& fd) override;
};

} // namespace orvo::net

#endif
