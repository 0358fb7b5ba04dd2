#include <orvo/core/exception.h>
#include <orvo/math/polar.h>
#include <orvo/math/vector2d.h>
#include <orvo/math/vector3d.h>
#include <orvo/protocol/constants.h>

#include <cmath>

namespace orvo {
namespace math {

namespace {

// Where a bad index is reported from; traces name this place whatever the
// build directory is.
constexpr const char* source_file = "math/src/vector3d.cpp";
constexpr int index_check_line = 82;

constexpr double degrees_to_radians = orvo::protocol::radians_per_degree;
// Sine and cosine are taken in single precision, so a right angle leaves a
// residue of a few 1e-8; anything below ten float epsilons counts as zero.
constexpr float zero_threshold = 1.1920928955078125e-06f;

float clean(float value) {
    return std::fabs(value) < zero_threshold ? 0.0f : value;
}

} // namespace

Vector3d::Vector3d() : length_valid(true), length(0.0f), x(0.0f), y(0.0f), z(0.0f) {}

// The length is not known here; it is still given a value so that copying or
// scaling such a vector never reads an indeterminate float.
Vector3d::Vector3d(const float& x, const float& y, const float& z)
    : length_valid(false), length(0.0f), x(x), y(y), z(z) {}

Vector3d::Vector3d(const float& x, const float& y, const float& z, const float& length,
                   const bool& valid)
    : length_valid(valid), length(length), x(x), y(y), z(z) {}

Vector3d::Vector3d(const Vector2d& v)
    : length_valid(false), length(0.0f), x(v.x), y(v.y), z(0.0f) {}

Vector3d::Vector3d(const Polar& p) : length_valid(false), length(0.0f) {
    const float azimuth = static_cast<float>(degrees_to_radians * p.azimuth);
    const float elevation = static_cast<float>(degrees_to_radians * p.elevation);
    const float sin_azimuth = std::sin(azimuth);
    const float cos_azimuth = std::cos(azimuth);
    const float sin_elevation = std::sin(elevation);
    const float cos_elevation = std::cos(elevation);
    x = clean(p.distance * cos_azimuth * cos_elevation);
    y = clean(p.distance * sin_azimuth * cos_elevation);
    z = clean(p.distance * sin_elevation);
}

Vector3d::~Vector3d() = default;

float Vector3d::operator[](const unsigned int& i) const {
    switch (i) {
    case 1:
        return x;
    case 2:
        return y;
    case 3:
        return z;
    default:
        throw ValueOutOfBoundsException(gen_ffl_string(source_file, "operator[]", index_check_line),
                                        "Given value exceeded valid range");
    }
}

Vector3d operator*(const float& s, const Vector3d& v) {
    return Vector3d(s * v.x, s * v.y, s * v.z, std::fabs(s) * v.length, v.length_valid);
}

} // namespace math
} // namespace orvo
