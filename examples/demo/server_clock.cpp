#include "server_clock.h"

#include <cmath>

namespace demo {

void ServerClock::perceived(double now) {
    const long long cycle = std::llround(now / cycle_seconds);
    if (count == 0) {
        first = last = cycle;
    } else if (cycle > last) {
        gaps += static_cast<unsigned>(cycle - last - 1);
        last = cycle;
    }
    ++count;
}

} // namespace demo
