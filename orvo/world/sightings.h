#ifndef ORVO_WORLD_SIGHTINGS_H
#define ORVO_WORLD_SIGHTINGS_H

#include <orvo/core/export.h>
#include <orvo/perception/perception.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace orvo::world {

/// A point on the ground relative to the robot's torso: x forward, y to the
/// left, metres.
struct GroundPoint {
    double x = 0;
    double y = 0;
};

/// What one "(See ...)" tells about the field, turned from the head camera's
/// polar values into the level frame under the torso with the neck's angles
/// and the torso's forward lean. Its sideways lean is not undone: while
/// walking it turns into noise that the estimator's observation model absorbs.
struct ORVO_API Sightings {
    /// End points and middles of the seen line stretches beyond this are dropped.
    static constexpr std::size_t max_line_points = 48;

    std::array<GroundPoint, perception::landmark_count> landmarks{};
    std::uint8_t landmarks_seen = 0; ///< bit per Landmark
    std::array<GroundPoint, max_line_points> line_points{};
    std::size_t line_point_count = 0;
    bool sees_ball = false;
    GroundPoint ball;

    bool sees(perception::Landmark which) const {
        return (landmarks_seen >> static_cast<int>(which)) & 1u;
    }
    const GroundPoint& operator[](perception::Landmark which) const {
        return landmarks[static_cast<std::size_t>(which)];
    }
    std::size_t landmark_count() const;

    /// Fills this from `vision`, seen with the neck at `neck_yaw_deg` and
    /// `neck_pitch_deg` (as the joint angles report them) and the torso
    /// leaning `torso_pitch_deg` forwards (negative: backwards). Values that
    /// are not finite are left out.
    void read(const perception::Vision& vision, double neck_yaw_deg, double neck_pitch_deg,
              double torso_pitch_deg = 0);
};

/// One seen polar value (metres, degrees; camera frame) placed on the ground
/// of the torso's level frame.
ORVO_API GroundPoint to_ground(const math::Polar& seen, double neck_yaw_deg, double neck_pitch_deg,
                               double torso_pitch_deg = 0);

} // namespace orvo::world

#endif
