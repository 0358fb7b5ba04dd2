#include "legacy_sexpression.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace legacy {

namespace {
bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
} // namespace

bool SExpression::parse(std::string_view text) {
    nodes.clear();
    open.clear();
    last_child.clear();
    std::int32_t last_top = none;
    const auto append = [&](Node node) {
        const auto index = static_cast<std::int32_t>(nodes.size());
        nodes.push_back(node);
        if (open.empty()) {
            if (last_top != none) {
                nodes[static_cast<std::size_t>(last_top)].next = index;
            }
            last_top = index;
        } else {
            std::int32_t& previous = last_child.back();
            if (previous == none) {
                nodes[static_cast<std::size_t>(open.back())].first = index;
            } else {
                nodes[static_cast<std::size_t>(previous)].next = index;
            }
            previous = index;
        }
        return index;
    };
    std::size_t at = 0;
    while (at < text.size()) {
        const char c = text[at];
        if (is_blank(c)) {
            ++at;
        } else if (c == '(') {
            Node list;
            list.is_list = true;
            const auto index = append(list);
            open.push_back(index);
            last_child.push_back(none);
            ++at;
        } else if (c == ')') {
            if (open.empty()) {
                return false;
            }
            open.pop_back();
            last_child.pop_back();
            ++at;
        } else {
            const std::size_t start = at;
            while (at < text.size() && !is_blank(text[at]) && text[at] != '(' && text[at] != ')') {
                ++at;
            }
            Node atom;
            atom.atom = text.substr(start, at - start);
            append(atom);
        }
    }
    return open.empty();
}

std::string_view SExpression::head(std::int32_t list) const {
    if (list == none || !(*this)[list].is_list) {
        return {};
    }
    const std::int32_t first = (*this)[list].first;
    return first == none ? std::string_view() : (*this)[first].atom;
}

std::int32_t SExpression::first_argument(std::int32_t list) const {
    if (list == none || !(*this)[list].is_list || (*this)[list].first == none) {
        return none;
    }
    return (*this)[(*this)[list].first].next;
}

std::int32_t SExpression::find(std::int32_t list, std::string_view name) const {
    for (std::int32_t child = first_argument(list); child != none; child = next(child)) {
        if ((*this)[child].is_list && head(child) == name) {
            return child;
        }
    }
    return none;
}

std::string_view SExpression::value(std::int32_t list, std::string_view name) const {
    const std::int32_t found = find(list, name);
    const std::int32_t argument = first_argument(found);
    return argument == none ? std::string_view() : (*this)[argument].atom;
}

bool to_float(std::string_view atom, float& out) {
    char buffer[48];
    if (atom.empty() || atom.size() >= sizeof buffer) {
        return false;
    }
    std::memcpy(buffer, atom.data(), atom.size());
    buffer[atom.size()] = '\0';
    char* end = nullptr;
    const float value = std::strtof(buffer, &end);
    if (end != buffer + atom.size() || !std::isfinite(value)) {
        return false;
    }
    out = value;
    return true;
}

bool to_int(std::string_view atom, int& out) {
    char buffer[24];
    if (atom.empty() || atom.size() >= sizeof buffer) {
        return false;
    }
    std::memcpy(buffer, atom.data(), atom.size());
    buffer[atom.size()] = '\0';
    char* end = nullptr;
    errno = 0;
    const long value = std::strtol(buffer, &end, 10);
    if (end != buffer + atom.size() || errno != 0 || value < -2147483647L || value > 2147483647L) {
        return false;
    }
    out = static_cast<int>(value);
    return true;
}

} // namespace legacy
