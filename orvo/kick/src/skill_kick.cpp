#include <orvo/kick/skill_kick.h>

#include <orvo/effectors/effector_joints.h>

#include <boost/any.hpp>
#include <boost/make_shared.hpp>

#include <cstdio>

namespace orvo::kick {

namespace {

constexpr const char* source_file = "kick/src/skill_kick.cpp";

} // namespace

Skill_Kick::Skill_Kick() = default;

Skill_Kick::~Skill_Kick() = default;

void Skill_Kick::link(Class_Map& classes) {
    Skill::link(classes);
    try {
        effector = get_class<effectors::Effector_Joints>(*this, "effector_joints", classes);
    } catch (const LinkException& missing) {
        throw LinkException(gen_ffl_string(source_file, "link", __LINE__), missing);
    }
}

std::string Skill_Kick::get_name() const {
    return "skill_kick";
}

void Skill_Kick::set_robot_type(int type) {
    using params::params_path;
    using params::ParamSet;
    set_params(type, walk::WalkParams::from(ParamSet::load(params_path("walk", type))),
               KickParams::from(ParamSet::load(params_path("kick", type))));
}

void Skill_Kick::set_params(int type, const walk::WalkParams& walk, const KickParams& kick) {
    kicker_ = std::make_unique<Kicker>(body::BodyModel::for_type(type), walk, kick);
}

Kicker& Skill_Kick::kicker() {
    // Loaded on first use rather than by the factory, which must not throw.
    if (!kicker_) {
        set_robot_type(0);
    }
    return *kicker_;
}

void Skill_Kick::operator()(const perception::Perception& perception) {
    kicker().update(perception);
    boost::shared_ptr<knowledgebase::descriptors::Descriptor_Skill> record =
        boost::make_shared<Kick_Step>(get_name(), *kicker_);
    (*skill_injector)(record);
    (*effector)(kicker_->speeds(), kicker_->joints());
}

Kick_Step::Kick_Step(const std::string& id, const Kicker& kicker) : Descriptor_Skill(id) {
    add_property(Property("phase", std::string(phase_name(kicker.phase()))));
    add_property(
        Property("foot", std::string(kicker.kicking() == walk::Side::left ? "left" : "right")));
    add_property(Property("direction", kicker.direction()));
    if (kicker.ball()) {
        add_property(Property("ball", *kicker.ball()));
    }
    if (kicker.stand()) {
        add_property(Property("stand", *kicker.stand()));
    }
}

Kick_Step::~Kick_Step() = default;

std::ostream& Kick_Step::print(std::ostream& out) const {
    const auto& phase = boost::any_cast<const std::string&>(get_property("phase").get_value());
    const auto& foot = boost::any_cast<const std::string&>(get_property("foot").get_value());
    const double direction = boost::any_cast<double>(get_property("direction").get_value());
    char text[120];
    std::snprintf(text, sizeof text, "%s with the %s foot toward %.0f", phase.c_str(), foot.c_str(),
                  direction);
    out << id << ": " << text;
    if (has_property("ball")) {
        const auto& ball = boost::any_cast<const Pose2&>(get_property("ball").get_value());
        std::snprintf(text, sizeof text, ", ball (%.2f, %.2f)", ball.x, ball.y);
        out << text;
    }
    return out;
}

} // namespace orvo::kick

ORVO_COMPONENT_FACTORY(skill_kick, orvo::kick::Skill_Kick)
