#ifndef ORVO_STANDIN_PERCEPTION_H
#define ORVO_STANDIN_PERCEPTION_H

#include "referee.h"

#include <string>

namespace standin {

/// What every perception of one cycle shares.
struct Moment {
    unsigned cycle = 0;
    double now = 0;       ///< server time, seconds
    double game_time = 0; ///< seconds since the kick-off
    PlayMode mode = PlayMode::BeforeKickOff;
};

/// The perception `agent` gets at `moment`, shaped like a real server's: time,
/// game state, what it heard, gyroscope, accelerometer, every joint of its
/// robot type with the feet's force sensors among the leg joints, "(See ...)"
/// every third cycle (what the camera in the head sees, 120 degrees wide and
/// high: goal posts, corner flags, the ball and the players' heads), and,
/// unlike a real server, "(mypos X Y Z)": its position in its team's frame.
std::string write_perception(const Agent& agent, const Moment& moment, const Agents& agents);

/// Whether a perception at `cycle` carries vision.
inline bool sees(unsigned cycle) {
    return cycle % 3 == 1;
}

} // namespace standin

#endif
