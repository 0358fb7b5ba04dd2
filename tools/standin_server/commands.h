#ifndef ORVO_STANDIN_COMMANDS_H
#define ORVO_STANDIN_COMMANDS_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace standin {

/// One top-level s-expression of an agent's message: its head atom and the
/// whole text, e.g. name "beam" and text "(beam -3 2 0)".
struct Command {
    std::string_view name;
    std::string_view text;
};

/// Splits a message such as "(he1 0)(he2 0.3)" into its top-level
/// expressions. Text outside parentheses is skipped; an unbalanced tail is
/// returned as one command named "" so that it is counted, not lost.
std::vector<Command> split_commands(std::string_view message);

/// The atoms following the head atom of a flat expression: "(beam 1 2 0)"
/// gives {"1", "2", "0"}.
std::vector<std::string_view> arguments(std::string_view text);

/// The first atom after `key` in a nested element "(key VALUE)" anywhere in
/// `text`: value_of("(init (unum 3)(teamname a))", "unum") is "3".
std::optional<std::string_view> value_of(std::string_view text, std::string_view key);

/// Parses a decimal number; nullopt unless the whole atom is a finite number.
std::optional<double> to_number(std::string_view atom);

/// The arguments of a flat expression as numbers: "(beam 1 2 0)" gives
/// {1, 2, 0}; nullopt when any of them is not a number.
std::optional<std::vector<double>> numbers(std::string_view text);

} // namespace standin

#endif
