#ifndef ORVO_KNOWLEDGEBASE_ACTIONLOG_H
#define ORVO_KNOWLEDGEBASE_ACTIONLOG_H

#include <orvo/knowledgebase/descriptors/descriptor_action.h>
#include <orvo/knowledgebase/knowledgebase_module.h>

#include <boost/shared_ptr.hpp>

#include <map>

namespace orvo::knowledgebase {

namespace injectors {
class Injector_Action;
class Injector_Skill;
class Injector_Effector;
} // namespace injectors
namespace extractors {
class Extractor_Action;
} // namespace extractors

static_assert(sizeof(unsigned int) == 4, "simulation times are unsigned 32-bit values");

/// The agent's memory of what it did: at most one action per simulation time,
/// in time order. Registered as "actionlog". Only the injectors fill it and
/// move its marks, which must stay iterators into its own map; the extractor
/// reads it directly, everyone else through the read-only accessors.
class ORVO_API ActionLog : public KnowledgeBase_Module {
public:
    using Action_Map =
        std::map<const unsigned int, boost::shared_ptr<descriptors::Descriptor_Action>>;

    ActionLog();
    /// The marks are iterators into this very map, so a copy would point into
    /// the original.
    ActionLog(const ActionLog&) = delete;
    ActionLog& operator=(const ActionLog&) = delete;
    ~ActionLog() override;

    /// The log needs no collaborator.
    void link(Class_Map& classes) override;
    std::string get_name() const override;
    /// "(log " + the current action's own form + ")". Without a current action
    /// (nothing injected yet) it is "(log )".
    std::string to_eval() const override;
    /// A header, then the ten newest entries oldest first, with a notice of how
    /// many older ones it skips.
    std::ostream& print(std::ostream& os) override;

    const Action_Map& get_actions() const { return actions; }
    /// The entry of the latest injected action, to which skills and effectors
    /// are attached; end() before the first injection and once trimmed away.
    Action_Map::const_iterator get_current_action() const { return current_action; }
    /// The entry that was current before the latest injection; end() if none.
    Action_Map::const_iterator get_previous_action() const { return previous_action; }
    /// Time of the first action an action injector injected; 0 before.
    unsigned int get_start_time() const { return start_time; }
    /// Free for plug-ins; the library never reads or sets it.
    bool get_flag() const { return flag; }
    void set_flag(bool value) { flag = value; }

private:
    friend class injectors::Injector_Action;
    friend class injectors::Injector_Skill;
    friend class injectors::Injector_Effector;
    friend class extractors::Extractor_Action;

    Action_Map actions;
    Action_Map::iterator previous_action;
    Action_Map::iterator current_action;
    unsigned int start_time = 0;
    bool flag = false;
};

} // namespace orvo::knowledgebase

extern "C" ORVO_API orvo::Constructable* create_actionlog();

#endif
