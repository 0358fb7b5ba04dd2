#ifndef ORVO_WORLD_SRC_ANGLES_H
#define ORVO_WORLD_SRC_ANGLES_H

#include <cmath>

namespace orvo::world {

constexpr double radians_per_degree = M_PI / 180.0;

/// The same angle in (-pi, pi].
inline double wrap(double radians) {
    return std::remainder(radians, 2 * M_PI);
}

inline double wrap_deg(double degrees) {
    return std::remainder(degrees, 360.0);
}

} // namespace orvo::world

#endif
