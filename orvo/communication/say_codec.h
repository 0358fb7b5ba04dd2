#ifndef ORVO_COMMUNICATION_SAY_CODEC_H
#define ORVO_COMMUNICATION_SAY_CODEC_H

#include <orvo/core/export.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace orvo::communication {

/// The longest text a "(say TEXT)" carries: the server drops a longer one
/// whole, and nobody hears anything.
inline constexpr std::size_t say_max_length = 20;

/// The characters a said text may hold, in the order the codec counts them:
/// the 90 printable ASCII characters but the space, the parentheses and the
/// quotes. Measured on the server: a space, tab, DEL or "'" cuts the text
/// there, a byte above 127 loses it, a '"' loses the whole frame it travels
/// in (the cycle's "(syn)" too), a parenthesis ends the command.
ORVO_API std::string_view say_alphabet();

/// Whether the server carries `c` in a said text.
ORVO_API bool sayable(char c);

/// Why the server would drop `text` (empty, too long, or the first character
/// it does not carry, by position), or "" when it carries it.
ORVO_API std::string say_fault(std::string_view text);

/// A number as a said text holds it: rounded to `step` within [low, high],
/// written in as few characters of the alphabet as the range needs (a
/// position on the field to the centimetre takes two).
struct ORVO_API SayField {
    double low = 0;
    double high = 0;
    double step = 1;

    /// How many values the field tells apart.
    std::size_t values() const;
    /// How many characters it takes.
    std::size_t width() const;
};

/// Packs numbers into a text a robot may say, one field after another.
class ORVO_API SayWriter {
public:
    /// Appends `value`, clamped to the field's range (a value that is not a
    /// number is written as the field's low end).
    SayWriter& put(double value, const SayField& field);
    const std::string& text() const { return text_; }

private:
    std::string text_;
};

/// Reads the numbers a SayWriter packed, with the same fields in the same order.
class ORVO_API SayReader {
public:
    explicit SayReader(std::string_view text) : text_(text) {}
    /// Reads the next field into `value`; false, leaving `value`, when the
    /// text ends first or holds a character outside the alphabet there (a
    /// message of another kind, or of another team).
    bool get(double& value, const SayField& field);
    /// Whether every character has been read.
    bool done() const { return at_ == text_.size(); }

private:
    std::string_view text_;
    std::size_t at_ = 0;
};

} // namespace orvo::communication

#endif
