#ifndef ORVO_MATH_VECTOR3D_H
#define ORVO_MATH_VECTOR3D_H

#include <orvo/core/export.h>

namespace orvo {
namespace math {

class Vector2d;
class Polar;

/// A point or direction in space, in single precision, that can carry its
/// own length so that callers who know it need not take a square root again.
class ORVO_API Vector3d {
public:
    /// The zero vector; its length 0 is known.
    Vector3d();
    /// Components only; the length is unknown.
    Vector3d(const float& x, const float& y, const float& z);
    /// Components with a length the caller vouches for when `valid` is true.
    Vector3d(const float& x, const float& y, const float& z, const float& length,
             const bool& valid);
    /// (v.x, v.y, 0); the length is unknown.
    Vector3d(const Vector2d& v);
    /// The Cartesian point of a polar value (angles in degrees). Components
    /// within ten float epsilons of zero become exactly zero, so that right
    /// angles give clean axes.
    Vector3d(const Polar& p);
    Vector3d(const Vector3d&) = default;
    Vector3d& operator=(const Vector3d&) = default;
    virtual ~Vector3d();

    /// One-based: 1 is x, 2 is y, 3 is z. Any other index throws
    /// ValueOutOfBoundsException.
    float operator[](const unsigned int& i) const;

    bool length_valid;
    /// Meaningful only while length_valid is true.
    float length;
    float x;
    float y;
    float z;
};

/// Scales the components; a known length scales by |s| and stays known.
ORVO_API Vector3d operator*(const float& s, const Vector3d& v);

} // namespace math
} // namespace orvo

#endif
