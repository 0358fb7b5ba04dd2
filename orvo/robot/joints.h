#ifndef ORVO_ROBOT_JOINTS_H
#define ORVO_ROBOT_JOINTS_H

#include <orvo/core/export.h>
#include <orvo/protocol/constants.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

namespace orvo::robot {

/// Every hinge joint of the simulated humanoid, head first, then the arms and
/// the legs, left before right. The toes exist on robot type 4 only.
enum class Joint : std::uint8_t {
    neck_yaw,
    neck_pitch,
    left_shoulder_pitch,
    left_shoulder_roll,
    left_elbow_yaw,
    left_elbow_roll,
    right_shoulder_pitch,
    right_shoulder_roll,
    right_elbow_yaw,
    right_elbow_roll,
    left_hip_yaw_pitch,
    left_hip_roll,
    left_hip_pitch,
    left_knee_pitch,
    left_ankle_pitch,
    left_ankle_roll,
    right_hip_yaw_pitch,
    right_hip_roll,
    right_hip_pitch,
    right_knee_pitch,
    right_ankle_pitch,
    right_ankle_roll,
    left_toe,
    right_toe,
};

/// Number of joints of the largest robot (type 4, with toes).
constexpr std::size_t joint_count = 24;
/// Robot types are 0 to 4; only type 4 has toes.
constexpr int robot_types = 5;
/// The fastest most joints turn, whatever they are told: 6.14 rad/s. Robot
/// type 2's ankles differ (speed_limit_rad).
constexpr double max_joint_speed_rad = 6.14;
constexpr double max_joint_speed_deg = 351.77;
/// Robot type 2's ankle motors, as the server's robot type table builds them:
/// pitch faster than every other joint, roll slower.
constexpr double type2_ankle_pitch_speed_rad = 8.80667;
constexpr double type2_ankle_roll_speed_rad = 3.47234;
/// The server applies a joint's speed for one cycle of this length.
using protocol::cycle_seconds;
using protocol::degrees_per_radian;

/// What the server knows of one joint: the name its angle is reported under
/// ("(HJ (n hj1) (ax DEG))"), the name of its speed command ("(he1 RAD/S)")
/// and its range in degrees.
struct JointInfo {
    Joint joint;
    std::string_view perceptor;
    std::string_view effector;
    std::string_view name; ///< e.g. "left_knee_pitch"
    double min_deg;
    double max_deg;
};

/// The table of every joint, indexed by Joint.
ORVO_API const std::array<JointInfo, joint_count>& joint_table();

inline const JointInfo& info(Joint joint) {
    return joint_table()[static_cast<std::size_t>(joint)];
}

/// One value per joint, indexed by Joint: angles in degrees, speeds in
/// radians per second.
using JointValues = std::array<double, joint_count>;
/// Some joints, indexed by Joint: those a command or a motion concerns.
using JointSet = std::bitset<joint_count>;

inline std::size_t index(Joint joint) {
    return static_cast<std::size_t>(joint);
}

/// `degrees` within the joint's range, as the server would clamp it.
inline double clamp_to_range(Joint joint, double degrees) {
    return std::clamp(degrees, info(joint).min_deg, info(joint).max_deg);
}

/// Joints a robot of `type` (0 to 4) has: 24 for type 4, 22 for the others;
/// the toes come last, so these are the first entries of the table.
constexpr std::size_t joints_of_type(int type) {
    return type == 4 ? joint_count : joint_count - 2;
}

/// Every joint a robot of `type` has.
inline JointSet joints_of(int type) {
    JointSet joints;
    for (std::size_t i = 0; i < joints_of_type(type); ++i) {
        joints.set(i);
    }
    return joints;
}

/// The fastest the server turns `joint` on a robot of `type` (0 to 4), rad/s.
ORVO_API double speed_limit_rad(int type, Joint joint);
/// Every joint's speed limit for a robot of `type`, deg/s, indexed by Joint,
/// none beyond `most`: a motion tuned with every joint at the common limit
/// may ask no more of type 2's faster ankles.
ORVO_API JointValues speed_limits_deg(int type,
                                      double most = std::numeric_limits<double>::infinity());
/// The fastest `joint` turns on any robot type, rad/s: what a command that
/// does not know the robot's type may ask for.
ORVO_API double fastest_speed_rad(Joint joint);

/// Lookups by the three names; nothing for a name no joint carries.
ORVO_API std::optional<Joint> joint_by_perceptor(std::string_view perceptor);
ORVO_API std::optional<Joint> joint_by_effector(std::string_view effector);
ORVO_API std::optional<Joint> joint_by_name(std::string_view name);

} // namespace orvo::robot

#endif
