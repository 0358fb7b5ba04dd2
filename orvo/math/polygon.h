#ifndef ORVO_MATH_POLYGON_H
#define ORVO_MATH_POLYGON_H

#include <orvo/core/export.h>
#include <orvo/math/vector2d.h>

#include <list>
#include <ostream>
#include <utility>
#include <vector>

namespace orvo {
namespace math {

/// A convex region of the plane that update() cuts down to the Voronoi cell
/// of one point among others, e.g. the part of the field a player is nearest
/// to. The corners run clockwise (y up); each corner is its node and the edge
/// vector from that node to the next one, the last edge closing the loop.
///
/// update() considers only points closer to the site than twice the radius
/// left by the previous update(), so the very first update() of a polygon cuts
/// nothing: it only establishes area, centroid and radius. reset() and
/// set_corners() keep the radius.
class ORVO_API Polygon {
public:
    /// Node first, then the edge to the next node.
    using Corner = std::pair<Vector2d, Vector2d>;
    using Corner_List = std::list<Corner>;

    /// Empty: reset() and update() throw until set_corners() is given corners.
    Polygon();
    /// Starts from a copy of `corners`; an empty list leaves the polygon empty.
    explicit Polygon(const Corner_List& corners);

    /// Makes `corners` the polygon that reset() restores, and restores it. An
    /// empty list keeps the current polygon. Area, centroid, site and radius
    /// keep their values.
    void set_corners(const Corner_List& corners);
    /// Undoes every cut since the corners were set; throws LogicException when
    /// no initial polygon was given. Area, centroid, site and radius keep their
    /// values.
    void reset();
    /// Cuts away, for every point near enough to `p`, the part of the polygon
    /// closer to that point than to `p`, then recomputes area, centroid and
    /// radius. Cuts accumulate until reset(). Throws LogicException when the
    /// polygon is empty.
    const Vector2d& update(const std::vector<Vector2d>& points, const Vector2d& p);

    const float& get_area() const { return area; }
    const Vector2d& get_centroid() const { return centroid; }
    /// The largest distance from the site to a node, as of the last update().
    const float& get_radius() const { return radius; }
    const Vector2d& get_site() const { return site; }
    const Corner_List& get_corners() const { return corners; }

private:
    /// `scale` bounds the magnitude of the node coordinates.
    void cut_by_bisector(const Vector2d& q, const Vector2d& p, double scale);
    /// Removes the corners strictly between `keep` and `drop`; returns the
    /// corner that follows `keep` afterwards, a recycled or spare one.
    Corner_List::iterator bridge_corner(Corner_List::iterator keep, Corner_List::iterator drop);
    /// `drop` starts at the crossing (x, y) and leads to the node after it.
    void restart_at_crossing(Corner_List::iterator drop, float x, float y);
    void measure(const Vector2d& p);
    /// A node of the spare list, made if there is none.
    Corner_List::iterator spare_node();

    Vector2d site;
    float area;
    Vector2d centroid;
    Corner_List corners;
    Corner_List initial_corners;
    float radius;
    // List nodes that cuts and resets have given up, kept for the next ones.
    Corner_List spare;
};

/// Writes area, centroid and every corner, one per line.
ORVO_API std::ostream& operator<<(std::ostream& out, const Polygon& polygon);
ORVO_API std::ostream& operator<<(std::ostream& out, const Polygon* polygon);

} // namespace math
} // namespace orvo

#endif
