#include <orvo/protocol/drawing_wire.h>
#include <orvo/protocol/framing.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

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

namespace drawing = protocol::drawing;

// Corners travel as signed big-endian millimetres; a shape cut short, of an
// unknown kind or announced by a mere opening's two bytes is refused.
TEST(DrawingWire, ShapesTravelInMillimetresAndBrokenOnesAreRefused) {
    const drawing::Corner corners[] = {{-1.5f, 2.0f}, {0.0004f, -2.5f}, {-3.1234f, -10.0f}};
    unsigned char buffer[drawing::max_shape_size];
    auto size = drawing::encode(drawing::Kind::point, 0x81, "p", {1, 2, 3}, corners, 1, buffer);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(buffer), size),
              "\x10\x81\x01p\x01\x02\x03\x01"
              "\xff\xff\xfa\x24\x00\x00\x07\xd0"s);
    drawing::Shape shape;
    EXPECT_FALSE(drawing::decode(buffer, size - 1, shape));
    EXPECT_FALSE(drawing::decode(buffer, 2, shape));
    buffer[0] = 0x42;
    EXPECT_FALSE(drawing::decode(buffer, size, shape));
    const unsigned char opening[] = {0x03, 0x00, 0x81};
    EXPECT_TRUE(drawing::is_opening(opening, 3));
    EXPECT_FALSE(drawing::is_opening(opening, 2));

    size = drawing::encode(drawing::Kind::polygon, 0x85, "cell", {10, 20, 30}, corners, 3, buffer);
    EXPECT_EQ(size, 3u + 4 + 3 + 1 + 3 * 8);
    ASSERT_TRUE(drawing::decode(buffer, size, shape));
    EXPECT_EQ(shape.kind, drawing::Kind::polygon);
    EXPECT_EQ(shape.header, 0x85);
    EXPECT_EQ(shape.name, "cell");
    EXPECT_EQ(shape.colour.green, 20);
    ASSERT_EQ(shape.corners.size(), 3u);
    EXPECT_FLOAT_EQ(shape.corners[0].x, -1.5f);
    EXPECT_FLOAT_EQ(shape.corners[1].x, 0.0f);
    EXPECT_FLOAT_EQ(shape.corners[2].x, -3.123f);
    EXPECT_FLOAT_EQ(shape.corners[2].y, -10.0f);
}

TEST(DrawingWire, LimitsKeepEveryShapeInsideTheCollectorsBuffer) {
    std::vector<drawing::Corner> many(200, drawing::Corner{1, 2});
    unsigned char buffer[drawing::max_shape_size];
    const auto size = drawing::encode(drawing::Kind::polygon, 1, std::string(100, 'n'), {},
                                      many.data(), many.size(), buffer);
    EXPECT_LE(size, 512u);
    drawing::Shape shape;
    ASSERT_TRUE(drawing::decode(buffer, size, shape));
    EXPECT_EQ(shape.name.size(), drawing::max_name);
    EXPECT_EQ(shape.corners.size(), drawing::max_corners);
    // A line always carries two corners, whatever it was given.
    const auto line = drawing::encode(drawing::Kind::line, 1, "l", {}, many.data(), 1, buffer);
    ASSERT_TRUE(drawing::decode(buffer, line, shape));
    EXPECT_EQ(shape.corners.size(), 2u);
}
