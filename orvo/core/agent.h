#ifndef ORVO_CORE_AGENT_H
#define ORVO_CORE_AGENT_H

#include <orvo/humanoid/base/constructable.h>

namespace orvo {

/// The component a host receives from Architect::assemble_framework. A team's
/// agent plug-in derives from it; keeping get_name() registers it as "agent".
class ORVO_API Agent : public Constructable {
public:
    ~Agent() override;
    std::string get_name() const override;
    /// The agent's main entry: the host calls it once the framework is
    /// assembled and regains control when the agent's run is over.
    virtual void run() = 0;
};

} // namespace orvo

#endif
