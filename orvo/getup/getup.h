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

/// Gets a lying robot back on its feet. From the front and from the back it
/// plays that side's keyframes ("front", "back"); from a side it first rolls
/// ("side", for lying on the left; mirrored for the right) onto its front
/// when "side_onto_front" is 1, else onto its back, and goes on from there.
/// Every number is the type's parameter file's ("getup/type<T>.json"):
/// the keyframes and the joint controller's gains ("joint_p", "joint_d").
class ORVO_API GetUp {
public:
    GetUp(int type, const params::ParamSet& params);
    /// The installed parameters of robot `type`.
    static GetUp for_type(int type);

    /// Whether a lying robot has come to rest, so that a get-up starts from
    /// the same pose every time: its torso turns slower than "still_rate" (deg/s).
    bool settled(const perception::Perception& perception) const;
    /// Starts getting up from lying as `posture` says (one of the four
    /// lying postures; anything else is taken as lying on the back).
    void start(fall::Posture posture);
    /// One cycle: the targets at the perception's time and the joint speeds
    /// towards them. Does nothing before start().
    void update(const perception::Perception& perception);
    /// Whether a motion still plays (the last keyframe not yet reached).
    bool active() const;
    /// The motion playing or last played ("" before start()).
    const std::string& motion() const { return motion_; }
    /// Seconds from the first update after start() to the end of every
    /// motion it plays.
    double duration() const { return duration_; }

    /// Speeds to send (rad/s) for joints(); targets (deg) as of the last update.
    const robot::JointValues& speeds() const { return speeds_; }
    const robot::JointValues& targets() const { return player_.targets(); }
    const robot::JointSet& joints() const { return player_.driven(); }

private:
    void play(const std::string& name, bool mirrored);

    params::ParamSet params_;
    robot::JointSet own_joints_;
    skills::MotionPlayer player_;
    skills::JointController controller_;
    robot::JointValues speeds_{};
    std::string motion_;
    std::string next_;
    double duration_ = 0;
};

} // namespace orvo::getup

#endif
