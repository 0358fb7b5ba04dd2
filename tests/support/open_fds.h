#ifndef ORVO_TESTS_SUPPORT_OPEN_FDS_H
#define ORVO_TESTS_SUPPORT_OPEN_FDS_H

#include <filesystem>
#include <iterator>

namespace orvo_test {

/// Number of descriptors the process holds open right now.
inline long open_fds() {
    const std::filesystem::directory_iterator fds("/proc/self/fd");
    return std::distance(begin(fds), end(fds)) - 1; // the iterator's own descriptor
}

} // namespace orvo_test

#endif
