#include "server_clock.h"

#include <algorithm>
#include <cmath>

namespace demo {

void ServerClock::perceived(double now) {
    // How much of each reading the phase takes on: enough to follow the
    // server's drift, little enough to average out the rounding.
    constexpr double follow = 0.2;
    if (count == 0) {
        phase = now;
    } else {
        // Half a cycle each way is rounding; exactly on the half the
        // fewer cycles win, since the rounding of one reading flips far more
        // often than a loss lands on such a flip.
        const double cycles = (now - phase) / cycle_seconds;
        constexpr double repeat_below = 0.25, edge = 1e-6;
        const long long steps =
            cycles < repeat_below ? 0 : std::max(1LL, std::llround(std::ceil(cycles - 0.5 - edge)));
        if (steps > 0) {
            gaps += static_cast<unsigned>(steps - 1);
            last += steps;
            phase += static_cast<double>(steps) * cycle_seconds;
            phase += follow * (now - phase);
        }
    }
    ++count;
}

} // namespace demo
