#include <orvo/core/exception.h>
#include <orvo/math/polar.h>
#include <orvo/math/vector2d.h>
#include <orvo/math/vector3d.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

using orvo::math::Polar;
using orvo::math::Vector2d;
using orvo::math::Vector3d;

namespace {
constexpr double pi = 3.14159265358979323846;
}

TEST(Vector3d, IndexIsOneBasedAndChecked) {
    const Vector3d v(4.0f, 5.0f, 6.0f);
    EXPECT_EQ(v[1], 4.0f);
    EXPECT_EQ(v[2], 5.0f);
    EXPECT_EQ(v[3], 6.0f);
    for (unsigned int bad : {0u, 4u, std::numeric_limits<unsigned int>::max()}) {
        try {
            (void)v[bad];
            ADD_FAILURE() << "index " << bad << " accepted";
        } catch (const orvo::ValueOutOfBoundsException& e) {
            EXPECT_EQ(e.get_source(),
                      "math/src/vector3d.cpp: In function 'operator[]' (line 82): ");
            EXPECT_EQ(e.get_message(), "Given value exceeded valid range");
            EXPECT_EQ(e.get_type(), "ValueOutOfBoundsException");
        }
    }
}

TEST(Vector3d, ConstructorsSetTheCachedLengthAsDocumented) {
    const Vector3d zero;
    EXPECT_TRUE(zero.length_valid);
    EXPECT_EQ(zero.length, 0.0f);

    EXPECT_FALSE(Vector3d(1.0f, 2.0f, 3.0f).length_valid);

    const Vector3d given(1.0f, 2.0f, 2.0f, 3.0f, true);
    EXPECT_TRUE(given.length_valid);
    EXPECT_EQ(given.length, 3.0f);

    const Vector3d flat(Vector2d(7.0f, -8.0f));
    EXPECT_FALSE(flat.length_valid);
    EXPECT_EQ(flat.length, 0.0f);
    EXPECT_EQ(flat.x, 7.0f);
    EXPECT_EQ(flat.y, -8.0f);
    EXPECT_EQ(flat.z, 0.0f);

    const Vector2d projected(Vector3d(1.5f, 2.5f, 9.0f));
    EXPECT_EQ(projected.x, 1.5f);
    EXPECT_EQ(projected.y, 2.5f);
}

TEST(Vector3d, ScalingScalesAKnownLengthByTheAbsoluteFactor) {
    const Vector3d v(1.0f, 2.0f, 2.0f, 3.0f, true);
    for (float s : {2.0f, -2.0f}) {
        const Vector3d w = s * v;
        EXPECT_EQ(w.x, s * 1.0f);
        EXPECT_EQ(w.y, s * 2.0f);
        EXPECT_EQ(w.z, s * 2.0f);
        EXPECT_EQ(w.length, 6.0f);
        EXPECT_TRUE(w.length_valid);
    }
    EXPECT_FALSE((2.0f * Vector3d(1.0f, 2.0f, 2.0f)).length_valid);

    const Vector2d u = -0.5f * Vector2d(4.0f, -6.0f);
    EXPECT_EQ(u.x, -2.0f);
    EXPECT_EQ(u.y, 3.0f);
}

TEST(Polar, AxisDirectionsConvertExactly) {
    const Polar down(Vector3d(0.0f, -1.0f, 0.0f));
    EXPECT_FLOAT_EQ(down.azimuth, 270.0f);
    EXPECT_EQ(down.elevation, 0.0f);
    EXPECT_EQ(down.distance, 1.0f);

    const Polar below(Vector3d(0.0f, 0.0f, -2.0f));
    EXPECT_EQ(below.distance, 2.0f);
    EXPECT_EQ(below.azimuth, 0.0f);
    EXPECT_EQ(below.elevation, -90.0f);

    const Polar above(Vector3d(0.0f, 0.0f, 3.0f));
    EXPECT_EQ(above.azimuth, 0.0f);
    EXPECT_EQ(above.elevation, 90.0f);

    EXPECT_TRUE(Polar(Vector3d()) == Polar());
}

