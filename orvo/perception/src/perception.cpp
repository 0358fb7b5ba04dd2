#include <orvo/perception/perception.h>

namespace orvo::perception {

void Perception::clear() {
    has_time = false;
    has_game_state = false;
    game_state.unum = 0;
    game_state.side = Side::none;
    game_state.score_left = game_state.score_right = 0;
    game_state.time = 0;
    game_state.play_mode = PlayMode::unknown;
    game_state.play_mode_name.clear();
    has_gyroscope = has_accelerometer = false;
    joints.clear();
    for (FootForce& foot : feet) {
        foot.touches = false;
    }
    has_vision = false;
    vision.landmarks_seen = 0;
    vision.sees_ball = false;
    vision.players.clear();
    vision.lines.clear();
    has_position = false;
    heard.clear();
    lost_elements = 0;
}

} // namespace orvo::perception
