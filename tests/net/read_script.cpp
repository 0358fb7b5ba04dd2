#include "read_script.h"

#include <dlfcn.h>
#include <sys/socket.h>

#include <algorithm>
#include <deque>

namespace orvo_test {

namespace {
int scripted_fd = -1;
std::deque<std::size_t> pending_limits;
} // namespace

void script_reads(int fd, std::initializer_list<std::size_t> limits) {
    scripted_fd = fd;
    pending_limits.assign(limits);
}

void clear_read_script() {
    scripted_fd = -1;
    pending_limits.clear();
}

} // namespace orvo_test

// Replaces the C library's recv() for the whole program (the library's calls
// bind to the executable's definition first).
extern "C" ssize_t recv(int fd, void* buffer, size_t count, int flags) {
    using Recv = ssize_t (*)(int, void*, size_t, int);
    static const auto next = reinterpret_cast<Recv>(dlsym(RTLD_NEXT, "recv"));
    if (fd == orvo_test::scripted_fd && !orvo_test::pending_limits.empty()) {
        count = std::min(count, orvo_test::pending_limits.front());
        orvo_test::pending_limits.pop_front();
    }
    return next(fd, buffer, count, flags);
}
