#include <orvo/math/rotation_matrix.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double tight = 1e-12;

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

M3 rx(double t) {
    return {{{1, 0, 0}, {0, std::cos(t), -std::sin(t)}, {0, std::sin(t), std::cos(t)}}};
}
M3 ry(double t) {
    return {{{std::cos(t), 0, std::sin(t)}, {0, 1, 0}, {-std::sin(t), 0, std::cos(t)}}};
}
M3 rz(double t) {
    return {{{std::cos(t), -std::sin(t), 0}, {std::sin(t), std::cos(t), 0}, {0, 0, 1}}};
}

M3 as_m3(const RotationMatrix& r) {
    M3 m{};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            m[i][j] = r.m[3 * j + i];
    return m;
}

void expect_equal(const M3& actual, const M3& expected, double tolerance = tight) {
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            EXPECT_NEAR(actual[i][j], expected[i][j], tolerance) << "(" << i << "," << j << ")";
}

struct Random_Rotations {
    std::mt19937 gen{99};
    std::uniform_real_distribution<double> angle{-pi, pi};
    std::uniform_real_distribution<double> unit{-1.0, 1.0};
};

} // namespace

TEST(RotationMatrix, DefaultIsIdentityAndColumnsAreTakenAsGiven) {
    expect_equal(as_m3(RotationMatrix()), product(rx(0), rx(0)), 0.0);
    const RotationMatrix r(Vector3<double>(1, 2, 3), Vector3<double>(4, 5, 6),
                           Vector3<double>(7, 8, 9));
    for (int k = 0; k < 9; ++k) {
        EXPECT_EQ(r.m[k], k + 1);
    }
    EXPECT_EQ(r(2, 1), 6);
}

TEST(RotationMatrix, AnglesGiveTheTransposeOfZYXProduct) {
    Random_Rotations random;
    for (int i = 0; i < 200; ++i) {
        const double a = random.angle(random.gen);
        const double b = random.angle(random.gen);
        const double c = random.angle(random.gen);
        const M3 expected = product(rz(c), product(ry(b), rx(a)));
        const RotationMatrix r(a, b, c);
        for (int row = 0; row < 3; ++row)
            for (int col = 0; col < 3; ++col)
                EXPECT_NEAR(r.m[3 * row + col], expected[row][col], tight);
    }
}

TEST(RotationMatrix, AxisAngleMatchesConjugatedElementaryRotation) {
    Random_Rotations random;
    for (int i = 0; i < 200; ++i) {
        // Turning the z axis onto the given axis, rotating about z and turning
        // back is the rotation about that axis.
        const double polar = std::abs(random.angle(random.gen));
        const double azimuth = random.angle(random.gen);
        const double angle = random.angle(random.gen);
        const Vector3<double> axis(std::sin(polar) * std::cos(azimuth),
                                   std::sin(polar) * std::sin(azimuth), std::cos(polar));
        const M3 expected = product(
            rz(azimuth), product(ry(polar), product(rz(angle), product(ry(-polar), rz(-azimuth)))));
        expect_equal(as_m3(RotationMatrix(axis, angle)), expected);

        // Neither the axis length nor the rotation-vector form changes it.
        const Vector3<double> longer(3 * axis.x, 3 * axis.y, 3 * axis.z);
        expect_equal(as_m3(RotationMatrix(longer, angle)), expected);
        const Vector3<double> rotation_vector(angle * axis.x, angle * axis.y, angle * axis.z);
        expect_equal(as_m3(RotationMatrix(rotation_vector)), expected);
    }
}

TEST(RotationMatrix, QuarterTurnAboutZ) {
    const RotationMatrix r(Vector3<double>(0, 0, 1), pi / 2);
    EXPECT_NEAR(r.m[0], 0.0, tight);
    EXPECT_NEAR(r.m[1], 1.0, tight);
    EXPECT_NEAR(r.m[2], 0.0, tight);
    EXPECT_NEAR(r.getZAngle(), pi / 2, tight);
}

