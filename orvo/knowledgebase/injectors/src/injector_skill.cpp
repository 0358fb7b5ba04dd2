#include <orvo/knowledgebase/injectors/injector_skill.h>

#include "current_action.h"

namespace orvo::knowledgebase::injectors {

namespace {

constexpr const char* source_file = "knowledgebase/injectors/src/injector_skill.cpp";
constexpr int line_link = 45;

} // namespace

Injector_Skill::Injector_Skill() = default;

Injector_Skill::~Injector_Skill() = default;

void Injector_Skill::link(Class_Map& classes) {
    try {
        action_log = get_class<ActionLog>(*this, "actionlog", classes);
    } catch (const LinkException& missing) {
        throw LinkException(gen_ffl_string(source_file, "link", line_link), missing);
    }
}

std::string Injector_Skill::get_name() const {
    return "injector_skill";
}

void Injector_Skill::operator()(boost::shared_ptr<descriptors::Descriptor_Skill>& skill) {
    detail::current_action_of(action_log)->add_skill(skill);
}

ActionLog* Injector_Skill::get_action_log() const {
    return action_log;
}

} // namespace orvo::knowledgebase::injectors

ORVO_COMPONENT_FACTORY(injector_skill, orvo::knowledgebase::injectors::Injector_Skill)
