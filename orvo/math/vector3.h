#ifndef ORVO_MATH_VECTOR3_H
#define ORVO_MATH_VECTOR3_H

/// A plain three-component vector for the numeric helpers (RotationMatrix).
template <class V> class Vector3 {
public:
    Vector3() : x(V()), y(V()), z(V()) {}
    Vector3(V x, V y, V z) : x(x), y(y), z(z) {}

    V x;
    V y;
    V z;
};

#endif
