#include "sync_gate.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <sys/file.h>
#include <unistd.h>

namespace demo {

SyncGate::~SyncGate() {
    if (fd_ >= 0) {
        ::close(fd_);
    }
}

void SyncGate::open(const std::string& path) {
    if (path.empty()) {
        return;
    }
    fd_ = ::open(path.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC, 0644);
    if (fd_ < 0) {
        throw std::runtime_error("cannot open the sync lock " + path + ": " + std::strerror(errno));
    }
}

SyncGate::Pass::Pass(const SyncGate& gate) : fd_(gate.fd_) {
    if (fd_ >= 0) {
        while (::flock(fd_, LOCK_SH) != 0 && errno == EINTR) {
        }
    }
}

SyncGate::Pass::~Pass() {
    if (fd_ >= 0) {
        ::flock(fd_, LOCK_UN);
    }
}

} // namespace demo
