#ifndef ORVO_STANDIN_OPTIONS_H
#define ORVO_STANDIN_OPTIONS_H

#include <string>

namespace standin {

/// How a run of the stand-in server goes; main() fills it from the command line.
struct Options {
    unsigned port = 3100;          ///< agents' TCP port on 127.0.0.1 (0: any free one)
    unsigned drawing_port = 15096; ///< debug drawings' UDP port on 127.0.0.1 (0: any free one)
    unsigned monitor_port = 3200;  ///< monitor commands' TCP port on 127.0.0.1 (0: any free one)
    unsigned agents = 1;           ///< agents the run expects
    unsigned cycles = 500;         ///< server cycles from start-up
    unsigned kickoff_after = 0;    ///< kick off at this cycle (0: only when told)
    bool sync = false;             ///< step as soon as every agent sent "(syn)"
    double pairs = 0.125;          ///< share of real-time cycles that write two perceptions at once
    double slowdown = 1;           ///< wall time per cycle, in 20 ms
    double start_timeout = 30;     ///< seconds to wait for the agents
    double cycle_timeout = 1;      ///< seconds a synchronous cycle waits for stragglers
    std::string log_path;          ///< every received message, one line each
    std::string svg_path = "field.svg";
    unsigned svg_every = 0; ///< also write a picture every that many cycles
    std::string ports_file; ///< "TCP UDP MONITOR" is written here once listening
    bool live = false;      ///< serve the live page of the field
    unsigned http_port = 0; ///< the live page's port on 127.0.0.1 (0: any free one)
};

} // namespace standin

#endif
