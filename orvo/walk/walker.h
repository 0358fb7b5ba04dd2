#ifndef ORVO_WALK_WALKER_H
#define ORVO_WALK_WALKER_H

#include <orvo/body/body_model.h>
#include <orvo/core/export.h>
#include <orvo/perception/perception.h>
#include <orvo/robot/joints.h>
#include <orvo/skills/joint_controller.h>
#include <orvo/walk/gait.h>
#include <orvo/walk/leg_targets.h>
#include <orvo/walk/walk_params.h>

#include <optional>

namespace orvo::walk {

/// Where the walk believes the robot is, from the steps it took since it
/// started: metres forward and left of the start pose, degrees turned left
/// (the heading by the gyroscope, which sees the feet's slips as well).
struct Odometry {
    double x = 0;
    double y = 0;
    double heading = 0;
};

/// deg/s the heading turns left, from the gyroscope's `rates` (deg/s about
/// forward, left and up) of a torso tilted by `tilt` (deg).
ORVO_API double heading_rate(const Eigen::Vector3d& rates, const Attitude& tilt);

/// An omnidirectional walk driven by a target velocity. Each cycle it reads
/// the perception (joint angles, gyroscope, accelerometer, foot forces),
/// moves the gait on, turns the soles' targets into joint angles through the
/// leg kinematics, adds the sensors' corrections and computes the joint
/// speeds with the joint controller. It starts from and stops into the stand:
/// with no velocity asked for it keeps stepping until both feet are back in
/// place, then stands.
class ORVO_API Walker {
public:
    Walker(const body::BodyModel& model, const WalkParams& params);

    /// Target velocity: m/s forward and left, deg/s turning left; clamped to
    /// the parameters' limits, and a combination scaled down so that the
    /// shares of the limits it takes add up (squared) to one at most. The walk approaches it at the
    /// limited accelerations. Cancels walk_to().
    void set_velocity(double forward, double sideways, double turn);
    /// Walks to (x, y) of the odometry's frame, turning toward it first when
    /// it lies far off the heading, and stops there.
    void walk_to(double x, double y);
    /// Asks for no velocity: the walk stops into the stand.
    void stop() { set_velocity(0, 0, 0); }

    /// One cycle: reads `perception`, writes targets() and speeds().
    void update(const perception::Perception& perception);

    bool standing() const { return !walking_; }
    /// True once a walk_to() has reached its spot (and none since).
    bool arrived() const { return arrived_; }
    const Odometry& odometry() const { return odometry_; }
    /// The velocity walked now, after the acceleration limits.
    const Velocity& velocity() const { return velocity_; }
    const Velocity& target() const { return target_; }
    const Gait& gait() const { return gait_; }
    /// Joint angles wanted this cycle (deg) and the speeds sent (rad/s), for
    /// the joints in joints().
    const robot::JointValues& targets() const { return targets_; }
    const robot::JointValues& speeds() const { return speeds_; }
    const robot::JointSet& joints() const { return joints_; }
    /// False when a sole target was out of the leg's reach this cycle.
    bool reachable() const { return reachable_; }
    /// The torso's tilt as the walk measures it: degrees forward, and about
    /// the forward axis (positive leaning right).
    const Attitude& tilt() const { return tilt_; }
    /// The gyroscope's last reading, deg/s about forward, left and up.
    const Eigen::Vector3d& rates() const { return gyro_; }
    const WalkParams& params() const { return params_; }

private:
    void steer_to_spot();
    Velocity limited(const Velocity& wanted) const;
    void accelerate();
    /// True when the torso is steady enough to take a first step.
    bool steady() const;
    /// The velocity for the next step, turning back the drift.
    Velocity steered() const;
    void step_on(const perception::Perception& perception);
    void track_odometry(const Offset& before);
    void sense(const perception::Perception& perception);
    /// Shifts the swing foot's landing toward where the torso is tipping.
    void place_swing_foot();
    void pose_joints();

    body::BodyModel model_;
    WalkParams params_;
    WalkParams now_; ///< params_ blended for the speed walked now
    Gait gait_;
    skills::JointController controller_;
    Velocity target_;
    Velocity velocity_;
    std::optional<Eigen::Vector2d> spot_;
    bool arrived_ = false;
    bool walking_ = false;
    bool last_step_ = false;
    Odometry odometry_;
    Eigen::Vector3d gyro_ = Eigen::Vector3d::Zero();    ///< deg/s about forward, left, up
    Attitude tilt_;                                     ///< measured, filtered
    Eigen::Vector3d gravity_ = Eigen::Vector3d::Zero(); ///< the accelerometer, averaged
    /// Degrees the torso turned beyond what the walk asked for, by the
    /// gyroscope: feet slip, and the steps turn it back.
    double drift_ = 0;
    double heading_ = 0; ///< by the gyroscope since the start, degrees
    bool has_tilt_ = false;
    robot::JointValues angles_{};
    robot::JointValues targets_{};
    robot::JointValues previous_targets_{};
    robot::JointValues rates_{};
    robot::JointValues speeds_{};
    robot::JointSet joints_;
    bool has_previous_ = false;
    bool reachable_ = true;
};

} // namespace orvo::walk

#endif
