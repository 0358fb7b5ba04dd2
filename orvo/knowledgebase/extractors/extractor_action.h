#ifndef ORVO_KNOWLEDGEBASE_EXTRACTORS_EXTRACTOR_ACTION_H
#define ORVO_KNOWLEDGEBASE_EXTRACTORS_EXTRACTOR_ACTION_H

#include <orvo/knowledgebase/actionlog.h>
#include <orvo/knowledgebase/descriptors/descriptor_action.h>
#include <orvo/knowledgebase/extractors/extractor.h>

namespace orvo::knowledgebase::extractors {

/// Hands out the actions of the action log by age. Registered as
/// "extractor_action".
class ORVO_API Extractor_Action : public Extractor {
public:
    Extractor_Action();
    ~Extractor_Action() override;

    /// Fetches "actionlog".
    void link(Class_Map& classes) override;
    std::string get_name() const override;

    /// The action `age` entries before the newest (0 is the newest), or null
    /// past the oldest. The pointer does not own the action: the next action
    /// injection may trim it away.
    descriptors::Descriptor_Action* operator()(unsigned int age) const;

    /// Null until link().
    ActionLog* get_action_log() const;

protected:
    ActionLog* action_log = nullptr;
};

} // namespace orvo::knowledgebase::extractors

extern "C" ORVO_API orvo::Constructable* create_extractor_action();

#endif
