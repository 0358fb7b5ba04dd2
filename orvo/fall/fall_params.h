#ifndef ORVO_FALL_FALL_PARAMS_H
#define ORVO_FALL_FALL_PARAMS_H

#include <orvo/core/export.h>
#include <orvo/params/param_set.h>

namespace orvo::fall {

/// Every threshold of the fall detector of one robot type, as the parameter
/// file "fall/type<T>.json" holds them. Angles in degrees from vertical,
/// heights in metres (torso centre above the lower sole), times in seconds.
struct ORVO_API FallParams {
    // The up-axis estimate: the gyroscope turns it, the accelerometer pulls
    // it towards gravity when it reads about g and the torso hardly turns.
    double accel_weight = 0;     ///< share of the accelerometer's direction taken per cycle
    double accel_tolerance = 0;  ///< m/s² from g within which the accelerometer is trusted
    double accel_still_rate = 0; ///< deg/s the gyroscope may read for it to be trusted
    // Falling: tilted beyond falling_tilt and still tilting away fast.
    double falling_tilt = 0;
    double falling_rate = 0; ///< deg/s away from vertical
    double rate_filter = 0;  ///< share of a new tilt rate taken per cycle
    // Fallen: tilted beyond fallen_tilt, or the torso low over the feet.
    double fallen_tilt = 0;
    double fallen_height = 0;
    // Upright again: within upright_tilt, above upright_height, for upright_hold.
    double upright_tilt = 0;
    double upright_height = 0;
    double upright_hold = 0;

    /// Takes every field from `set`; throws ParamError naming a missing entry.
    static FallParams from(const params::ParamSet& set);
    /// The installed file of robot `type`.
    static FallParams for_type(int type);
};

} // namespace orvo::fall

#endif
