#ifndef ORVO_WORLD_BELIEFS_H
#define ORVO_WORLD_BELIEFS_H

#include <array>
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
