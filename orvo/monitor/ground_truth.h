#ifndef ORVO_MONITOR_GROUND_TRUTH_H
#define ORVO_MONITOR_GROUND_TRUTH_H

#include <orvo/core/export.h>

#include <string>
#include <string_view>
#include <vector>

namespace orvo::monitor {

enum class Side { left, right };

/// A pose on the field: a 4x4 homogeneous matrix, column-major as the scene
/// gives it (the position is m[12], m[13], m[14]).
struct Pose {
    double m[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
};

/// One body part of a robot. The scene tells parts apart only by their
/// meshes: a part drawn with a model of its own is named after it (see
/// RobotTruth::parts); the helper bodies drawn as plain spheres and capsules
/// (neck, shoulders, elbows, hips, ankles) have an empty name and are told
/// apart only by their place in the list, which is the scene's order.
struct PartPose {
    std::string_view name;
    Pose pose;
};

struct ORVO_API RobotTruth {
    Side side = Side::left;
    int number = 0;
    int type = 0;
    /// Torso position on the field (m).
    double x = 0, y = 0, z = 0;
    /// Where the torso faces: its forward (local y) axis projected on the
    /// field, in degrees from +x, counter-clockwise.
    double heading_deg = 0;
    /// Angle between the torso's up (local z) axis and the vertical.
    double tilt_deg = 0;

    /// Every body part in the scene's order, the torso first. Named parts:
    /// torso, head, lupperarm, llowerarm, rupperarm, rlowerarm, lthigh,
    /// lshank, lfoot, rthigh, rshank, rfoot, ltoe, rtoe (type 4 only).
    std::vector<PartPose> parts;

    /// Lying or sitting: tilted more than 53 degrees or the torso below 0.25 m.
    bool fallen() const;
    /// The pose of the part called `name`, or null when it has none.
    const Pose* part(std::string_view name) const;
};

/// A foul the server's referee called, as the monitor header announces it.
struct ORVO_API Foul {
    /// The referee numbers its fouls from 1 in the order it calls them.
    int index = 0;
    /// The referee's kind of foul; see type_name().
    int type = 0;
    Side side = Side::left;
    int number = 0;
    /// Game time of the message that announced it (s).
    double time = 0;

    /// "crowding", "touching", "illegal_defence", "illegal_attack",
    /// "incapable", "kick_off", "charging", "self_collision"; "unknown" for
    /// a kind this client does not know.
    std::string_view type_name() const;
};

struct ORVO_API GroundTruth {
    /// Game time (s): 0 until the kick-off.
    double time = 0;
    /// Index into the server's play modes; see play_mode_name().
    int play_mode = 0;
    int score_left = 0, score_right = 0;
    int half = 1;
    double ball[3] = {0, 0, 0};
    std::string team_left, team_right;
    /// The robots in the scene's order. The storage is kept between updates.
    std::vector<RobotTruth> robots;
    /// Every foul announced since the connection opened, in order. A
    /// connection hears only of the fouls called while it is open.
    std::vector<Foul> fouls;

    std::string_view play_mode_name() const;
};

} // namespace orvo::monitor

#endif
