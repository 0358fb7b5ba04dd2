#include <orvo/math/mvexception.h>
#include <orvo/math/mvtools.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <string>

TEST(MVTools, DoubleThresholdsAreExclusive) {
    EXPECT_TRUE(MVTools::isNearZero(1e-151));
    EXPECT_FALSE(MVTools::isNearZero(1e-150));
    EXPECT_FALSE(MVTools::isNearZero(-1e-150));
    EXPECT_TRUE(MVTools::isNearZero(0.0));
    EXPECT_TRUE(MVTools::isNearPosZero(-0.0));
    EXPECT_TRUE(MVTools::isNearNegZero(-0.0));
    EXPECT_TRUE(MVTools::isNearPosZero(0.0));
    EXPECT_FALSE(MVTools::isNearPosZero(-1e-200));
    EXPECT_FALSE(MVTools::isNearNegZero(1e-200));
    EXPECT_TRUE(MVTools::isNearNegZero(-1e-200));

    EXPECT_FALSE(MVTools::isNearInf(1e150));
    EXPECT_TRUE(MVTools::isNearInf(1.000001e150));
    EXPECT_TRUE(MVTools::isNearInf(-1.000001e150));
    EXPECT_TRUE(MVTools::isNearPosInf(1e151));
    EXPECT_FALSE(MVTools::isNearPosInf(-1e151));
    EXPECT_TRUE(MVTools::isNearNegInf(-1e151));
    EXPECT_FALSE(MVTools::isNearNegInf(1e151));
    EXPECT_NEAR(MVTools::getMaxExpDouble(), std::log(1e150), 1e-4);
}

TEST(MVTools, FloatThresholds) {
    EXPECT_TRUE(MVTools::isNearZero(9e-19f));
    EXPECT_FALSE(MVTools::isNearZero(1e-18f));
    EXPECT_TRUE(MVTools::isNearPosZero(0.0f));
    EXPECT_FALSE(MVTools::isNearNegZero(1e-30f));
    EXPECT_EQ(MVTools::getMaxPosFloat(), 999999984306749440.0f);
    EXPECT_FALSE(MVTools::isNearInf(MVTools::getMaxPosFloat()));
    EXPECT_TRUE(MVTools::isNearInf(std::nextafter(MVTools::getMaxPosFloat(), 2e18f)));
    EXPECT_TRUE(MVTools::isNearNegInf(-2e18f));
    EXPECT_TRUE(MVTools::isNearPosInf(std::numeric_limits<float>::infinity()));
    EXPECT_NEAR(MVTools::getMaxExpFloat(), std::log(1e18), 1e-4);
}

TEST(MVTools, NaNIsNeitherNearZeroNorNearInfinity) {
    const double nan = std::nan("");
    const float nanf = std::nanf("");
    EXPECT_FALSE(MVTools::isNearZero(nan) || MVTools::isNearPosZero(nan) ||
                 MVTools::isNearNegZero(nan) || MVTools::isNearInf(nan) ||
                 MVTools::isNearPosInf(nan) || MVTools::isNearNegInf(nan));
    EXPECT_FALSE(MVTools::isNearZero(nanf) || MVTools::isNearPosZero(nanf) ||
                 MVTools::isNearNegZero(nanf) || MVTools::isNearInf(nanf) ||
                 MVTools::isNearPosInf(nanf) || MVTools::isNearNegInf(nanf));
}

TEST(MVTools, IntegersAreNeverNearZeroAndOnlyTheMostNegativeIsNearInfinity) {
    EXPECT_EQ(MVTools::getMinPosInt(), 0);
    EXPECT_EQ(MVTools::getMaxPosInt(), INT_MAX);
    for (int v : {0, 1, -1}) {
        EXPECT_FALSE(MVTools::isNearZero(v));
        EXPECT_FALSE(MVTools::isNearPosZero(v));
        EXPECT_FALSE(MVTools::isNearNegZero(v));
    }
    EXPECT_TRUE(MVTools::isNearInf(INT_MIN));
    EXPECT_TRUE(MVTools::isNearNegInf(INT_MIN));
    EXPECT_FALSE(MVTools::isNearInf(INT_MIN + 1));
    EXPECT_FALSE(MVTools::isNearInf(INT_MAX));
    EXPECT_FALSE(MVTools::isNearPosInf(INT_MAX));
    EXPECT_FALSE(MVTools::isNearNegInf(INT_MIN + 1));
}

TEST(MVException, DescribesItsCode) {
    const char* const texts[] = {"Unknown",
                                 "Division by (positive) zero",
                                 "Division by (negative) zero",
                                 "Infinite (positive) value",
                                 "Infinite (negative) value",
                                 "Determinant negative",
                                 "Determinant close to zero",
                                 "Unknown"};
    for (int code = 0; code <= 7; ++code) {
        EXPECT_EQ(std::string(MVException(code).getDescription()), texts[code]) << code;
    }
    EXPECT_STREQ(MVException(-1).getDescription(), "Unknown");
    EXPECT_STREQ(MVException(MVException::DetCloseToZero).getDescription(),
                 "Determinant close to zero");
}
