#ifndef ORVO_TESTS_SUPPORT_SCRATCH_DIR_H
#define ORVO_TESTS_SUPPORT_SCRATCH_DIR_H

#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include <stdlib.h>

namespace orvo_test {

/// A fresh directory under /tmp that becomes the working directory for the
/// object's lifetime; the previous working directory is restored and the
/// directory removed afterwards.
class ScratchDir {
public:
    ScratchDir() : previous(std::filesystem::current_path()) {
        std::string name = (std::filesystem::temp_directory_path() / "orvo-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::filesystem::filesystem_error(
                "mkdtemp", std::error_code(errno, std::generic_category()));
        }
        path = name;
        std::filesystem::current_path(path);
    }
    ~ScratchDir() {
        std::error_code ignored;
        std::filesystem::current_path(previous, ignored);
        std::filesystem::remove_all(path, ignored);
    }
    ScratchDir(const ScratchDir&) = delete;
    ScratchDir& operator=(const ScratchDir&) = delete;

    /// Writes `content` to `relative` (directories are created).
    void write(const std::string& relative, const std::string& content) const {
        const auto file = path / relative;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << content;
    }

    std::filesystem::path path;

private:
    std::filesystem::path previous;
};

} // namespace orvo_test

#endif
