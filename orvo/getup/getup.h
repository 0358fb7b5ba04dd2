#ifndef ORVO_GETUP_GETUP_H
#define ORVO_GETUP_GETUP_H

#include <orvo/core/export.h>
#include <orvo/fall/fall_detector.h>
#include <orvo/getup/lean_balance.h>
#include <orvo/params/param_set.h>
#include <orvo/perception/perception.h>
#include <orvo/robot/joints.h>
#include <orvo/skills/joint_controller.h>
#include <orvo/skills/motion_player.h>

#include <memory>
#include <string>

namespace orvo::getup {

/// Gets a lying robot back on its feet. However it landed, it first brings
/// every joint to one lying pose ("lie") and waits until it is still, so that
/// what follows always starts from the same state. Then it reads from the
/// accelerometer which side it lies on and plays that side's keyframes:
/// "front" (face down) stands up; "side" (lying on the left; mirrored for the
/// right) rolls it over; "back" stands up from the back, or, when
/// "back_rolls" is 1, rolls it onto its front. After a roll it waits until
/// still again and looks once more, so a roll that went wrong is tried again.
/// A motion may wait on the body rather than the clock: a keyframe N with
/// "NAME.N.lean" is held until the torso leans back no more than that many
/// degrees (negative: leaning forward), with "NAME.N.risen" until it leans
/// back at least that many (-160 head down, -90 lying on the front), at most
/// "NAME.N.wait" seconds, so that a body that moves late moves on late too. The end of a
/// motion may answer the torso's lean ("NAME.balance.*": LeanBalance). A stand-up that ends
/// short of standing (crouched, sitting, half up) lies down and starts over after "retry_after"
/// seconds: held there, the robot would never stand. Every number is the type's parameter file's
/// ("getup/type<T>.json"): the keyframes and the joint controller's gains ("joint_p", "joint_d").
class ORVO_API GetUp {
public:
    GetUp(int type, const params::ParamSet& params);
    /// The installed parameters of robot `type`.
    static GetUp for_type(int type);

    /// Whether a lying robot has come to rest: its torso turns slower than
    /// "still_rate" (deg/s).
    bool settled(const perception::Perception& perception) const;
    /// Starts getting up from lying as `posture` says (one of the four
    /// lying postures; anything else is taken as lying on the back). Which
    /// side it lies on is read again once the robot is still.
    void start(fall::Posture posture);
    /// One cycle: the targets at the perception's time and the joint speeds
    /// towards them. Does nothing before start().
    void update(const perception::Perception& perception);
    /// Whether it still works at getting up (the standing motion not yet over).
    bool active() const;
    /// The motion playing or last played ("" before start()).
    const std::string& motion() const { return motion_; }
    /// Seconds of motion planned from the posture given to start(), with
    /// the lying pose and without the waits until still or for the torso.
    double duration() const { return duration_; }

    /// How far the torso leans back (deg; 90 lying on the back, negative
    /// leaning forward), as of the last update.
    double lean_back() const;

    /// Speeds to send (rad/s) for joints(); the keyframes' targets (deg) as of the last
    /// update, before the balance bends them.
    const robot::JointValues& speeds() const { return speeds_; }
    const robot::JointValues& targets() const { return player_.targets(); }
    /// Every joint of the robot's type: those no motion moves are told to hold
    /// still, for a joint left without commands keeps its last speed (a knee
    /// the walk was bending as the robot fell would bend on to its stop).
    const robot::JointSet& joints() const { return own_joints_; }

private:
    enum class Phase { idle, lying_down, settling, rolling, standing };

    void play(const std::string& name, bool mirrored);
    /// Plays the current motion from keyframe `frame` to its next hold.
    void play_from(int frame);
    /// Moves on from a held keyframe once the torso leans far enough or the wait is over.
    void hold(double now);
    /// Whether the current motion still moves or holds.
    bool moving() const { return player_.playing(motion_) || next_frame_ > 0; }
    bool set_has(const std::string& name, int frame, const char* what) const;
    /// Plays what comes after lying still on `side`.
    void go_on_from(fall::Posture side);
    /// The motions planned from `side` onwards, in seconds.
    double plan(fall::Posture side) const;
    bool back_rolls() const { return params_["back_rolls"] >= 0.5; }
    /// Whether the stand-up is over and has left the robot short of upright
    /// for "retry_after" seconds.
    bool stuck(fall::Posture posture, double now);

    params::ParamSet params_;
    robot::JointSet own_joints_;
    skills::MotionPlayer player_;
    skills::JointController controller_;
    /// Where up is, from the gyroscope and the accelerometer.
    fall::FallDetector senses_;
    robot::JointValues speeds_{};
    std::string motion_;
    std::string name_;
    bool mirrored_ = false;
    /// The keyframe after the held one (0: no hold left), since when it holds.
    int next_frame_ = 0;
    double hold_from_ = -1;
    /// The playing part's balance, the part's start (-1 until its first update)
    /// and how long after it the balance takes over (negative: not in this part).
    LeanBalance balance_;
    double part_start_ = -1;
    double balance_after_ = -1;
    Phase phase_ = Phase::idle;
    double settle_from_ = -1;
    /// Since when the finished stand-up has left the robot short of upright.
    double short_since_ = -1;
    double duration_ = 0;
};

/// The side a still robot lies on, by the accelerometer (it feels the ground
/// push up): the axis of the torso nearest to up.
ORVO_API fall::Posture lying_side(const perception::Perception& perception);

/// The get-up's own sense of where up is: robot `type`'s fall detector
/// settings, but believing every reading of about g, as when the get-ups and
/// their holds were measured (they swing the torso too fast for a still
/// torso's readings to come often).
ORVO_API fall::FallParams senses_params(int type);

} // namespace orvo::getup

#endif
