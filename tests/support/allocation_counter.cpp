// Kept apart from the tests and benchmarks that count so that the compiler never pairs these
// replacements with the standard ones when it inlines.
#include "allocation_counter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<long> count{0};
} // namespace

long allocations() {
    return count.load();
}

void* operator new(std::size_t size) {
    ++count;
    if (void* memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
