#ifndef ORVO_TOOLS_DRILL_DRILLS_H
#define ORVO_TOOLS_DRILL_DRILLS_H

#include "drill_options.h"

namespace orvo::drill {

/// Each drill: its usage lines and its run, which reads its arguments and
/// returns the program's exit status.
extern const char* const walk_usage;
int run_walk(Arguments& arguments);
extern const char* const localize_usage;
int run_localize(Arguments& arguments);
extern const char* const kick_usage;
int run_kick(Arguments& arguments);

/// Fails with a clear message when no server can be started here and none is
/// given.
void require_server(const DrillOptions& options);

} // namespace orvo::drill

#endif
