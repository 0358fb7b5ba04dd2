// The particle filter's resampling, its renewal from sightings and its summary.
#include <orvo/world/localizer.h>

#include "angles.h"

#include <orvo/world/field.h>

#include <cmath>

namespace orvo::world {

namespace {

/// How far beyond the lines a robot may stand: the referee puts robots that
/// it takes off the field just outside the touch line.
constexpr double off_field_m = 1.0;

bool on_field(double x, double y) {
    return std::abs(x) <= field::half_length + off_field_m &&
           std::abs(y) <= field::half_width + off_field_m;
}

} // namespace

void Localizer::resample(double renew_share, const Sightings& seen) {
    const std::size_t n = particles_.size();
    const double step = 1.0 / static_cast<double>(n);
    // Low-variance resampling: one random offset, then even steps through
    // the cumulative weights.
    double target = step * uniform_(rng_);
    double cumulative = particles_[0].weight;
    std::size_t from = 0;
    for (std::size_t i = 0; i < n; ++i) {
        while (target > cumulative && from + 1 < n)
            cumulative += particles_[++from].weight;
        drawn_[i] = particles_[from];
        drawn_[i].weight = step;
        target += step;
    }
    particles_.swap(drawn_);
    for (Particle& p : particles_)
        if (uniform_(rng_) < renew_share && draw_from_sightings(seen, p))
            p.weight = step;
}

bool Localizer::draw_from_sightings(const Sightings& seen, Particle& out) {
    Pose fixed;
    if (pose_from_landmarks(seen, side_, fixed)) {
        out.x = fixed.x + params_.distance_sigma_m * gauss_(rng_);
        out.y = fixed.y + params_.distance_sigma_m * gauss_(rng_);
        out.heading = wrap(fixed.heading_deg * radians_per_degree +
                           params_.bearing_sigma_deg * radians_per_degree * gauss_(rng_));
        return true;
    }
    // One landmark: the robot stands somewhere on a circle around it, facing
    // so that it sees the landmark at the seen bearing; on the field, since
    // a circle round a far flag mostly runs outside it.
    constexpr int tries = 8;
    for (std::size_t i = 0; i < perception::landmark_count; ++i) {
        const auto which = static_cast<perception::Landmark>(i);
        if (!seen.sees(which))
            continue;
        const field::Point3 mark = field::landmark(which, side_);
        const GroundPoint& m = seen[which];
        for (int attempt = 0; attempt < tries; ++attempt) {
            const double range =
                std::hypot(m.x, m.y) * (1 + params_.distance_sigma_share * gauss_(rng_));
            const double around = 2 * M_PI * uniform_(rng_);
            out.x = mark.x + range * std::cos(around);
            out.y = mark.y + range * std::sin(around);
            out.heading = wrap(around + M_PI - std::atan2(m.y, m.x));
            if (on_field(out.x, out.y))
                return true;
        }
    }
    return false;
}

void Localizer::summarise() {
    // The heaviest of two clusters: the one round the best guess, and the
    // one round the last estimate. Averaging only a cluster keeps a second
    // hypothesis (the mirrored half, a kidnapped position) from dragging the
    // estimate to the middle, and weighing whole clusters keeps one fresh
    // guess drawn from a sighting from taking it over on its own.
    const Particle* best = &particles_[0];
    for (const Particle& p : particles_)
        if (p.weight > best->weight)
            best = &p;
    const Particle last{estimate_.x, estimate_.y, estimate_.heading_deg * radians_per_degree, 0};
    const Cluster around_best = cluster(*best);
    const Cluster around_last = cluster(last);
    const Cluster& chosen = around_last.weight > around_best.weight ? around_last : around_best;
    const double x = chosen.x / chosen.weight;
    const double y = chosen.y / chosen.weight;
    const double heading = std::atan2(chosen.sin, chosen.cos);
    double spread = 0, turn = 0;
    for (const Particle& p : particles_) {
        spread += p.weight * ((p.x - x) * (p.x - x) + (p.y - y) * (p.y - y));
        turn += p.weight * wrap(p.heading - heading) * wrap(p.heading - heading);
    }
    estimate_ = {x, y, heading / radians_per_degree, std::sqrt(spread),
                 std::sqrt(turn) / radians_per_degree};
}

Localizer::Cluster Localizer::cluster(const Particle& centre) const {
    const double near_deg = params_.cluster_deg * radians_per_degree;
    Cluster out;
    for (const Particle& p : particles_) {
        if (std::hypot(p.x - centre.x, p.y - centre.y) > params_.cluster_m ||
            std::abs(wrap(p.heading - centre.heading)) > near_deg)
            continue;
        out.weight += p.weight;
        out.x += p.weight * p.x;
        out.y += p.weight * p.y;
        out.cos += p.weight * std::cos(p.heading);
        out.sin += p.weight * std::sin(p.heading);
    }
    return out;
}

void Localizer::polish(const Sightings& seen) {
    const Pose fitted = fit_pose(estimate_, seen, params_, side_);
    estimate_.x = fitted.x;
    estimate_.y = fitted.y;
    estimate_.heading_deg = fitted.heading_deg;
}

} // namespace orvo::world
