#ifndef ORVO_BEHAVIORS_BEHAVIOR_H
#define ORVO_BEHAVIORS_BEHAVIOR_H

#include <orvo/humanoid/base/constructable.h>

namespace orvo::behaviors {

/// Decides what the agent does; a concrete behavior is run once per call.
class ORVO_API Behavior : public Constructable {
public:
    ~Behavior() override;
    /// Runs the behavior once; the base does nothing.
    virtual void operator()();
};

} // namespace orvo::behaviors

#endif
