#ifndef ORVO_TOOLS_VIEWER_MONITOR_FEED_H
#define ORVO_TOOLS_VIEWER_MONITOR_FEED_H

#include "field_svg.h"

#include <orvo/monitor/ground_truth.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace viewer {

/// The game as a server's monitor port shows it, kept up to date by a thread
/// of its own: it connects (again every second while the server is not
/// there or after it went), reads every update and calls `changed` after
/// each one that changed the game. Everything else may be called from any
/// thread.
class MonitorFeed {
public:
    MonitorFeed(std::string host, int port, std::function<void()> changed);
    /// Stops the thread (it notices within a tenth of a second) and waits
    /// for it; what was read stays. Idempotent.
    void stop();
    ~MonitorFeed();
    MonitorFeed(const MonitorFeed&) = delete;
    MonitorFeed& operator=(const MonitorFeed&) = delete;

    /// The latest game; none before the first whole scene.
    std::optional<field_view::GameMarks> game() const;
    /// "connecting", "live" or why the connection was lost.
    std::string state() const;
    /// Monitor messages read so far, over every connection.
    std::uint64_t messages() const { return count; }

private:
    void run();
    void set_state(std::string text);

    const std::string host;
    const int port;
    std::function<void()> changed;
    mutable std::mutex mutex;
    std::optional<field_view::GameMarks> latest;
    std::string status = "connecting";
    std::atomic<bool> stopping{false};
    std::atomic<std::uint64_t> count{0};
    std::thread runner;
};

/// What the picture shows of the monitor's ground truth.
field_view::GameMarks game_marks(const orvo::monitor::GroundTruth& truth);

} // namespace viewer

#endif
