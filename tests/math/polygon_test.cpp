// The polygon on hand-checked cases, and its cell checked against the same
// Voronoi cell built another way (support/voronoi_cell.h).
#include <orvo/math/polygon.h>

#include <gtest/gtest.h>
#include <support/voronoi_cell.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <random>
#include <vector>

using orvo::math::Polygon;
using orvo::math::Vector2d;
namespace bg = boost::geometry;

namespace {

using orvo_test::Point;
using orvo_test::Region;
using orvo_test::voronoi_cell;

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
Polygon::Corner_List field() {
    return corners_of({{-15, 10}, {15, 10}, {15, -10}, {-15, -10}});
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

void expect_same_cell(const Polygon& polygon, const Region& cell, const Vector2d& p,
                      const char* stage = "") {
    SCOPED_TRACE(stage);
    const double area = bg::area(cell);
    Point centroid;
    bg::centroid(cell, centroid);
    double radius = 0.0;
    for (const Point& node : cell.outer()) {
        radius = std::max(radius, std::hypot(node.x() - p.x, node.y() - p.y));
    }
    // A few float roundings on coordinates of at most 16 in magnitude.
    EXPECT_NEAR(polygon.get_area(), area, 1e-6 * std::max(1.0, area));
    EXPECT_NEAR(polygon.get_centroid().x, centroid.x(), 4e-6);
    EXPECT_NEAR(polygon.get_centroid().y, centroid.y(), 4e-6);
    EXPECT_NEAR(polygon.get_radius(), radius, 4e-6);
}

const std::vector<Vector2d> no_points;

} // namespace

TEST(Polygon, SquareCases) {
    // Half the square, and a bisector through the nodes (0, 10) and (10, 0),
    // each of which must be taken once.
    const struct {
        Vector2d p, q;
        Vector2d centroid;
    } cases[] = {{{2, 5}, {8, 5}, {2.5f, 5}}, {{2, 2}, {8, 8}, {10.0f / 3, 10.0f / 3}}};
    for (const auto& c : cases) {
        Polygon polygon(square());
        polygon.update({c.q}, c.p);
        polygon.update({c.q}, c.p);
        EXPECT_FLOAT_EQ(polygon.get_area(), 50.0f);
        EXPECT_FLOAT_EQ(polygon.get_centroid().x, c.centroid.x);
        EXPECT_FLOAT_EQ(polygon.get_centroid().y, c.centroid.y);
        // Through a node, the cut keeps that node twice with an empty edge between.
        EXPECT_EQ(polygon.get_corners().size(), 4u);
        expect_closed_chain(polygon);
    }
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

TEST(VoronoiCell, EveryUpdateSequenceGivesTheCellAmongAllPoints) {
    std::mt19937 gen(20240611);
    // Others may lie outside the field; sites stay inside it.
    std::uniform_real_distribution<float> x(-16.0f, 16.0f), y(-11.0f, 11.0f);
    std::uniform_int_distribution<int> count(1, 24);
    const auto site = [&] { return Vector2d(x(gen) * 0.9f, y(gen) * 0.85f); };
    const auto points = [&](int n) {
        std::vector<Vector2d> v(n);
        std::generate(v.begin(), v.end(), [&] { return Vector2d(x(gen), y(gen)); });
        return v;
    };
    for (int trial = 0; trial < 500; ++trial) {
        SCOPED_TRACE(trial);
        const Vector2d p = site(), moved = site();
        const std::vector<Vector2d> others = points(count(gen)), more = points(8);
        const Region cell = voronoi_cell(p, others);
        Polygon polygon(field());
        polygon.update(others, p);
        ASSERT_FLOAT_EQ(polygon.get_area(), 600.0f); // nothing cut yet
        polygon.update(others, p);
        expect_same_cell(polygon, cell, p, "stage 1");
        // Bisectors that already bound the cell, met again in a third update
        // or by players listed twice, must not cut it away through rounding.
        polygon.update(others, p);
        expect_same_cell(polygon, cell, p, "stage 2");
        std::vector<Vector2d> all(others);
        all.insert(all.end(), others.begin(), others.end());
        polygon.reset();
        polygon.update(all, p);
        all.resize(others.size());
        expect_same_cell(polygon, cell, p, "stage 3");
        // A later update filters by the radius of the cell before it; that
        // must never drop a point that still cuts.
        polygon.update(more, p);
        all.insert(all.end(), more.begin(), more.end());
        expect_same_cell(polygon, voronoi_cell(p, all), p, "stage 4");
        // After a reset the radius still belongs to the old site; a second
        // update completes the moved site's cell.
        polygon.reset();
        EXPECT_TRUE(same_corners(polygon.get_corners(), field()));
        polygon.update(all, moved);
        polygon.update(all, moved);
        expect_same_cell(polygon, voronoi_cell(moved, all), moved, "stage 5");
    }
}

TEST(VoronoiCell, ABisectorGrazingANodeStillCuts) {
    // The bisector of p and (-13.5856342, 1.66534615) passes an earlier
    // corner of the cell 2.5e-8 away, which lies on neither adjacent edge
    // when each edge is tested on its own.
    const Vector2d p(-9.573843f, -3.01691198f);
    const std::vector<Vector2d> others{
        {0.492416382f, 0.0132732391f}, {-12.4856863f, 6.90040588f}, {-1.31088161f, -0.482992172f},
        {-0.707559586f, 3.35558128f},  {14.4536247f, -8.8313036f},  {13.6909199f, 10.4742451f},
        {3.27963257f, -3.92684269f},   {-13.5856342f, 1.66534615f}, {-8.84974575f, 0.00524520874f},
        {2.88807106f, 10.8736134f},    {13.4291496f, -5.64817142f}};
    Polygon polygon(field());
    polygon.update(others, p);
    polygon.update(others, p);
    expect_same_cell(polygon, voronoi_cell(p, others), p);
}
