#include <orvo/math/mvexception.h>

const char* MVException::getDescription() const {
    switch (code) {
    case DivByPosZero:
        return "Division by (positive) zero";
    case DivByNegZero:
        return "Division by (negative) zero";
    case PosInfValue:
        return "Infinite (positive) value";
    case NegInfValue:
        return "Infinite (negative) value";
    case DetNegative:
        return "Determinant negative";
    case DetCloseToZero:
        return "Determinant close to zero";
    default:
        return "Unknown";
    }
}
