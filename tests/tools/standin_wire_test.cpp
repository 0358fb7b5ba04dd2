#include "commands.h"
#include <orvo/protocol/drawing_wire.h>

#include <gtest/gtest.h>

namespace {

using orvo::protocol::drawing::Corner;
using orvo::protocol::drawing::Kind;

/// A wire fixture: one encoding buffer and one decoded shape.
struct DrawingWire : ::testing::Test {
    unsigned char buffer[orvo::protocol::drawing::max_shape_size];
    orvo::protocol::drawing::Shape shape;
};

TEST_F(DrawingWire, PolygonSurvivesTheRoundTripToTheMillimetre) {
    const Corner corners[] = {{-15.0f, 10.0f}, {0.0004f, -2.5f}, {-3.1234f, -10.0f}};
    const auto size = orvo::protocol::drawing::encode(Kind::polygon, 0x85, "cell", {10, 20, 30},
                                                      corners, 3, buffer);
    EXPECT_EQ(size, 3u + 4 + 3 + 1 + 3 * 8);

    ASSERT_TRUE(orvo::protocol::drawing::decode(buffer, size, shape));
    EXPECT_EQ(shape.kind, Kind::polygon);
    EXPECT_EQ(shape.header, 0x85);
    EXPECT_EQ(shape.name, "cell");
    EXPECT_EQ(shape.colour.green, 20);
    ASSERT_EQ(shape.corners.size(), 3u);
    EXPECT_FLOAT_EQ(shape.corners[0].x, -15.0f);
    EXPECT_FLOAT_EQ(shape.corners[1].x, 0.0f);
    EXPECT_FLOAT_EQ(shape.corners[2].x, -3.123f);
    EXPECT_FLOAT_EQ(shape.corners[2].y, -10.0f);
}

TEST_F(DrawingWire, LimitsKeepEveryShapeInsideTheCollectorsBuffer) {
    std::vector<Corner> many(200, Corner{1, 2});
    const std::string long_name(100, 'n');
    const auto size = orvo::protocol::drawing::encode(Kind::polygon, 1, long_name, {}, many.data(),
                                                      many.size(), buffer);
    EXPECT_LE(size, 512u);
    ASSERT_TRUE(orvo::protocol::drawing::decode(buffer, size, shape));
    EXPECT_EQ(shape.name.size(), orvo::protocol::drawing::max_name);
    EXPECT_EQ(shape.corners.size(), orvo::protocol::drawing::max_corners);

    // A line always carries two corners, whatever it was given.
    const auto line =
        orvo::protocol::drawing::encode(Kind::line, 1, "l", {}, many.data(), 1, buffer);
    ASSERT_TRUE(orvo::protocol::drawing::decode(buffer, line, shape));
    EXPECT_EQ(shape.corners.size(), 2u);
}

TEST_F(DrawingWire, MalformedDatagramsAreRejected) {
    const Corner corner{1, 1};
    const auto size = orvo::protocol::drawing::encode(Kind::point, 1, "me", {}, &corner, 1, buffer);
    EXPECT_FALSE(orvo::protocol::drawing::decode(buffer, size - 1, shape));
    EXPECT_FALSE(orvo::protocol::drawing::decode(buffer, 2, shape));
    buffer[0] = 0x42;
    EXPECT_FALSE(orvo::protocol::drawing::decode(buffer, size, shape));

    const unsigned char opening[] = {0x03, 0x00, 0x81};
    EXPECT_TRUE(orvo::protocol::drawing::is_opening(opening, 3));
    EXPECT_FALSE(orvo::protocol::drawing::is_opening(opening, 2));
}

} // namespace
