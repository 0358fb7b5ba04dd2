#include <orvo/head/skill_head.h>

#include <orvo/skills/skill_joints.h>

#include <boost/any.hpp>
#include <boost/make_shared.hpp>

#include <cstdio>

namespace orvo::head {

namespace {
constexpr const char* source_file = "head/src/skill_head.cpp";
} // namespace

Skill_Head::Skill_Head() : aim_(HeadParams{}) {}
Skill_Head::~Skill_Head() = default;

void Skill_Head::link(Class_Map& classes) {
    Skill::link(classes);
    try {
        joints_ = get_class<skills::Skill_Joints>(*this, "skill_joints", classes);
    } catch (const LinkException& missing) {
        throw LinkException(gen_ffl_string(source_file, "link", __LINE__), missing);
    }
}

void Skill_Head::init() {
    if (skill_injector == nullptr || joints_ == nullptr) {
        throw LogicException(gen_ffl_string(source_file, "init", __LINE__),
                             skill_injector == nullptr
                                 ? "\"injector_skill\" is not an Injector_Skill"
                                 : "\"skill_joints\" is not a Skill_Joints");
    }
}

std::string Skill_Head::get_name() const {
    return "skill_head";
}

void Skill_Head::operator()(const world::WorldModel& world, double now) {
    target_ = aim_(world, now);
    joints_->player().hold(robot::Joint::neck_yaw, target_.yaw_deg);
    joints_->player().hold(robot::Joint::neck_pitch, target_.pitch_deg);
    boost::shared_ptr<knowledgebase::descriptors::Descriptor_Skill> record =
        boost::make_shared<Head_Aim>(get_name(), target_);
    (*skill_injector)(record);
}

Head_Aim::Head_Aim(const std::string& id, const HeadTarget& target) : Descriptor_Skill(id) {
    add_property(Property("mode", std::string(name(target.mode))));
    add_property(Property("yaw", target.yaw_deg));
    add_property(Property("pitch", target.pitch_deg));
}

Head_Aim::~Head_Aim() = default;

std::ostream& Head_Aim::print(std::ostream& out) const {
    char text[96];
    std::snprintf(text, sizeof text, "%s, yaw %.1f pitch %.1f",
                  boost::any_cast<const std::string&>(get_property("mode").get_value()).c_str(),
                  boost::any_cast<double>(get_property("yaw").get_value()),
                  boost::any_cast<double>(get_property("pitch").get_value()));
    return out << id << ": " << text;
}

} // namespace orvo::head

orvo::Constructable* create_skill_head() {
    return new orvo::head::Skill_Head();
}
