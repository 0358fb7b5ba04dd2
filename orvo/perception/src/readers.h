#ifndef ORVO_PERCEPTION_SRC_READERS_H
#define ORVO_PERCEPTION_SRC_READERS_H

#include "scanner.h"

#include <orvo/perception/perception.h>

namespace orvo::perception::detail {

// Each reader of an element starts after the element's name and leaves the
// scanner after the element's ')'.

inline void read_vector(Scanner& scanner, math::Vector3d& out) {
    out.x = scanner.number<float>();
    out.y = scanner.number<float>();
    out.z = scanner.number<float>();
    out.length_valid = false;
}

/// "(mypos X Y Z)".
inline void read_position(Scanner& scanner, Perception& out) {
    read_vector(scanner, out.position);
    out.has_position = true;
    scanner.close();
}

/// "(See ...)".
void read_vision(Scanner& scanner, Perception& out);

} // namespace orvo::perception::detail

#endif
