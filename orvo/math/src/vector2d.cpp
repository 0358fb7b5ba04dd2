#include <orvo/math/vector2d.h>
#include <orvo/math/vector3d.h>

namespace orvo {
namespace math {

Vector2d::Vector2d() : x(0.0f), y(0.0f) {}

Vector2d::Vector2d(const float& x, const float& y) : x(x), y(y) {}

Vector2d::Vector2d(const Vector3d& v) : x(v.x), y(v.y) {}

Vector2d::~Vector2d() = default;

Vector2d operator*(const float& s, const Vector2d& v) {
    return Vector2d(s * v.x, s * v.y);
}

} // namespace math
} // namespace orvo
