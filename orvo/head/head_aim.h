#ifndef ORVO_HEAD_HEAD_AIM_H
#define ORVO_HEAD_HEAD_AIM_H

#include <orvo/core/export.h>
#include <orvo/world/world_model.h>

#include <cstdint>
#include <string>

namespace orvo::head {

/// How the head looks around; read per robot type from "params/head/typeN.json".
struct ORVO_API HeadParams {
    double scan_yaw_deg = 0;    ///< the scan sweeps the neck yaw between +- this
    double scan_period_s = 0;   ///< one sweep there and back
    double scan_pitch_deg = 0;  ///< the neck pitch while scanning (negative looks down)
    double camera_height_m = 0; ///< the camera above the ground, to aim down at the ball
    /// The pose counts as lost beyond these spreads (scan), as uncertain
    /// beyond half of them (look at landmarks).
    double lost_m = 0;
    double lost_deg = 0;
    double ball_lost_s = 0;      ///< scan when the ball was not seen for this long
    double landmark_dwell_s = 0; ///< how long to look at one landmark before the next

    static HeadParams load(const std::string& path);
    static HeadParams for_type(const std::string& dir, int type);
};

enum class HeadMode : std::uint8_t { scan, landmarks, ball };

/// Where the head should look this cycle, decided from the world model.
struct HeadTarget {
    HeadMode mode = HeadMode::scan;
    double yaw_deg = 0;
    double pitch_deg = 0;
};

/// Scans while the pose is lost or the ball has not been seen for a while,
/// looks at the landmarks that fit in the neck's reach while the pose is
/// uncertain, and otherwise follows the ball.
class ORVO_API HeadAim {
public:
    explicit HeadAim(const HeadParams& params) : params_(params) {}
    /// `now`: server time, seconds.
    HeadTarget operator()(const world::WorldModel& world, double now);

private:
    HeadTarget scan(double now) const;
    bool look_at_landmark(const world::WorldModel& world, double now, HeadTarget& out);

    HeadParams params_;
    int landmark_ = 0;
    double landmark_since_ = -1;
};

/// "scan", "landmarks" or "ball".
ORVO_API const char* name(HeadMode mode);

} // namespace orvo::head

#endif
