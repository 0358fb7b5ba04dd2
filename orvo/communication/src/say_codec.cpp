#include <orvo/communication/say_codec.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace orvo::communication {

namespace {

constexpr char first_printable = '!', last_printable = '~';

constexpr bool carried(char c) {
    return c >= first_printable && c <= last_printable && c != '(' && c != ')' && c != '"' &&
           c != '\'';
}

struct Alphabet {
    std::array<char, 96> symbols{};
    std::size_t size = 0;
    std::array<int, 256> digit{}; ///< by byte; -1 outside the alphabet

    Alphabet() {
        digit.fill(-1);
        for (char c = first_printable; c <= last_printable; ++c) {
            if (carried(c)) {
                digit[static_cast<unsigned char>(c)] = static_cast<int>(size);
                symbols[size++] = c;
            }
        }
    }
};

const Alphabet& alphabet() {
    static const Alphabet table;
    return table;
}

} // namespace

std::string_view say_alphabet() {
    return {alphabet().symbols.data(), alphabet().size};
}

bool sayable(char c) {
    return carried(c);
}

std::string say_fault(std::string_view text) {
    if (text.empty()) {
        return "an empty text says nothing";
    }
    if (text.size() > say_max_length) {
        return std::to_string(text.size()) + " characters, more than the " +
               std::to_string(say_max_length) + " a say carries";
    }
    const auto bad = std::find_if_not(text.begin(), text.end(), sayable);
    if (bad != text.end()) {
        const auto byte = static_cast<unsigned>(static_cast<unsigned char>(*bad));
        return "character " + std::to_string(bad - text.begin() + 1) + " (byte " +
               std::to_string(byte) +
               ") is not carried: only printable ASCII but space, parentheses and quotes";
    }
    return {};
}

std::size_t SayField::values() const {
    return static_cast<std::size_t>(std::llround((high - low) / step)) + 1;
}

std::size_t SayField::width() const {
    const std::size_t base = alphabet().size;
    std::size_t width = 1;
    for (std::size_t reach = base; reach < values(); reach *= base) {
        ++width;
    }
    return width;
}

SayWriter& SayWriter::put(double value, const SayField& field) {
    const double bounded = std::isnan(value) ? field.low : std::clamp(value, field.low, field.high);
    auto n = static_cast<std::size_t>(std::llround((bounded - field.low) / field.step));
    n = std::min(n, field.values() - 1);
    const std::size_t base = alphabet().size;
    const std::size_t width = field.width();
    text_.append(width, ' ');
    // Most significant character first.
    for (std::size_t i = width; i-- > 0;) {
        text_[text_.size() - width + i] = alphabet().symbols[n % base];
        n /= base;
    }
    return *this;
}

bool SayReader::get(double& value, const SayField& field) {
    const std::size_t width = field.width();
    if (text_.size() - at_ < width) {
        return false;
    }
    std::size_t n = 0;
    for (std::size_t i = 0; i < width; ++i) {
        const int digit = alphabet().digit[static_cast<unsigned char>(text_[at_ + i])];
        if (digit < 0) {
            return false;
        }
        n = n * alphabet().size + static_cast<std::size_t>(digit);
    }
    if (n >= field.values()) {
        return false;
    }
    at_ += width;
    value = field.low + static_cast<double>(n) * field.step;
    return true;
}

} // namespace orvo::communication
