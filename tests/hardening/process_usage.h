#ifndef ORVO_TESTS_HARDENING_PROCESS_USAGE_H
#define ORVO_TESTS_HARDENING_PROCESS_USAGE_H

#include <fstream>
#include <string>

#if defined(__SANITIZE_ADDRESS__)
#include <cstddef>
// Provided by the sanitizer runtime; g++ ships no header declaring it.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#else
#include <malloc.h>
#endif

namespace orvo_test {

/// Resident set size of the process in KiB, as the kernel reports it.
inline long resident_kib() {
    std::ifstream status("/proc/self/status");
    std::string key;
    while (status >> key) {
        if (key == "VmRSS:") {
            long kib = 0;
            status >> kib;
            return kib;
        }
        status.ignore(4096, '\n');
    }
    return -1;
}

/// Bytes handed out by the allocator and not yet freed. Under AddressSanitizer
/// the sanitizer's allocator serves every request, so it is asked instead.
inline long heap_in_use() {
#if defined(__SANITIZE_ADDRESS__)
    return static_cast<long>(__sanitizer_get_current_allocated_bytes());
#else
    const auto info = mallinfo2();
    return static_cast<long>(info.uordblks + info.hblkhd);
#endif
}

} // namespace orvo_test

#endif
