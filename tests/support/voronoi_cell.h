#ifndef ORVO_TESTS_SUPPORT_VORONOI_CELL_H
#define ORVO_TESTS_SUPPORT_VORONOI_CELL_H

// The Voronoi cell built another way than Polygon builds it: the 30 x 20
// field clipped by one half-plane per other point with Boost.Geometry, in
// double precision. The polygon tests check against it and the polygon
// benchmark races it.
#include <orvo/math/vector2d.h>

// Boost.Geometry otherwise rescales coordinates to an integer grid, which
// costs it more precision than the single-precision polygon has.
#define BOOST_GEOMETRY_NO_ROBUSTNESS
// Debian's Boost.Geometry reaches one of Boost's own deprecated headers
// through Boost.Math; the notice it prints is about Boost, not about us.
#define BOOST_ALLOW_DEPRECATED_HEADERS
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>

#include <cmath>
#include <limits>
#include <vector>

namespace orvo_test {

using Point = boost::geometry::model::d2::point_xy<double>;
using Region = boost::geometry::model::polygon<Point>;

/// The field clipped, for each q nearer to p than `reach`, to the points at
/// least as near to p as to q (a large quadrilateral on p's side of the
/// bisector). p stays inside its own cell, so every cut leaves exactly one
/// piece; should a cut ever split the cell, the result is empty.
inline Region voronoi_cell(const orvo::math::Vector2d& p,
                           const std::vector<orvo::math::Vector2d>& others,
                           double reach = std::numeric_limits<double>::infinity()) {
    namespace bg = boost::geometry;
    Region cell;
    for (const auto& [x, y] : {std::pair{-15, -10}, {-15, 10}, {15, 10}, {15, -10}, {-15, -10}}) {
        bg::append(cell.outer(), Point(x, y));
    }
    for (const orvo::math::Vector2d& q : others) {
        const double norm = std::hypot(double(q.x) - p.x, double(q.y) - p.y);
        if (!(reach > norm)) {
            continue;
        }
        const double ux = (q.x - p.x) / norm, uy = (q.y - p.y) / norm, far = 100.0;
        const double mx = (double(q.x) + p.x) / 2, my = (double(q.y) + p.y) / 2;
        Region half;
        for (const auto& [s, t] : {std::pair{1, 0}, {1, -1}, {-1, -1}, {-1, 0}}) {
            bg::append(half.outer(),
                       Point(mx - s * far * uy + t * far * ux, my + s * far * ux + t * far * uy));
        }
        bg::correct(half);
        bg::model::multi_polygon<Region> pieces;
        bg::intersection(cell, half, pieces);
        if (pieces.size() != 1) {
            return Region();
        }
        cell = pieces.front();
    }
    return cell;
}

} // namespace orvo_test

#endif
