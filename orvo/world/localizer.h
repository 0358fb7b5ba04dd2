#ifndef ORVO_WORLD_LOCALIZER_H
#define ORVO_WORLD_LOCALIZER_H

#include <orvo/core/export.h>
#include <orvo/perception/perception.h>
#include <orvo/world/beliefs.h>
#include <orvo/world/sightings.h>
#include <orvo/world/world_params.h>

#include <array>
#include <cstdint>
#include <random>
#include <vector>

namespace orvo::world {

/// How the pose is worked out from what is seen.
enum class Method : std::uint8_t {
    /// Weighted guesses that follow the odometry and are weighed by every
    /// sighting; copes with kidnapping and with long stretches of lines only.
    particles,
    /// The same, with the estimate polished by a least-squares fit.
    particles_and_fit,
    /// A least-squares fit alone that follows the odometry from the start and
    /// restarts from two landmarks when they disagree with it.
    fit,
};

/// Self-localization on the field. Works in the frame of the team on the
/// side given; holds all its storage from construction on.
class ORVO_API Localizer {
public:
    explicit Localizer(const WorldParams& params, Method method = Method::particles_and_fit,
                       std::uint32_t seed = 1);

    void set_side(perception::Side side);
    /// Starts again around a known pose (a beam, a placement).
    void reset(const Pose& around, double spread_m, double spread_deg);
    /// Moves every guess by what the robot did.
    void predict(const Odometry& step);
    /// Weighs the guesses by what was seen.
    void correct(const Sightings& seen);

    const Pose& estimate() const { return estimate_; }
    Method method() const { return method_; }

    struct Particle {
        double x, y, heading; ///< heading in radians
        double weight;
    };

private:
    /// Half the sum of squared errors in sigmas: of the landmarks, of the line points.
    struct Misfit {
        double landmarks = 0;
        double lines = 0;
    };
    Misfit misfit(const Particle& p, const Sightings& seen) const;
    void move_particles();
    void weigh(const Sightings& seen);
    bool disagrees_with_landmarks(const Sightings& seen) const;
    void resample(double renew_share, const Sightings& seen);
    bool draw_from_sightings(const Sightings& seen, Particle& out);
    void summarise();
    /// Weight and weighted sums of the guesses near `centre`.
    struct Cluster {
        double weight = 0, x = 0, y = 0, cos = 0, sin = 0;
    };
    Cluster cluster(const Particle& centre) const;
    void polish(const Sightings& seen);

    WorldParams params_;
    Method method_;
    perception::Side side_ = perception::Side::left;
    /// A small fast generator: the filter draws a thousand numbers a sighting.
    std::minstd_rand rng_;
    /// Where each landmark stands for the side played on.
    std::array<double, 2 * perception::landmark_count> marks_{};
    std::normal_distribution<double> gauss_{0.0, 1.0};
    std::uniform_real_distribution<double> uniform_{0.0, 1.0};
    std::vector<Particle> particles_;
    std::vector<Particle> drawn_;
    std::vector<double> scratch_;
    std::vector<double> fits_;
    double trend_slow_ = 0;
    double trend_fast_ = 0;
    double last_fit_ = 1;
    Particle pending_{0, 0, 0, 0}; ///< the steps since the last sighting
    int pending_cycles_ = 0;
    Pose estimate_;
};

/// The pose that best explains `seen` near `start` (a Gauss-Newton fit over
/// landmarks and line points, held to `start` by the fit's prior). Also used
/// on its own by Method::fit.
ORVO_API Pose fit_pose(const Pose& start, const Sightings& seen, const WorldParams& params,
                       perception::Side side);

/// The pose two seen landmarks fix on their own; false when fewer than two are seen.
ORVO_API bool pose_from_landmarks(const Sightings& seen, perception::Side side, Pose& out);

} // namespace orvo::world

#endif
