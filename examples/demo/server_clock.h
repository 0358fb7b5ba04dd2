#ifndef ORVO_DEMO_SERVER_CLOCK_H
#define ORVO_DEMO_SERVER_CLOCK_H

#include <orvo/protocol/constants.h>

namespace demo {

/// Counts the agent's perceptions by the server's clock. Each perception
/// carries the server time, one cycle every 20 ms of simulated time, so a
/// jump of more than one cycle between two perceptions shows the ones that
/// never reached the agent. The wall clock says nothing here: a busy server
/// runs slower than real time. The time comes rounded to hundredths and the
/// server's steps drift from 20 ms by a fraction of a millisecond, so a time
/// may read half a cycle early or late: the clock follows a smoothed phase
/// instead of rounding each time on its own, which counted such a reading as
/// a missed cycle and the next as a repeat.
class ServerClock {
public:
    static constexpr double cycle_seconds = orvo::protocol::cycle_seconds;

    /// Notes a perception stamped with server time `now`, in seconds.
    void perceived(double now);

    unsigned received() const { return count; }
    /// Server cycles between the first and the last perception that sent none.
    unsigned missed() const { return gaps; }
    /// Server cycles from the first perception to the last, both included.
    unsigned cycles() const { return count == 0 ? 0 : static_cast<unsigned>(last + 1); }

private:
    long long last = 0; ///< cycles since the first perception
    double phase = 0;   ///< the server time of cycle `last`, smoothed
    unsigned count = 0;
    unsigned gaps = 0;
};

} // namespace demo

#endif
