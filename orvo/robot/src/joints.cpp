#include <orvo/robot/joints.h>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace orvo::robot {

namespace {

// Ranges as the server clamps them; a left and a right joint mirror each
// other where the axis is mirrored (roll joints), not where it is shared.
constexpr std::array<JointInfo, joint_count> table{{
    {Joint::neck_yaw, "hj1", "he1", "neck_yaw", -120, 120},
    {Joint::neck_pitch, "hj2", "he2", "neck_pitch", -45, 45},
    {Joint::left_shoulder_pitch, "laj1", "lae1", "left_shoulder_pitch", -120, 120},
    {Joint::left_shoulder_roll, "laj2", "lae2", "left_shoulder_roll", -1, 95},
    {Joint::left_elbow_yaw, "laj3", "lae3", "left_elbow_yaw", -120, 120},
    {Joint::left_elbow_roll, "laj4", "lae4", "left_elbow_roll", -90, 1},
    {Joint::right_shoulder_pitch, "raj1", "rae1", "right_shoulder_pitch", -120, 120},
    {Joint::right_shoulder_roll, "raj2", "rae2", "right_shoulder_roll", -95, 1},
    {Joint::right_elbow_yaw, "raj3", "rae3", "right_elbow_yaw", -120, 120},
    {Joint::right_elbow_roll, "raj4", "rae4", "right_elbow_roll", -1, 90},
    {Joint::left_hip_yaw_pitch, "llj1", "lle1", "left_hip_yaw_pitch", -90, 1},
    {Joint::left_hip_roll, "llj2", "lle2", "left_hip_roll", -25, 45},
    {Joint::left_hip_pitch, "llj3", "lle3", "left_hip_pitch", -25, 100},
    {Joint::left_knee_pitch, "llj4", "lle4", "left_knee_pitch", -130, 1},
    {Joint::left_ankle_pitch, "llj5", "lle5", "left_ankle_pitch", -45, 75},
    {Joint::left_ankle_roll, "llj6", "lle6", "left_ankle_roll", -45, 25},
    {Joint::right_hip_yaw_pitch, "rlj1", "rle1", "right_hip_yaw_pitch", -90, 1},
    {Joint::right_hip_roll, "rlj2", "rle2", "right_hip_roll", -45, 25},
    {Joint::right_hip_pitch, "rlj3", "rle3", "right_hip_pitch", -25, 100},
    {Joint::right_knee_pitch, "rlj4", "rle4", "right_knee_pitch", -130, 1},
    {Joint::right_ankle_pitch, "rlj5", "rle5", "right_ankle_pitch", -45, 75},
    {Joint::right_ankle_roll, "rlj6", "rle6", "right_ankle_roll", -25, 45},
    {Joint::left_toe, "llj7", "lle7", "left_toe", -1, 70},
    {Joint::right_toe, "rlj7", "rle7", "right_toe", -1, 70},
}};

template <typename Field> std::optional<Joint> find(std::string_view wanted, Field field) {
    for (const JointInfo& joint : table) {
        if (joint.*field == wanted) {
            return joint.joint;
        }
    }
    return std::nullopt;
}

} // namespace

const std::array<JointInfo, joint_count>& joint_table() {
    return table;
}

double speed_limit_rad(int type, Joint joint) {
    if (type < 0 || type >= robot_types) {
        throw std::invalid_argument("robot type " + std::to_string(type) + " is not 0 to 4");
    }
    if (type == 2) {
        switch (joint) {
        case Joint::left_ankle_pitch:
        case Joint::right_ankle_pitch:
            return type2_ankle_pitch_speed_rad;
        case Joint::left_ankle_roll:
        case Joint::right_ankle_roll:
            return type2_ankle_roll_speed_rad;
        default:
            break;
        }
    }
    return max_joint_speed_rad;
}

JointValues speed_limits_deg(int type, double most) {
    JointValues limits{};
    for (const JointInfo& joint : table) {
        const double rad = speed_limit_rad(type, joint.joint);
        // The common limit keeps its exact figure in degrees.
        limits[index(joint.joint)] = std::min(
            most, rad == max_joint_speed_rad ? max_joint_speed_deg : rad * degrees_per_radian);
    }
    return limits;
}

double fastest_speed_rad(Joint joint) {
    // Asked for every joint of every command: worked out once.
    static const JointValues fastest = [] {
        JointValues values{};
        for (const JointInfo& info : table) {
            for (int type = 0; type < robot_types; ++type) {
                values[index(info.joint)] =
                    std::max(values[index(info.joint)], speed_limit_rad(type, info.joint));
            }
        }
        return values;
    }();
    return fastest[index(joint)];
}

std::optional<Joint> joint_by_perceptor(std::string_view perceptor) {
    return find(perceptor, &JointInfo::perceptor);
}

std::optional<Joint> joint_by_effector(std::string_view effector) {
    return find(effector, &JointInfo::effector);
}

std::optional<Joint> joint_by_name(std::string_view name) {
    return find(name, &JointInfo::name);
}

} // namespace orvo::robot
