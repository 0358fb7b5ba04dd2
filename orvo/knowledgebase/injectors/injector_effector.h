#ifndef ORVO_KNOWLEDGEBASE_INJECTORS_INJECTOR_EFFECTOR_H
#define ORVO_KNOWLEDGEBASE_INJECTORS_INJECTOR_EFFECTOR_H

#include <orvo/knowledgebase/actionlog.h>
#include <orvo/knowledgebase/descriptors/descriptor_effector.h>
#include <orvo/knowledgebase/injectors/injector.h>

#include <boost/shared_ptr.hpp>

namespace orvo::knowledgebase::injectors {

/// Records the effectors that fire in the current action, keeping only the
/// latest invocation of each effector id. Registered as "injector_effector".
class ORVO_API Injector_Effector : public Injector {
public:
    Injector_Effector();
    ~Injector_Effector() override;

    /// Fetches "actionlog".
    void link(Class_Map& classes) override;
    std::string get_name() const override;

    /// Records `effector` in the current action, replacing an earlier one with
    /// the same id. A null effector, or no current action, stops the program
    /// on the assertion "px != 0".
    void operator()(boost::shared_ptr<descriptors::Descriptor_Effector>& effector);

    /// Null until link().
    ActionLog* get_action_log() const;

protected:
    ActionLog* action_log = nullptr;
};

} // namespace orvo::knowledgebase::injectors

extern "C" ORVO_API orvo::Constructable* create_injector_effector();

#endif
