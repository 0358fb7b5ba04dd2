#ifndef ORVO_PROTOCOL_PLAY_MODES_H
#define ORVO_PROTOCOL_PLAY_MODES_H

#include <orvo/core/export.h>

#include <cstdint>
#include <string_view>

namespace orvo::protocol {

/// The referee's play modes in the server's order, named as the server sends
/// them in "(pm ...)". A side suffix tells which team may play the ball.
enum class PlayMode : std::uint8_t {
    unknown, ///< a name this library does not know; the raw name is kept
    BeforeKickOff,
    KickOff_Left,
    KickOff_Right,
    PlayOn,
    KickIn_Left,
    KickIn_Right,
    corner_kick_left,
    corner_kick_right,
    goal_kick_left,
    goal_kick_right,
    offside_left,
    offside_right,
    GameOver,
    Goal_Left,
    Goal_Right,
    free_kick_left,
    free_kick_right,
    direct_free_kick_left,
    direct_free_kick_right,
    pass_left,
    pass_right,
};

constexpr int play_mode_count = static_cast<int>(PlayMode::pass_right) + 1;

/// The mode a server name stands for; unknown for any other name.
ORVO_API PlayMode play_mode_by_name(std::string_view name);
/// The server's name of a mode; "unknown" for unknown.
ORVO_API std::string_view name_of(PlayMode mode);

} // namespace orvo::protocol

#endif
