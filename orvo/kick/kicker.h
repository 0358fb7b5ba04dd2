#ifndef ORVO_KICK_KICKER_H
#define ORVO_KICK_KICKER_H

#include <orvo/body/body_model.h>
#include <orvo/core/export.h>
#include <orvo/kick/kick_motion.h>
#include <orvo/kick/kick_params.h>
#include <orvo/kick/kick_plan.h>
#include <orvo/perception/perception.h>
#include <orvo/robot/joints.h>
#include <orvo/skills/joint_controller.h>
#include <orvo/walk/walker.h>

#include <optional>

namespace orvo::kick {

/// What the kicker is doing.
enum class KickPhase {
    idle,     ///< standing (or walking as the walker is told), no kick asked for
    approach, ///< walking to the spot beside the ball
    settle,   ///< standing still on the spot before a last look
    kick,     ///< the kick's motion
    rest,     ///< standing after it
    done,     ///< kicked and standing; idle again on the next start()
    failed    ///< the ball was lost or the spot not reached in time
};

ORVO_API const char* phase_name(KickPhase phase);

/// Walks up to a ball and kicks it in a direction. It sees the ball with the
/// head camera (the head follows it), keeps it in the walk's odometry frame
/// between sightings, walks (the walk's Walker) to the spot from which the
/// kicking foot meets the ball facing the kick's direction, stands still,
/// looks once more and kicks (KickMotion); off the spot, it walks again.
class ORVO_API Kicker {
public:
    Kicker(const body::BodyModel& model, const walk::WalkParams& walk, const KickParams& kick);

    /// Kicks toward `direction_deg` left of the robot's heading now.
    void start(double direction_deg);
    /// One cycle: reads `perception`, writes targets() and speeds().
    void update(const perception::Perception& perception);

    KickPhase phase() const { return phase_; }
    bool finished() const { return phase_ == KickPhase::done || phase_ == KickPhase::failed; }
    /// The walk, for walking between kicks while idle or done.
    walk::Walker& walker() { return walker_; }
    const walk::Walker& walker() const { return walker_; }
    /// The ball in the walk's odometry frame, once seen.
    const std::optional<Pose2>& ball() const { return ball_; }
    /// The spot the robot walks to, in the odometry frame, once the ball is seen.
    const std::optional<Pose2>& stand() const { return stand_; }
    walk::Side kicking() const { return side_; }
    /// The kick's direction in the odometry frame, degrees.
    double direction() const { return direction_; }
    /// Where the robot stands by its odometry.
    Pose2 robot() const;
    const robot::JointValues& targets() const { return targets_; }
    const robot::JointValues& speeds() const { return speeds_; }
    const robot::JointSet& joints() const { return walker_.joints(); }
    const KickParams& params() const { return params_; }

private:
    void see_ball(const perception::Perception& perception);
    void aim_head();
    void plan();
    void approach();
    void settle();
    /// How much further ahead of the hips the ball lies than the kick plans.
    double beyond_spot() const;
    /// Whether the last look would kick from where the robot stands, or
    /// once it has carried on `lead` further.
    bool placed_for_kick(double lead) const;
    void move();
    void follow_walker(const perception::Perception& perception);

    body::BodyModel model_;
    KickParams params_;
    walk::Walker walker_;
    skills::JointController controller_;
    KickPhase phase_ = KickPhase::idle;
    double clock_ = 0;      ///< seconds of updates
    double since_ = 0;      ///< when the phase began, by clock_
    double started_ = 0;    ///< when the kick was asked for, by clock_
    double last_seen_ = -1; ///< when the ball was last seen, by clock_
    double direction_ = 0;
    double asked_ = 0; ///< the direction asked for, relative to the heading at start()
    walk::Side side_ = walk::Side::right;
    bool side_chosen_ = false;
    int retries_ = 0; ///< walks back to the spot after a last look since start()
    std::optional<Pose2> ball_;
    std::optional<Pose2> stand_;
    Pose2 settled_ball_; ///< the ball as the robot came to stand
    std::optional<KickMotion> motion_;
    double head_yaw_ = 0;
    double head_pitch_ = 0;
    robot::JointValues angles_{};
    robot::JointValues targets_{};
    robot::JointValues previous_{};
    robot::JointValues rates_{};
    robot::JointValues speeds_{};
};

} // namespace orvo::kick

#endif
