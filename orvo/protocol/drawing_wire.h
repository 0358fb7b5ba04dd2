#ifndef ORVO_PROTOCOL_DRAWING_WIRE_H
#define ORVO_PROTOCOL_DRAWING_WIRE_H

// Byte layout of the agents' debug drawings, shared by the agents that send
// them and the programs that draw them (the stand-in server, the viewer).
//
// Every batch begins with the 3-byte opening datagram 0x03 0x00 <header>;
// then one datagram per shape:
//
//   [0]        kind (point 0x10, line 0x11, polygon 0x12)
//   [1]        header: bit 7 team (0 left, 1 right), bits 0-6 player number
//   [2]        n, length of the name (at most max_name)
//   [3, 3+n)   name
//   3 bytes    colour, red green blue
//   1 byte     c, number of corners (point 1, line 2, polygon 1..max_corners)
//   c * 8      x then y of each corner, signed 32-bit big-endian millimetres
//
// Coordinates are in the sending team's own frame (its goal at negative x).

#include <boost/endian/conversion.hpp>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvo::protocol::drawing {

constexpr std::uint8_t opening_0 = 0x03;
constexpr std::uint8_t opening_1 = 0x00;
constexpr std::size_t opening_size = 3;

enum class Kind : std::uint8_t { point = 0x10, line = 0x11, polygon = 0x12 };

constexpr std::size_t max_name = 31;
constexpr std::size_t max_corners = 56;
// One shape never exceeds the 512 bytes the collector reserves per command.
constexpr std::size_t max_shape_size = 3 + max_name + 3 + 1 + 8 * max_corners;
static_assert(max_shape_size <= 512, "a shape must fit the collector's per-command buffer");

struct Colour {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
};

struct Corner {
    float x = 0;
    float y = 0;
};

/// A decoded shape.
struct Shape {
    Kind kind = Kind::point;
    std::uint8_t header = 0;
    std::string name;
    Colour colour;
    std::vector<Corner> corners;
};

inline bool is_opening(const unsigned char* data, std::size_t size) {
    return size == opening_size && data[0] == opening_0 && data[1] == opening_1;
}

inline std::size_t corners_of(Kind kind, std::size_t requested) {
    switch (kind) {
    case Kind::point:
        return 1;
    case Kind::line:
        return 2;
    case Kind::polygon:
        return requested < max_corners ? requested : max_corners;
    }
    return 0;
}

namespace detail {
inline void put_millimetres(float metres, unsigned char* out) {
    const double scaled = std::round(static_cast<double>(metres) * 1000.0);
    // Beyond +-2000 km nothing is on a soccer field; clamping keeps the cast defined.
    const double clamped = scaled > 2e9 ? 2e9 : (scaled < -2e9 ? -2e9 : scaled);
    boost::endian::store_big_s32(out, static_cast<std::int32_t>(clamped));
}

inline float get_millimetres(const unsigned char* in) {
    return static_cast<float>(boost::endian::load_big_s32(in)) / 1000.0f;
}
} // namespace detail

/// Writes one shape into `out` (at least max_shape_size bytes) and returns its
/// length. The name is cut to max_name bytes and a polygon to max_corners.
inline std::size_t encode(Kind kind, std::uint8_t header, std::string_view name, Colour colour,
                          const Corner* corners, std::size_t count, unsigned char* out) {
    const std::size_t name_size = name.size() < max_name ? name.size() : max_name;
    const std::size_t used = corners_of(kind, count);
    std::size_t at = 0;
    out[at++] = static_cast<unsigned char>(kind);
    out[at++] = header;
    out[at++] = static_cast<unsigned char>(name_size);
    for (std::size_t i = 0; i < name_size; ++i) {
        out[at++] = static_cast<unsigned char>(name[i]);
    }
    out[at++] = colour.red;
    out[at++] = colour.green;
    out[at++] = colour.blue;
    out[at++] = static_cast<unsigned char>(used);
    for (std::size_t i = 0; i < used; ++i) {
        // A point or line given fewer corners than it needs repeats the last one.
        const Corner& c = count == 0 ? Corner{} : corners[i < count ? i : count - 1];
        detail::put_millimetres(c.x, out + at);
        detail::put_millimetres(c.y, out + at + 4);
        at += 8;
    }
    return at;
}

/// Reads one shape; false when the datagram is not a well-formed shape.
inline bool decode(const unsigned char* data, std::size_t size, Shape& shape) {
    if (size < 3) {
        return false;
    }
    const auto kind = static_cast<Kind>(data[0]);
    if (kind != Kind::point && kind != Kind::line && kind != Kind::polygon) {
        return false;
    }
    const std::size_t name_size = data[2];
    if (name_size > max_name || size < 3 + name_size + 4) {
        return false;
    }
    std::size_t at = 3;
    shape.kind = kind;
    shape.header = data[1];
    shape.name.assign(reinterpret_cast<const char*>(data + at), name_size);
    at += name_size;
    shape.colour = Colour{data[at], data[at + 1], data[at + 2]};
    at += 3;
    const std::size_t count = data[at++];
    if (count == 0 || count != corners_of(kind, count) || size != at + 8 * count) {
        return false;
    }
    shape.corners.resize(count);
    for (auto& corner : shape.corners) {
        corner.x = detail::get_millimetres(data + at);
        corner.y = detail::get_millimetres(data + at + 4);
        at += 8;
    }
    return true;
}

} // namespace orvo::protocol::drawing

#endif
