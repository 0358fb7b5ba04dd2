#include <orvo/world/world_params.h>

#include <nlohmann/json.hpp>

#include <fstream>
#include <set>

namespace orvo::world {

namespace {

class Reader {
public:
    Reader(const nlohmann::json& doc, const std::string& path) : doc_(doc), path_(path) {}

    template <typename T> void operator()(const char* key, T& out) {
        seen_.insert(key);
        if (!doc_.contains(key))
            fail(std::string("no entry \"") + key + "\"");
        const nlohmann::json& entry = doc_[key];
        if (!entry.is_object() || !entry.contains("value") || !entry.contains("min") ||
            !entry.contains("max") || !entry["value"].is_number() || !entry["min"].is_number() ||
            !entry["max"].is_number())
            fail(std::string("\"") + key + "\" needs numbers value, min and max");
        const double value = entry["value"].get<double>();
        if (value < entry["min"].get<double>() || value > entry["max"].get<double>())
            fail(std::string("\"") + key + "\" is outside its min and max");
        out = static_cast<T>(value);
    }

    void check_no_others() const {
        for (auto it = doc_.begin(); it != doc_.end(); ++it)
            if (!seen_.count(it.key()))
                fail("unknown entry \"" + it.key() + "\"");
    }

private:
    [[noreturn]] void fail(const std::string& what) const {
        throw WorldParamsError(path_ + ": " + what);
    }
    const nlohmann::json& doc_;
    std::string path_;
    std::set<std::string> seen_;
};

} // namespace

WorldParams WorldParams::load(const std::string& path) {
    std::ifstream in(path);
    if (!in)
        throw WorldParamsError(path + ": cannot be read");
    const nlohmann::json doc = nlohmann::json::parse(in, nullptr, false);
    if (doc.is_discarded() || !doc.is_object())
        throw WorldParamsError(path + ": not a JSON object");
    WorldParams p;
    Reader r(doc, path);
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
    r("ball_position_sigma_share", p.ball_position_sigma_share);
    r("ball_acceleration_sigma", p.ball_acceleration_sigma);
    r("ball_velocity_decay_per_s", p.ball_velocity_decay_per_s);
    r.check_no_others();
    return p;
}

WorldParams WorldParams::for_type(const std::string& dir, int type) {
    return load(dir + "/type" + std::to_string(type) + ".json");
}

} // namespace orvo::world
