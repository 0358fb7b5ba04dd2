#include <orvo/monitor/play_modes.h>
#include <orvo/protocol/play_modes.h>

namespace orvo::monitor {

// The monitor numbers play modes by their place in the server's list, which
// is the protocol's order without its leading "unknown".

std::string_view play_mode_name(int mode) {
    if (mode < 0 || mode + 1 >= protocol::play_mode_count) {
        return {};
    }
    return protocol::name_of(static_cast<protocol::PlayMode>(mode + 1));
}

int play_mode_number(std::string_view name) {
    return static_cast<int>(protocol::play_mode_by_name(name)) - 1;
}

int play_mode_count() {
    return protocol::play_mode_count - 1;
}

} // namespace orvo::monitor
