#include <orvo/net/errors.h>

#include <netdb.h>
#include <string.h>

namespace orvo::net {

SocketError::~SocketError() = default;

const char* SocketError::what() const noexcept {
    return strerror(error);
}

OpenErr::~OpenErr() = default;
BindErr::~BindErr() = default;
ListenErr::~ListenErr() = default;
AcceptErr::~AcceptErr() = default;
GetNameErr::~GetNameErr() = default;
ConnectErr::~ConnectErr() = default;
HostNotFound::~HostNotFound() = default;

const char* HostNotFound::what() const noexcept {
    return hstrerror(err());
}

} // namespace orvo::net
