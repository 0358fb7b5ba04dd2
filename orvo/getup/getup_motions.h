#ifndef ORVO_GETUP_GETUP_MOTIONS_H
#define ORVO_GETUP_GETUP_MOTIONS_H

#include <orvo/core/export.h>
#include <orvo/params/param_set.h>
#include <orvo/skills/motion.h>

#include <string>

namespace orvo::getup {

/// The keyframes named `name` in a get-up parameter set, as a motion. Keyframe
/// N (1, 2, ... up to the first missing "NAME.N.time") takes "NAME.N.time"
/// seconds to reach its angles: "NAME.N.JOINT" with JOINT a joint's full name
/// ("left_hip_roll") sets that joint; a name without its side
/// ("hip_roll") sets both, the right one mirrored (roll and yaw angles but
/// the hip yaw-pitch change sign, so the two sides move as mirror images). With `mirrored`
/// the whole motion is played mirrored: what it does with the left side it
/// does with the right. "NAME.N.lean", "NAME.N.risen" and "NAME.N.wait" say
/// when to go on from a keyframe (GetUp reads them), not where to go. Throws ParamError when there
/// is no keyframe or a name is no joint's.
ORVO_API skills::Motion motion_from(const params::ParamSet& set, const std::string& name,
                                    bool mirrored = false);
/// Keyframes `first` to `last` (or the last there is) of the same motion,
/// under the same name: the part of a motion played before or after it
/// waits for the body. Throws ParamError when keyframe `first` is missing.
ORVO_API skills::Motion motion_part(const params::ParamSet& set, const std::string& name, int first,
                                    int last, bool mirrored = false);

} // namespace orvo::getup

#endif
