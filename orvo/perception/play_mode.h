#ifndef ORVO_PERCEPTION_PLAY_MODE_H
#define ORVO_PERCEPTION_PLAY_MODE_H

// A perception reports the play mode by the protocol's names; readers of a
// perception find them here too.

#include <orvo/protocol/play_modes.h>

namespace orvo::perception {

using protocol::name_of;
using protocol::play_mode_by_name;
using protocol::play_mode_count;
using protocol::PlayMode;

} // namespace orvo::perception

#endif
