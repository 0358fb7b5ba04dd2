#ifndef ORVO_MONITOR_SRC_SCENE_TEXT_H
#define ORVO_MONITOR_SRC_SCENE_TEXT_H

#include <cstddef>
#include <string_view>

namespace orvo::monitor {

/// A read position in one monitor message: the parentheses, words and
/// numbers of its S-expressions. Nothing is copied; reading past the end
/// gives empty words and '\0', never an access outside the text.
class SceneText {
public:
    explicit SceneText(std::string_view text) : text(text) {}

    /// The next character that is not blank, '\0' at the end.
    char peek();
    /// Takes `c` if it comes next.
    bool take(char c);
    /// The next word (up to a blank or a parenthesis); empty when none.
    std::string_view word();
    /// The next word read as a number; false when it is none.
    bool number(double& value);
    bool number(int& value);
    /// Skips to just after the ')' that closes the list whose '(' was taken
    /// last; false at the end of the text.
    bool close();
    bool at_end() { return peek() == '\0'; }

private:
    std::string_view text;
    std::size_t at = 0;
};

} // namespace orvo::monitor

#endif
