#include "fall_watch.h"

#include <orvo/body/body_model.h>
#include <orvo/fall/fall_params.h>

#include <algorithm>

namespace orvo::drill {

namespace {

/// A detection this close to a fall the monitor showed is that fall.
constexpr double match_seconds = 1.0;

} // namespace

FallWatch::FallWatch(int type)
    : detector_(body::BodyModel::for_type(type), fall::FallParams::for_type(type)) {}

void FallWatch::update(const Trial& trial) {
    detector_.update(trial.perception());
    const bool down = detector_.down();
    if (down && !was_down_) {
        detections_.push_back(trial.perception().game_state.time);
    }
    was_down_ = down;
    const double now = trial.game_time();
    if (trial.falls() > falls_seen_) {
        monitor_falls_.push_back(now);
        falls_seen_ = trial.falls();
        down_spells_.emplace_back(now, now);
    }
    if (trial.truth() != nullptr && trial.truth()->fallen() && !down_spells_.empty()) {
        down_spells_.back().second = now;
    }
}

int FallWatch::false_alarms() const {
    return static_cast<int>(std::count_if(detections_.begin(), detections_.end(), [&](double at) {
        return std::none_of(down_spells_.begin(), down_spells_.end(), [at](const auto& spell) {
            return at >= spell.first - match_seconds && at <= spell.second + match_seconds;
        });
    }));
}

} // namespace orvo::drill
