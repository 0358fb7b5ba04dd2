#ifndef ORVO_TOOLS_DRILL_DRILLS_H
#define ORVO_TOOLS_DRILL_DRILLS_H

#include "drill_options.h"

#include <nlohmann/json.hpp>

#include <string>

namespace orvo::drill {

/// Each drill: its usage lines and its run, which reads its arguments and
/// returns the program's exit status.
extern const char* const walk_usage;
int run_walk(Arguments& arguments);
extern const char* const localize_usage;
int run_localize(Arguments& arguments);
extern const char* const kick_usage;
int run_kick(Arguments& arguments);
extern const char* const getup_usage;
int run_getup(Arguments& arguments);
extern const char* const roll_usage;
int run_roll(Arguments& arguments);
extern const char* const plan_usage;
int run_plan(Arguments& arguments);
extern const char* const reach_usage;
int run_reach(Arguments& arguments);
/// One run of the get-up drill with the type's installed parameters: its JSON.
nlohmann::json getup_once(const DrillOptions& options, const std::string& from);

/// Fails with a clear message when no server can be started here and none is
/// given.
void require_server(const DrillOptions& options);

} // namespace orvo::drill

#endif
