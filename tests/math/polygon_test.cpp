#include <orvo/core/exception.h>
#include <orvo/math/polygon.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <sstream>
#include <vector>

using orvo::math::Polygon;
using orvo::math::Vector2d;

namespace {

// Corners from nodes listed clockwise; each edge leads to the next node.
Polygon::Corner_List corners_of(const std::vector<Vector2d>& nodes) {
    Polygon::Corner_List corners;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const Vector2d& next = nodes[(i + 1) % nodes.size()];
        corners.emplace_back(nodes[i], Vector2d(next.x - nodes[i].x, next.y - nodes[i].y));
    }
    return corners;
}

Polygon::Corner_List square() {
    return corners_of({{0, 10}, {10, 10}, {10, 0}, {0, 0}});
}

// Every edge must still lead from its node to the next one after cutting.
void expect_closed_chain(const Polygon& polygon) {
    const auto& corners = polygon.get_corners();
    for (auto it = corners.begin(); it != corners.end(); ++it) {
        auto next = std::next(it) == corners.end() ? corners.begin() : std::next(it);
        EXPECT_NEAR(it->first.x + it->second.x, next->first.x, 1e-5);
        EXPECT_NEAR(it->first.y + it->second.y, next->first.y, 1e-5);
    }
}

bool same_corners(const Polygon::Corner_List& a, const Polygon::Corner_List& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& u, const auto& v) {
        return u.first.x == v.first.x && u.first.y == v.first.y && u.second.x == v.second.x &&
               u.second.y == v.second.y;
    });
}

const std::vector<Vector2d> no_points;

} // namespace

TEST(Polygon, EmptyPolygonRefusesResetAndUpdate) {
    Polygon polygon;
    try {
        polygon.reset();
        ADD_FAILURE() << "reset of an empty polygon accepted";
    } catch (const orvo::LogicException& e) {
        EXPECT_EQ(e.get_source(), "math/src/polygon.cpp: In function 'reset' (line 40): ");
        EXPECT_EQ(e.get_message(), "Reset not possible - no initial polygon existing!");
        EXPECT_EQ(e.get_type(), "LogicException");
    }
    try {
        polygon.update(no_points, Vector2d(1, 2));
        ADD_FAILURE() << "update of an empty polygon accepted";
    } catch (const orvo::LogicException& e) {
        EXPECT_EQ(e.get_source(), "math/src/polygon.cpp: In function 'update' (line 78): ");
        EXPECT_EQ(e.get_message(), "Update not possible - no polygon existing!");
    }
    EXPECT_EQ(polygon.get_site().x, 0.0f);
    EXPECT_EQ(polygon.get_area(), 0.0f);
    EXPECT_EQ(Polygon(Polygon::Corner_List()).get_corners().size(), 0u);
}

TEST(Polygon, FirstUpdateMeasuresWithoutCutting) {
    Polygon polygon(square());
    EXPECT_EQ(polygon.get_radius(), 0.0f);
    // The radius is still 0, so even a point right next to the site is ignored.
    const std::vector<Vector2d> neighbour{{5.5f, 5.0f}};
    const Vector2d& centroid = polygon.update(neighbour, Vector2d(5, 5));
    EXPECT_EQ(&centroid, &polygon.get_centroid());
    EXPECT_EQ(polygon.get_area(), 100.0f);
    EXPECT_EQ(centroid.x, 5.0f);
    EXPECT_EQ(centroid.y, 5.0f);
    EXPECT_FLOAT_EQ(polygon.get_radius(), std::sqrt(50.0f));
    EXPECT_EQ(polygon.get_corners().size(), 4u);

    polygon.update(neighbour, Vector2d(5, 5));
    EXPECT_NEAR(polygon.get_area(), 52.5f, 1e-4);
    EXPECT_NEAR(polygon.get_centroid().x, 2.625f, 1e-5);
}

