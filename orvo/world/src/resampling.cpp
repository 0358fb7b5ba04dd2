// The particle filter's resampling, its renewal from sightings and its summary.
#include <orvo/world/localizer.h>

#include "angles.h"

#include <orvo/world/field.h>

#include <cmath>

namespace orvo::world {

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
    // so that it sees the landmark at the seen bearing.
    for (std::size_t i = 0; i < perception::landmark_count; ++i) {
        const auto which = static_cast<perception::Landmark>(i);
        if (!seen.sees(which))
            continue;
        const field::Point3 mark = field::landmark(which, side_);
        const GroundPoint& m = seen[which];
        const double range =
            std::hypot(m.x, m.y) * (1 + params_.distance_sigma_share * gauss_(rng_));
        const double around = 2 * M_PI * uniform_(rng_);
        out.x = mark.x + range * std::cos(around);
        out.y = mark.y + range * std::sin(around);
        out.heading = wrap(around + M_PI - std::atan2(m.y, m.x));
        return true;
    }
    return false;
}

void Localizer::summarise() {
    const Particle* best = &particles_[0];
    for (const Particle& p : particles_)
        if (p.weight > best->weight)
            best = &p;
    // Average the cluster around the best guess only, so that a second
    // hypothesis (the mirrored half, a kidnapped position) does not drag the
    // estimate to the middle.
    const double near_deg = params_.cluster_deg * radians_per_degree;
    double w = 0, x = 0, y = 0, c = 0, s = 0;
    for (const Particle& p : particles_) {
        if (std::hypot(p.x - best->x, p.y - best->y) > params_.cluster_m ||
            std::abs(wrap(p.heading - best->heading)) > near_deg)
            continue;
        w += p.weight;
        x += p.weight * p.x;
        y += p.weight * p.y;
        c += p.weight * std::cos(p.heading);
        s += p.weight * std::sin(p.heading);
    }
    x /= w;
    y /= w;
    const double heading = std::atan2(s, c);
    double spread = 0, turn = 0;
    for (const Particle& p : particles_) {
        spread += p.weight * ((p.x - x) * (p.x - x) + (p.y - y) * (p.y - y));
        turn += p.weight * wrap(p.heading - heading) * wrap(p.heading - heading);
    }
    estimate_ = {x, y, heading / radians_per_degree, std::sqrt(spread),
                 std::sqrt(turn) / radians_per_degree};
}

void Localizer::polish(const Sightings& seen) {
    const Pose fitted = fit_pose(estimate_, seen, params_, side_);
    estimate_.x = fitted.x;
    estimate_.y = fitted.y;
    estimate_.heading_deg = fitted.heading_deg;
}

} // namespace orvo::world
