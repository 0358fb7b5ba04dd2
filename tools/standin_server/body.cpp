#include "body.h"

#include <orvo/protocol/constants.h>

#include <algorithm>

namespace standin {

namespace robot = orvo::robot;

bool Body::command(std::string_view effector, double speed) {
    const auto joint = robot::joint_by_effector(effector);
    const auto index = joint ? static_cast<std::size_t>(*joint) : robot::joint_count;
    if (index >= joints()) {
        return false;
    }
    speeds[index] = speed;
    return true;
}

void Body::advance(double seconds) {
    using orvo::protocol::degrees_per_radian;
    for (std::size_t i = 0; i < joints(); ++i) {
        // The motor keeps the commanded speed, but never beyond its limit.
        const double limit = robot::speed_limit_rad(robot_type, static_cast<robot::Joint>(i));
        const double speed = std::clamp(speeds[i], -limit, limit);
        const auto& joint = robot::joint_table()[i];
        angles[i] = std::clamp(angles[i] + speed * seconds * degrees_per_radian, joint.min_deg,
                               joint.max_deg);
    }
}

} // namespace standin
