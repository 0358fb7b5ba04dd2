#include <orvo/monitor/play_modes.h>

#include <array>

namespace orvo::monitor {

namespace {

// The one list of play modes in this module, in the order of the server's
// environment header (its "play_modes"), which play_mode numbers index.
constexpr std::array<std::string_view, 21> names = {"BeforeKickOff",
                                                    "KickOff_Left",
                                                    "KickOff_Right",
                                                    "PlayOn",
                                                    "KickIn_Left",
                                                    "KickIn_Right",
                                                    "corner_kick_left",
                                                    "corner_kick_right",
                                                    "goal_kick_left",
                                                    "goal_kick_right",
                                                    "offside_left",
                                                    "offside_right",
                                                    "GameOver",
                                                    "Goal_Left",
                                                    "Goal_Right",
                                                    "free_kick_left",
                                                    "free_kick_right",
                                                    "direct_free_kick_left",
                                                    "direct_free_kick_right",
                                                    "pass_left",
                                                    "pass_right"};

} // namespace

std::string_view play_mode_name(int mode) {
    if (mode < 0 || mode >= static_cast<int>(names.size())) {
        return {};
    }
    return names[static_cast<std::size_t>(mode)];
}

int play_mode_number(std::string_view name) {
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i] == name) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

int play_mode_count() {
    return static_cast<int>(names.size());
}

} // namespace orvo::monitor
