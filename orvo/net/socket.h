#ifndef ORVO_NET_SOCKET_H
#define ORVO_NET_SOCKET_H

#include <orvo/core/export.h>
#include <orvo/net/addr.h>
#include <orvo/net/errors.h>

#include <boost/noncopyable.hpp>

namespace orvo::net {

/// One socket descriptor. Set-up calls throw the error class of the failing
/// call; sending and receiving report like the system calls do, by return
/// value and errno, and never throw. A socket that holds no descriptor has
/// descriptor number 0.
///
/// Sends never raise SIGPIPE: a peer that went away shows as -1 with EPIPE
/// instead of killing the process.
class ORVO_API Socket : private boost::noncopyable {
public:
    /// CHECK repeats interrupted calls (receives on EINTR, sends on EINTR
    /// and EAGAIN); DONT_CHECK makes exactly one call.
    enum CheckingType { CHECK = 0, DONT_CHECK = 1 };

    /// Closes the descriptor.
    virtual ~Socket();

    /// Creates a fresh descriptor (closing any held one) with close-on-exec set.
    void open();
    int bind(const Addr& local);
    int listen(int backlog);
    int connect(const Addr& remote);
    /// Waits for a connection and returns a new socket for it, owned by the
    /// caller; the peer is written into `peer`'s shared body. Only stream
    /// sockets accept: the base throws AcceptErr(EOPNOTSUPP).
    virtual Socket* accept(Addr& peer);
    /// Harmless when nothing is held.
    void close();

    Addr getName() const;
    Addr getPeer() const;
    /// The same as getPeer().
    Addr getDest() const;

    int getFD() const { return fd; }
    bool isOpen() const { return opened; }
    bool isConnected() const { return connected; }

    /// Partial sends are not completed: the count of the one successful call
    /// is returned.
    int send(const char* buf, unsigned int len, int flags = 0, CheckingType check = CHECK);
    int send(const char* buf, unsigned int len, const Addr& to, int flags = 0,
             CheckingType check = CHECK);
    int recv(char* buf, unsigned int len, int flags = 0, CheckingType check = CHECK);
    /// `from` is replaced by a new address (it stops sharing its old body)
    /// after every call, successful or not.
    int recv(char* buf, unsigned int len, Addr& from, int flags = 0, CheckingType check = CHECK);

    int setNonBlocking(bool on);
    int setAsync(bool on);
    int setCloseOnExec(bool on);
    int setBroadcast(bool on);
    int setReuseAddress(bool on);
    int setMulticastTTL(unsigned char ttl);

    /// Not supported: -1 with errno EPERM, the descriptor is left alone.
    int joinMulticastGroup(const char* group);
    int leaveMulticastGroup(const char* group);
    int recv(int timeout, char* buf, unsigned int len, int flags);
    int recv(int timeout, char* buf, unsigned int len, Addr& from, int flags);

protected:
    Socket();
    /// Closes any held descriptor, then creates the kind's own descriptor
    /// into `fd`; throws OpenErr when that fails.
    virtual void doOpen(int& fd) = 0;

    int fd = 0;
    bool opened = false;
    bool connected = false;
};

} // namespace orvo::net

#endif
