// The polygon's cell checked against the same Voronoi cell built another way:
// the initial rectangle clipped by one half-plane per other point with
// Boost.Geometry, in double precision.
#include <orvo/math/polygon.h>

// Boost.Geometry otherwise rescales coordinates to an integer grid, which
// costs it more precision than the single-precision polygon under test has.
#define BOOST_GEOMETRY_NO_ROBUSTNESS
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

using orvo::math::Polygon;
using orvo::math::Vector2d;

namespace bg = boost::geometry;

namespace {

using Point = bg::model::d2::point_xy<double>;
using Region = bg::model::polygon<Point>;
using Regions = bg::model::multi_polygon<Region>;

struct Box {
    float left, bottom, right, top;
};

Polygon::Corner_List corners_of(const Box& b) {
    const Vector2d nodes[] = {
        {b.left, b.top}, {b.right, b.top}, {b.right, b.bottom}, {b.left, b.bottom}};
    Polygon::Corner_List corners;
    for (int i = 0; i < 4; ++i) {
        const Vector2d& next = nodes[(i + 1) % 4];
        corners.emplace_back(nodes[i], Vector2d(next.x - nodes[i].x, next.y - nodes[i].y));
    }
    return corners;
}

Region region_of(const Box& b) {
    Region r;
    bg::append(r.outer(), Point(b.left, b.bottom));
    bg::append(r.outer(), Point(b.left, b.top));
    bg::append(r.outer(), Point(b.right, b.top));
    bg::append(r.outer(), Point(b.right, b.bottom));
    bg::correct(r);
    return r;
}

// The points at least as near to p as to q, as a large quadrilateral that
// covers every region of interest on p's side of the bisector.
Region half_plane(const Vector2d& p, const Vector2d& q) {
    const double dx = double(q.x) - p.x;
    const double dy = double(q.y) - p.y;
    const double norm = std::hypot(dx, dy);
    const double ux = dx / norm, uy = dy / norm;
    const double vx = -uy, vy = ux;
    const double mx = (double(q.x) + p.x) / 2, my = (double(q.y) + p.y) / 2;
    const double far = 100.0;
    Region r;
    bg::append(r.outer(), Point(mx + far * vx, my + far * vy));
    bg::append(r.outer(), Point(mx + far * vx - far * ux, my + far * vy - far * uy));
    bg::append(r.outer(), Point(mx - far * vx - far * ux, my - far * vy - far * uy));
    bg::append(r.outer(), Point(mx - far * vx, my - far * vy));
    bg::correct(r);
    return r;
}

Region clip(Region cell, const Vector2d& p, const std::vector<Vector2d>& others) {
    for (const Vector2d& q : others) {
        Regions pieces;
        bg::intersection(cell, half_plane(p, q), pieces);
        // p always stays inside its own cell, so exactly one piece remains.
        EXPECT_EQ(pieces.size(), 1u);
        if (pieces.empty()) {
            return Region();
        }
        cell = pieces.front();
    }
    return cell;
}

void expect_same_cell(const Polygon& polygon, const Region& cell, const Vector2d& p) {
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

} // namespace

TEST(VoronoiCell, SecondUpdateGivesTheCellAmongAllPoints) {
    const Box field{-15.0f, -10.0f, 15.0f, 10.0f};
    std::mt19937 gen(20240611);
    std::uniform_real_distribution<float> x(-16.0f, 16.0f);
    std::uniform_real_distribution<float> y(-11.0f, 11.0f);
    std::uniform_real_distribution<float> inside_x(-14.9f, 14.9f);
    std::uniform_real_distribution<float> inside_y(-9.9f, 9.9f);
    std::uniform_int_distribution<int> count(1, 24);
    for (int trial = 0; trial < 500; ++trial) {
        SCOPED_TRACE(trial);
        const Vector2d p(inside_x(gen), inside_y(gen));
        std::vector<Vector2d> others(count(gen));
        for (Vector2d& q : others) {
            q = Vector2d(x(gen), y(gen));
        }
        Polygon polygon(corners_of(field));
        polygon.update(others, p);
        ASSERT_FLOAT_EQ(polygon.get_area(), 600.0f); // nothing cut yet
        polygon.update(others, p);
        expect_same_cell(polygon, clip(region_of(field), p, others), p);
    }
}

TEST(VoronoiCell, LaterUpdatesAddTheirPointsToTheCut) {
    // Each update filters by the radius of the cell before it; that must
    // never drop a point that still cuts.
    const Box field{-15.0f, -10.0f, 15.0f, 10.0f};
    std::mt19937 gen(7);
    std::uniform_real_distribution<float> x(-15.0f, 15.0f);
    std::uniform_real_distribution<float> y(-10.0f, 10.0f);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        const Vector2d p(x(gen) * 0.9f, y(gen) * 0.9f);
        std::vector<Vector2d> first(8), second(8);
        for (Vector2d& q : first) {
            q = Vector2d(x(gen), y(gen));
        }
        for (Vector2d& q : second) {
            q = Vector2d(x(gen), y(gen));
        }
        Polygon polygon(corners_of(field));
        polygon.update({}, p);
        polygon.update(first, p);
        polygon.update(second, p);
        std::vector<Vector2d> all(first);
        all.insert(all.end(), second.begin(), second.end());
        expect_same_cell(polygon, clip(region_of(field), p, all), p);

        // After a reset the cell is built again from the stale radius alone.
        polygon.reset();
        const Polygon::Corner_List initial = corners_of(field);
        ASSERT_TRUE(std::equal(polygon.get_corners().begin(), polygon.get_corners().end(),
                               initial.begin(), initial.end(), [](const auto& a, const auto& b) {
                                   return a.first.x == b.first.x && a.first.y == b.first.y &&
                                          a.second.x == b.second.x && a.second.y == b.second.y;
                               }));
        polygon.update(all, p);
        expect_same_cell(polygon, clip(region_of(field), p, all), p);
    }
}

