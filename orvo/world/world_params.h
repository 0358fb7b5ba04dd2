#ifndef ORVO_WORLD_WORLD_PARAMS_H
#define ORVO_WORLD_WORLD_PARAMS_H

#include <orvo/core/export.h>
#include <orvo/world/param_file.h>

#include <string>

namespace orvo::world {

using WorldParamsError = ParamFileError;

/// How the world model weighs what the robot sees and does. Every entry is
/// read from a JSON file per robot type ("params/world/typeN.json") that gives
/// each one as {"value": V, "min": A, "max": B}.
struct ORVO_API WorldParams {
    // The particle filter.
    int particles = 0;
    /// Resample when the effective number of particles falls below this share.
    double resample_below = 0;
    /// Averaging rates of the slow and the fast likelihood trend; when the fast
    /// one falls below the slow one the robot was probably moved, and up to
    /// `reset_share` of the particles are drawn again from what is seen.
    double trend_slow = 0;
    double trend_fast = 0;
    double reset_share = 0;
    /// Below this fit per observation (1: perfect) the filter counts as lost
    /// and renews `reset_share` of its guesses at every sighting.
    double lost_below = 0;
    /// Particles within this distance and turn of the best one form the estimate.
    double cluster_m = 0;
    double cluster_deg = 0;

    // How far the odometry may be off, per cycle.
    double odometry_xy_share = 0;
    double odometry_turn_share = 0;
    double motion_xy_m = 0;
    double motion_turn_deg = 0;

    // What a sighting is worth.
    double bearing_sigma_deg = 0;
    double distance_sigma_share = 0;
    double distance_sigma_m = 0;
    double line_sigma_m = 0;
    /// An error counts for at most this many sigmas, so that one odd sighting
    /// cannot wipe out the right particles.
    double outlier_sigmas = 0;

    // The least-squares fit that polishes the estimate.
    int fit_iterations = 0;
    /// How strongly the fit keeps to the filter's estimate.
    double fit_prior_m = 0;
    double fit_prior_deg = 0;

    // The start: how far a beam may put the robot from where it asked.
    double beam_spread_m = 0;
    double beam_spread_deg = 0;

    // The torso's lean, from the accelerometer.
    /// Weight of each new accelerometer reading in its running average, from
    /// which the lean is taken (walking shakes the single readings).
    double tilt_filter = 0;
    /// Beyond this lean (falling, fallen) sightings are not used.
    double max_tilt_deg = 0;
    /// Beyond this lean the robot lies: its steps move nothing, and once it
    /// leans less than max_tilt_deg again the pose is widened by the fall's
    /// spreads (a fall moves the torso and turns it on the ground).
    double lying_tilt_deg = 0;
    /// Lying and up again both hold this long (s): a placement or a bump
    /// shakes the accelerometer's reading for a moment.
    double rise_hold_s = 0;
    double fall_spread_m = 0;
    double fall_spread_deg = 0;

    // The ball.
    double ball_position_sigma_share = 0;
    double ball_acceleration_sigma = 0;
    double ball_velocity_decay_per_s = 0;

    /// Reads and checks `path`.
    static WorldParams load(const std::string& path);
    /// The file of robot `type` in `dir` (e.g. "params/world").
    static WorldParams for_type(const std::string& dir, int type);
};

} // namespace orvo::world

#endif
