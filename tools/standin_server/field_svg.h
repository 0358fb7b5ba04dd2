#ifndef ORVO_STANDIN_FIELD_SVG_H
#define ORVO_STANDIN_FIELD_SVG_H

#include "drawing_wire.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace standin {

/// Field size of the current 3D soccer league, metres.
constexpr float field_length = 30.0f;
constexpr float field_width = 20.0f;

struct PlayerMark {
    int unum = 0;
    int side = 0; ///< 0 left, 1 right
    float x = 0;  ///< global frame: the left team's goal at negative x
    float y = 0;
};

/// What one picture shows: the players, and each agent's latest drawings keyed
/// by the drawing header (team bit and player number).
struct FieldPicture {
    int cycle = 0;
    double time = 0;
    std::vector<PlayerMark> players;
    std::map<std::uint8_t, std::vector<demo::wire::Shape>> drawings;
};

/// Writes the picture as an SVG file (via a temporary file and a rename, so a
/// viewer never sees half a picture). False when the file cannot be written.
bool write_field_svg(const std::string& path, const FieldPicture& picture);

} // namespace standin

#endif
