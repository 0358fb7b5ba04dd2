#include <orvo/world/world_params.h>

#include <orvo/world/param_file.h>

namespace orvo::world {

WorldParams WorldParams::load(const std::string& path) {
    WorldParams p;
    ParamFile file(path);
    auto r = [&file](const char* key, auto& out) { file.read(key, out); };
    r("particles", p.particles);
    r("resample_below", p.resample_below);
    r("trend_slow", p.trend_slow);
    r("trend_fast", p.trend_fast);
    r("reset_share", p.reset_share);
    r("lost_below", p.lost_below);
    r("cluster_m", p.cluster_m);
    r("cluster_deg", p.cluster_deg);
    r("odometry_xy_share", p.odometry_xy_share);
    r("odometry_turn_share", p.odometry_turn_share);
    r("motion_xy_m", p.motion_xy_m);
    r("motion_turn_deg", p.motion_turn_deg);
    r("bearing_sigma_deg", p.bearing_sigma_deg);
    r("distance_sigma_share", p.distance_sigma_share);
    r("distance_sigma_m", p.distance_sigma_m);
    r("line_sigma_m", p.line_sigma_m);
    r("outlier_sigmas", p.outlier_sigmas);
    r("fit_iterations", p.fit_iterations);
    r("fit_prior_m", p.fit_prior_m);
    r("fit_prior_deg", p.fit_prior_deg);
    r("beam_spread_m", p.beam_spread_m);
    r("beam_spread_deg", p.beam_spread_deg);
    r("tilt_filter", p.tilt_filter);
    r("max_tilt_deg", p.max_tilt_deg);
    r("lying_tilt_deg", p.lying_tilt_deg);
    r("rise_hold_s", p.rise_hold_s);
    r("fall_spread_m", p.fall_spread_m);
    r("fall_spread_deg", p.fall_spread_deg);
    r("ball_position_sigma_share", p.ball_position_sigma_share);
    r("ball_acceleration_sigma", p.ball_acceleration_sigma);
    r("ball_velocity_decay_per_s", p.ball_velocity_decay_per_s);
    file.check_no_others();
    return p;
}

WorldParams WorldParams::for_type(const std::string& dir, int type) {
    return load(dir + "/type" + std::to_string(type) + ".json");
}

} // namespace orvo::world
