#include "joint_command.h"

#include <cstdio>

namespace orvo::drill {

std::string joint_command(const robot::JointSet& joints, const robot::JointValues& speeds) {
    std::string command;
    char part[48];
    for (std::size_t i = 0; i < robot::joint_count; ++i) {
        if (joints.test(i)) {
            const auto& joint = robot::joint_table()[i];
            std::snprintf(part, sizeof part, "(%.*s %.4f)", static_cast<int>(joint.effector.size()),
                          joint.effector.data(), speeds[i]);
            command += part;
        }
    }
    return command;
}

} // namespace orvo::drill
