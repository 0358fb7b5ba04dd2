#include <orvo/getup/skill_getup.h>

#include <orvo/effectors/effector_joints.h>
#include <orvo/robot/joints.h>

#include <boost/any.hpp>
#include <boost/make_shared.hpp>

#include <cstdio>

namespace orvo::getup {

namespace {

constexpr const char* source_file = "getup/src/skill_getup.cpp";

} // namespace

Skill_GetUp::Skill_GetUp() = default;

Skill_GetUp::~Skill_GetUp() = default;

void Skill_GetUp::link(Class_Map& classes) {
    Skill::link(classes);
    try {
        effector = get_class<effectors::Effector_Joints>(*this, "effector_joints", classes);
    } catch (const LinkException& missing) {
        throw LinkException(gen_ffl_string(source_file, "link", __LINE__), missing);
    }
}

std::string Skill_GetUp::get_name() const {
    return "skill_getup";
}

void Skill_GetUp::set_robot_type(int type) {
    detector_ = std::make_unique<fall::FallDetector>(body::BodyModel::for_type(type),
                                                     fall::FallParams::for_type(type));
    getup_ = std::make_unique<GetUp>(GetUp::for_type(type));
}

void Skill_GetUp::load_default() {
    // Loaded on first use rather than by the factory, which must not throw.
    if (!detector_) {
        set_robot_type(0);
    }
}

const fall::FallDetector& Skill_GetUp::detector() {
    load_default();
    return *detector_;
}

const GetUp& Skill_GetUp::getup() {
    load_default();
    return *getup_;
}

bool Skill_GetUp::operator()(const perception::Perception& perception) {
    load_default();
    const fall::Posture posture = detector_->update(perception);
    if (fall::lying(posture) && !getup_->active() && getup_->settled(perception)) {
        getup_->start(posture);
    }
    // Falling: nothing to do yet but let it happen; upright: the joints are
    // the other skills' again.
    if (!getup_->active() && !fall::lying(posture) && posture != fall::Posture::getting_up) {
        return false;
    }
    getup_->update(perception);
    boost::shared_ptr<knowledgebase::descriptors::Descriptor_Skill> record =
        boost::make_shared<Get_Up_Step>(get_name(), std::string(fall::posture_name(posture)),
                                        getup_->motion(), detector_->tilt_deg());
    (*skill_injector)(record);
    // Every joint, the head's too: no motion moves it, and a neck turning on
    // to its stop presses the head against the ground and tips the stand-ups.
    (*effector)(getup_->speeds(), getup_->joints());
    return true;
}

Get_Up_Step::Get_Up_Step(const std::string& id, const std::string& posture,
                         const std::string& motion, double tilt)
    : Descriptor_Skill(id) {
    add_property(Property("posture", posture));
    add_property(Property("motion", motion));
    add_property(Property("tilt", tilt));
}

Get_Up_Step::~Get_Up_Step() = default;

std::ostream& Get_Up_Step::print(std::ostream& out) const {
    char tilt[32];
    std::snprintf(tilt, sizeof tilt, ", tilt %.1f",
                  boost::any_cast<double>(get_property("tilt").get_value()));
    return out << id << ": "
               << boost::any_cast<const std::string&>(get_property("posture").get_value()) << ", "
               << boost::any_cast<const std::string&>(get_property("motion").get_value()) << tilt;
}

} // namespace orvo::getup

ORVO_COMPONENT_FACTORY(skill_getup, orvo::getup::Skill_GetUp)
