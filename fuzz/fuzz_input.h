// What every fuzz target reads its commands with, and how a harness that
// cannot set itself up stops without pretending to be a finding.
#ifndef ORVO_FUZZ_FUZZ_INPUT_H
#define ORVO_FUZZ_FUZZ_INPUT_H

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace fuzz {

/// The fuzzer's bytes as a stream of commands and operands; reading past the
/// end gives zeros and short pieces, so every input is a valid program.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : data(data), size(size) {}
    bool done() const { return at >= size; }
    std::uint8_t byte() { return at < size ? data[at++] : 0; }
    /// A big-endian number of `bytes` bytes.
    std::uint32_t number(int bytes) {
        std::uint32_t value = 0;
        for (int i = 0; i < bytes; ++i) {
            value = value << 8 | byte();
        }
        return value;
    }
    std::string bytes(std::size_t count) {
        const std::size_t taken = std::min(count, size - std::min(at, size));
        std::string piece(reinterpret_cast<const char*>(data + at), taken);
        at += taken;
        return piece;
    }

private:
    const std::uint8_t* data;
    std::size_t size;
    std::size_t at = 0;
};

/// The harness itself failed (a socket pair, a dup2): not a finding.
[[noreturn]] inline void broken_harness(const char* what) {
    std::perror(what);
    std::exit(1);
}

/// The code under test did wrong: the abort makes the fuzzer keep the input.
[[noreturn]] inline void finding(const char* target, const std::string& what) {
    std::fprintf(stderr, "%s finding: %s\n", target, what.c_str());
    std::abort();
}

} // namespace fuzz

#endif
