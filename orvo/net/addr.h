#ifndef ORVO_NET_ADDR_H
#define ORVO_NET_ADDR_H

#include <orvo/core/export.h>
#include <orvo/net/errors.h>

#include <boost/shared_ptr.hpp>

#include <netinet/in.h>

#include <ostream>
#include <string>

namespace orvo::net {

/// The body that all copies of one Addr share: the structure and the cached
/// host text, which only Addr itself may change so that the two agree.
struct AddrImpl;

/// An IPv4 endpoint. Copies share one body on purpose: a socket that accepts
/// into an address, or a setPort() on any copy, is seen through every copy.
class ORVO_API Addr {
public:
    static constexpr unsigned int ANY = 0;
    static constexpr unsigned int BROADCAST = 0xFFFFFFFF;

    /// Unspecified family, port and host 0.
    Addr();
    /// The wildcard host at `port`.
    explicit Addr(unsigned short port);
    /// `host` is in host byte order (0x7F000001 is 127.0.0.1).
    Addr(unsigned short port, unsigned int host);
    /// Resolves `host` and takes its first IPv4 address; getHostStr() keeps
    /// returning `host` itself. Throws HostNotFound with the resolver's code.
    Addr(unsigned short port, const std::string& host);
    /// Copies all 16 bytes as they are.
    explicit Addr(const sockaddr_in& addr);

    /// The shared structure itself, as the system calls want it.
    const sockaddr_in& getAddr() const;
    /// Host byte order.
    unsigned int getHost() const;
    unsigned short getPort() const;
    /// Changes the port of every copy; the host text stays.
    void setPort(unsigned short port);
    /// The name given at construction, else the dotted quad (cached).
    std::string getHostStr() const;

    /// Port and host only; family and padding are ignored.
    bool operator==(const Addr& other) const;
    bool operator!=(const Addr& other) const { return !(*this == other); }
    /// By host, then by port, both in host byte order.
    bool operator<(const Addr& other) const;

private:
    boost::shared_ptr<AddrImpl> body;
};

/// Writes "(<port>:<host text>)", port first.
ORVO_API std::ostream& operator<<(std::ostream& out, const Addr& addr);

} // namespace orvo::net

#endif
