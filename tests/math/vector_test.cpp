#include <orvo/core/exception.h>
#include <orvo/math/vector2d.h>
#include <orvo/math/vector3d.h>

#include <gtest/gtest.h>
#include <support/failure.h>

#include <limits>

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
