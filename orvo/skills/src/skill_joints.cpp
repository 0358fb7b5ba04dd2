#include <orvo/skills/skill_joints.h>

#include <orvo/effectors/effector_joints.h>

#include <boost/any.hpp>
#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace orvo::skills {

namespace {

constexpr const char* source_file = "skills/src/skill_joints.cpp";

} // namespace

Skill_Joints::Skill_Joints() : robot_joints(robot::joints_of(0)) {}

Skill_Joints::~Skill_Joints() = default;

void Skill_Joints::link(Class_Map& classes) {
    Skill::link(classes);
    try {
        effector = get_class<effectors::Effector_Joints>(*this, "effector_joints", classes);
    } catch (const LinkException& missing) {
        throw LinkException(gen_ffl_string(source_file, "link", __LINE__), missing);
    }
}

void Skill_Joints::init() {
    if (skill_injector == nullptr || effector == nullptr) {
        throw LogicException(gen_ffl_string(source_file, "init", __LINE__),
                             skill_injector == nullptr
                                 ? "\"injector_skill\" is not an Injector_Skill"
                                 : "\"effector_joints\" is not an Effector_Joints");
    }
}

std::string Skill_Joints::get_name() const {
    return "skill_joints";
}

void Skill_Joints::set_robot_type(int type) {
    robot_joints = robot::joints_of(type);
    controller_ = JointController(controller_.gains(), robot::speed_limits_deg(type));
}

void Skill_Joints::operator()(const robot::JointValues& angles, double now) {
    player_.update(now, angles);
    const robot::JointSet driven = player_.driven() & robot_joints;
    controller_.step(player_.targets(), player_.rates(), angles, driven, speeds);
    worst_error_ = 0;
    for (std::size_t i = 0; i < robot::joint_count; ++i) {
        if (driven.test(i)) {
            worst_error_ = std::max(worst_error_, std::fabs(player_.targets()[i] - angles[i]));
        }
    }
    boost::shared_ptr<knowledgebase::descriptors::Descriptor_Skill> record =
        boost::make_shared<Joint_Motion>(get_name(), player_.playing(), driven.count(),
                                         worst_error_);
    (*skill_injector)(record);
    (*effector)(speeds, driven);
}

Joint_Motion::Joint_Motion(const std::string& id, const std::string& motions, std::size_t joints,
                           double worst_error)
    : Descriptor_Skill(id) {
    add_property(Property("motions", motions));
    add_property(Property("joints", joints));
    add_property(Property("worst_error", worst_error));
}

Joint_Motion::~Joint_Motion() = default;

std::ostream& Joint_Motion::print(std::ostream& out) const {
    const auto& motions = boost::any_cast<const std::string&>(get_property("motions").get_value());
    char error[32];
    std::snprintf(error, sizeof error, "%.2f",
                  boost::any_cast<double>(get_property("worst_error").get_value()));
    return out << id << ": " << (motions.empty() ? "holding" : motions) << ", "
               << boost::any_cast<std::size_t>(get_property("joints").get_value())
               << " joints, worst error " << error << " deg";
}

} // namespace orvo::skills

ORVO_COMPONENT_FACTORY(skill_joints, orvo::skills::Skill_Joints)
