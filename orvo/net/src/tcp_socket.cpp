#include <orvo/net/tcp_socket.h>

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

namespace orvo::net {

// A constructor that throws leaves the Socket base to close what was opened.
TCPSocket::TCPSocket() {
    open();
}

TCPSocket::TCPSocket(const Addr& local) {
    open();
    bind(local);
}

TCPSocket::TCPSocket(const Addr& local, const Addr& remote) {
    open();
    bind(local);
    connect(remote);
}

TCPSocket::TCPSocket(int fd) {
    this->fd = fd;
    opened = true;
    connected = true;
}

TCPSocket::~TCPSocket() = default;

Socket* TCPSocket::accept(Addr& peer) {
    // The body is shared and never itself const: the peer lands in place so
    // that every copy of `peer` sees it.
    auto* into = const_cast<sockaddr_in*>(&peer.getAddr());
    socklen_t len = sizeof(sockaddr_in);
    const int accepted = ::accept(fd, reinterpret_cast<sockaddr*>(into), &len);
    if (accepted < 0) {
        throw AcceptErr(errno);
    }
    try {
        return new TCPSocket(accepted);
    } catch (...) {
        ::close(accepted);
        throw;
    }
}

void TCPSocket::doOpen(int& fd) {
    close();
    const int created = socket(AF_INET, SOCK_STREAM, 0);
    if (created < 0) {
        throw OpenErr(errno);
    }
    fd = created;
}

} // namespace orvo::net