TEST(Polar, RightAnglesGiveCleanAxesWithoutRoundingResidue) {
    const Vector3d left(Polar(1.0f, 90.0f, 0.0f));
    EXPECT_EQ(left.x, 0.0f);
    EXPECT_EQ(left.y, 1.0f);
    EXPECT_EQ(left.z, 0.0f);
    EXPECT_FALSE(left.length_valid);

    const Vector3d back(Polar(2.0f, 180.0f, 0.0f));
    EXPECT_EQ(back.x, -2.0f);
    EXPECT_EQ(back.y, 0.0f);

    const Vector3d up(Polar(5.0f, 30.0f, 90.0f));
    EXPECT_EQ(up.x, 0.0f);
    EXPECT_EQ(up.y, 0.0f);
    EXPECT_EQ(up.z, 5.0f);
}

TEST(Polar, AzimuthCoversAllQuadrantsWithinOneTurn) {
    const struct {
        float x, y, azimuth;
    } cases[] = {{1, 1, 45}, {-1, 1, 135}, {-1, -1, 225}, {1, -1, 315}, {1, 0, 0}, {-3, 0, 180}};
    for (const auto& c : cases) {
        const Polar p(Vector3d(c.x, c.y, 0.0f));
        EXPECT_NEAR(p.azimuth, c.azimuth, 1e-4) << c.x << "," << c.y;
    }
    // Just below +x the long way round must not reach a full turn.
    const Polar nearly_full(Vector3d(1.0f, -1e-10f, 0.0f));
    EXPECT_GE(nearly_full.azimuth, 0.0f);
    EXPECT_LT(nearly_full.azimuth, 360.0f);
    EXPECT_NEAR(Polar(Vector3d(1.0f, 0.0f, 1.0f)).elevation, 45.0f, 1e-4);
}

TEST(Polar, ConversionsAgreeWithDoublePrecisionTrigonometry) {
    std::mt19937 gen(12345);
    std::uniform_real_distribution<float> dist(0.1f, 50.0f);
    std::uniform_real_distribution<float> azimuth(0.0f, 359.9f);
    std::uniform_real_distribution<float> elevation(-89.0f, 89.0f);
    for (int i = 0; i < 2000; ++i) {
        const Polar p(dist(gen), azimuth(gen), elevation(gen));
        const double a = p.azimuth * pi / 180.0;
        const double e = p.elevation * pi / 180.0;
        const Vector3d v(p);
        const double tolerance = 2e-6 * p.distance;
        EXPECT_NEAR(v.x, p.distance * std::cos(a) * std::cos(e), tolerance);
        EXPECT_NEAR(v.y, p.distance * std::sin(a) * std::cos(e), tolerance);
        EXPECT_NEAR(v.z, p.distance * std::sin(e), tolerance);

        const Polar back(v);
        EXPECT_NEAR(back.distance, p.distance, 2e-6 * p.distance);
        EXPECT_NEAR(back.elevation, p.elevation, 2e-3);
        // Azimuths compare on the circle: 359.999 and 0.001 are neighbours.
        // The azimuth comes from a single-precision arc cosine, which near 0
        // and 180 degrees turns one rounding of x / r into about 0.03 degrees.
        const double turn = std::remainder(back.azimuth - p.azimuth, 360.0);
        EXPECT_NEAR(turn, 0.0, 0.03);
        EXPECT_GE(back.azimuth, 0.0f);
        EXPECT_LT(back.azimuth, 360.0f);
    }
}

TEST(Polar, EqualityIsExact) {
    Polar a(1.0f, 2.0f, 3.0f);
    EXPECT_TRUE(a == Polar(1.0f, 2.0f, 3.0f));
    EXPECT_FALSE(a == Polar(1.0f, 2.0f, 3.001f));
    EXPECT_TRUE(a != Polar(1.0f, 2.0f, 3.001f));
    const Polar nan(std::nanf(""), 0.0f, 0.0f);
    EXPECT_FALSE(nan == nan);
    EXPECT_TRUE(nan != nan);
}
