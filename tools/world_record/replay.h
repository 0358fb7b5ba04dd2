#ifndef ORVO_TOOLS_WORLD_RECORD_REPLAY_H
#define ORVO_TOOLS_WORLD_RECORD_REPLAY_H

#include "recording.h"

#include <orvo/world/localizer.h>
#include <orvo/world/world_params.h>

#include <vector>

namespace orvo::record {

/// How far the world model was from the truth over a recording. Position
/// and heading errors leave out the first second after each move of the
/// robot, which the recovery time covers.
struct Scores {
    double position_median_m = 0;
    double position_p95_m = 0;
    double heading_median_deg = 0;
    double ball_median_m = 0; ///< while the ball was seen within the last second
    /// Longest time from a move of the robot by more than 1 m until the
    /// estimate came within 0.5 m again; negative when it never did.
    double recovery_worst_s = 0;
    int moves = 0;
    int frames = 0;
};

/// Harder conditions made from an easy recording.
struct Handicap {
    int max_landmarks = 8;   ///< landmarks beyond this many per sighting are hidden
    double false_step_m = 0; ///< odometry claims this much forward per sighting that never happened
    bool until_moved = false; ///< stop where the trainer first moves the robot
};

/// Replays `frames` through a world model with `params` and `method`, placed
/// at the first frame's truth as a beam would.
Scores replay(const std::vector<Frame>& frames, const world::WorldParams& params,
              world::Method method, const Handicap& handicap = {}, unsigned seed = 1);

/// The value below which `share` of `values` lie (sorts them).
double quantile(std::vector<double>& values, double share);

} // namespace orvo::record

#endif
