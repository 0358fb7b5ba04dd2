#ifndef ORVO_MATH_VECTOR2D_H
#define ORVO_MATH_VECTOR2D_H

#include <orvo/core/export.h>

namespace orvo {
namespace math {

class Vector3d;

/// A point or direction in the plane, in single precision.
class ORVO_API Vector2d {
public:
    Vector2d();
    Vector2d(const float& x, const float& y);
    /// Projects onto the x-y plane: z and the cached length are dropped.
    Vector2d(const Vector3d& v);
    Vector2d(const Vector2d&) = default;
    Vector2d& operator=(const Vector2d&) = default;
    virtual ~Vector2d();

    float x;
    float y;
};

ORVO_API Vector2d operator*(const float& s, const Vector2d& v);

} // namespace math
} // namespace orvo

#endif
