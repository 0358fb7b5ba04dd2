#ifndef ORVO_KICK_KICK_MOTION_H
#define ORVO_KICK_KICK_MOTION_H

#include <orvo/core/export.h>
#include <orvo/kick/kick_params.h>
#include <orvo/walk/gait.h>
#include <orvo/walk/leg_targets.h>
#include <orvo/walk/walk_params.h>

#include <array>

namespace orvo::kick {

/// Where both soles are and how the torso is held at one moment of the kick,
/// in the walk's level frame (origin midway between the hip joints).
struct KickPose {
    walk::SoleTarget left;
    walk::SoleTarget right;
    walk::Attitude attitude;
    double toe_down = 0; ///< the kicking foot's ankle pitched toes down, degrees
    double twist = 0;    ///< the kicking hip's yaw-pitch joint turned, degrees
    double arm_out = 0;  ///< the kicking side's shoulder rolled outward, degrees
    /// The arms swing against the legs, as in a step: the kicking side's
    /// back, the other forward, which takes up the turn the swinging leg
    /// gives the body about the support foot. Shoulder pitch, degrees.
    double arm_swing = 0;

    const walk::SoleTarget& sole(walk::Side side) const {
        return side == walk::Side::left ? left : right;
    }
};

/// The kick as computed poses: from the walk's stand, the hips move over the
/// support foot, the kicking foot lifts and draws back, swings through past
/// the ball, draws back, sets down, and the hips return to the stand. Between
/// its key poses it moves smoothly (no speed at a key pose), except through
/// the swing, which goes from the drawn-back to the swung-through pose in the
/// joints' angles at one speed: every joint runs at its own constant speed,
/// hip and knee together, and the foot meets the ball low and at its fastest
/// mid-swing rather than along a straight line no joint could follow.
class ORVO_API KickMotion {
public:
    static constexpr std::size_t key_count = 7;

    /// `stand`: the walk's stance; `hip_width`: each hip joint beside the
    /// hips' middle; `closer`: the drawn-back foot that much further forward
    /// (toward a ball lying further than planned), the swing shortened in
    /// time as in length so that the joints keep their speed; `reach`: the
    /// hips move that much forward over the support foot (back when
    /// negative) and carry the whole swing with them, unchanged in the
    /// joints, to a ball lying off the place the swing meets best.
    KickMotion(const KickParams& params, const walk::WalkParams& stand, double hip_width,
               walk::Side kicking, double closer = 0, double reach = 0);

    walk::Side kicking() const { return kicking_; }
    double duration() const;
    /// The pose `seconds` after the start (held at the ends).
    KickPose at(double seconds) const;
    /// The joint angles (deg) of both legs `seconds` after the start, into
    /// `angles`; false when a pose was out of reach.
    bool angles(const body::BodyModel& model, double seconds, robot::JointValues& angles) const;
    /// The swing's start and end, seconds after the start.
    double swing_begins() const;
    double swing_ends() const { return swing_begins() + times_[2]; }

private:
    /// One key pose: the kicking sole's offset from its stand place, how far
    /// the hips have moved over the support foot (0 to 1) and the toes' pitch.
    struct Key {
        double x = 0;
        double z = 0;
        double out = 0;
        double shift = 0;
        double toe_down = 0;
        double lunge = 0;
        double arms = 0;  ///< share of the arms' swing
        double twist = 0; ///< share of the hip's twist
        double carry = 0; ///< share of the hips' reach the kicking sole moves with
    };
    KickPose pose(const Key& key) const;
    /// The legs' angles `share` of the way through the swing, into `angles`.
    bool swing_angles(const body::BodyModel& model, double share, robot::JointValues& angles) const;

    KickParams params_;
    walk::WalkParams stand_;
    double hip_width_;
    walk::Side kicking_;
    double reach_;
    std::array<Key, key_count> keys_;
    Key contact_; ///< the swing's pose where the foot meets the ball
    std::array<double, key_count - 1> times_;
};

/// Joint angles (deg) for `pose`, into `angles`; false when a sole was out of
/// reach.
ORVO_API bool pose_legs(const body::BodyModel& model, const KickPose& pose, walk::Side kicking,
                        robot::JointValues& angles);

} // namespace orvo::kick

#endif
