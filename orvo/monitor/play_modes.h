#ifndef ORVO_MONITOR_PLAY_MODES_H
#define ORVO_MONITOR_PLAY_MODES_H

#include <orvo/core/export.h>

#include <string_view>

namespace orvo::monitor {

/// The play mode the server numbers `mode` ("PlayOn" for 3), or "" when the
/// server has no such number. The numbers are indices into the list the
/// server's environment header announces.
ORVO_API std::string_view play_mode_name(int mode);

/// The number of the play mode called `name`, or -1 when there is none.
ORVO_API int play_mode_number(std::string_view name);

/// How many play modes the server knows.
ORVO_API int play_mode_count();

} // namespace orvo::monitor

#endif
