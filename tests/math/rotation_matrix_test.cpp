#include <orvo/math/rotation_matrix.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

namespace {

constexpr double pi = 3.14159265358979323846;

// Plain row-major 3x3 matrices, to compute the expected rotations from
// elementary ones without the class's own formulas.
using M3 = std::array<std::array<double, 3>, 3>;

M3 product(const M3& a, const M3& b) {
    M3 c{};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            for (int k = 0; k < 3; ++k)
                c[i][j] += a[i][k] * b[k][j];
    return c;
}

template <typename... Rest> M3 product(const M3& a, const M3& b, const Rest&... rest) {
    return product(a, product(b, rest...));
}

// The rotation by t about the coordinate axis `axis` (0 = x, 1 = y, 2 = z).
M3 elementary(int axis, double t) {
    M3 m{};
    const int i = (axis + 1) % 3, j = (axis + 2) % 3;
    m[axis][axis] = 1;
    m[i][i] = m[j][j] = std::cos(t);
    m[j][i] = std::sin(t);
    m[i][j] = -std::sin(t);
    return m;
}
const auto rx = [](double t) { return elementary(0, t); };
const auto ry = [](double t) { return elementary(1, t); };
const auto rz = [](double t) { return elementary(2, t); };

// The class stores its matrix column by column.
M3 as_m3(const RotationMatrix& r) {
    M3 m{};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            m[i][j] = r(i, j);
    return m;
}

void expect_equal(const M3& actual, const M3& expected, double tolerance = 1e-12) {
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            EXPECT_NEAR(actual[i][j], expected[i][j], tolerance) << "(" << i << "," << j << ")";
}

Vector3<double> scaled(const Vector3<double>& v, double s) {
    return Vector3<double>(s * v.x, s * v.y, s * v.z);
}

struct RotationMatrixTest : ::testing::Test {
    std::mt19937 gen{99};
    std::uniform_real_distribution<double> uniform{-pi, pi};
    double angle() { return uniform(gen); }
};

} // namespace

TEST_F(RotationMatrixTest, ConstructorsAndRotationsMatchProductsOfElementaryRotations) {
    expect_equal(as_m3(RotationMatrix()), rx(0), 0.0);
    const RotationMatrix given(Vector3<double>(1, 2, 3), Vector3<double>(4, 5, 6),
                               Vector3<double>(7, 8, 9));
    for (int k = 0; k < 9; ++k) {
        EXPECT_EQ(given(k % 3, k / 3), k + 1);
    }
    // A zero axis is taken as it is: only the cosine survives on the diagonal.
    expect_equal(as_m3(RotationMatrix(Vector3<double>(0, 0, 0))), rx(0), 0.0);
    const double c = std::cos(pi / 3);
    expect_equal(as_m3(RotationMatrix(Vector3<double>(0, 0, 0), pi / 3)),
                 {{{c, 0, 0}, {0, c, 0}, {0, 0, c}}});

    for (int i = 0; i < 200; ++i) {
        // Angles give the transpose of the z-y-x product.
        const double a = angle(), b = angle(), g = angle();
        RotationMatrix r(a, b, g);
        const M3 zyx = product(rz(g), ry(b), rx(a));
        for (int k = 0; k < 9; ++k) {
            EXPECT_NEAR(r(k % 3, k / 3), zyx[k / 3][k % 3], 1e-12);
        }

        // Turning the z axis onto the given axis, rotating about z and turning
        // back is the rotation about that axis; neither the axis length nor the
        // rotation-vector form changes it.
        const double polar = std::abs(angle()), azimuth = angle(), turn = angle();
        const Vector3<double> axis(std::sin(polar) * std::cos(azimuth),
                                   std::sin(polar) * std::sin(azimuth), std::cos(polar));
        const M3 expected = product(rz(azimuth), ry(polar), rz(turn), ry(-polar), rz(-azimuth));
        expect_equal(as_m3(RotationMatrix(axis, turn)), expected);
        expect_equal(as_m3(RotationMatrix(scaled(axis, 3), turn)), expected);
        expect_equal(as_m3(RotationMatrix(scaled(axis, turn))), expected);

        // Elementary rotations multiply on the right.
        M3 rotated = product(as_m3(r), rx(turn));
        expect_equal(as_m3(r.rotateX(turn)), rotated);
        rotated = product(rotated, ry(turn));
        expect_equal(as_m3(r.rotateY(turn)), rotated);
        rotated = product(rotated, rz(turn));
        EXPECT_EQ(&r.rotateZ(turn), &r);
        expect_equal(as_m3(r), rotated);
    }
}
