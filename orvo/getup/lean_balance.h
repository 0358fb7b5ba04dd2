#ifndef ORVO_GETUP_LEAN_BALANCE_H
#define ORVO_GETUP_LEAN_BALANCE_H

#include <orvo/core/export.h>
#include <orvo/params/param_set.h>
#include <orvo/robot/joints.h>

#include <string>
#include <vector>

namespace orvo::getup {

/// The end of a rise answering the torso's lean. Keyframes alone rise open
/// loop: a robot that arrives on its feet a few degrees off balance topples
/// within a second, whichever way the last pose leans. From keyframe
/// "NAME.balance.from" of motion NAME on (while moving to it and while its last
/// pose is held), the hips and the ankles bend further forward the further
/// the torso leans back beyond "NAME.balance.lean" (deg) and the faster it
/// turns back ("NAME.balance.damping" seconds of the turn count as lean):
/// "NAME.balance.hip" and "NAME.balance.ankle" degrees of joint per degree,
/// at most "NAME.balance.limit" degrees either way. A motion without
/// "NAME.balance.from" plays as its keyframes say.
class ORVO_API LeanBalance {
public:
    /// No balance: the keyframes as they are.
    LeanBalance() = default;
    /// Motion `name`'s balance; throws ParamError when the set names where it
    /// starts but lacks a gain or a keyframe before.
    LeanBalance(const params::ParamSet& params, const std::string& name);

    /// Seconds after the start of the part of the motion that plays keyframes
    /// `first` to `last` until the balance takes over; negative when it does
    /// not within that part (none at all, or a later keyframe's).
    double starts_after(int first, int last) const;
    bool on() const { return from_ > 0; }
    /// Bends both hips and ankles of `targets` (deg) against a torso leaning
    /// back `lean_back` degrees and turning back at `lean_rate` deg/s.
    void apply(double lean_back, double lean_rate, robot::JointValues& targets) const;

private:
    int from_ = 0; ///< 0: no balance
    /// Seconds to reach each keyframe before `from_`, the first at index 0.
    std::vector<double> times_;
    double lean_ = 0, damping_ = 0, hip_ = 0, ankle_ = 0, limit_ = 0;
};

} // namespace orvo::getup

#endif
