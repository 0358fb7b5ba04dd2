#ifndef ORVO_TOOLS_DRILL_STOP_SIGNAL_H
#define ORVO_TOOLS_DRILL_STOP_SIGNAL_H

#include <stdexcept>

namespace orvo::drill {

/// Thrown out of a trial's cycle once the drill was asked to stop, so that
/// the stack unwinds and every server the drill started is stopped with it:
/// a drill ended by a signal (a tuner's timeout, Ctrl-C) must not leave a
/// server running at full speed with nobody connected.
class Stopped : public std::runtime_error {
public:
    explicit Stopped(int signal);
    int signal() const { return signal_; }

private:
    int signal_;
};

/// Turns SIGTERM, SIGINT, SIGHUP and SIGPIPE into Stopped at the next check.
void catch_stop_signals();
/// Throws Stopped when one of those signals has arrived.
void check_stop();

} // namespace orvo::drill

#endif
