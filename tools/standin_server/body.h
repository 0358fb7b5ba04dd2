#ifndef ORVO_STANDIN_BODY_H
#define ORVO_STANDIN_BODY_H

#include <orvo/robot/joints.h>

#include <array>
#include <string_view>

namespace standin {

/// The joints of one robot: each turns at the speed it was last told, within
/// the speed limit, and stops at the ends of its range.
class Body {
public:
    int type() const { return robot_type; }
    void set_type(int type) { robot_type = type; }
    /// Joints this robot has, in the order of the joint table.
    std::size_t joints() const { return orvo::robot::joints_of_type(robot_type); }

    /// A speed command such as "(lae3 -1.5)" in rad/s; false when this robot
    /// has no joint of that effector name.
    bool command(std::string_view effector, double speed);
    /// Turns every joint for `seconds` of simulated time.
    void advance(double seconds);
    /// Degrees, as "(HJ ...)" reports it.
    double angle(orvo::robot::Joint joint) const { return angles[static_cast<std::size_t>(joint)]; }

private:
    int robot_type = 0;
    std::array<double, orvo::robot::joint_count> angles{};
    std::array<double, orvo::robot::joint_count> speeds{}; ///< rad/s, as last told
};

} // namespace standin

#endif
