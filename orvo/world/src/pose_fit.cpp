// Least-squares pose from landmarks and line points.
#include <orvo/world/localizer.h>

#include "angles.h"

#include <orvo/world/field.h>

#include <Eigen/Dense>

#include <cmath>

namespace orvo::world {

namespace {

using Eigen::Matrix3d;
using Eigen::Vector3d;

/// Adds one residual `r` with gradient `j` (by x, y, heading) and weight `w`
/// to the normal equations.
void add(Matrix3d& a, Vector3d& b, const Vector3d& j, double r, double w) {
    a.noalias() += w * j * j.transpose();
    b.noalias() -= w * r * j;
}

} // namespace

bool pose_from_landmarks(const Sightings& seen, perception::Side side, Pose& out) {
    // The two seen landmarks furthest apart fix the heading best.
    int first = -1, second = -1;
    double widest = 0;
    for (int i = 0; i < static_cast<int>(perception::landmark_count); ++i)
        for (int k = i + 1; k < static_cast<int>(perception::landmark_count); ++k) {
            const auto a = static_cast<perception::Landmark>(i);
            const auto b = static_cast<perception::Landmark>(k);
            if (!seen.sees(a) || !seen.sees(b))
                continue;
            const field::Point3 pa = field::landmark(a, side);
            const field::Point3 pb = field::landmark(b, side);
            const double apart = std::hypot(pa.x - pb.x, pa.y - pb.y);
            if (apart > widest) {
                widest = apart;
                first = i;
                second = k;
            }
        }
    if (first < 0)
        return false;
    const auto a = static_cast<perception::Landmark>(first);
    const auto b = static_cast<perception::Landmark>(second);
    const field::Point3 pa = field::landmark(a, side);
    const field::Point3 pb = field::landmark(b, side);
    const GroundPoint& ma = seen[a];
    const GroundPoint& mb = seen[b];
    const double h =
        wrap(std::atan2(pb.y - pa.y, pb.x - pa.x) - std::atan2(mb.y - ma.y, mb.x - ma.x));
    const double c = std::cos(h);
    const double s = std::sin(h);
    // Each landmark places the robot; the mean of both halves the noise.
    out.x = (pa.x - (c * ma.x - s * ma.y) + pb.x - (c * mb.x - s * mb.y)) / 2;
    out.y = (pa.y - (s * ma.x + c * ma.y) + pb.y - (s * mb.x + c * mb.y)) / 2;
    out.heading_deg = h / radians_per_degree;
    out.sigma_m = 0;
    out.sigma_deg = 0;
    return true;
}

Pose fit_pose(const Pose& start, const Sightings& seen, const WorldParams& params,
              perception::Side side) {
    Vector3d pose(start.x, start.y, start.heading_deg * radians_per_degree);
    const Vector3d prior = pose;
    const double prior_turn = params.fit_prior_deg * radians_per_degree;
    const double gate = params.outlier_sigmas * params.line_sigma_m;
    Matrix3d a;
    for (int round = 0; round < params.fit_iterations; ++round) {
        a.setZero();
        Vector3d b = Vector3d::Zero();
        const double c = std::cos(pose.z());
        const double s = std::sin(pose.z());
        for (int k = 0; k < 3; ++k) {
            const double scale = k < 2 ? params.fit_prior_m : prior_turn;
            const double r = k < 2 ? pose[k] - prior[k] : wrap(pose[k] - prior[k]);
            add(a, b, Vector3d::Unit(k), r, 1 / (scale * scale));
        }
        for (std::size_t i = 0; i < perception::landmark_count; ++i) {
            const auto which = static_cast<perception::Landmark>(i);
            if (!seen.sees(which))
                continue;
            const field::Point3 mark = field::landmark(which, side);
            const GroundPoint& m = seen[which];
            const double rx = c * m.x - s * m.y; // the sighting turned into the field frame
            const double ry = s * m.x + c * m.y;
            const double sigma =
                params.distance_sigma_m + params.distance_sigma_share * std::hypot(m.x, m.y);
            const double w = 1 / (sigma * sigma);
            add(a, b, Vector3d(1, 0, -ry), pose.x() + rx - mark.x, w);
            add(a, b, Vector3d(0, 1, rx), pose.y() + ry - mark.y, w);
        }
        const double w = 1 / (params.line_sigma_m * params.line_sigma_m);
        for (std::size_t i = 0; i < seen.line_point_count; ++i) {
            const GroundPoint& m = seen.line_points[i];
            const double rx = c * m.x - s * m.y;
            const double ry = s * m.x + c * m.y;
            const field::Nearest near = field::nearest_line(pose.x() + rx, pose.y() + ry);
            if (near.distance > gate || near.distance < 1e-9)
                continue;
            const double nx = (pose.x() + rx - near.x) / near.distance;
            const double ny = (pose.y() + ry - near.y) / near.distance;
            add(a, b, Vector3d(nx, ny, -nx * ry + ny * rx), near.distance, w);
        }
        const Eigen::LDLT<Matrix3d> solver(a);
        pose += solver.solve(b);
        pose.z() = wrap(pose.z());
    }
    Pose out{pose.x(), pose.y(), pose.z() / radians_per_degree, start.sigma_m, start.sigma_deg};
    if (params.fit_iterations > 0) {
        const Matrix3d spread = a.inverse();
        out.sigma_m = std::sqrt(spread(0, 0) + spread(1, 1));
        out.sigma_deg = std::sqrt(spread(2, 2)) / radians_per_degree;
    }
    return out;
}

} // namespace orvo::world
