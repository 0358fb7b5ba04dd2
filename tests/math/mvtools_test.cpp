#include <orvo/math/mvexception.h>
#include <orvo/math/mvtools.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <string>

namespace {

// The six predicates of one value, as a string of 0/1:
// zero, pos zero, neg zero, inf, pos inf, neg inf.
template <typename T> std::string predicates(T v) {
    std::string s;
    for (bool b : {MVTools::isNearZero(v), MVTools::isNearPosZero(v), MVTools::isNearNegZero(v),
                   MVTools::isNearInf(v), MVTools::isNearPosInf(v), MVTools::isNearNegInf(v)}) {
        s += b ? '1' : '0';
    }
    return s;
}

} // namespace

TEST(MVTools, ThresholdsAreExclusive) {
    EXPECT_EQ(predicates(0.0), "111000");
    EXPECT_EQ(predicates(-0.0), "111000");
    EXPECT_EQ(predicates(1e-151), "110000");
    EXPECT_EQ(predicates(1e-150), "000000");
    EXPECT_EQ(predicates(-1e-150), "000000");
    EXPECT_EQ(predicates(-1e-200), "101000");
    EXPECT_EQ(predicates(1e150), "000000");
    EXPECT_EQ(predicates(1.000001e150), "000110");
    EXPECT_EQ(predicates(-1e151), "000101");
    EXPECT_EQ(predicates(std::nan("")), "000000");
    EXPECT_NEAR(MVTools::getMaxExpDouble(), std::log(1e150), 1e-4);

    EXPECT_EQ(predicates(0.0f), "111000");
    EXPECT_EQ(predicates(9e-19f), "110000");
    EXPECT_EQ(predicates(1e-18f), "000000");
    EXPECT_EQ(predicates(1e-30f), "110000");
    EXPECT_EQ(MVTools::getMaxPosFloat(), 999999984306749440.0f);
    EXPECT_EQ(predicates(MVTools::getMaxPosFloat()), "000000");
    EXPECT_EQ(predicates(std::nextafter(MVTools::getMaxPosFloat(), 2e18f)), "000110");
    EXPECT_EQ(predicates(-2e18f), "000101");
    EXPECT_EQ(predicates(std::numeric_limits<float>::infinity()), "000110");
    EXPECT_EQ(predicates(std::nanf("")), "000000");
    EXPECT_NEAR(MVTools::getMaxExpFloat(), std::log(1e18), 1e-4);

    // Integers are never near zero; only the most negative is near infinity.
    EXPECT_EQ(MVTools::getMinPosInt(), 0);
    EXPECT_EQ(MVTools::getMaxPosInt(), INT_MAX);
    for (int v : {0, 1, -1, INT_MIN + 1, INT_MAX}) {
        EXPECT_EQ(predicates(v), "000000") << v;
    }
    EXPECT_EQ(predicates(INT_MIN), "000101");
}
