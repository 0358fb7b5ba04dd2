#ifndef ORVO_DEMO_PERCEPTION_H
#define ORVO_DEMO_PERCEPTION_H

#include "sexpression.h"

#include <string>
#include <string_view>
#include <vector>

namespace demo {

/// Another player as the vision reports it: polar coordinates (metres,
/// degrees) relative to the seeing agent, of its head or, lacking that, of
/// the first body part reported.
struct SeenPlayer {
    std::string team;
    int id = 0;
    float distance = 0;
    float azimuth = 0;
    float elevation = 0;
};

/// What the demo agent takes from one server message. Elements it does not
/// know (gyroscope, force sensors, lines, flags, ...) are skipped. No server
/// tells an agent where it is: the agent remembers its beams.
struct Perception {
    bool has_time = false;
    double now = 0; ///< server time, seconds

    bool has_game_state = false;
    double game_time = 0;
    std::string play_mode;
    int unum = 0;     ///< 0 unless this message tells the agent its number
    std::string side; ///< "left" or "right" when told, else empty

    bool has_vision = false;
    std::vector<SeenPlayer> players;

    bool has_head_angles = false;
    float head_pan = 0, head_tilt = 0; ///< degrees, joints hj1 and hj2
};

/// Reads server messages into a Perception, reusing its buffers.
class PerceptionParser {
public:
    /// False when the message is not a well-formed perception (unbalanced
    /// parentheses or no "(time (now T))"); `out` is then only partly filled.
    bool parse(std::string_view message, Perception& out);

private:
    void read_vision(std::int32_t see, Perception& out) const;
    SExpression tree;
};

} // namespace demo

#endif
