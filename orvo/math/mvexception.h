#ifndef ORVO_MATH_MVEXCEPTION_H
#define ORVO_MATH_MVEXCEPTION_H

#include <orvo/core/export.h>

/// A numeric failure, identified by its code.
class ORVO_API MVException {
public:
    enum Code {
        DivByPosZero = 1,
        DivByNegZero = 2,
        PosInfValue = 3,
        NegInfValue = 4,
        DetNegative = 5,
        DetCloseToZero = 6
    };

    explicit MVException(int code = 0) : code(code) {}

    /// A fixed text per code; "Unknown" for any code outside 1 to 6.
    const char* getDescription() const;

    int code;
};

#endif
