#include <orvo/math/mvtools.h>
#include <orvo/math/rotation_matrix.h>

#include <algorithm>
#include <cmath>
#include <utility>

RotationMatrix::RotationMatrix() : m{1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0} {}

RotationMatrix::RotationMatrix(const Vector3<double>& a, const Vector3<double>& b,
                               const Vector3<double>& c)
    : m{a.x, a.y, a.z, b.x, b.y, b.z, c.x, c.y, c.z} {}

RotationMatrix::RotationMatrix(const double& a, const double& b, const double& c) {
    const double ca = std::cos(a);
    const double sa = std::sin(a);
    const double cb = std::cos(b);
    const double sb = std::sin(b);
    const double cc = std::cos(c);
    const double sc = std::sin(c);
    m[0] = cc * cb;
    m[1] = sa * cc * sb - ca * sc;
    m[2] = sa * sc + cc * sb * ca;
    m[3] = sc * cb;
    m[4] = ca * cc + sa * sc * sb;
    m[5] = sc * sb * ca - cc * sa;
    m[6] = -sb;
    m[7] = sa * cb;
    m[8] = cb * ca;
}

namespace {

// Scales (x, y, z) to unit length and returns the length it had; a zero vector
// stays zero, so a rotation about it is the identity.
double normalise(double& x, double& y, double& z) {
    const double length = std::sqrt(x * x + y * y + z * z);
    if (length != 0.0) {
        x /= length;
        y /= length;
        z /= length;
    }
    return length;
}

} // namespace

RotationMatrix::RotationMatrix(const Vector3<double>& axis, const double& angle) {
    double x = axis.x;
    double y = axis.y;
    double z = axis.z;
    normalise(x, y, z);
    set_axis_angle(x, y, z, angle);
}

RotationMatrix::RotationMatrix(const Vector3<double>& r) {
    double x = r.x;
    double y = r.y;
    double z = r.z;
    const double angle = normalise(x, y, z);
    set_axis_angle(x, y, z, angle);
}

void RotationMatrix::set_axis_angle(double x, double y, double z, double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double t = 1.0 - c;
    m[0] = x * x * t + c;
    m[1] = x * y * t + s * z;
    m[2] = x * z * t - s * y;
    m[3] = x * y * t - s * z;
    m[4] = y * y * t + c;
    m[5] = y * z * t + s * x;
    m[6] = x * z * t + s * y;
    m[7] = y * z * t - s * x;
    m[8] = z * z * t + c;
}

namespace {

// Replaces columns u and v by c*u + s*v and c*v - s*u, both from the old values.
void turn(double* u, double* v, double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    for (int i = 0; i < 3; ++i) {
        const double ui = u[i];
        const double vi = v[i];
        u[i] = c * ui + s * vi;
        v[i] = c * vi - s * ui;
    }
}

} // namespace

RotationMatrix& RotationMatrix::rotateX(const double& angle) {
    turn(m + 3, m + 6, angle);
    return *this;
}

RotationMatrix& RotationMatrix::rotateY(const double& angle) {
    // About y the third column turns into the first: c0 <- c*c0 - s*c2.
    turn(m + 6, m, angle);
    return *this;
}

RotationMatrix& RotationMatrix::rotateZ(const double& angle) {
    turn(m, m + 3, angle);
    return *this;
}

double RotationMatrix::getZAngle() const {
    const double n = std::sqrt(m[0] * m[0] + m[1] * m[1]);
    if (n == 0.0) {
        return 0.0;
    }
    const double angle = std::acos(m[0] / n);
    return m[1] < 0.0 ? -angle : angle;
}

double RotationMatrix::getYAngle() const {
    const double n = std::sqrt(m[0] * m[0] + m[2] * m[2]);
    if (n == 0.0) {
        return 0.0;
    }
    const double angle = std::acos(m[0] / n);
    return m[2] > 0.0 ? -angle : angle;
}

double RotationMatrix::getXAngle() const {
    const double n = std::sqrt(m[7] * m[7] + m[8] * m[8]);
    if (n == 0.0) {
        return 0.0;
    }
    const double angle = std::acos(m[8] / n);
    return m[7] > 0.0 ? -angle : angle;
}

void RotationMatrix::getAngleAxis(Vector3<double>& axis, double& angle) const {
    // Rounding can push the cosine of a tiny or a half turn just outside the
    // domain of acos.
    static const std::pair<double, double> bounds(-1.0, 1.0);
    const double k = std::clamp((m[0] + m[4] + m[8] - 1.0) * 0.5, bounds.first, bounds.second);
    angle = std::acos(k);
    if (MVTools::isNearZero(angle)) {
        axis = Vector3<double>(1.0, 0.0, 0.0);
        return;
    }
    Vector3<double> v(m[5] - m[7], m[6] - m[2], m[1] - m[3]);
    const double length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    if (length != 0.0) {
        v.x /= length;
        v.y /= length;
        v.z /= length;
    }
    axis = v;
}
