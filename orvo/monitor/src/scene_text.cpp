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

namespace {
/// Reads a number where `text` is at: the numbers are most of a scene's
/// text, so they are read in place rather than cut out as words first.
template <typename T> bool read_number(std::string_view text, std::size_t& at, T& value) {
    const char* const begin = text.data() + at;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(begin, end, value);
    const bool whole = stop == end || blank(*stop) || *stop == '(' || *stop == ')';
    if (error != std::errc() || stop == begin || !whole) {
        return false;
    }
    at += static_cast<std::size_t>(stop - begin);
    return true;
}
} // namespace

bool SceneText::number(double& value) {
    peek();
    if (read_number(text, at, value)) {
        return true;
    }
    word(); // not a number: skipped like one
    return false;
}

bool SceneText::number(int& value) {
    peek();
    if (read_number(text, at, value)) {
        return true;
    }
    word();
    return false;
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
