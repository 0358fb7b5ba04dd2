#include <orvo/math/polar.h>
#include <orvo/math/vector3d.h>
#include <orvo/protocol/constants.h>

#include <cmath>

namespace orvo {
namespace math {

namespace {
constexpr double radians_to_degrees = orvo::protocol::degrees_per_radian;
constexpr double full_turn = 6.283185307179586;
} // namespace

Polar::Polar() : distance(0.0f), azimuth(0.0f), elevation(0.0f) {}

Polar::Polar(float distance, float azimuth, float elevation)
    : distance(distance), azimuth(azimuth), elevation(elevation) {}

Polar::Polar(const Vector3d& v) : azimuth(0.0f), elevation(0.0f) {
    distance = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    const float r = std::sqrt(v.x * v.x + v.y * v.y);
    if (!(r > 0.0f)) {
        // On the z axis the azimuth is arbitrary; 0 is chosen.
        if (v.z > 0.0f) {
            elevation = 90.0f;
        } else if (v.z < 0.0f) {
            elevation = -90.0f;
        }
        return;
    }
    const float c = v.x / r;
    const float angle = std::acos(c);
    if (v.y >= 0.0f) {
        azimuth = static_cast<float>(radians_to_degrees * angle);
    } else {
        // Below the x axis the angle is measured the long way round, which
        // keeps the azimuth in [0, 360).
        const float reflex = static_cast<float>(full_turn - angle);
        azimuth = static_cast<float>(radians_to_degrees * reflex);
        // Just below the +x axis the float nearest to a full turn lies above
        // it and the product rounds to 360; that direction is azimuth 0.
        if (azimuth >= 360.0f) {
            azimuth = 0.0f;
        }
    }
    elevation = static_cast<float>(radians_to_degrees * std::atan(v.z / r));
}

Polar::~Polar() = default;

bool Polar::operator==(const Polar& other) {
    return static_cast<const Polar&>(*this) == other;
}

bool Polar::operator!=(const Polar& other) {
    // Through the virtual slot, so a subclass's equality decides.
    return !(*this == other);
}

bool Polar::operator==(const Polar& other) const {
    return distance == other.distance && azimuth == other.azimuth && elevation == other.elevation;
}

bool Polar::operator!=(const Polar& other) const {
    return !(*this == other);
}

} // namespace math
} // namespace orvo
