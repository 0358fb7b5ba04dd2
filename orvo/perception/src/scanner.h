#ifndef ORVO_PERCEPTION_SRC_SCANNER_H
#define ORVO_PERCEPTION_SRC_SCANNER_H

#include <orvo/perception/perception_reader.h>

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <system_error>
#include <type_traits>

namespace orvo::perception::detail {

/// Thrown inside the reader only; read() turns it into its ReadResult.
struct Fault {
    ReadFault fault;
    std::size_t offset;
};

/// A cursor over one message that knows the shape of s-expressions and
/// nothing of their meaning. Every step checks the end of the message, so
/// no input makes it read outside it. Any byte up to the space counts as a
/// blank; an atom runs up to the next blank or parenthesis.
class Scanner {
public:
    explicit Scanner(std::string_view text)
        : first(text.data()), at(text.data()), last(text.data() + text.size()) {}

    /// Skips blanks; true when nothing follows.
    bool done() {
        skip_blanks();
        return at == last;
    }

    /// At the top level, after done() said no: enters the next element.
    void open_element() {
        if (*at == '(') {
            ++at;
            return;
        }
        fail(*at == ')' ? ReadFault::unopened : ReadFault::stray_text, at);
    }

    /// Inside a list: enters its next child list (true), or leaves the list
    /// through its ')' (false). Atoms in between are skipped.
    bool next_child() {
        for (;;) {
            skip_blanks();
            if (at == last) {
                fail(ReadFault::unclosed, last);
            }
            if (*at == '(') {
                ++at;
                return true;
            }
            if (*at == ')') {
                ++at;
                return false;
            }
            atom();
        }
    }

    /// Inside a list: the next atom (true), or leaves the list through its
    /// ')' (false). Child lists in between are skipped.
    bool next_atom(std::string_view& out) {
        for (;;) {
            skip_blanks();
            if (at == last) {
                fail(ReadFault::unclosed, last);
            }
            if (*at == ')') {
                ++at;
                return false;
            }
            if (*at != '(') {
                out = atom();
                return true;
            }
            ++at;
            close();
        }
    }

    /// The atom at the cursor, after blanks; empty when a parenthesis or the
    /// end of the message comes first.
    std::string_view atom() {
        skip_blanks();
        const char* start = at;
        while (at != last && !is_delimiter(*at)) {
            ++at;
        }
        return {start, static_cast<std::size_t>(at - start)};
    }

    template <typename T> [[gnu::always_inline]] T number() {
        if constexpr (std::is_floating_point_v<T>) {
            // Most numbers take the short way, read in the same pass that finds their end.
            skip_blanks();
            T value;
            const char* stop = short_decimal(at, last, value);
            if (stop != nullptr && (stop == last || is_delimiter(*stop))) {
                at = stop;
                return value;
            }
        }
        return to_number<T>(atom());
    }

    /// A whole atom as a finite number, or bad_number at the atom (an empty
    /// atom: where the number should have been).
    template <typename T> T to_number(std::string_view text) const {
        T value{};
        const char* end = text.data() + text.size();
        if constexpr (std::is_floating_point_v<T>) {
            if (short_decimal(text.data(), end, value) == end) {
                return value;
            }
        }
        const auto [stop, error] = std::from_chars(text.data(), end, value);
        if (text.empty() || error != std::errc() || stop != end || !finite(value)) {
            // A number the message's end cut short is a cut message, not a bad number.
            fail(end == last ? ReadFault::unclosed : ReadFault::bad_number,
                 end == last ? last : text.data());
        }
        return value;
    }

    /// Moves past `literal` when the text at the cursor is exactly that;
    /// otherwise nothing moves. For the server's usual layout, which spares
    /// the general steps; the caller rewinds and takes them when this fails.
    template <std::size_t N> bool skip_literal(const char (&literal)[N]) {
        constexpr std::size_t length = N - 1;
        if (static_cast<std::size_t>(last - at) < length || std::memcmp(at, literal, length) != 0) {
            return false;
        }
        at += length;
        return true;
    }
    const char* position() const { return at; }
    void rewind(const char* to) { at = to; }

