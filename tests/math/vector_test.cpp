#include <orvo/core/exception.h>
#include <orvo/math/polar.h>
#include <orvo/math/vector2d.h>
#include <orvo/math/vector3d.h>

#include <gtest/gtest.h>
#include <support/failure.h>

#include <cmath>
#include <limits>
#include <random>

using orvo::math::Polar;
using orvo::math::Vector2d;
using orvo::math::Vector3d;

TEST(Vector3d, IndexIsOneBasedAndChecked) {
    const Vector3d v(4.0f, 5.0f, 6.0f);
    EXPECT_EQ(v[1] + 10 * v[2] + 100 * v[3], 654.0f);
    for (unsigned int bad : {0u, 4u, std::numeric_limits<unsigned int>::max()}) {
        EXPECT_EQ(orvo_test::failure<orvo::ValueOutOfBoundsException>([&] { (void)v[bad]; }),
                  "ValueOutOfBoundsException @ math/src/vector3d.cpp: In function 'operator[]' "
                  "(line 82):  | Given value exceeded valid range")
            << bad;
    }
}

TEST(Vector3d, ConstructorsAndScalingKeepTheCachedLengthRight) {
    EXPECT_TRUE(Vector3d().length_valid);
    EXPECT_FALSE(Vector3d(1.0f, 2.0f, 3.0f).length_valid);
    const Vector3d flat(Vector2d(7.0f, -8.0f));
    EXPECT_FALSE(flat.length_valid);
    EXPECT_EQ(flat.x + flat.y + flat.z, -1.0f);
    const Vector2d projected(Vector3d(1.5f, 2.5f, 9.0f));
    EXPECT_EQ(projected.x + projected.y, 4.0f);

    const Vector3d v(1.0f, 2.0f, 2.0f, 3.0f, true);
    for (float s : {2.0f, -2.0f}) {
        const Vector3d w = s * v;
        EXPECT_EQ(w.x, s * 1.0f);
        EXPECT_EQ(w.z, s * 2.0f);
        EXPECT_EQ(w.length, 6.0f);
        EXPECT_TRUE(w.length_valid);
    }
    EXPECT_FALSE((2.0f * Vector3d(1.0f, 2.0f, 2.0f)).length_valid);
    const Vector2d u = -0.5f * Vector2d(4.0f, -6.0f);
    EXPECT_EQ(u.x, -2.0f);
    EXPECT_EQ(u.y, 3.0f);
}

TEST(Polar, ExactCasesHaveNoRoundingResidue) {
    const float r2 = std::sqrt(2.0f);
    const struct {
        Vector3d v;
        Polar p;
    } from_vector[] = {// clang-format off
        {{0, -1, 0}, {1, 270, 0}}, {{0, 0, -2}, {2, 0, -90}}, {{0, 0, 3}, {3, 0, 90}},
        {{1, 1, 0}, {r2, 45, 0}}, {{-1, 1, 0}, {r2, 135, 0}}, {{-1, -1, 0}, {r2, 225, 0}},
        {{1, -1, 0}, {r2, 315, 0}}, {{-3, 0, 0}, {3, 180, 0}}, {{1, 0, 1}, {r2, 0, 45}}, {{}, {}}};
    // clang-format on
    for (const auto& c : from_vector) {
        SCOPED_TRACE(testing::Message() << c.v.x << "," << c.v.y << "," << c.v.z);
        const Polar p(c.v);
        EXPECT_FLOAT_EQ(p.distance, c.p.distance);
        EXPECT_NEAR(p.azimuth, c.p.azimuth, 1e-4);
        EXPECT_NEAR(p.elevation, c.p.elevation, 1e-4);
    }
    // Just below +x the long way round must not reach a full turn.
    const Polar nearly_full(Vector3d(1.0f, -1e-10f, 0.0f));
    EXPECT_GE(nearly_full.azimuth, 0.0f);
    EXPECT_LT(nearly_full.azimuth, 360.0f);

    // Right angles give clean axes: the residue of the float trigonometry is zeroed.
    const struct {
        Polar p;
        Vector3d v;
    } to_vector[] = {{{1, 90, 0}, {0, 1, 0}}, {{2, 180, 0}, {-2, 0, 0}}, {{5, 30, 90}, {0, 0, 5}}};
    for (const auto& c : to_vector) {
        const Vector3d v(c.p);
        EXPECT_EQ(v.x, c.v.x);
        EXPECT_EQ(v.y, c.v.y);
        EXPECT_EQ(v.z, c.v.z);
        EXPECT_FALSE(v.length_valid);
    }
}

TEST(Polar, ConversionsAgreeWithDoublePrecisionTrigonometry) {
    constexpr double degree = 3.14159265358979323846 / 180.0;
    std::mt19937 gen(12345);
    std::uniform_real_distribution<float> dist(0.1f, 50.0f), azimuth(0.0f, 359.9f),
        elevation(-89.0f, 89.0f);
    for (int i = 0; i < 2000; ++i) {
        const Polar p(dist(gen), azimuth(gen), elevation(gen));
        const double a = p.azimuth * degree, e = p.elevation * degree;
        const Vector3d v(p);
        const double tolerance = 2e-6 * p.distance;
        EXPECT_NEAR(v.x, p.distance * std::cos(a) * std::cos(e), tolerance);
        EXPECT_NEAR(v.y, p.distance * std::sin(a) * std::cos(e), tolerance);
        EXPECT_NEAR(v.z, p.distance * std::sin(e), tolerance);

        const Polar back(v);
        EXPECT_NEAR(back.distance, p.distance, tolerance);
        EXPECT_NEAR(back.elevation, p.elevation, 2e-3);
        // Azimuths compare on the circle: 359.999 and 0.001 are neighbours.
        // The azimuth comes from a single-precision arc cosine, which near 0
        // and 180 degrees turns one rounding of x / r into about 0.03 degrees.
        EXPECT_NEAR(std::remainder(back.azimuth - p.azimuth, 360.0), 0.0, 0.03);
        EXPECT_GE(back.azimuth, 0.0f);
        EXPECT_LT(back.azimuth, 360.0f);
    }
}

TEST(Polar, EqualityIsExactAndASubclassOverridesIt) {
    const Polar a(1.0f, 2.0f, 3.0f);
    EXPECT_TRUE(a == Polar(1.0f, 2.0f, 3.0f));
    EXPECT_FALSE(a == Polar(1.0f, 2.0f, 3.001f));
    EXPECT_TRUE(a != Polar(1.0f, 2.0f, 3.001f));
    Polar nan(std::nanf(""), 0.0f, 0.0f);
    EXPECT_FALSE(nan == nan);
    EXPECT_TRUE(nan != nan);

    // A team's polar value that counts only the distance, overriding the
    // non-const slot; the base's != must negate it.
    struct SameDistance : Polar {
        using Polar::Polar;
        bool operator==(const Polar& other) override { return distance == other.distance; }
    };
    SameDistance mine(1.0f, 0.0f, 0.0f);
    Polar& through_base = mine;
    const Polar other(1.0f, 90.0f, 45.0f);
    EXPECT_TRUE(through_base == other);
    EXPECT_FALSE(through_base != other);
    // A const reference gets the plain field comparison.
    EXPECT_FALSE(static_cast<const Polar&>(mine) == other);
}
