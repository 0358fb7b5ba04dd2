#include <orvo/core/exception.h>
#include <orvo/math/polygon.h>

#include <algorithm>
#include <cassert>
#include <cmath>
#include <iterator>

namespace orvo {
namespace math {

namespace {

// Where the polygon reports misuse from; traces name this place whatever the
// build directory is.
constexpr const char* source_file = "math/src/polygon.cpp";
constexpr int reset_line = 40;
constexpr int update_line = 78;

// How near to a bisector, relative to the largest coordinate, a node counts as
// lying on it: some sixteen roundings of a single-precision coordinate.
constexpr double on_line_tolerance = 1e-6;

using Corner = Polygon::Corner;
using Corner_List = Polygon::Corner_List;

// Corners are updated field by field: the cut runs for every neighbour in
// every cycle and needs no temporary vectors.
void set_node(Corner& corner, float x, float y) {
    corner.first.x = x;
    corner.first.y = y;
}

// The edge from the corner's node to (x, y).
void set_edge(Corner& corner, float x, float y) {
    corner.second.x = x - corner.first.x;
    corner.second.y = y - corner.first.y;
}

double squared_distance(const Vector2d& a, const Vector2d& b) {
    const double dx = static_cast<double>(a.x) - b.x;
    const double dy = static_cast<double>(a.y) - b.y;
    return dx * dx + dy * dy;
}

bool same_corner(const Corner& a, const Corner& b) {
    return a.first.x == b.first.x && a.first.y == b.first.y && a.second.x == b.second.x &&
           a.second.y == b.second.y;
}

// A point where the bisector crosses an edge, with the corner owning that edge.
struct Crossing {
    float x;
    float y;
    Corner_List::iterator corner;
};

} // namespace

Polygon::Polygon() : area(0.0f), radius(0.0f) {}

Polygon::Polygon(const Corner_List& corners)
    : area(0.0f), corners(corners), initial_corners(corners), radius(0.0f) {}

void Polygon::set_corners(const Corner_List& corners) {
    // Copy first: `corners` may be this polygon's own list.
    Corner_List initial(corners);
    initial_corners.swap(initial);
    if (!initial_corners.empty()) {
        reset();
    }
}

Polygon::Corner_List::iterator Polygon::spare_node() {
    if (spare.empty()) {
        spare.emplace_back();
    }
    return spare.begin();
}

void Polygon::reset() {
    if (initial_corners.empty()) {
        throw LogicException(gen_ffl_string(source_file, "reset", reset_line),
                             "Reset not possible - no initial polygon existing!");
    }
    // Cells are reset and cut every cycle; their list nodes are recycled
    // through the spare list instead of going back to the allocator.
    auto from = initial_corners.begin();
    auto to = corners.begin();
    for (; from != initial_corners.end() && to != corners.end(); ++from, ++to) {
        *to = *from;
    }
    spare.splice(spare.end(), corners, to, corners.end());
    for (; from != initial_corners.end(); ++from) {
        corners.splice(corners.end(), spare, spare_node());
        corners.back() = *from;
    }
}

const Vector2d& Polygon::update(const std::vector<Vector2d>& points, const Vector2d& p) {
    if (corners.empty()) {
        throw LogicException(gen_ffl_string(source_file, "update", update_line),
                             "Update not possible - no polygon existing!");
    }
    site = p;
    // Every node lies within the radius of the last update, so a point at
    // twice that distance or more has its bisector outside the polygon. The
    // radius is deliberately the previous one: it is only refreshed below.
    const double reach = 2.0 * radius;
    // Squares decide all but the points right at the reach without a root.
    const double reach_squared = reach * reach;
    const double clearly_in = reach_squared * (1.0 - 1e-9);
    const double clearly_out = reach_squared * (1.0 + 1e-9);
    double scale = 1.0;
    for (const Corner& corner : corners) {
        scale = std::max({scale, std::fabs(static_cast<double>(corner.first.x)),
                          std::fabs(static_cast<double>(corner.first.y))});
    }
    for (const Vector2d& q : points) {
        const double d2 = squared_distance(q, site);
        if (d2 < clearly_in || (!(d2 > clearly_out) && reach > std::sqrt(d2))) {
            cut_by_bisector(q, site, scale);
        }
    }
    measure(site);
    return centroid;
}

namespace {

/// The bisector of p and q, for telling on which side of it a node lies.
class Bisector {
public:
    Bisector(const Vector2d& q, const Vector2d& p, double scale)
        : dx(static_cast<double>(q.x) - p.x), dy(static_cast<double>(q.y) - p.y),
          mx((static_cast<double>(q.x) + p.x) * 0.5), my((static_cast<double>(q.y) + p.y) * 0.5),
          on_line(on_line_tolerance * std::sqrt(dx * dx + dy * dy) * scale) {}

