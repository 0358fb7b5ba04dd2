#include <orvo/protocol/play_modes.h>

#include <array>

namespace orvo::protocol {

namespace {

constexpr std::array<std::string_view, play_mode_count> names = {
    "unknown",
    "BeforeKickOff",
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
    "pass_right",
};

} // namespace

PlayMode play_mode_by_name(std::string_view name) {
    // "unknown" is this library's word, not the server's: it names nothing.
    for (std::size_t i = 1; i < names.size(); ++i) {
        if (names[i] == name) {
            return static_cast<PlayMode>(i);
        }
    }
    return PlayMode::unknown;
}

std::string_view name_of(PlayMode mode) {
    const auto index = static_cast<std::size_t>(mode);
    return index < names.size() ? names[index] : names[0];
}

} // namespace orvo::protocol
