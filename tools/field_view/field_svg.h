#ifndef ORVO_FIELD_VIEW_FIELD_SVG_H
#define ORVO_FIELD_VIEW_FIELD_SVG_H

#include "drawing_store.h"

#include <orvo/protocol/constants.h>

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

/// What one picture shows: the field, the players a server knows of, and
/// every agent's latest drawings.
struct FieldPicture {
    std::string title;   ///< the document's title
    std::string caption; ///< a line written on the picture's top left
    std::vector<PlayerMark> players;
    Drawings drawings;
};

/// The picture as one <svg> element, for a file or for embedding in a page.
std::string field_svg(const FieldPicture& picture);

/// Writes the picture as an SVG file (via a temporary file and a rename, so a
/// reader never sees half a picture). False when the file cannot be written.
bool write_field_svg(const std::string& path, const FieldPicture& picture);

} // namespace field_view

#endif
