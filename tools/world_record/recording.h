#ifndef ORVO_TOOLS_WORLD_RECORD_RECORDING_H
#define ORVO_TOOLS_WORLD_RECORD_RECORDING_H

#include <iosfwd>
#include <string>
#include <vector>

namespace orvo::record {

/// One cycle of a recording: what the robot perceived and what the server's
/// truth was at that moment.
struct Frame {
    std::string payload; ///< the perception, cut down to what the world model reads
    bool truth_known = false;
    double x = 0, y = 0, heading_deg = 0; ///< the torso, team frame
    bool ball_known = false;
    double ball_x = 0, ball_y = 0;
    double dx = 0, dy = 0, dturn_deg = 0; ///< odometry since the previous frame
};

/// Text, one record per line: "truth X Y HEADING" or "truth none", "ball X Y",
/// "step DX DY DTURN" (each holds until the next of its kind) and
/// "see PAYLOAD", which ends a frame. Lines starting with '#' are comments.
std::vector<Frame> read_recording(std::istream& in);
std::vector<Frame> read_recording_file(const std::string& path);

/// The perception without what the world model does not read (gyroscope,
/// foot forces, joints other than the neck).
std::string cut_down(const std::string& payload);

} // namespace orvo::record

#endif
