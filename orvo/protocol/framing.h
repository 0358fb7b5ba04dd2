#ifndef ORVO_PROTOCOL_FRAMING_H
#define ORVO_PROTOCOL_FRAMING_H

// How the server and its clients (agents and monitors) cut their TCP streams
// into messages: every message travels as a 4-byte big-endian payload length
// followed by the payload.

#include <boost/endian/conversion.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace orvo::protocol {

/// Bytes of the length in front of every payload.
constexpr std::size_t length_prefix_size = 4;

/// The longest payload either side accepts (1 MiB). A longer announced length
/// means the stream is not this protocol or has lost its place.
constexpr std::uint32_t max_frame_size = 1u << 20;

/// Writes `length` as the prefix into the 4 bytes at `out`.
inline void write_length(std::uint32_t length, void* out) {
    boost::endian::store_big_u32(static_cast<unsigned char*>(out), length);
}

/// The payload length announced by the 4 bytes at `in`.
inline std::uint32_t read_length(const void* in) {
    return boost::endian::load_big_u32(static_cast<const unsigned char*>(in));
}

/// Appends `payload` as one frame to `out`.
inline void append_frame(std::string& out, std::string_view payload) {
    char prefix[length_prefix_size];
    write_length(static_cast<std::uint32_t>(payload.size()), prefix);
    out.append(prefix, length_prefix_size);
    out.append(payload);
}

/// `payload` as one frame.
inline std::string frame(std::string_view payload) {
    std::string out;
    out.reserve(length_prefix_size + payload.size());
    append_frame(out, payload);
    return out;
}

} // namespace orvo::protocol

#endif
