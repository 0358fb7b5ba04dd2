#ifndef ORVO_KNOWLEDGEBASE_INJECTORS_INJECTOR_SKILL_H
#define ORVO_KNOWLEDGEBASE_INJECTORS_INJECTOR_SKILL_H

#include <orvo/knowledgebase/actionlog.h>
#include <orvo/knowledgebase/descriptors/descriptor_skill.h>
#include <orvo/knowledgebase/injectors/injector.h>

#include <boost/shared_ptr.hpp>

namespace orvo::knowledgebase::injectors {

/// Appends the skills that run to the current action's skill chain.
/// Registered as "injector_skill".
class ORVO_API Injector_Skill : public Injector {
public:
    Injector_Skill();
    ~Injector_Skill() override;

    /// Fetches "actionlog".
    void link(Class_Map& classes) override;
    std::string get_name() const override;

    /// Appends `skill`, repeats included, to the current action. There must be
    /// one: without it the program stops on the assertion "px != 0".
    void operator()(boost::shared_ptr<descriptors::Descriptor_Skill>& skill);

    /// Null until link().
    ActionLog* get_action_log() const;

protected:
    ActionLog* action_log = nullptr;
};

} // namespace orvo::knowledgebase::injectors

extern "C" ORVO_API orvo::Constructable* create_injector_skill();

#endif
