#include "scene_text.h"

#include <charconv>

namespace orvo::monitor {

namespace {
bool blank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
} // namespace

char SceneText::peek() {
    while (at < text.size() && blank(text[at])) {
        ++at;
    }
    return at < text.size() ? text[at] : '\0';
}

bool SceneText::take(char c) {
    if (peek() != c || c == '\0') {
        return false;
    }
    ++at;
    return true;
}

std::string_view SceneText::word() {
    peek();
    const std::size_t from = at;
    while (at < text.size() && !blank(text[at]) && text[at] != '(' && text[at] != ')') {
        ++at;
    }
    return text.substr(from, at - from);
}

bool SceneText::number(double& value) {
    const std::string_view w = word();
    const auto [end, error] = std::from_chars(w.data(), w.data() + w.size(), value);
    return error == std::errc() && end == w.data() + w.size() && !w.empty();
}

bool SceneText::number(int& value) {
    const std::string_view w = word();
    const auto [end, error] = std::from_chars(w.data(), w.data() + w.size(), value);
    return error == std::errc() && end == w.data() + w.size() && !w.empty();
}

bool SceneText::close() {
    int depth = 1;
    while (at < text.size()) {
        const char c = text[at++];
        if (c == '(') {
            ++depth;
        } else if (c == ')' && --depth == 0) {
            return true;
        }
    }
    return false;
}

} // namespace orvo::monitor
