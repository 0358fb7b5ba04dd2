#include <orvo/knowledgebase/injectors/injector_action.h>

#include <boost/make_shared.hpp>

#include <cassert>
#include <iterator>

namespace orvo::knowledgebase::injectors {

namespace {

constexpr const char* source_file = "knowledgebase/injectors/src/injector_action.cpp";
constexpr int line_link = 101;

using Action_Map = ActionLog::Action_Map;

// Erases one by one from the oldest, so that actions are released in time
// order whatever the size of the range.
void erase_range(Action_Map& actions, Action_Map::iterator first, Action_Map::iterator last) {
    while (first != last) {
        first = actions.erase(first);
    }
}

// A log trimmed at every step loses at most its oldest entry and has nothing
// newer than now; both cases are answered at the ends of the map before
// descending the tree.
Action_Map::iterator first_at_or_after(Action_Map& actions, unsigned int time) {
    auto entry = actions.begin();
    for (int step = 0; step < 2; ++step, ++entry) {
        if (entry == actions.end() || entry->first >= time) {
            return entry;
        }
    }
    return actions.lower_bound(time);
}

Action_Map::iterator first_after(Action_Map& actions, unsigned int time) {
    if (actions.empty() || std::prev(actions.end())->first <= time) {
        return actions.end();
    }
    return actions.upper_bound(time);
}

} // namespace

Injector_Action::Injector_Action() = default;

Injector_Action::~Injector_Action() = default;

void Injector_Action::link(Class_Map& classes) {
    try {
        action_log = get_class<ActionLog>(*this, "actionlog", classes);
    } catch (const LinkException& missing) {
        throw LinkException(gen_ffl_string(source_file, "link", line_link), missing);
    }
}

std::string Injector_Action::get_name() const {
    return "injector_action";
}

void Injector_Action::operator()(const std::string& behavior, const unsigned int& time,
                                 const unsigned int& retention) {
    const unsigned int now = time;
    resize_action_log(now, retention);
    auto next = boost::make_shared<descriptors::Descriptor_Action>(behavior);

    ActionLog& log = *action_log;
    auto& actions = log.actions;
    if (log.current_action != actions.end()) {
        const auto& previous = log.current_action->second;
        if (!previous->get_effectors().empty()) {
            apply_stickiness(previous, next);
        }
    }
    // Times mostly grow, so the end is the usual place of the new entry. An
    // entry already there for this time keeps its place and `next` is dropped.
    const auto entry = actions.try_emplace(actions.end(), now, std::move(next));
    log.previous_action = log.current_action;
    log.current_action = entry;
    if (!started) {
        started = true;
        log.start_time = now;
    }
}

void Injector_Action::apply_stickiness(boost::shared_ptr<descriptors::Descriptor_Action>,
                                       boost::shared_ptr<descriptors::Descriptor_Action>) {}

void Injector_Action::resize_action_log(const unsigned int& now, const unsigned int& retention) {
    assert(action_log != nullptr && "the injector is used before it was linked");
    ActionLog& log = *action_log;
    auto& actions = log.actions;
    if (actions.empty()) {
        return;
    }
    const unsigned int at = now;
    const unsigned int span = retention;
    const auto expired = [at, span](unsigned int time) { return at - time >= span; };

    // A mark left on an erased entry would be read by the next injection.
    if (log.current_action != actions.end() && expired(log.current_action->first)) {
        log.current_action = actions.end();
    }
    if (log.previous_action != actions.end() && expired(log.previous_action->first)) {
        log.previous_action = actions.end();
    }

    if (span == 0) {
        erase_range(actions, actions.begin(), actions.end());
        return;
    }
    // What stays is the circular window of `span` times ending at `now`:
    // [oldest_kept, now], or, when it wraps past 0, [0, now] and
    // [oldest_kept, max]. Everything else goes, found by two ordered lookups
    // rather than by visiting the entries that stay.
    const unsigned int oldest_kept = at - (span - 1);
    const auto first_newer = first_after(actions, at);
    if (oldest_kept <= at) {
        erase_range(actions, actions.begin(), first_at_or_after(actions, oldest_kept));
        erase_range(actions, first_newer, actions.end());
    } else {
        erase_range(actions, first_newer, actions.lower_bound(oldest_kept));
    }
}

ActionLog* Injector_Action::get_action_log() const {
    return action_log;
}

} // namespace orvo::knowledgebase::injectors

ORVO_COMPONENT_FACTORY(injector_action, orvo::knowledgebase::injectors::Injector_Action)
