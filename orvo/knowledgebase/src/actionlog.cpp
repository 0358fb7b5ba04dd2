#include <orvo/knowledgebase/actionlog.h>

#include <iterator>

namespace orvo::knowledgebase {

namespace {

// Hooks for terminal colours around the header and the marked entries; plain
// text keeps the dump readable wherever it is written.
constexpr const char* emphasis = "";
constexpr const char* plain = "";

constexpr ActionLog::Action_Map::size_type shown_entries = 10;

} // namespace

ActionLog::ActionLog() : previous_action(actions.end()), current_action(actions.end()) {}

ActionLog::~ActionLog() = default;

void ActionLog::link(Class_Map&) {}

std::string ActionLog::get_name() const {
    return "actionlog";
}

std::string ActionLog::to_eval() const {
    if (current_action == actions.end()) {
        return "(log )";
    }
    return "(log " + current_action->second->to_eval() + ")";
}

std::ostream& ActionLog::print(std::ostream& os) {
    os << "[i]" << emphasis << "["
       << "Action Log" << plain << "]\n\n";
    auto entry = actions.begin();
    if (actions.size() > shown_entries) {
        os << "\t   ... Skipping (" << actions.size() - shown_entries << ") entries! \n"
           << std::endl;
        entry = std::prev(actions.end(), shown_entries);
    }
    for (; entry != actions.end(); ++entry) {
        if (entry == previous_action || entry == current_action) {
            os << "\t-> " << emphasis << "@Sim (" << entry->first << ") " << plain;
        } else {
            os << "\t-> @Sim (" << entry->first << ") ";
        }
        entry->second->print(os);
        os << std::endl;
    }
    return os;
}

} // namespace orvo::knowledgebase

ORVO_COMPONENT_FACTORY(actionlog, orvo::knowledgebase::ActionLog)
