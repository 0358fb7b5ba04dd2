#ifndef ORVO_KNOWLEDGEBASE_INJECTORS_INJECTOR_ACTION_H
#define ORVO_KNOWLEDGEBASE_INJECTORS_INJECTOR_ACTION_H

#include <orvo/knowledgebase/actionlog.h>
#include <orvo/knowledgebase/descriptors/descriptor_action.h>
#include <orvo/knowledgebase/injectors/injector.h>

#include <boost/shared_ptr.hpp>

#include <string>

namespace orvo::knowledgebase::injectors {

/// Records the actions behaviors start: one per simulation time, the first of
/// a time winning. Registered as "injector_action".
class ORVO_API Injector_Action : public Injector {
public:
    Injector_Action();
    ~Injector_Action() override;

    /// Fetches "actionlog".
    void link(Class_Map& classes) override;
    std::string get_name() const override;

    /// Trims the log to the last `retention` time units up to `time`, records
    /// a new action started by `behavior` under `time` and makes it current.
    /// The first injection of this instance sets the log's start time.
    virtual void operator()(const std::string& behavior, const unsigned int& time,
                            const unsigned int& retention);
    /// Carries state from the action that was current into the new one; called
    /// only when that action has effectors. Does nothing here.
    virtual void apply_stickiness(boost::shared_ptr<descriptors::Descriptor_Action> previous,
                                  boost::shared_ptr<descriptors::Descriptor_Action> next);

    /// Erases every entry whose age `now - time`, in wrapping 32-bit
    /// arithmetic, is at least `retention`: a retention of 0 empties the log,
    /// and entries newer than `now` (a clock that went back) go as well. A
    /// mark whose entry goes is moved to the end of the map.
    void resize_action_log(const unsigned int& now, const unsigned int& retention);

    /// Null until link().
    ActionLog* get_action_log() const;

protected:
    ActionLog* action_log = nullptr;
    bool started = false;
};

} // namespace orvo::knowledgebase::injectors

extern "C" ORVO_API orvo::Constructable* create_injector_action();

#endif
