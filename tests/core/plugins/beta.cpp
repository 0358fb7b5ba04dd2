#include "recorded.h"

// A second plug-in that exports a factory alpha exports too, and an "agent"
// that is no Agent.

RECORDED_FACTORY(shared, "shared")
RECORDED_FACTORY(not_agent, "agent")
