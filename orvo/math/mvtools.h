#ifndef ORVO_MATH_MVTOOLS_H
#define ORVO_MATH_MVTOOLS_H

#include <orvo/core/export.h>

/// Classifies numbers as near zero or near infinity against fixed thresholds
/// per type: for double 1e-150 and 1e150, for float 1e-18 and 1e18. Every
/// predicate is false for NaN.
///
/// The int thresholds are 0 and 2147483647 and the same comparisons are
/// applied, so for int nothing is ever near zero (0 included) and only
/// -2147483648 is near (negative) infinity.
class ORVO_API MVTools {
public:
    static double getMinPosDouble();
    static double getMaxPosDouble();
    /// About ln(1e150): exp() of anything larger is near infinity.
    static double getMaxExpDouble();
    static float getMinPosFloat();
    static float getMaxPosFloat();
    /// About ln(1e18).
    static float getMaxExpFloat();
    static int getMinPosInt();
    static int getMaxPosInt();

    /// -t < v < t.
    static bool isNearZero(double v);
    static bool isNearZero(float v);
    static bool isNearZero(int v);
    /// 0 <= v < t.
    static bool isNearPosZero(double v);
    static bool isNearPosZero(float v);
    static bool isNearPosZero(int v);
    /// -t < v <= 0.
    static bool isNearNegZero(double v);
    static bool isNearNegZero(float v);
    static bool isNearNegZero(int v);
    /// v > T or v < -T.
    static bool isNearInf(double v);
    static bool isNearInf(float v);
    static bool isNearInf(int v);
    /// v > T.
    static bool isNearPosInf(double v);
    static bool isNearPosInf(float v);
    static bool isNearPosInf(int v);
    /// v < -T.
    static bool isNearNegInf(double v);
    static bool isNearNegInf(float v);
    static bool isNearNegInf(int v);
};

#endif
