#include <orvo/world/field.h>

#include <cmath>
#include <limits>

namespace orvo::world::field {

namespace {

using perception::Landmark;

std::array<Segment, segment_count> make_segments() {
    const double hl = half_length;
    const double hw = half_width;
    const double px = half_length - penalty_length;
    const double pw = penalty_half_width;
    std::array<Segment, segment_count> s{{
        {0, -hw, 0, hw},     // half-way line
        {hl, -hw, hl, hw},   // goal lines
        {-hl, -hw, -hl, hw}, //
        {-hl, hw, hl, hw},   // side lines
        {-hl, -hw, hl, -hw}, //
        {px, -pw, px, pw},   // penalty boxes
        {px, pw, hl, pw},    //
        {px, -pw, hl, -pw},  //
        {-px, -pw, -px, pw}, //
        {-px, pw, -hl, pw},  //
        {-px, -pw, -hl, -pw},
    }};
    const double step = 2 * M_PI / centre_circle_pieces;
    for (std::size_t i = 0; i < centre_circle_pieces; ++i) {
        const double a = step * static_cast<double>(i);
        const double b = a + step;
        s[11 + i] = {centre_circle_radius * std::cos(a), centre_circle_radius * std::sin(a),
                     centre_circle_radius * std::cos(b), centre_circle_radius * std::sin(b)};
    }
    return s;
}

} // namespace

Point3 landmark(Landmark which, perception::Side side) {
    Point3 p;
    switch (which) {
    case Landmark::F1L:
        p = {-half_length, half_width, 0};
        break;
    case Landmark::F2L:
        p = {-half_length, -half_width, 0};
        break;
    case Landmark::F1R:
        p = {half_length, half_width, 0};
        break;
    case Landmark::F2R:
        p = {half_length, -half_width, 0};
        break;
    case Landmark::G1L:
        p = {-half_length, goal_width / 2, goal_marker_height};
        break;
    case Landmark::G2L:
        p = {-half_length, -goal_width / 2, goal_marker_height};
        break;
    case Landmark::G1R:
        p = {half_length, goal_width / 2, goal_marker_height};
        break;
    case Landmark::G2R:
        p = {half_length, -goal_width / 2, goal_marker_height};
        break;
    }
    if (side == perception::Side::right) {
        p.x = -p.x;
        p.y = -p.y;
    }
    return p;
}

const std::array<Segment, segment_count>& segments() {
    static const std::array<Segment, segment_count> all = make_segments();
    return all;
}

namespace {

/// The nearest point of `s` to (x, y) and its squared distance.
double squared_to(const Segment& s, double x, double y, double& cx, double& cy) {
    const double dx = s.x2 - s.x1;
    const double dy = s.y2 - s.y1;
    double t = ((x - s.x1) * dx + (y - s.y1) * dy) / (dx * dx + dy * dy);
    t = t < 0 ? 0 : (t > 1 ? 1 : t);
    cx = s.x1 + t * dx;
    cy = s.y1 + t * dy;
    return (x - cx) * (x - cx) + (y - cy) * (y - cy);
}

} // namespace

Nearest nearest_on(std::size_t segment, double x, double y) {
    double cx = 0, cy = 0;
    const double squared = squared_to(segments()[segment], x, y, cx, cy);
    return {std::sqrt(squared), cx, cy, segment};
}

Nearest nearest_line(double x, double y) {
    const auto& all = segments();
    double best = std::numeric_limits<double>::infinity(), bx = 0, by = 0;
    std::size_t which = 0;
    for (std::size_t i = 0; i < segment_count; ++i) {
        double cx = 0, cy = 0;
        const double squared = squared_to(all[i], x, y, cx, cy);
        if (squared < best) {
            best = squared;
            bx = cx;
            by = cy;
            which = i;
        }
    }
    return {std::sqrt(best), bx, by, which};
}

} // namespace orvo::world::field
