#include <orvo/net/addr.h>

#include <boost/make_shared.hpp>

#include <arpa/inet.h>
#include <netdb.h>

#include <cerrno>
#include <cstring>
#include <vector>

namespace orvo::net {

struct AddrImpl {
    /// Family, port and host in network byte order.
    sockaddr_in addr;
    /// The name the address was built from, or the dotted quad once asked for;
    /// empty until then.
    std::string host_text;
};

namespace {

boost::shared_ptr<AddrImpl> new_body() {
    auto body = boost::make_shared<AddrImpl>();
    std::memset(&body->addr, 0, sizeof body->addr);
    return body;
}

boost::shared_ptr<AddrImpl> inet_body(unsigned short port, unsigned int host) {
    auto body = new_body();
    body->addr.sin_family = AF_INET;
    body->addr.sin_port = htons(port);
    body->addr.sin_addr.s_addr = htonl(host);
    return body;
}

/// First IPv4 address of `name`, in network byte order. The re-entrant
/// resolver keeps concurrent lookups in other threads from clobbering the
/// result; its error code has the same meaning as h_errno.
in_addr_t resolve(const std::string& name) {
    std::vector<char> scratch(1024);
    hostent entry;
    hostent* result = nullptr;
    int error = 0;
    int rc;
    while ((rc = gethostbyname_r(name.c_str(), &entry, scratch.data(), scratch.size(), &result,
                                 &error)) == ERANGE) {
        scratch.resize(scratch.size() * 2);
    }
    if (rc != 0 || result == nullptr || result->h_addr_list[0] == nullptr) {
        throw HostNotFound(error != 0 ? error : NO_RECOVERY);
    }
    in_addr_t host;
    std::memcpy(&host, result->h_addr_list[0], sizeof host);
    return host;
}

} // namespace

Addr::Addr() : body(new_body()) {}

Addr::Addr(unsigned short port) : body(inet_body(port, ANY)) {}

Addr::Addr(unsigned short port, unsigned int host) : body(inet_body(port, host)) {}

Addr::Addr(unsigned short port, const std::string& host) : body(new_body()) {
    body->host_text = host;
    body->addr.sin_addr.s_addr = resolve(host);
    body->addr.sin_family = AF_INET;
    body->addr.sin_port = htons(port);
}

Addr::Addr(const sockaddr_in& addr) : body(new_body()) {
    body->addr = addr;
}

const sockaddr_in& Addr::getAddr() const {
    return body->addr;
}

unsigned int Addr::getHost() const {
    return ntohl(body->addr.sin_addr.s_addr);
}

unsigned short Addr::getPort() const {
    return ntohs(body->addr.sin_port);
}

void Addr::setPort(unsigned short port) {
    body->addr.sin_port = htons(port);
}

std::string Addr::getHostStr() const {
    if (body->host_text.empty()) {
        char text[INET_ADDRSTRLEN];
        body->host_text = inet_ntop(AF_INET, &body->addr.sin_addr, text, sizeof text);
    }
    return body->host_text;
}

bool Addr::operator==(const Addr& other) const {
    return body->addr.sin_port == other.body->addr.sin_port &&
           body->addr.sin_addr.s_addr == other.body->addr.sin_addr.s_addr;
}

bool Addr::operator<(const Addr& other) const {
    if (getHost() != other.getHost()) {
        return getHost() < other.getHost();
    }
    return getPort() < other.getPort();
}

std::ostream& operator<<(std::ostream& out, const Addr& addr) {
    return out << '(' << addr.getPort() << ':' << addr.getHostStr() << ')';
}

} // namespace orvo::net
