#ifndef ORVO_WALK_GAIT_H
#define ORVO_WALK_GAIT_H

#include <orvo/core/export.h>
#include <orvo/walk/walk_params.h>

#include <Eigen/Geometry>

#include <array>

namespace orvo::walk {

enum class Side { left, right };

inline Side other(Side side) {
    return side == Side::left ? Side::right : Side::left;
}
/// +1 for the left side (y points left), -1 for the right.
inline double sign(Side side) {
    return side == Side::left ? 1.0 : -1.0;
}

/// A walking velocity: forward and sideways (left) in m/s, turn (left) in deg/s.
struct Velocity {
    double forward = 0;
    double sideways = 0;
    double turn = 0;
};

/// Where a foot is, relative to its place in the stand: metres forward and
/// left, degrees turned left.
struct Offset {
    double x = 0;
    double y = 0;
    double yaw = 0;
};

/// A sole's target in the level frame: origin midway between the hip joints,
/// x forward, y left, z up, turned with the torso but not tilted with it.
struct SoleTarget {
    Eigen::Vector3d position;
    double yaw = 0; ///< degrees
};

/// The step cycle. Each step one foot supports and the other swings. The
/// body moves forward and sideways continuously over the support foot (it
/// slides under the hips as the swing foot comes through); turns are taken by
/// the leg on that side turning out, the other closing up on the next step,
/// so that the hip yaw joints only ever turn a foot outward. The hips sway
/// over the support foot as a linear inverted pendulum with its pressure
/// centre fixed there: the sway is zero at the support switch and largest
/// mid-step.
class ORVO_API Gait {
public:
    /// `hip_offset`: how far each hip joint lies beside the torso's middle.
    Gait(const WalkParams& params, double hip_offset);

    /// Takes new parameters (the walk's, blended for its speed); the step
    /// under way keeps its time and height, which begin() takes up.
    void retune(const WalkParams& params) { params_ = params; }
    /// Starts a step on `support` at the velocity `velocity`; `sway_scale`
    /// (0 to 1) shrinks the sway for the first and last step.
    void begin(Side support, const Velocity& velocity, double sway_scale);
    /// Moves the step on by `seconds`; true once it has ended.
    bool advance(double seconds);
    /// Ends the step early (the swing foot touched down).
    void finish() { phase_ = 1; }
    /// Sets the swing foot down `x` m further forward and `y` m further left
    /// than the velocity asks, to catch the body where it is tipping; each call
    /// replaces the last one's shift for this step.
    void place(double x, double y);

    double phase() const { return phase_; }
    Side support() const { return support_; }
    /// Where `side`'s foot is now, or at `phase` of this step, relative to
    /// the stand.
    Offset offset(Side side) const { return offset(side, phase_); }
    Offset offset(Side side, double phase) const;
    /// True when both feet are back in the stand.
    bool feet_together() const;
    /// The sole of `side` in the level frame `ahead` seconds from now (within
    /// this step).
    SoleTarget sole(Side side, double ahead = 0) const;
    /// Both soles in the stand: no sway, no step.
    SoleTarget stand_sole(Side side) const;
    /// The hips' sideways shift toward the support foot (m), now or at `phase`.
    double sway() const { return sway(phase_); }
    double sway(double phase) const;

private:
    double swing_share(double phase) const;

    WalkParams params_;
    double hip_offset_;
    Side support_ = Side::right;
    double phase_ = 1;
    double sway_scale_ = 0;
    std::array<Offset, 2> start_{};
    std::array<Offset, 2> end_{};
    Offset swing_end_;       ///< the swing foot's end before place()
    double step_height_ = 0; ///< this step's, as the turn asks
    double step_time_ = 1;   ///< this step's
};

} // namespace orvo::walk

#endif
