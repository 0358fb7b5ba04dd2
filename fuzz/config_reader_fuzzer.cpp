// Feeds arbitrary file contents to the assembler's configuration reader.
// The reader may only report "Error while parsing values!" as an
// orvo::Exception; any other exception, a crash or a sanitizer report is a
// finding. The values it keeps must be usable as names: one line each, never
// empty, never starting with a blank or a tab.
#include <orvo/core/architect.h>

#include "fuzz_input.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

const std::string parse_failure_source =
    "core/src/architect.cpp: In function 'parse_config_file' (line 359): ";

// The contents live in an anonymous in-memory file, reopened by path for
// every input: nothing is left on disk, whatever stops the fuzzer.
int contents_fd = -1;
std::string contents_path;

[[noreturn]] void finding(const char* what, const std::string& detail) {
    fuzz::finding("config reader", what + (": " + detail));
}

bool is_value(const std::string& value) {
    return !value.empty() && value[0] != ' ' && value[0] != '\t' &&
           value.find('\n') == std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    contents_fd = memfd_create("orvo-fuzzed.cfg", 0);
    if (contents_fd < 0) {
        fuzz::broken_harness("memfd_create");
    }
    contents_path = "/proc/self/fd/" + std::to_string(contents_fd);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (ftruncate(contents_fd, 0) != 0 ||
        pwrite(contents_fd, data, size, 0) != static_cast<ssize_t>(size)) {
        fuzz::broken_harness("writing the fuzzed file");
    }

    std::vector<std::string> args{"fuzz"};
    orvo::Architect architect(args);
    // The reader appends: what the caller held before must survive.
    std::vector<std::string> values{"held"};
    try {
        architect.parse_config_file(contents_path, values);
    } catch (const orvo::Exception& e) {
        if (e.get_message() != "Error while parsing values!" || e.get_type() != "Exception" ||
            e.get_source() != parse_failure_source) {
            finding("unexpected report", e.get_type() + " / " + e.get_message());
        }
    }

    if (values.empty() || values[0] != "held") {
        finding("earlier values lost", std::to_string(values.size()));
    }
    std::size_t lines = 1;
    for (std::size_t i = 0; i < size; ++i) {
        lines += data[i] == '\n';
    }
    if (values.size() - 1 > lines) {
        finding("more values than lines", std::to_string(values.size() - 1));
    }
    for (std::size_t i = 1; i < values.size(); ++i) {
        if (!is_value(values[i])) {
            finding("unusable value", values[i]);
        }
    }
    return 0;
}
