#ifndef ORVO_MATH_ROTATION_MATRIX_H
#define ORVO_MATH_ROTATION_MATRIX_H

#include <orvo/core/export.h>
#include <orvo/math/vector3.h>

/// A 3x3 rotation in double precision, stored column by column: m[0..2] is
/// the first column, m[3..5] the second, m[6..8] the third, so element
/// (row i, column j) is m[3 * j + i]. Angles are in radians.
class ORVO_API RotationMatrix {
public:
    /// The identity.
    RotationMatrix();
    /// The columns a, b and c, taken as they are.
    RotationMatrix(const Vector3<double>& a, const Vector3<double>& b, const Vector3<double>& c);
    /// From the angles a, b and c about x, y and z: the columns are the rows
    /// of Rz(c) * Ry(b) * Rx(a), i.e. the matrix is that product transposed.
    RotationMatrix(const double& a, const double& b, const double& c);
    /// A rotation by `angle` about `axis`, which need not be of unit length.
    /// A zero axis is used as it is.
    RotationMatrix(const Vector3<double>& axis, const double& angle);
    /// A rotation vector: its length is the angle, its direction the axis. The
    /// zero vector gives the identity.
    explicit RotationMatrix(const Vector3<double>& r);

    /// Element (row, column). Elements change only through the constructors
    /// and the rotations, which keep the matrix a rotation.
    const double& operator()(int row, int column) const { return m[3 * column + row]; }

    /// Rotate about the matrix's own x, y or z axis (multiply by the
    /// elementary rotation on the right); each returns the matrix itself.
    RotationMatrix& rotateX(const double& angle);
    RotationMatrix& rotateY(const double& angle);
    RotationMatrix& rotateZ(const double& angle);

    /// The angle about z of the first column, in [-pi, pi]; 0 when the
    /// column has no x-y part.
    double getZAngle() const;
    /// The angle about y of the first column; 0 when it has no x-z part.
    double getYAngle() const;
    /// The angle about x of the third column; 0 when it has no y-z part.
    double getXAngle() const;
    /// The angle in [0, pi] and the unit axis of the rotation. Near angle 0
    /// the axis is (1, 0, 0). At a half turn the axis cannot be read from the
    /// antisymmetric part: it comes out as the zero vector, or as noise when
    /// rounding leaves a residue.
    void getAngleAxis(Vector3<double>& axis, double& angle) const;

private:
    double m[9];

    void set_axis_angle(double x, double y, double z, double angle);
};

#endif
