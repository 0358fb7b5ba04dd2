#ifndef ORVO_TESTS_SUPPORT_TEXT_H
#define ORVO_TESTS_SUPPORT_TEXT_H

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace orvo_test {

/// The whole file at `path`; "" when it cannot be read.
inline std::string read_text(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

/// The lines of the file at `path`; none when it cannot be read.
inline std::vector<std::string> read_lines(const std::string& path) {
    std::ifstream in(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// How often `what` occurs in `text`.
inline std::size_t count_of(const std::string& text, const std::string& what) {
    std::size_t found = 0;
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
        ++found;
    }
    return found;
}

/// The monitor update `update` with "(SLT matrix)" given to the node that
/// holds `position` in the whole scene `scene`: what the server sends when
/// that node moves.
inline std::string moved(const std::string& scene, const std::string& update,
                         const std::string& position, const std::string& matrix) {
    const std::string node = "(nd";
    const auto at = scene.find(position);
    int index = -1;
    for (auto p = scene.find(node); p < at; p = scene.find(node, p + 1)) {
        ++index;
    }
    auto p = update.find(node);
    for (int i = 0; i < index; ++i) {
        p = update.find(node, p + 1);
    }
    std::string result = update;
    result.insert(p + node.size(), "(SLT " + matrix + ")");
    return result;
}

} // namespace orvo_test

#endif
