#ifndef ORVO_TOOLS_DRILL_FALL_WATCH_H
#define ORVO_TOOLS_DRILL_FALL_WATCH_H

#include "trial.h"

#include <orvo/fall/fall_detector.h>
#include <orvo/robot/joints.h>

#include <string>
#include <utility>
#include <vector>

namespace orvo::drill {

/// The robot's fall detector beside the monitor: the game times at which
/// each first said the robot went down. Call update() after every step.
class FallWatch {
public:
    explicit FallWatch(int type);

    void update(const Trial& trial);
    fall::FallDetector& detector() { return detector_; }
    /// When the detector left upright (falling or lying), by the robot's clock.
    const std::vector<double>& detections() const { return detections_; }
    /// When the monitor first showed each fall.
    const std::vector<double>& monitor_falls() const { return monitor_falls_; }
    /// Detections made when the monitor showed the robot down at no time
    /// within a second either side.
    int false_alarms() const;

private:
    fall::FallDetector detector_;
    std::vector<double> detections_;
    std::vector<double> monitor_falls_;
    /// Every stretch of game time in which the monitor showed the robot down.
    std::vector<std::pair<double, double>> down_spells_;
    bool was_down_ = false;
    int falls_seen_ = 0;
};

} // namespace orvo::drill

#endif
