#ifndef ORVO_NET_UDP_SOCKET_H
#define ORVO_NET_UDP_SOCKET_H

#include <orvo/net/socket.h>

namespace orvo::net {

/// A datagram socket. Every constructor that fails part-way closes what it
/// opened before the error propagates.
class ORVO_API UDPSocket : public Socket {
public:
    UDPSocket();
    explicit UDPSocket(const Addr& local);
    UDPSocket(const Addr& local, const Addr& remote);
    ~UDPSocket() override;

protected:
    void doOpen(int& fd) override;
};

} // namespace orvo::net

#endif
