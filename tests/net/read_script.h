#ifndef ORVO_TESTS_NET_READ_SCRIPT_H
#define ORVO_TESTS_NET_READ_SCRIPT_H

#include <cstddef>
#include <initializer_list>

namespace orvo_test {

/// Makes the next reads of `fd` return at most the given numbers of bytes,
/// one limit per read, so that a frame that is already queued in the kernel
/// arrives in pieces. The test program replaces recv() to do this; every
/// other descriptor, and `fd` once the limits are used up, reads normally.
void script_reads(int fd, std::initializer_list<std::size_t> limits);
/// Forgets any remaining limits.
void clear_read_script();

} // namespace orvo_test

#endif
