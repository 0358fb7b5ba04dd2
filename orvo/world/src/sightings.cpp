#include <orvo/world/sightings.h>

#include <bitset>
#include <cmath>

namespace orvo::world {

namespace {

constexpr double radians_per_degree = M_PI / 180.0;
/// A positive neck pitch angle lowers the camera's view.
constexpr double pitch_down_sign = -1.0;

bool finite(const math::Polar& p) {
    return std::isfinite(p.distance) && std::isfinite(p.azimuth) && std::isfinite(p.elevation);
}

struct NeckTurn {
    double cy, sy, cp, sp, ct, st;
    NeckTurn(double yaw_deg, double pitch_deg, double torso_pitch_deg)
        : cy(std::cos(yaw_deg * radians_per_degree)), sy(std::sin(yaw_deg * radians_per_degree)),
          cp(std::cos(pitch_down_sign * pitch_deg * radians_per_degree)),
          sp(std::sin(pitch_down_sign * pitch_deg * radians_per_degree)),
          ct(std::cos(-pitch_down_sign * torso_pitch_deg * radians_per_degree)),
          st(std::sin(-pitch_down_sign * torso_pitch_deg * radians_per_degree)) {}

    GroundPoint apply(const math::Polar& seen) const {
        const double d = seen.distance;
        const double h = seen.azimuth * radians_per_degree;
        const double v = seen.elevation * radians_per_degree;
        // Camera frame: forward, left, up.
        const double f = d * std::cos(v) * std::cos(h);
        const double l = d * std::cos(v) * std::sin(h);
        const double u = d * std::sin(v);
        // Undo the neck's pitch (about the left axis), its yaw (about up),
        // then the torso's forward lean (about its left axis), which lowers
        // the view as a positive neck pitch raises it.
        const double f1 = cp * f + sp * u;
        const double u1 = -sp * f + cp * u;
        const double f2 = cy * f1 - sy * l;
        return {ct * f2 + st * u1, sy * f1 + cy * l};
    }
};

} // namespace

std::size_t Sightings::landmark_count() const {
    return std::bitset<8>(landmarks_seen).count();
}

GroundPoint to_ground(const math::Polar& seen, double neck_yaw_deg, double neck_pitch_deg,
                      double torso_pitch_deg) {
    return NeckTurn(neck_yaw_deg, neck_pitch_deg, torso_pitch_deg).apply(seen);
}

void Sightings::read(const perception::Vision& vision, double neck_yaw_deg, double neck_pitch_deg,
                     double torso_pitch_deg) {
    const NeckTurn turn(neck_yaw_deg, neck_pitch_deg, torso_pitch_deg);
    landmarks_seen = 0;
    for (std::size_t i = 0; i < perception::landmark_count; ++i) {
        const auto which = static_cast<perception::Landmark>(i);
        if (vision.sees(which) && finite(vision[which])) {
            landmarks[i] = turn.apply(vision[which]);
            landmarks_seen |= static_cast<std::uint8_t>(1u << i);
        }
    }
    sees_ball = vision.sees_ball && finite(vision.ball);
    if (sees_ball)
        ball = turn.apply(vision.ball);
    line_point_count = 0;
    auto add = [this](const GroundPoint& p) {
        if (line_point_count < max_line_points)
            line_points[line_point_count++] = p;
    };
    for (const perception::SeenLine& line : vision.lines) {
        if (!finite(line.begin) || !finite(line.end))
            continue;
        const GroundPoint a = turn.apply(line.begin);
        const GroundPoint b = turn.apply(line.end);
        add(a);
        add(b);
        // The middle of a long stretch lies on its line too and pins it down
        // better than its ends alone; short ones (circle pieces, a line's
        // corner in view) gain nothing from it.
        if ((a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y) > 4.0)
            add({(a.x + b.x) / 2, (a.y + b.y) / 2});
    }
}

} // namespace orvo::world