TEST(Polygon, BisectorBetweenTwoPointsHalvesTheSquare) {
    Polygon polygon(square());
    const std::vector<Vector2d> other{{8, 5}};
    polygon.update(other, Vector2d(2, 5));
    polygon.update(other, Vector2d(2, 5));
    EXPECT_FLOAT_EQ(polygon.get_area(), 50.0f);
    EXPECT_FLOAT_EQ(polygon.get_centroid().x, 2.5f);
    EXPECT_FLOAT_EQ(polygon.get_centroid().y, 5.0f);
    for (const auto& corner : polygon.get_corners()) {
        EXPECT_LE(corner.first.x, 5.0f);
    }
    EXPECT_EQ(polygon.get_corners().size(), 4u);
    expect_closed_chain(polygon);
    EXPECT_FLOAT_EQ(polygon.get_radius(), std::hypot(3.0f, 5.0f));
}

TEST(Polygon, PointAtExactlyTwiceTheRadiusIsIgnored) {
    // The site (0, 0) is 5 from every node, so the radius becomes exactly 5.
    Polygon polygon(corners_of({{-3, 4}, {3, 4}, {3, -4}, {-3, -4}}));
    polygon.update(no_points, Vector2d(0, 0));
    ASSERT_EQ(polygon.get_radius(), 5.0f);

    // From a new site on the left edge the bisector with (7, 0) would cross
    // the polygon at x = 2, but the stale radius rules the point out.
    polygon.update({{7, 0}}, Vector2d(-3, 0));
    EXPECT_EQ(polygon.get_area(), 48.0f);

    polygon.reset();
    polygon.update({{6.5f, 0}}, Vector2d(-3, 0));
    EXPECT_FLOAT_EQ(polygon.get_area(), 8.0f * 4.75f);
}

TEST(Polygon, BisectorThroughNodesCutsAlongTheDiagonal) {
    // The bisector of (2, 2) and (8, 8) runs through the nodes (0, 10) and
    // (10, 0); each must be taken once, leaving the lower left triangle.
    Polygon polygon(square());
    const std::vector<Vector2d> other{{8, 8}};
    polygon.update(other, Vector2d(2, 2));
    polygon.update(other, Vector2d(2, 2));
    EXPECT_FLOAT_EQ(polygon.get_area(), 50.0f);
    EXPECT_FLOAT_EQ(polygon.get_centroid().x, 10.0f / 3.0f);
    EXPECT_FLOAT_EQ(polygon.get_centroid().y, 10.0f / 3.0f);
    expect_closed_chain(polygon);
    for (const auto& corner : polygon.get_corners()) {
        EXPECT_LE(corner.first.x + corner.first.y, 10.0f);
    }
}

TEST(Polygon, CutsAccumulateUntilReset) {
    Polygon polygon(square());
    const Vector2d p(5, 5);
    polygon.update(no_points, p);
    polygon.update({{9, 5}}, p); // keeps x <= 7
    polygon.update({{5, 1}}, p); // keeps y >= 3
    EXPECT_FLOAT_EQ(polygon.get_area(), 7.0f * 7.0f);
    EXPECT_FLOAT_EQ(polygon.get_centroid().x, 3.5f);
    EXPECT_FLOAT_EQ(polygon.get_centroid().y, 6.5f);
    expect_closed_chain(polygon);

    const float area = polygon.get_area();
    const float radius = polygon.get_radius();
    polygon.reset();
    EXPECT_TRUE(same_corners(polygon.get_corners(), square()));
    EXPECT_EQ(polygon.get_area(), area);
    EXPECT_EQ(polygon.get_radius(), radius);
    EXPECT_EQ(polygon.get_site().x, 5.0f);
}

