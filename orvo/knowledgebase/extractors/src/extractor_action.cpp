#include <orvo/knowledgebase/extractors/extractor_action.h>

#include <cassert>
#include <iterator>

namespace orvo::knowledgebase::extractors {

namespace {

constexpr const char* source_file = "knowledgebase/extractors/src/extractor_action.cpp";
constexpr int line_link = 62;

} // namespace

Extractor_Action::Extractor_Action() = default;

Extractor_Action::~Extractor_Action() = default;

void Extractor_Action::link(Class_Map& classes) {
    try {
        action_log = get_class<ActionLog>(*this, "actionlog", classes);
    } catch (const LinkException& missing) {
        throw LinkException(gen_ffl_string(source_file, "link", line_link), missing);
    }
}

std::string Extractor_Action::get_name() const {
    return "extractor_action";
}

descriptors::Descriptor_Action* Extractor_Action::operator()(unsigned int age) const {
    assert(action_log != nullptr && "the extractor is used before it was linked");
    const auto& actions = action_log->actions;
    const auto count = actions.size();
    if (age >= count) {
        return nullptr;
    }
    // Walk from whichever end is nearer: a map cannot jump to a position.
    const auto from_oldest = count - 1 - age;
    const auto entry = age <= from_oldest
                           ? std::prev(actions.end(), static_cast<std::ptrdiff_t>(age) + 1)
                           : std::next(actions.begin(), static_cast<std::ptrdiff_t>(from_oldest));
    return entry->second.get();
}

ActionLog* Extractor_Action::get_action_log() const {
    return action_log;
}

} // namespace orvo::knowledgebase::extractors

ORVO_COMPONENT_FACTORY(extractor_action, orvo::knowledgebase::extractors::Extractor_Action)
