#include <orvo/net/socket.h>

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace orvo::net {

namespace {

constexpr socklen_t addr_len = sizeof(sockaddr_in);

const sockaddr* raw(const sockaddr_in& addr) {
    return reinterpret_cast<const sockaddr*>(&addr);
}

bool retry_receive(int result, Socket::CheckingType check) {
    return check != Socket::DONT_CHECK && result == -1 && errno == EINTR;
}

// A full buffer is retried without sleeping, also on a non-blocking socket:
// callers rely on a checked send having gone out when it returns.
bool retry_send(int result, Socket::CheckingType check) {
    return check != Socket::DONT_CHECK && result == -1 && (errno == EINTR || errno == EAGAIN);
}

int not_supported() {
    errno = EPERM;
    return -1;
}

int set_status_flag(int fd, int flag, bool on) {
    const int flags = fcntl(fd, F_GETFL);
    return fcntl(fd, F_SETFL, on ? (flags | flag) : (flags & ~flag));
}

int set_int_option(int fd, int level, int option, bool on) {
    const int value = on ? 1 : 0;
    return setsockopt(fd, level, option, &value, sizeof value);
}

} // namespace

Socket::Socket() = default;

Socket::~Socket() {
    close();
}

void Socket::open() {
    doOpen(fd);
    opened = true;
    if (setCloseOnExec(true) < 0) {
        const int error = errno;
        close();
        throw OpenErr(error);
    }
}

int Socket::bind(const Addr& local) {
    const int result = ::bind(fd, raw(local.getAddr()), addr_len);
    if (result < 0) {
        throw BindErr(errno);
    }
    return result;
}

int Socket::listen(int backlog) {
    const int result = ::listen(fd, backlog);
    if (result < 0) {
        throw ListenErr(errno);
    }
    return result;
}

int Socket::connect(const Addr& remote) {
    const int result = ::connect(fd, raw(remote.getAddr()), addr_len);
    if (result < 0) {
        throw ConnectErr(errno);
    }
    connected = true;
    return result;
}

Socket* Socket::accept(Addr&) {
    throw AcceptErr(EOPNOTSUPP);
}

void Socket::close() {
    if (opened) {
        opened = false;
        ::close(fd);
        fd = 0;
    }
    connected = false;
}

Addr Socket::getName() const {
    sockaddr_in name{};
    socklen_t len = addr_len;
    if (getsockname(fd, reinterpret_cast<sockaddr*>(&name), &len) < 0) {
        throw GetNameErr(errno);
    }
    return Addr(name);
}

Addr Socket::getPeer() const {
    sockaddr_in name{};
    socklen_t len = addr_len;
    if (getpeername(fd, reinterpret_cast<sockaddr*>(&name), &len) < 0) {
        throw GetNameErr(errno);
    }
    return Addr(name);
}

Addr Socket::getDest() const {
    return getPeer();
}

int Socket::send(const char* buf, unsigned int len, int flags, CheckingType check) {
    int result;
    do {
        result = static_cast<int>(::send(fd, buf, len, flags | MSG_NOSIGNAL));
    } while (retry_send(result, check));
    return result;
}

int Socket::send(const char* buf, unsigned int len, const Addr& to, int flags, CheckingType check) {
    int result;
    do {
        result = static_cast<int>(
            ::sendto(fd, buf, len, flags | MSG_NOSIGNAL, raw(to.getAddr()), addr_len));
    } while (retry_send(result, check));
    return result;
}

int Socket::recv(char* buf, unsigned int len, int flags, CheckingType check) {
    int result;
    do {
        result = static_cast<int>(::recv(fd, buf, len, flags));
    } while (retry_receive(result, check));
    return result;
}

int Socket::recv(char* buf, unsigned int len, Addr& from, int flags, CheckingType check) {
    int result;
    do {
        sockaddr_in sender{};
        socklen_t sender_len = addr_len;
        result = static_cast<int>(
            ::recvfrom(fd, buf, len, flags, reinterpret_cast<sockaddr*>(&sender), &sender_len));
        const int error = errno;
        from = Addr(sender);
        errno = error;
    } while (retry_receive(result, check));
    return result;
}

int Socket::setNonBlocking(bool on) {
    const int flags = fcntl(fd, F_GETFL);
    if (flags == -1) {
        return -1;
    }
    return fcntl(fd, F_SETFL, on ? (flags | O_NONBLOCK) : (flags & ~O_NONBLOCK));
}

int Socket::setAsync(bool on) {
    return set_status_flag(fd, O_ASYNC, on);
}

int Socket::setCloseOnExec(bool on) {
    // Switching off passes every bit but FD_CLOEXEC; the kernel only looks at
    // that bit, so the effect is the same as passing 0.
    return fcntl(fd, F_SETFD, on ? FD_CLOEXEC : ~FD_CLOEXEC);
}

int Socket::setBroadcast(bool on) {
    return set_int_option(fd, SOL_SOCKET, SO_BROADCAST, on);
}

int Socket::setReuseAddress(bool on) {
    return set_int_option(fd, SOL_SOCKET, SO_REUSEADDR, on);
}

int Socket::setMulticastTTL(unsigned char ttl) {
    return setsockopt(fd, IPPROTO_IP, IP_MULTICAST_TTL, &ttl, sizeof ttl);
}

int Socket::joinMulticastGroup(const char*) {
    return not_supported();
}

int Socket::leaveMulticastGroup(const char*) {
    return not_supported();
}

int Socket::recv(int, char*, unsigned int, int) {
    return not_supported();
}

int Socket::recv(int, char*, unsigned int, Addr&, int) {
    return not_supported();
}

} // namespace orvo::net
