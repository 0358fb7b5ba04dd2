#include "fall_watch.h"

#include <orvo/body/body_model.h>
#include <orvo/fall/fall_params.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

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
    if (trial.falls() > falls_seen_) {
        monitor_falls_.push_back(trial.game_time());
        falls_seen_ = trial.falls();
    }
}

int FallWatch::false_alarms() const {
    return static_cast<int>(std::count_if(detections_.begin(), detections_.end(), [&](double at) {
        return std::none_of(monitor_falls_.begin(), monitor_falls_.end(),
                            [at](double fell) { return std::fabs(fell - at) <= match_seconds; });
    }));
}

std::string joint_command(const robot::JointValues& speeds, const robot::JointSet& joints) {
    std::string command;
    char part[48];
    for (std::size_t i = 0; i < robot::joint_count; ++i) {
        if (joints.test(i)) {
            const auto& joint = robot::joint_table()[i];
            std::snprintf(part, sizeof part, "(%.*s %.4f)", static_cast<int>(joint.effector.size()),
                          joint.effector.data(), speeds[i]);
            command += part;
        }
    }
    return command;
}

} // namespace orvo::drill