    /// How far a node lies on q's side of the bisector (scaled by |q - p|).
    /// Each node gets one answer, whichever of its two edges asks, so a
    /// bisector passing a node by a rounding error is found on exactly one
    /// side of it. Nodes closer than the rounding of single-precision nodes
    /// count as on the bisector: when a point is listed twice, or an update
    /// is repeated with the same points, the bisector runs along an edge it
    /// cut before, and it must find that edge parallel, not crossed at random.
    double offset(const Vector2d& node) const {
        const double s = (node.x - mx) * dx + (node.y - my) * dy;
        return std::fabs(s) <= on_line ? 0.0 : s;
    }

private:
    double dx, dy, mx, my, on_line;
};

/// The edges the bisector crosses, in list order; how many (at most two).
int find_crossings(Corner_List& corners, const Bisector& bisector, Crossing (&crossings)[2]) {
    // A convex polygon meets a line in at most two edges. An edge owns its end
    // node but not its start node, so a line through a node is found once.
    int found = 0;
    const Corner& last = corners.back();
    for (auto it = corners.begin(); it != corners.end() && found < 2; ++it) {
        const auto next = std::next(it);
        const double here = bisector.offset(it->first);
        const double there =
            bisector.offset(next == corners.end() ? corners.front().first : next->first);
        // These are the edge's and the start node's cross products with the
        // bisector's direction, so t is the edge parameter of the crossing.
        const double den = there - here;
        if (den == 0.0) {
            continue;
        }
        const double t = -here / den;
        if (t <= 0.0 || t > 1.0) {
            continue;
        }
        crossings[found].x = static_cast<float>(it->first.x + t * it->second.x);
        crossings[found].y = static_cast<float>(it->first.y + t * it->second.y);
        crossings[found].corner = it;
        ++found;
        // The next edge starts at the node just found. (The end test only
        // matters for a last corner holding a NaN, which equals nothing.)
        if (t == 1.0 && !same_corner(*it, last) && next != corners.end()) {
            ++it;
        }
    }
    return found;
}

} // namespace

void Polygon::cut_by_bisector(const Vector2d& q, const Vector2d& p, double scale) {
    Crossing crossings[2];
    if (find_crossings(corners, Bisector(q, p, scale), crossings) != 2) {
        return;
    }
    // Keep the chain on p's side: it starts at the corner whose node is
    // nearer to p (a node equally far from both belongs to q's side). That
    // node starts a crossed edge, so it is clear of the bisector.
    const Vector2d& first_node = crossings[0].corner->first;
    const bool first_on_q_side = squared_distance(first_node, q) <= squared_distance(first_node, p);
    const Crossing& from = crossings[first_on_q_side ? 1 : 0];
    const Crossing& to = crossings[first_on_q_side ? 0 : 1];

    set_edge(*from.corner, from.x, from.y);
    // The new edge along the bisector follows `from`'s corner.
    const Corner_List::iterator bridge = bridge_corner(from.corner, to.corner);
    set_node(*bridge, from.x, from.y);
    set_edge(*bridge, to.x, to.y);
    restart_at_crossing(to.corner, to.x, to.y);
}

Polygon::Corner_List::iterator Polygon::bridge_corner(Corner_List::iterator keep,
                                                      Corner_List::iterator drop) {
    // The bridge takes over the first corner the cut removes, if there is
    // one, instead of a fresh node.
    Corner_List::iterator after = std::next(keep);
    if (after == corners.end()) {
        after = corners.begin();
    }
    if (after == drop) {
        const Corner_List::iterator fresh = spare_node();
        corners.splice(after, spare, fresh);
        return fresh;
    }
    Corner_List::iterator it = std::next(after);
    if (it == corners.end()) {
        it = corners.begin();
    }
    while (it != drop) {
        const Corner_List::iterator next = std::next(it);
        spare.splice(spare.end(), corners, it);
        it = next;
        if (it == corners.end()) {
            it = corners.begin();
        }
    }
    return after;
}

void Polygon::restart_at_crossing(Corner_List::iterator drop, float x, float y) {
    // `drop` lost its node to the cut; it becomes the edge from the crossing
    // to the node that followed it, and the last corner of the list moves to
    // the front as a replacement would.
    Corner_List::iterator follower = std::next(drop);
    if (follower == corners.end()) {
        follower = corners.begin();
        corners.splice(corners.begin(), corners, drop);
    }
    set_node(*drop, x, y);
    set_edge(*drop, follower->first.x, follower->first.y);
}

void Polygon::measure(const Vector2d& p) {
    // Shoelace sums; the corners run clockwise, so the signed area is negative.
    double sum = 0.0;
    double sum_x = 0.0;
    double sum_y = 0.0;
    for (auto it = corners.begin(); it != corners.end(); ++it) {
        auto next = std::next(it);
        if (next == corners.end()) {
            next = corners.begin();
        }
        const double x0 = it->first.x;
        const double y0 = it->first.y;
        const double x1 = next->first.x;
        const double y1 = next->first.y;
        const double cross = x0 * y1 - y0 * x1;
        sum += cross;
        sum_x += (x0 + x1) * cross;
        sum_y += (y0 + y1) * cross;
    }
    const double signed_area = sum * 0.5;
    if (6.0 * signed_area != 0.0) {
        centroid = Vector2d(static_cast<float>(sum_x / (6.0 * signed_area)),
                            static_cast<float>(sum_y / (6.0 * signed_area)));
    } else {
        // A degenerate polygon has no centroid; the raw sums are kept as they
        // are, which callers can recognise by the zero area.
        centroid = Vector2d(static_cast<float>(sum_x), static_cast<float>(sum_y));
    }
    area = static_cast<float>(-signed_area);

    double farthest = 0.0;
    for (const Corner& corner : corners) {
        const double d = squared_distance(corner.first, p);
        if (d > farthest) {
            farthest = d;
        }
    }
    radius = static_cast<float>(std::sqrt(farthest));
}

std::ostream& operator<<(std::ostream& out, const Polygon& polygon) {
    const Vector2d& centroid = polygon.get_centroid();
    out << "Polygon: " << std::endl;
    out << "\tArea: " << static_cast<double>(polygon.get_area()) << std::endl;
    out << "\tCentroid: " << static_cast<double>(centroid.x) << ":"
        << static_cast<double>(centroid.y) << std::endl;
    for (const Polygon::Corner& corner : polygon.get_corners()) {
        out << "\tNode: " << static_cast<double>(corner.first.x) << ":"
            << static_cast<double>(corner.first.y)
            << " \tEdge: " << static_cast<double>(corner.second.x) << ":"
            << static_cast<double>(corner.second.y) << std::endl;
    }
    return out;
}

std::ostream& operator<<(std::ostream& out, const Polygon* polygon) {
    // A null polygon is a caller's bug, treated like every null the library
    // is handed: the program stops here rather than later.
    assert(polygon != nullptr);
    return out << *polygon;
}

} // namespace math
} // namespace orvo
