#ifndef ORVO_TOOLS_DRILL_JOINT_COMMAND_H
#define ORVO_TOOLS_DRILL_JOINT_COMMAND_H

#include <orvo/robot/joints.h>

#include <string>

namespace orvo::drill {

/// The server's command for `speeds` (rad/s) of every joint in `joints`.
std::string joint_command(const robot::JointSet& joints, const robot::JointValues& speeds);

} // namespace orvo::drill

#endif
