#ifndef ORVO_MATH_POLAR_H
#define ORVO_MATH_POLAR_H

#include <orvo/core/export.h>

namespace orvo {
namespace math {

class Vector3d;

/// A point in polar form. Angles are in degrees: the azimuth is measured in
/// the x-y plane from +x towards +y and lies in [0, 360) when converted from
/// a vector; the elevation is the angle above the x-y plane.
class ORVO_API Polar {
public:
    Polar();
    Polar(float distance, float azimuth, float elevation);
    /// The zero vector gives (0, 0, 0); a vector on the z axis gets azimuth 0
    /// and elevation +-90.
    Polar(const Vector3d& v);
    Polar(const Polar&) = default;
    Polar& operator=(const Polar&) = default;
    virtual ~Polar();

    /// Exact float comparison of all three fields; no tolerance. These are
    /// the overridable slots: non-const, as plug-ins built against the
    /// historical layout override them, and `!=` negates whatever `==` a
    /// subclass supplies.
    virtual bool operator==(const Polar& other);
    virtual bool operator!=(const Polar& other);

    /// The same field comparison for callers that hold a `const Polar&`.
    /// Not virtual, so it never reaches a subclass's override: a subclass
    /// that wants its own meaning of equality is compared through a
    /// non-const reference.
    bool operator==(const Polar& other) const;
    bool operator!=(const Polar& other) const;

    float distance;
    float azimuth;
    float elevation;
};

} // namespace math
} // namespace orvo

#endif