TEST(Polygon, ACutEndingOnTheLastCornerMovesItToTheFront) {
    Polygon polygon(corners_of({{10, 10}, {10, 0}, {0, 0}, {0, 10}}));
    // (5, 12) keeps y <= 9; then (-1, 6) keeps x >= 2, and its second
    // crossing lies on the closing edge, the last corner of the list.
    const std::vector<Vector2d> others{{5, 12}, {-1, 6}};
    polygon.update(others, Vector2d(5, 6));
    polygon.update(others, Vector2d(5, 6));
    EXPECT_FLOAT_EQ(polygon.get_area(), 8.0f * 9.0f);
    EXPECT_FLOAT_EQ(polygon.get_centroid().x, 6.0f);
    EXPECT_FLOAT_EQ(polygon.get_centroid().y, 4.5f);
    expect_closed_chain(polygon);
    const auto& front = polygon.get_corners().front();
    EXPECT_EQ(front.first.x, 2.0f);
    EXPECT_EQ(front.first.y, 9.0f);
    EXPECT_EQ(front.second.x, 8.0f);
    EXPECT_EQ(front.second.y, 0.0f);
}

TEST(Polygon, SetCornersReplacesTheInitialPolygonAndIgnoresAnEmptyList) {
    Polygon polygon;
    polygon.set_corners(square());
    EXPECT_TRUE(same_corners(polygon.get_corners(), square()));
    polygon.update(no_points, Vector2d(1, 1));
    const float radius = polygon.get_radius();

    polygon.set_corners(Polygon::Corner_List());
    EXPECT_TRUE(same_corners(polygon.get_corners(), square()));
    EXPECT_EQ(polygon.get_radius(), radius);
    EXPECT_THROW(polygon.reset(), orvo::LogicException);

    // Setting the corners from the polygon's own list is safe.
    polygon.set_corners(polygon.get_corners());
    EXPECT_NO_THROW(polygon.reset());
}

TEST(Polygon, DegeneratePolygonsHaveZeroAreaAndAnUndividedCentroid) {
    Polygon point(corners_of({{3, 4}}));
    point.update(no_points, Vector2d(0, 0));
    EXPECT_EQ(point.get_area(), 0.0f);
    EXPECT_EQ(point.get_radius(), 5.0f);

    // A bow tie encloses as much clockwise as anticlockwise.
    Polygon bow_tie(corners_of({{0, 0}, {2, 2}, {2, 0}, {0, 2}}));
    bow_tie.update(no_points, Vector2d(0, 0));
    EXPECT_EQ(bow_tie.get_area(), 0.0f);
    EXPECT_EQ(bow_tie.get_centroid().x, -8.0f);
    EXPECT_EQ(bow_tie.get_centroid().y, 0.0f);
}

TEST(Polygon, NaNsAreIgnoredOrStayContained) {
    Polygon polygon(square());
    polygon.update(no_points, Vector2d(2, 2));
    polygon.update({{std::nanf(""), 8}}, Vector2d(2, 2));
    EXPECT_EQ(polygon.get_area(), 100.0f);

    // A corrupt closing edge must not lead the scan past the end of the list.
    auto corners = square();
    corners.back().second.y = std::nanf("");
    Polygon corrupt(corners);
    corrupt.update(no_points, Vector2d(2, 2));
    corrupt.update({{8, 8}}, Vector2d(2, 2));
    EXPECT_LE(corrupt.get_corners().size(), 6u);
}

TEST(Polygon, DumpListsAreaCentroidAndCorners) {
    Polygon polygon(corners_of({{0, 10}, {10, 10}, {10, 0}, {0, 0}}));
    polygon.update(no_points, Vector2d(5, 5));
    const std::string expected = "Polygon: \n"
                                 "\tArea: 100\n"
                                 "\tCentroid: 5:5\n"
                                 "\tNode: 0:10 \tEdge: 10:0\n"
                                 "\tNode: 10:10 \tEdge: 0:-10\n"
                                 "\tNode: 10:0 \tEdge: -10:0\n"
                                 "\tNode: 0:0 \tEdge: 0:10\n";
    std::ostringstream by_reference;
    by_reference << polygon;
    EXPECT_EQ(by_reference.str(), expected);
    std::ostringstream by_pointer;
    by_pointer << &polygon;
    EXPECT_EQ(by_pointer.str(), expected);
}
