#ifndef ORVO_TOOLS_SIMSERVER_SIM_SERVER_H
#define ORVO_TOOLS_SIMSERVER_SIM_SERVER_H

#include <chrono>
#include <stdexcept>
#include <string>

#include <sys/types.h>

namespace orvo::sim {

/// A real simulation server could not be started or did not become ready.
class SimServerError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct SimServerOptions {
    /// The server steps as soon as every robot has sent "(syn)" instead of
    /// pacing itself at real time.
    bool sync = true;
    /// Where the server's own output goes; empty: a file in its private home,
    /// removed with it.
    std::string log_path;
    /// Agent and monitor ports; 0 picks free ones.
    int agent_port = 0;
    int monitor_port = 0;
    std::chrono::milliseconds start_timeout{30000};
};

/// One real simulation server process (rcssserver3d), started on loopback
/// ports nobody listens on, with a private home of its own (the server copies
/// its start-up script there on its first run and would otherwise reuse an
/// old copy). The constructor returns once both the agent and the monitor
/// port listen; the destructor stops the process it started, by its process
/// id, and removes the home. Readiness is read from the kernel's socket table
/// rather than probed with a connection, which the server would take for a
/// robot.
class SimServer {
public:
    explicit SimServer(const SimServerOptions& options = {});
    ~SimServer();
    SimServer(const SimServer&) = delete;
    SimServer& operator=(const SimServer&) = delete;

    /// Whether the server program is on the PATH.
    static bool installed();

    int agent_port() const { return agent_port_; }
    int monitor_port() const { return monitor_port_; }
    pid_t pid() const { return pid_; }
    /// False once the process has ended (on its own or by stop()).
    bool running();
    /// SIGTERM, then SIGKILL if it has not ended within `grace`; idempotent.
    void stop(std::chrono::milliseconds grace = std::chrono::milliseconds(5000));
    /// The last lines of the server's output, for error reports.
    std::string log_tail(std::size_t lines = 20) const;

private:
    void spawn(bool sync);
    void await_ready(std::chrono::milliseconds timeout);

    std::string home_;
    std::string log_path_;
    int agent_port_ = 0;
    int monitor_port_ = 0;
    pid_t pid_ = -1;
};

/// True when a TCP socket listens on `port` on this machine (IPv4 or IPv6).
bool port_listening(int port);
/// A loopback port that nothing listened on when asked.
int free_port();

} // namespace orvo::sim

#endif
