#include <orvo/knowledgebase/injectors/injector_effector.h>

#include "current_action.h"

namespace orvo::knowledgebase::injectors {

namespace {

constexpr const char* source_file = "knowledgebase/injectors/src/injector_effector.cpp";
constexpr int line_link = 78;

} // namespace

Injector_Effector::Injector_Effector() = default;

Injector_Effector::~Injector_Effector() = default;

void Injector_Effector::link(Class_Map& classes) {
    try {
        action_log = get_class<ActionLog>(*this, "actionlog", classes);
    } catch (const LinkException& missing) {
        throw LinkException(gen_ffl_string(source_file, "link", line_link), missing);
    }
}

std::string Injector_Effector::get_name() const {
    return "injector_effector";
}

void Injector_Effector::operator()(boost::shared_ptr<descriptors::Descriptor_Effector>& effector) {
    const std::string& id = effector->get_id();
    descriptors::Descriptor_Action& action = *detail::current_action_of(action_log);
    // One descent finds both the entry to replace and the place of a new one.
    auto& effectors = action.effectors;
    const auto place = effectors.lower_bound(id);
    if (place != effectors.end() && place->first == id) {
        place->second = effector;
    } else {
        effectors.emplace_hint(place, id, effector);
    }
}

ActionLog* Injector_Effector::get_action_log() const {
    return action_log;
}

} // namespace orvo::knowledgebase::injectors

ORVO_COMPONENT_FACTORY(injector_effector, orvo::knowledgebase::injectors::Injector_Effector)
