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

std::string_view Foul::type_name() const {
    // The referee's own order of its kinds of foul.
    static constexpr std::string_view names[] = {
        "crowding",  "touching", "illegal_defence", "illegal_attack",
        "incapable", "kick_off", "charging",        "self_collision"};
    constexpr int count = static_cast<int>(sizeof names / sizeof names[0]);
    return type >= 0 && type < count ? names[type] : "unknown";
}

std::string_view GroundTruth::play_mode_name() const {
    return monitor::play_mode_name(play_mode);
}

} // namespace orvo::monitor
