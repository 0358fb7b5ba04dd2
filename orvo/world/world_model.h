#ifndef ORVO_WORLD_WORLD_MODEL_H
#define ORVO_WORLD_WORLD_MODEL_H

#include <orvo/core/export.h>
#include <orvo/perception/perception.h>
#include <orvo/world/beliefs.h>
#include <orvo/world/localizer.h>
#include <orvo/world/sightings.h>
#include <orvo/world/world_params.h>

#include <string>

namespace orvo::world {

/// What one robot believes about the field: its own pose, the ball and the
/// other robots, all in its team's frame. Fed every cycle with the perception
/// and the odometry of the walk; allocates nothing once constructed (the own
/// team's name aside, set once).
class ORVO_API WorldModel {
public:
    explicit WorldModel(const WorldParams& params, Method method = Method::particles_and_fit,
                        std::uint32_t seed = 1);

    /// The own team's name (to tell team-mates from opponents) and side; the
    /// side is also taken from the perception that tells it.
    void set_team(const std::string& name, perception::Side side);
    /// The robot was placed around `x`, `y`, facing `heading_deg` (a beam).
    void place(double x, double y, double heading_deg);
    /// One cycle.
    void update(const perception::Perception& now, const Odometry& step);

    const Pose& pose() const { return localizer_.estimate(); }
    const BallBelief& ball() const { return ball_; }
    const OtherRobots& others() const { return others_; }
    perception::Side side() const { return side_; }
    /// What the last "(See ...)" showed, on the ground around the torso.
    const Sightings& sightings() const { return seen_; }
    /// Server time of the last "(See ...)"; 0 before the first.
    double last_vision() const { return last_vision_; }
    /// The torso's lean from upright, degrees (running average of the accelerometer).
    double tilt_deg() const { return tilt_deg_; }
    /// Whether the robot lies (or has not yet risen since it lay).
    bool lying() const { return lying_; }

private:
    /// Follows the torso's lean; false while it leans too far to trust what is seen.
    bool track_tilt(const perception::Perception& now);
    /// Whether the robot lies, from the lean and how long it has held.
    void follow_posture(double time, bool upright);
    void update_ball(double time, bool seen);
    void update_others(const perception::Vision& vision, double neck_yaw, double neck_pitch,
                       double time);

    WorldParams params_;
    Localizer localizer_;
    Sightings seen_;
    BallBelief ball_;
    double ball_var_[2][3] = {}; ///< per axis: position, covariance, velocity variances
    double ball_time_ = 0;
    OtherRobots others_{};
    std::string team_;
    perception::Side side_ = perception::Side::left;
    double last_vision_ = 0;
    double gravity_[3] = {0, 0, 0}; ///< the accelerometer's running average
    double lean_forward_deg_ = 0;   ///< about the left axis
    double tilt_deg_ = 0;           ///< from upright, any direction
    bool lying_ = false;            ///< leant beyond lying_tilt_deg since last upright
    double upright_since_ = -1;     ///< time it came within max_tilt_deg while lying
    double lying_since_ = -1;       ///< time it leant beyond lying_tilt_deg
};

} // namespace orvo::world

#endif
