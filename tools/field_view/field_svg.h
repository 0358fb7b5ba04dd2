#ifndef ORVO_FIELD_VIEW_FIELD_SVG_H
#define ORVO_FIELD_VIEW_FIELD_SVG_H

#include "drawing_store.h"

#include <orvo/protocol/constants.h>

#include <optional>
#include <string>
#include <vector>

namespace field_view {

/// The field's size in the picture's unit, metres.
constexpr float field_length = static_cast<float>(orvo::protocol::field_length);
constexpr float field_width = static_cast<float>(orvo::protocol::field_width);

struct PlayerMark {
    int unum = 0;
    int side = 0; ///< 0 left, 1 right
    float x = 0;  ///< global frame: the left team's goal at negative x
    float y = 0;
};

/// A robot where the server really has it.
struct RobotMark {
    int unum = 0;
    int side = 0;          ///< 0 left, 1 right
    float x = 0, y = 0;    ///< torso, global frame
    float heading_deg = 0; ///< where the torso faces, from +x, counter-clockwise
    bool fallen = false;
};

/// The game as the server's monitor shows it: the truth the agents' drawings
/// are set against.
struct GameMarks {
    double time = 0; ///< game time (s)
    int half = 1;
    std::string play_mode;
    std::string team_left, team_right;
    int score_left = 0, score_right = 0;
    float ball_x = 0, ball_y = 0;
    std::vector<RobotMark> robots;
};

/// What one picture shows: the field, the players a server knows of, the
/// game as the monitor shows it, and every agent's latest drawings on top.
struct FieldPicture {
    std::string title;   ///< the document's title
    std::string caption; ///< a line written on the picture's top left
    std::vector<PlayerMark> players;
    std::optional<GameMarks> game;
    Drawings drawings;
};

/// The game clock as "MM:SS".
std::string clock_text(double seconds);

/// The picture as one <svg> element, for a file or for embedding in a page.
std::string field_svg(const FieldPicture& picture);

/// Writes the picture as an SVG file (via a temporary file and a rename, so a
/// reader never sees half a picture). False when the file cannot be written.
bool write_field_svg(const std::string& path, const FieldPicture& picture);

} // namespace field_view

#endif
