#ifndef ORVO_WORLD_BELIEFS_H
#define ORVO_WORLD_BELIEFS_H

#include <array>
#include <cmath>
#include <cstddef>

namespace orvo::world {

/// Where the robot's torso stands and where it faces, in its team's frame
/// (own goal at x = -15; heading 0 faces the opponent's goal, counter-clockwise
/// positive, degrees in (-180, 180]), with the spread of the belief.
struct Pose {
    double x = 0;
    double y = 0;
    double heading_deg = 0;
    double sigma_m = 0;
    double sigma_deg = 0;
};

/// What the robot did since the previous cycle, in its own frame at that
/// cycle: metres forward (dx) and to the left (dy), degrees counter-clockwise.
struct Odometry {
    double dx = 0;
    double dy = 0;
    double dturn_deg = 0;
};

/// The step between two readings of an odometry that sums up where the robot
/// went since some start (metres forward and left of it, degrees turned left),
/// in the robot's frame at the first reading.
inline Odometry step_between(double x0, double y0, double heading0_deg, double x1, double y1,
                             double heading1_deg) {
    const double h = heading0_deg * 0.017453292519943295;
    const double dx = x1 - x0;
    const double dy = y1 - y0;
    return {std::cos(h) * dx + std::sin(h) * dy, -std::sin(h) * dx + std::cos(h) * dy,
            std::remainder(heading1_deg - heading0_deg, 360.0)};
}

struct BallBelief {
    bool known = false; ///< seen at least once
    double x = 0;
    double y = 0;
    double vx = 0; ///< metres per second
    double vy = 0;
    double last_seen = 0; ///< server time, seconds
    double sigma_m = 0;
};

/// Another robot as last seen (by its head).
struct OtherRobot {
    bool known = false;
    bool team_mate = false;
    int number = 0;
    double x = 0;
    double y = 0;
    double last_seen = 0; ///< server time, seconds
};

/// Up to 11 robots per team, numbered 1 to 11; slot [team_mate][number - 1].
constexpr std::size_t team_size = 11;
using OtherRobots = std::array<std::array<OtherRobot, team_size>, 2>;

} // namespace orvo::world

#endif
