#include <orvo/net/udp_socket.h>

#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>

namespace orvo::net {

// A constructor that throws leaves the Socket base to close what was opened.
UDPSocket::UDPSocket() {
    open();
}

UDPSocket::UDPSocket(const Addr& local) {
    open();
    bind(local);
}

UDPSocket::UDPSocket(const Addr& local, const Addr& remote) {
    open();
    bind(local);
    connect(remote);
}

UDPSocket::~UDPSocket() = default;

void UDPSocket::doOpen(int& fd) {
    close();
    const int created = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    if (created < 0) {
        throw OpenErr(errno);
    }
    fd = created;
}

} // namespace orvo::net
