#ifndef ORVO_NET_ERRORS_H
#define ORVO_NET_ERRORS_H

#include <orvo/core/export.h>

#include <exception>

namespace orvo::net {

/// Common shape of the socket layer's errors: the failing call's errno (or,
/// for HostNotFound, the resolver's code) and its C library text. They derive
/// from std::exception, unlike the framework's own exceptions, because they
/// report the operating system's verdict rather than a framework decision.
class ORVO_API SocketError : public std::exception {
public:
    explicit SocketError(int error) : error(error) {}
    ~SocketError() override;

    int err() const { return error; }
    /// strerror(err()).
    const char* what() const noexcept override;

private:
    int error;
};

/// socket() or setting close-on-exec failed.
class ORVO_API OpenErr : public SocketError {
public:
    using SocketError::SocketError;
    ~OpenErr() override;
};

class ORVO_API BindErr : public SocketError {
public:
    using SocketError::SocketError;
    ~BindErr() override;
};

class ORVO_API ListenErr : public SocketError {
public:
    using SocketError::SocketError;
    ~ListenErr() override;
};

class ORVO_API AcceptErr : public SocketError {
public:
    using SocketError::SocketError;
    ~AcceptErr() override;
};

/// getsockname() or getpeername() failed.
class ORVO_API GetNameErr : public SocketError {
public:
    using SocketError::SocketError;
    ~GetNameErr() override;
};

class ORVO_API ConnectErr : public SocketError {
public:
    using SocketError::SocketError;
    ~ConnectErr() override;
};

/// A host name could not be resolved; err() is the resolver's code in the
/// h_errno sense (HOST_NOT_FOUND, TRY_AGAIN, ...).
class ORVO_API HostNotFound : public SocketError {
public:
    using SocketError::SocketError;
    ~HostNotFound() override;
    /// hstrerror(err()).
    const char* what() const noexcept override;
};

} // namespace orvo::net

#endif
