#include <orvo/walk/skill_walk.h>

#include <orvo/effectors/effector_joints.h>

#include <boost/any.hpp>
#include <boost/make_shared.hpp>

#include <cstdio>

namespace orvo::walk {

namespace {

constexpr const char* source_file = "walk/src/skill_walk.cpp";

std::string support_name(const Walker& walker) {
    if (walker.standing()) {
        return "stand";
    }
    return walker.gait().support() == Side::left ? "left" : "right";
}

} // namespace

Skill_Walk::Skill_Walk() = default;

Skill_Walk::~Skill_Walk() = default;

void Skill_Walk::link(Class_Map& classes) {
    Skill::link(classes);
    try {
        effector = get_class<effectors::Effector_Joints>(*this, "effector_joints", classes);
    } catch (const LinkException& missing) {
        throw LinkException(gen_ffl_string(source_file, "link", __LINE__), missing);
    }
}

std::string Skill_Walk::get_name() const {
    return "skill_walk";
}

void Skill_Walk::set_robot_type(int type) {
    set_params(type, WalkParams::from(ParamSet::load(params_path("walk", type))));
}

void Skill_Walk::set_params(int type, const WalkParams& params) {
    walker_ = std::make_unique<Walker>(body::BodyModel::for_type(type), params);
}

Walker& Skill_Walk::walker() {
    // Loaded on first use rather than by the factory, which must not throw.
    if (!walker_) {
        set_robot_type(0);
    }
    return *walker_;
}

void Skill_Walk::operator()(const perception::Perception& perception) {
    walker().update(perception);
    boost::shared_ptr<knowledgebase::descriptors::Descriptor_Skill> record =
        boost::make_shared<Walk_Step>(get_name(), *walker_);
    (*skill_injector)(record);
    robot::JointSet joints = walker_->joints();
    if (head_left_) {
        joints.reset(robot::index(robot::Joint::neck_yaw));
        joints.reset(robot::index(robot::Joint::neck_pitch));
    }
    (*effector)(walker_->speeds(), joints);
}

void Skill_Walk::leave_head() {
    head_left_ = true;
}

Walk_Step::Walk_Step(const std::string& id, const Walker& walker) : Descriptor_Skill(id) {
    add_property(Property("target", walker.target()));
    add_property(Property("velocity", walker.velocity()));
    add_property(Property("odometry", walker.odometry()));
    add_property(Property("support", support_name(walker)));
}

Walk_Step::~Walk_Step() = default;

std::ostream& Walk_Step::print(std::ostream& out) const {
    const auto& target = boost::any_cast<const Velocity&>(get_property("target").get_value());
    const auto& now = boost::any_cast<const Velocity&>(get_property("velocity").get_value());
    const auto& odometry = boost::any_cast<const Odometry&>(get_property("odometry").get_value());
    char text[160];
    std::snprintf(text, sizeof text,
                  " at (%.2f, %.2f, %.0f) toward (%.2f, %.2f, %.0f), odometry (%.2f, %.2f, %.0f)",
                  now.forward, now.sideways, now.turn, target.forward, target.sideways, target.turn,
                  odometry.x, odometry.y, odometry.heading);
    return out << id << ": "
               << boost::any_cast<const std::string&>(get_property("support").get_value()) << text;
}

} // namespace orvo::walk

ORVO_COMPONENT_FACTORY(skill_walk, orvo::walk::Skill_Walk)
