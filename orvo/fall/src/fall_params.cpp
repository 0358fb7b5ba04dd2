#include <orvo/fall/fall_params.h>

namespace orvo::fall {

#define ORVO_FALL_PARAM(name) params.name = set[#name]

FallParams FallParams::from(const params::ParamSet& set) {
    FallParams params;
    ORVO_FALL_PARAM(accel_weight);
    ORVO_FALL_PARAM(accel_tolerance);
    ORVO_FALL_PARAM(accel_still_rate);
    ORVO_FALL_PARAM(falling_tilt);
    ORVO_FALL_PARAM(falling_rate);
    ORVO_FALL_PARAM(rate_filter);
    ORVO_FALL_PARAM(fallen_tilt);
    ORVO_FALL_PARAM(fallen_height);
    ORVO_FALL_PARAM(upright_tilt);
    ORVO_FALL_PARAM(upright_height);
    ORVO_FALL_PARAM(upright_hold);
    return params;
}

#undef ORVO_FALL_PARAM

FallParams FallParams::for_type(int type) {
    return from(params::ParamSet::load(params::params_path("fall", type)));
}

} // namespace orvo::fall
