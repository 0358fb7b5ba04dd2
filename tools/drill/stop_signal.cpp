#include "stop_signal.h"

#include <csignal>
#include <string>

namespace orvo::drill {

namespace {

volatile std::sig_atomic_t stop_signal = 0;

extern "C" void note_stop(int signal) {
    stop_signal = signal;
}

} // namespace

Stopped::Stopped(int signal)
    : std::runtime_error("stopped by signal " + std::to_string(signal)), signal_(signal) {}

void catch_stop_signals() {
    // SIGPIPE too: a drill piped into `head` that closed its end would else
    // die there and then, its server left racing on with nobody connected.
    for (int signal : {SIGTERM, SIGINT, SIGHUP, SIGPIPE}) {
        std::signal(signal, note_stop);
    }
}

void check_stop() {
    if (stop_signal != 0) {
        throw Stopped(stop_signal);
    }
}

} // namespace orvo::drill
