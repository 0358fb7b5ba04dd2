#include <orvo/effectors/effector_joints.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace orvo::effectors {

Effector_Joints::Effector_Joints() {
    command.reserve(robot::joint_count * 16);
}

Effector_Joints::~Effector_Joints() = default;

void Effector_Joints::init() {
    require_links();
}

std::string Effector_Joints::get_name() const {
    return "effector_joints";
}

void Effector_Joints::operator()(const robot::JointValues& speeds, const robot::JointSet& joints) {
    if (joints.none()) {
        return;
    }
    robot::JointValues sent{};
    command.clear();
    for (std::size_t i = 0; i < robot::joint_count; ++i) {
        if (!joints.test(i)) {
            continue;
        }
        // The skills that know the robot's type keep within its own limits;
        // this only stops a speed no robot's joint could take.
        const double limit = robot::fastest_speed_rad(static_cast<robot::Joint>(i));
        double speed = std::clamp(speeds[i], -limit, limit);
        // Below the last digit written a speed is 0: never "-0.000".
        speed = std::fabs(speed) < 0.0005 ? 0.0 : speed;
        sent[i] = speed;
        char number[32];
        const auto written =
            std::to_chars(number, number + sizeof number, speed, std::chars_format::fixed, 3);
        command += '(';
        command += robot::joint_table()[i].effector;
        command += ' ';
        command.append(number, written.ptr);
        command += ')';
    }
    messenger->send_message(command.c_str());
    boost::shared_ptr<knowledgebase::descriptors::Descriptor_Effector> record =
        boost::make_shared<Joint_Command>(get_name(), command, sent, joints);
    (*effector_injector)(record);
}

Joint_Command::Joint_Command(const std::string& id, const std::string& command,
                             const robot::JointValues& speeds, const robot::JointSet& joints)
    : Descriptor_Effector(id, command, false) {
    add_property(Property("joints", joints));
    add_property(Property("speeds", speeds));
}

Joint_Command::~Joint_Command() = default;

std::ostream& Joint_Command::print(std::ostream& out) const {
    return out << id << ": " << message;
}

} // namespace orvo::effectors

ORVO_COMPONENT_FACTORY(effector_joints, orvo::effectors::Effector_Joints)
