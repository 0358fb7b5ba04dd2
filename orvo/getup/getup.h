#ifndef ORVO_GETUP_GETUP_H
#define ORVO_GETUP_GETUP_H

#include <orvo/core/export.h>
#include <orvo/fall/fall_detector.h>
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
/// Every number is the type's parameter file's ("getup/type<T>.json"): the
/// keyframes and the joint controller's gains ("joint_p", "joint_d").
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
    /// the lying pose and without the waits until still.
    double duration() const { return duration_; }

    /// Speeds to send (rad/s) for joints(); targets (deg) as of the last update.
    const robot::JointValues& speeds() const { return speeds_; }
    const robot::JointValues& targets() const { return player_.targets(); }
    const robot::JointSet& joints() const { return player_.driven(); }

private:
    enum class Phase { idle, lying_down, settling, rolling, standing };

    void play(const std::string& name, bool mirrored);
    /// Plays what comes after lying still on `side`.
    void go_on_from(fall::Posture side);
    /// The motions planned from `side` onwards, in seconds.
    double plan(fall::Posture side) const;
    bool back_rolls() const { return params_["back_rolls"] >= 0.5; }

    params::ParamSet params_;
    robot::JointSet own_joints_;
    skills::MotionPlayer player_;
    skills::JointController controller_;
    robot::JointValues speeds_{};
    std::string motion_;
    Phase phase_ = Phase::idle;
    double settle_from_ = -1;
    double duration_ = 0;
};

/// The side a still robot lies on, by the accelerometer (it feels the ground
/// push up): the axis of the torso nearest to up.
ORVO_API fall::Posture lying_side(const perception::Perception& perception);

} // namespace orvo::getup

#endif
