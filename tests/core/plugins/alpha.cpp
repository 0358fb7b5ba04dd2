#include "recorded.h"

// The main test plug-in, built once per tag.

ORVO_COMPONENT_FACTORY(agent, orvo_test::RecordedAgent)

RECORDED_FACTORY(alpha, "alpha")
RECORDED_FACTORY(mike, "mike")
RECORDED_FACTORY(zulu, "zulu")
RECORDED_FACTORY(shared, "shared")
// Registered by what it reports, not by its factory's name.
RECORDED_FACTORY(renamed, "bravo")
RECORDED_FACTORY(impostor, "mike")
RECORDED_FACTORY(needy, "needy", orvo_test::Fault::needs_absent)
RECORDED_FACTORY(link_fails, "kilo", orvo_test::Fault::link)
RECORDED_FACTORY(init_fails, "kilo", orvo_test::Fault::init)
RECORDED_FACTORY(finalize_fails, "kilo", orvo_test::Fault::finalize)
