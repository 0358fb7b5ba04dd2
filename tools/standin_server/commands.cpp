#include "commands.h"

#include <cctype>
#include <cmath>
#include <cstdlib>

namespace standin {

namespace {
bool is_atom_char(char c) {
    return c != '(' && c != ')' && std::isspace(static_cast<unsigned char>(c)) == 0;
}
} // namespace

std::vector<Command> split_commands(std::string_view message) {
    std::vector<Command> commands;
    std::size_t at = 0;
    while (at < message.size()) {
        if (message[at] != '(') {
            ++at;
            continue;
        }
        const std::size_t start = at;
        int depth = 0;
        for (; at < message.size(); ++at) {
            if (message[at] == '(') {
                ++depth;
            } else if (message[at] == ')' && --depth == 0) {
                break;
            }
        }
        if (at == message.size()) {
            commands.push_back(Command{std::string_view(), message.substr(start)});
            break;
        }
        const std::string_view text = message.substr(start, at - start + 1);
        std::size_t name_end = 1;
        while (name_end < text.size() && is_atom_char(text[name_end])) {
            ++name_end;
        }
        commands.push_back(Command{text.substr(1, name_end - 1), text});
        ++at;
    }
    return commands;
}

std::vector<std::string_view> arguments(std::string_view text) {
    std::vector<std::string_view> atoms;
    std::size_t at = text.empty() || text.front() != '(' ? 0 : 1;
    bool head = true;
    while (at < text.size()) {
        if (!is_atom_char(text[at])) {
            ++at;
            continue;
        }
        const std::size_t start = at;
        while (at < text.size() && is_atom_char(text[at])) {
            ++at;
        }
        if (!head) {
            atoms.push_back(text.substr(start, at - start));
        }
        head = false;
    }
    return atoms;
}

std::optional<std::string_view> value_of(std::string_view text, std::string_view key) {
    for (std::size_t at = text.find('('); at != std::string_view::npos;
         at = text.find('(', at + 1)) {
        std::size_t name = at + 1;
        while (name < text.size() && std::isspace(static_cast<unsigned char>(text[name])) != 0) {
            ++name;
        }
        if (text.compare(name, key.size(), key) != 0) {
            continue;
        }
        std::size_t value = name + key.size();
        if (value >= text.size() || std::isspace(static_cast<unsigned char>(text[value])) == 0) {
            continue;
        }
        while (value < text.size() && std::isspace(static_cast<unsigned char>(text[value])) != 0) {
            ++value;
        }
        std::size_t end = value;
        while (end < text.size() && is_atom_char(text[end])) {
            ++end;
        }
        if (end > value) {
            return text.substr(value, end - value);
        }
    }
    return std::nullopt;
}

std::optional<double> to_number(std::string_view atom) {
    if (atom.empty() || atom.size() > 64) {
        return std::nullopt;
    }
    const std::string copy(atom);
    char* end = nullptr;
    const double value = std::strtod(copy.c_str(), &end);
    if (end != copy.c_str() + copy.size() || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

std::optional<std::vector<double>> numbers(std::string_view text) {
    std::vector<double> values;
    for (std::string_view atom : arguments(text)) {
        const auto value = to_number(atom);
        if (!value) {
            return std::nullopt;
        }
        values.push_back(*value);
    }
    return values;
}

} // namespace standin
