#ifndef ORVO_SKILLS_MOTION_H
#define ORVO_SKILLS_MOTION_H

#include <orvo/core/exception.h>
#include <orvo/core/export.h>
#include <orvo/robot/joints.h>

#include <string>
#include <string_view>
#include <vector>

namespace orvo::skills {

/// A motion could not be read; the message starts with "FILE:LINE: " (or
/// "FILE: " for faults of the whole file).
class ORVO_API MotionException : public Exception {
public:
    MotionException(const std::string& source, const std::string& message);
    ~MotionException() override;
};

/// One pose of a motion: the angles (degrees) the joints in `joints` reach
/// `duration` seconds after the previous pose. Joints a keyframe leaves out
/// keep the angle they had.
struct Keyframe {
    double duration = 0;
    robot::JointValues angles{};
    robot::JointSet joints;
};

/// A keyframe motion, read from text such as
///
///     # wave: raise the right arm, then swing the forearm
///     0.6  right_shoulder_pitch=-160 right_shoulder_roll=-20
///     0.3  right_elbow_roll=60     # seconds, then JOINT=DEGREES pairs
///
/// one keyframe a line: a duration in seconds (> 0), then joint names of the
/// joint table with their target angles. '#' starts a comment; blank lines
/// are skipped. Angles beyond a joint's range are kept as written: the player
/// clamps them for the robot that plays the motion.
class ORVO_API Motion {
public:
    /// Reads the text of a motion named after `origin`'s stem; `origin`
    /// (usually the file) is named in every error. Raises MotionException.
    static Motion parse(std::string_view text, const std::string& origin);
    /// Reads the motion file at `path`. Raises MotionException.
    static Motion load(const std::string& path);

    /// The file's stem, e.g. "wave".
    const std::string& name() const { return name_; }
    const std::vector<Keyframe>& keyframes() const { return keyframes_; }
    /// Every joint some keyframe names.
    const robot::JointSet& joints() const { return joints_; }
    /// Seconds from the start to the last keyframe.
    double duration() const { return duration_; }

private:
    std::string name_;
    std::vector<Keyframe> keyframes_;
    robot::JointSet joints_;
    double duration_ = 0;
};

} // namespace orvo::skills

#endif
