#include <orvo/world/localizer.h>

#include "angles.h"
#include "line_grid.h"

#include <orvo/world/field.h>

#include <algorithm>
#include <cmath>

namespace orvo::world {

Localizer::Localizer(const WorldParams& params, Method method, std::uint32_t seed)
    : params_(params), method_(method), rng_(seed) {
    set_side(side_);
    const auto n = static_cast<std::size_t>(std::max(1, params.particles));
    particles_.resize(method == Method::fit ? 1 : n);
    drawn_.resize(particles_.size());
    scratch_.resize(particles_.size());
    fits_.resize(particles_.size());
}

void Localizer::set_side(perception::Side side) {
    side_ = side;
    for (std::size_t i = 0; i < perception::landmark_count; ++i) {
        const field::Point3 mark = field::landmark(static_cast<perception::Landmark>(i), side);
        marks_[2 * i] = mark.x;
        marks_[2 * i + 1] = mark.y;
    }
}

void Localizer::reset(const Pose& around, double spread_m, double spread_deg) {
    const double h = around.heading_deg * radians_per_degree;
    const double w = 1.0 / static_cast<double>(particles_.size());
    for (Particle& p : particles_)
        p = {around.x + spread_m * gauss_(rng_), around.y + spread_m * gauss_(rng_),
             h + spread_deg * radians_per_degree * gauss_(rng_), w};
    if (method_ == Method::fit)
        particles_[0] = {around.x, around.y, h, 1.0};
    trend_slow_ = trend_fast_ = 0;
    pending_ = {0, 0, 0, 0};
    pending_cycles_ = 0;
    estimate_ = around;
    estimate_.sigma_m = spread_m;
    estimate_.sigma_deg = spread_deg;
}

void Localizer::predict(const Odometry& step) {
    // The estimate follows every cycle; the particles take the steps summed
    // up at the next sighting, which spares moving them on the two cycles of
    // three that bring nothing to weigh them by.
    const double turn = step.dturn_deg * radians_per_degree;
    double c = std::cos(pending_.heading);
    double s = std::sin(pending_.heading);
    pending_.x += c * step.dx - s * step.dy;
    pending_.y += s * step.dx + c * step.dy;
    pending_.heading += turn;
    ++pending_cycles_;
    const double heading = estimate_.heading_deg * radians_per_degree;
    c = std::cos(heading);
    s = std::sin(heading);
    estimate_.x += c * step.dx - s * step.dy;
    estimate_.y += s * step.dx + c * step.dy;
    estimate_.heading_deg = wrap(heading + turn) / radians_per_degree;
    estimate_.sigma_m +=
        params_.motion_xy_m + params_.odometry_xy_share * std::hypot(step.dx, step.dy);
    estimate_.sigma_deg +=
        params_.motion_turn_deg + params_.odometry_turn_share * std::abs(step.dturn_deg);
}

void Localizer::move_particles() {
    const double cycles = static_cast<double>(pending_cycles_);
    const double xy_sigma = params_.motion_xy_m * cycles +
                            params_.odometry_xy_share * std::hypot(pending_.x, pending_.y);
    const double turn_sigma = (params_.motion_turn_deg * cycles) * radians_per_degree +
                              params_.odometry_turn_share * std::abs(pending_.heading);
    for (Particle& p : particles_) {
        const double dx = pending_.x + xy_sigma * gauss_(rng_);
        const double dy = pending_.y + xy_sigma * gauss_(rng_);
        const double c = std::cos(p.heading);
        const double s = std::sin(p.heading);
        p.x += c * dx - s * dy;
        p.y += s * dx + c * dy;
        p.heading = wrap(p.heading + pending_.heading + turn_sigma * gauss_(rng_));
    }
    pending_ = {0, 0, 0, 0};
    pending_cycles_ = 0;
}

Localizer::Misfit Localizer::misfit(const Particle& p, const Sightings& seen) const {
    const double cap = params_.outlier_sigmas * params_.outlier_sigmas;
    const double c = std::cos(p.heading);
    const double s = std::sin(p.heading);
    Misfit out;
    for (std::size_t i = 0; i < perception::landmark_count; ++i) {
        const auto which = static_cast<perception::Landmark>(i);
        if (!seen.sees(which))
            continue;
        const double vx = marks_[2 * i] - p.x;
        const double vy = marks_[2 * i + 1] - p.y;
        const double ex = c * vx + s * vy; // the landmark as this guess would see it
        const double ey = -s * vx + c * vy;
        const GroundPoint& m = seen[which];
        const double expected = std::sqrt(ex * ex + ey * ey);
        const double measured = std::sqrt(m.x * m.x + m.y * m.y);
        // The angle from where the guess expects it to where it was seen.
        const double bearing = fast_atan2(ex * m.y - ey * m.x, ex * m.x + ey * m.y) /
                               (params_.bearing_sigma_deg * radians_per_degree);
        const double range = (measured - expected) /
                             (params_.distance_sigma_m + params_.distance_sigma_share * expected);
        out.landmarks += 0.5 * (std::min(cap, bearing * bearing) + std::min(cap, range * range));
    }
    const LineGrid& grid = line_grid();
    for (std::size_t i = 0; i < seen.line_point_count; ++i) {
        const GroundPoint& q = seen.line_points[i];
        const double d =
            grid.distance(p.x + c * q.x - s * q.y, p.y + s * q.x + c * q.y) / params_.line_sigma_m;
        out.lines += 0.5 * std::min(cap, d * d);
    }
    return out;
}

void Localizer::weigh(const Sightings& seen) {
    const double observations =
        static_cast<double>(2 * seen.landmark_count() + seen.line_point_count);
    double best = -INFINITY;
    for (std::size_t i = 0; i < particles_.size(); ++i) {
        const Misfit m = misfit(particles_[i], seen);
        fits_[i] = (m.landmarks + m.lines) / observations;
        scratch_[i] = -(m.landmarks + m.lines);
        best = std::max(best, scratch_[i]);
    }
    double total = 0;
    double fit = 0; // how well the guesses explain the sighting, per observation
    for (std::size_t i = 0; i < particles_.size(); ++i) {
        fit += particles_[i].weight * std::exp(-fits_[i]);
        particles_[i].weight *= std::exp(scratch_[i] - best);
        total += particles_[i].weight;
    }
    for (Particle& p : particles_)
        p.weight = total > 0 ? p.weight / total : 1.0 / static_cast<double>(particles_.size());
    trend_slow_ += params_.trend_slow * (fit - trend_slow_);
    trend_fast_ += params_.trend_fast * (fit - trend_fast_);
    last_fit_ = fit;
}

bool Localizer::disagrees_with_landmarks(const Sightings& seen) const {
    // Two named landmarks fix the pose on their own, and they tell the
    // halves of the field apart where lines cannot: when the estimate is far
    // from where they put the robot, it was moved or the filter went astray
    // on lines and a single landmark.
    Pose fixed;
    if (!pose_from_landmarks(seen, side_, fixed))
        return false;
    return std::hypot(fixed.x - estimate_.x, fixed.y - estimate_.y) > params_.cluster_m ||
           std::abs(wrap_deg(fixed.heading_deg - estimate_.heading_deg)) > params_.cluster_deg;
}

void Localizer::correct(const Sightings& seen) {
    if (seen.landmark_count() == 0 && seen.line_point_count == 0)
        return;
    if (method_ == Method::fit) {
        pending_ = {0, 0, 0, 0};
        pending_cycles_ = 0;
        Pose start = estimate_;
        Pose fixed;
        if (pose_from_landmarks(seen, side_, fixed) &&
            std::hypot(fixed.x - start.x, fixed.y - start.y) > params_.cluster_m)
            start = fixed;
        estimate_ = fit_pose(start, seen, params_, side_);
        particles_[0] = {estimate_.x, estimate_.y, estimate_.heading_deg * radians_per_degree, 1.0};
        return;
    }
    move_particles();
    weigh(seen);
    double ess_inverse = 0;
    for (const Particle& p : particles_)
        ess_inverse += p.weight * p.weight;
    const double ess = 1.0 / ess_inverse / static_cast<double>(particles_.size());
    // Renew some guesses when the fit has dropped against its long-term trend
    // (moved by someone) or is hopeless whatever the trend (a wrong start).
    double renew = trend_slow_ > 0
                       ? std::clamp(1.0 - trend_fast_ / trend_slow_, 0.0, params_.reset_share)
                       : 0.0;
    if (last_fit_ < params_.lost_below || disagrees_with_landmarks(seen))
        renew = params_.reset_share;
    if (ess < params_.resample_below || renew > 0)
        resample(renew, seen);
    summarise();
    if (method_ == Method::particles_and_fit)
        polish(seen);
}

} // namespace orvo::world
