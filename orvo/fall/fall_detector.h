#ifndef ORVO_FALL_FALL_DETECTOR_H
#define ORVO_FALL_FALL_DETECTOR_H

#include <orvo/body/body_model.h>
#include <orvo/core/export.h>
#include <orvo/fall/fall_params.h>
#include <orvo/perception/perception.h>

#include <Eigen/Core>

#include <string_view>

namespace orvo::fall {

/// What the robot's body is doing, as far as its senses tell.
enum class Posture {
    upright,      ///< standing or walking
    falling,      ///< tipping over fast, not yet down
    fallen_front, ///< lying face down
    fallen_back,
    fallen_left, ///< lying on its left side
    fallen_right,
    getting_up, ///< no longer lying, but not yet upright for long enough
};

ORVO_API std::string_view posture_name(Posture posture);

/// True for the four lying postures.
inline bool lying(Posture posture) {
    return posture == Posture::fallen_front || posture == Posture::fallen_back ||
           posture == Posture::fallen_left || posture == Posture::fallen_right;
}

/// Tells the posture from one perception per cycle. The torso's up axis is
/// tracked in the torso's own frame (x right, y forward, z up): the gyroscope
/// turns it every cycle and the accelerometer, whenever it reads about one g,
/// pulls it towards where gravity is. The torso's height comes from the leg
/// joints through the body model: the sole lower along the up axis stands
/// on the ground. Once down, the robot counts as upright again only after it
/// has stood within the upright tilt and above the upright height for the
/// upright hold, with a foot on the ground.
class ORVO_API FallDetector {
public:
    FallDetector(body::BodyModel body, const FallParams& params);

    /// One cycle; a perception without a time is ignored.
    Posture update(const perception::Perception& perception);

    Posture posture() const { return posture_; }
    /// True while falling or lying: what a behavior must react to.
    bool down() const { return posture_ != Posture::upright && posture_ != Posture::getting_up; }
    /// The angle between the torso's up axis and the vertical.
    double tilt_deg() const { return tilt_; }
    /// How fast the tilt grows (deg/s, filtered).
    double tilt_rate() const { return rate_; }
    /// Torso centre above the lower sole (m), by the leg joints.
    double height() const { return height_; }
    /// The vertical in the torso's frame, unit length.
    const Eigen::Vector3d& up() const { return up_; }
    /// Starts over as if the robot had just been placed upright.
    void reset();
    /// Takes up from the direction of the accelerometer's reading alone,
    /// whatever its size: for a robot known to be still, whose accelerometer
    /// may still read well off one g, and which update() would then believe only slowly.
    void level(const perception::Perception& perception);

private:
    void track_up(const perception::Perception& perception, double dt);
    void estimate_height(const perception::Perception& perception);
    Posture next_posture(bool feet_down, double now);
    Posture lying_side() const;

    body::BodyModel body_;
    FallParams params_;
    Posture posture_ = Posture::upright;
    Eigen::Vector3d up_ = Eigen::Vector3d::UnitZ();
    bool started_ = false;
    double last_time_ = 0;
    double tilt_ = 0;
    double rate_ = 0;
    double height_ = 0;
    double upright_since_ = -1;
};

} // namespace orvo::fall

#endif