TEST(VoronoiCell, AMovedSiteIsCompletedByASecondUpdate) {
    const Box field{-15.0f, -10.0f, 15.0f, 10.0f};
    std::mt19937 gen(31);
    std::uniform_real_distribution<float> x(-15.0f, 15.0f);
    std::uniform_real_distribution<float> y(-10.0f, 10.0f);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        std::vector<Vector2d> others(21);
        for (Vector2d& q : others) {
            q = Vector2d(x(gen), y(gen));
        }
        const Vector2d before(x(gen) * 0.9f, y(gen) * 0.9f);
        const Vector2d after(x(gen) * 0.9f, y(gen) * 0.9f);
        Polygon polygon(corners_of(field));
        polygon.update(others, before);
        polygon.update(others, before);
        // The radius still belongs to the old site.
        polygon.reset();
        polygon.update(others, after);
        polygon.update(others, after);
        expect_same_cell(polygon, clip(region_of(field), after, others), after);
    }
}

TEST(VoronoiCell, RepeatedBisectorsLeaveTheCellAlone) {
    // A third update with the same arguments, and players listed twice, meet
    // bisectors that already bound the cell: rounding must not cut it away.
    const Box field{-15.0f, -10.0f, 15.0f, 10.0f};
    std::mt19937 gen(77);
    std::uniform_real_distribution<float> x(-15.0f, 15.0f);
    std::uniform_real_distribution<float> y(-10.0f, 10.0f);
    for (int trial = 0; trial < 500; ++trial) {
        SCOPED_TRACE(trial);
        std::vector<Vector2d> others(12);
        for (Vector2d& q : others) {
            q = Vector2d(x(gen), y(gen));
        }
        const Vector2d p(x(gen) * 0.9f, y(gen) * 0.9f);
        const Region expected = clip(region_of(field), p, others);

        Polygon polygon(corners_of(field));
        polygon.update(others, p);
        polygon.update(others, p);
        polygon.update(others, p);
        expect_same_cell(polygon, expected, p);

        std::vector<Vector2d> twice(others);
        twice.insert(twice.end(), others.begin(), others.end());
        polygon.reset();
        polygon.update(twice, p);
        expect_same_cell(polygon, expected, p);
    }
}

TEST(VoronoiCell, ABisectorGrazingANodeStillCuts) {
    // The bisector of p and (-13.5856342, 1.66534615) passes an earlier
    // corner of the cell 2.5e-8 away, which lies on neither adjacent edge
    // when each edge is tested on its own.
    const Box field{-15.0f, -10.0f, 15.0f, 10.0f};
    const Vector2d p(-9.573843f, -3.01691198f);
    const std::vector<Vector2d> others{
        {0.492416382f, 0.0132732391f}, {-12.4856863f, 6.90040588f}, {-1.31088161f, -0.482992172f},
        {-0.707559586f, 3.35558128f},  {14.4536247f, -8.8313036f},  {13.6909199f, 10.4742451f},
        {3.27963257f, -3.92684269f},   {-13.5856342f, 1.66534615f}, {-8.84974575f, 0.00524520874f},
        {2.88807106f, 10.8736134f},    {13.4291496f, -5.64817142f}};
    Polygon polygon(corners_of(field));
    polygon.update(others, p);
    polygon.update(others, p);
    expect_same_cell(polygon, clip(region_of(field), p, others), p);
}