    /// Runs `read` over one element whose content begins at `start` (just
    /// inside its '('). When a value in it is not a finite number (the server
    /// sends "nan" now and then), the rest of that element is skipped and the
    /// element counted lost, so that one bad value costs only what it carries;
    /// false then. Faults of the message's shape still end the reading.
    template <typename Read> bool keep(const char* start, Read&& read) {
        try {
            read();
            return true;
        } catch (const Fault& fault) {
            if (fault.fault != ReadFault::bad_number) {
                throw;
            }
            if (lost_++ == 0) {
                first_lost_ = fault.offset;
            }
            at = start;
            close();
            return false;
        }
    }
    /// Elements lost to values that are not numbers, and where the first one was.
    std::uint32_t lost() const { return lost_; }
    std::size_t first_lost() const { return first_lost_; }

    /// Leaves the list the cursor is in, whatever else it holds.
    void close() {
        int depth = 0;
        while (at != last) {
            const char c = *at++;
            if (c == ')') {
                if (depth == 0) {
                    return;
                }
                --depth;
            } else if (c == '(') {
                ++depth;
            }
        }
        fail(ReadFault::unclosed, last);
    }

private:
    static bool is_blank(char c) { return static_cast<unsigned char>(c) <= ' '; }
    static unsigned to_digit(char c) { return static_cast<unsigned char>(c) - unsigned{'0'}; }
    static bool is_delimiter(char c) { return is_blank(c) || c == '(' || c == ')'; }
    template <typename T> static bool finite(T value) {
        if constexpr (std::is_floating_point_v<T>) {
            return std::isfinite(value);
        } else {
            return true;
        }
    }

    /// The server writes plain decimals with two places ("-53.83"). Those
    /// whose digits, taken as a whole number, the type holds exactly are one
    /// exact division by a power of ten that the type holds exactly too,
    /// rounded once: the same value std::from_chars gives, at a fraction of
    /// its cost. Reads up to the first character that is neither a digit nor
    /// the point and returns where it stopped; nullptr when the digits read
    /// do not make such a number, which leaves it to std::from_chars.
    template <typename T> static const char* short_decimal(const char* p, const char* end, T& out) {
        constexpr int max_places = std::is_same_v<T, float> ? 10 : 22;
        constexpr std::uint64_t max_digits = std::uint64_t{1} << std::numeric_limits<T>::digits;
        static constexpr T powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                       1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                       1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
        const bool negative = p != end && *p == '-';
        p += negative;
        std::uint64_t digits = 0; // wraps for more than 19 digits, which are refused below
        const char* start = p;
        for (unsigned digit; p != end && (digit = to_digit(*p)) < 10; ++p) {
            digits = digits * 10 + digit;
        }
        std::ptrdiff_t count = p - start;
        std::ptrdiff_t places = 0;
        if (p != end && *p == '.') {
            const char* fraction = ++p;
            for (unsigned digit; p != end && (digit = to_digit(*p)) < 10; ++p) {
                digits = digits * 10 + digit;
            }
            places = p - fraction;
            count += places;
        }
        if (count <= 0 || count > 18 || digits > max_digits || places > max_places) {
            return nullptr;
        }
        const T value = static_cast<T>(digits) / powers[places];
        out = negative ? -value : value;
        return p;
    }

    void skip_blanks() {
        while (at != last && is_blank(*at)) {
            ++at;
        }
    }

    [[noreturn]] void fail(ReadFault fault, const char* where) const {
        throw Fault{fault, static_cast<std::size_t>(where - first)};
    }

    const char* first;
    const char* at;
    const char* last;
    std::uint32_t lost_ = 0;
    std::size_t first_lost_ = 0;
};

} // namespace orvo::perception::detail

#endif
