#ifndef ORVO_KNOWLEDGEBASE_INJECTORS_SRC_CURRENT_ACTION_H
#define ORVO_KNOWLEDGEBASE_INJECTORS_SRC_CURRENT_ACTION_H

#include <orvo/knowledgebase/actionlog.h>

#include <cassert>

namespace orvo::knowledgebase::injectors::detail {

/// The action skills and effectors attach to. Before the first action
/// injection the log has none; a null pointer stands in for it, so that using
/// it stops the program with the same "px != 0" assertion as a null action
/// instead of reading past the end of the map.
inline const boost::shared_ptr<descriptors::Descriptor_Action> no_action;

inline const boost::shared_ptr<descriptors::Descriptor_Action>&
current_action_of(const ActionLog* log) {
    assert(log != nullptr && "the injector is used before it was linked");
    return log->get_current_action() == log->get_actions().end()
               ? no_action
               : log->get_current_action()->second;
}

} // namespace orvo::knowledgebase::injectors::detail

#endif
