#include <orvo/protocol/drawing_wire.h>
#include <orvo/protocol/framing.h>

#include <gtest/gtest.h>

#include <string>

using namespace std::string_literals;
namespace protocol = orvo::protocol;

TEST(Framing, LengthsTravelBigEndian) {
    const std::pair<std::uint32_t, std::string> cases[] = {
        {0, "\x00\x00\x00\x00"s},          {14, "\x00\x00\x00\x0e"s},
        {0x01020304, "\x01\x02\x03\x04"s}, {protocol::max_frame_size, "\x00\x10\x00\x00"s},
        {0xfffffffe, "\xff\xff\xff\xfe"s},
    };
    for (const auto& [length, bytes] : cases) {
        char prefix[protocol::length_prefix_size];
        protocol::write_length(length, prefix);
        EXPECT_EQ(std::string(prefix, sizeof prefix), bytes) << length;
        EXPECT_EQ(protocol::read_length(bytes.data()), length) << length;
    }
    EXPECT_EQ(protocol::frame("(kickOff Left)"), "\x00\x00\x00\x0e(kickOff Left)"s);
    EXPECT_EQ(protocol::frame(""), "\x00\x00\x00\x00"s);
}

TEST(DrawingWire, CornersAreSignedBigEndianMillimetres) {
    namespace drawing = protocol::drawing;
    const drawing::Corner corner{-1.5f, 2.0f};
    unsigned char buffer[drawing::max_shape_size];
    const auto size =
        drawing::encode(drawing::Kind::point, 0x81, "p", {1, 2, 3}, &corner, 1, buffer);
    const auto* bytes = reinterpret_cast<const char*>(buffer);
    EXPECT_EQ(std::string(bytes, size), "\x10\x81\x01p\x01\x02\x03\x01"
                                        "\xff\xff\xfa\x24\x00\x00\x07\xd0"s);
}
