#include <orvo/monitor/ground_truth.h>
#include <orvo/monitor/play_modes.h>

namespace orvo::monitor {

namespace {
// Past this tilt a robot no longer catches itself by stepping; below this
// height its torso is sitting or lying.
constexpr double fallen_tilt_deg = 53.0;
constexpr double fallen_height = 0.25;
} // namespace

bool RobotTruth::fallen() const {
    return tilt_deg > fallen_tilt_deg || z < fallen_height;
}

const Pose* RobotTruth::part(std::string_view name) const {
    if (name.empty()) {
        return nullptr;
    }
    for (const PartPose& p : parts) {
        if (p.name == name) {
            return &p.pose;
        }
    }
    return nullptr;
}

std::string_view GroundTruth::play_mode_name() const {
    return monitor::play_mode_name(play_mode);
}

} // namespace orvo::monitor