TEST(RotationMatrix, DegenerateAxesAndVectors) {
    expect_equal(as_m3(RotationMatrix(Vector3<double>(0, 0, 0))), rx(0), 0.0);
    // A zero axis is taken as it is: only the cosine survives on the diagonal.
    const RotationMatrix flat(Vector3<double>(0, 0, 0), pi / 3);
    const double c = std::cos(pi / 3);
    expect_equal(as_m3(flat), {{{c, 0, 0}, {0, c, 0}, {0, 0, c}}});
}

TEST(RotationMatrix, RotationsMultiplyOnTheRight) {
    Random_Rotations random;
    for (int i = 0; i < 100; ++i) {
        RotationMatrix r(random.angle(random.gen), random.angle(random.gen),
                         random.angle(random.gen));
        const double t = random.angle(random.gen);
        M3 expected = product(as_m3(r), rx(t));
        expect_equal(as_m3(r.rotateX(t)), expected);
        expected = product(expected, ry(t));
        expect_equal(as_m3(r.rotateY(t)), expected);
        expected = product(expected, rz(t));
        expect_equal(as_m3(r.rotateZ(t)), expected);
    }
    RotationMatrix r(0.3, -1.1, 2.0);
    const M3 start = as_m3(r);
    EXPECT_EQ(&r.rotateZ(0.7).rotateZ(-0.7), &r);
    expect_equal(as_m3(r), start);
}

TEST(RotationMatrix, ElementaryAnglesAreRecovered) {
    for (double t : {-3.0, -1.5, -0.2, 0.0, 0.4, 1.0, 2.5, 3.1}) {
        EXPECT_NEAR(RotationMatrix(Vector3<double>(0, 0, 1), t).getZAngle(), t, tight);
        EXPECT_NEAR(RotationMatrix(Vector3<double>(0, 1, 0), t).getYAngle(), t, tight);
        EXPECT_NEAR(RotationMatrix(Vector3<double>(1, 0, 0), t).getXAngle(), t, tight);
    }
    // Nothing to measure: the first column points along z.
    const RotationMatrix up(Vector3<double>(0, 0, 1), Vector3<double>(0, 1, 0),
                            Vector3<double>(-1, 0, 0));
    EXPECT_EQ(up.getZAngle(), 0.0);
    EXPECT_EQ(
        RotationMatrix(Vector3<double>(1, 0, 0), Vector3<double>(0, 1, 0), Vector3<double>(0, 0, 0))
            .getXAngle(),
        0.0);
}

TEST(RotationMatrix, AngleAxisRoundTrips) {
    Vector3<double> axis(0, 5, 0);
    double angle = 9;
    RotationMatrix().getAngleAxis(axis, angle);
    EXPECT_EQ(angle, 0.0);
    EXPECT_EQ(axis.x, 1.0);
    EXPECT_EQ(axis.y, 0.0);
    EXPECT_EQ(axis.z, 0.0);

    Random_Rotations random;
    for (int i = 0; i < 200; ++i) {
        Vector3<double> given(random.unit(random.gen), random.unit(random.gen),
                              random.unit(random.gen));
        const double norm = std::sqrt(given.x * given.x + given.y * given.y + given.z * given.z);
        given = Vector3<double>(given.x / norm, given.y / norm, given.z / norm);
        const double turn = 0.01 + std::abs(random.angle(random.gen)) * 0.99;
        RotationMatrix(given, turn).getAngleAxis(axis, angle);
        EXPECT_NEAR(angle, turn, 1e-9);
        EXPECT_NEAR(axis.x, given.x, 1e-9);
        EXPECT_NEAR(axis.y, given.y, 1e-9);
        EXPECT_NEAR(axis.z, given.z, 1e-9);
    }

    // Rounding may push the trace past 3; the angle is still 0, not NaN.
    RotationMatrix almost;
    almost.m[0] = almost.m[4] = almost.m[8] = 1.0 + 1e-15;
    almost.getAngleAxis(axis, angle);
    EXPECT_EQ(angle, 0.0);
    EXPECT_EQ(axis.x, 1.0);
}
