#ifndef ORVO_MONITOR_MONITOR_CLIENT_H
#define ORVO_MONITOR_MONITOR_CLIENT_H

#include <orvo/core/export.h>
#include <orvo/monitor/ground_truth.h>
#include <orvo/monitor/scene_reader.h>

#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace orvo::net {
class FrameReader;
class TCPSocket;
} // namespace orvo::net

namespace orvo::monitor {

/// The monitor connection closed, or a frame could not be read.
class ORVO_API MonitorError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~MonitorError() override;
};

/// One connection to the server's monitor port: the ground truth of the
/// game (see SceneReader) and the trainer commands drills use. Trainer
/// commands go out at once, each as one frame; their effect shows in a later
/// update. docs/monitor.md says what the server does with each.
class ORVO_API MonitorClient {
public:
    /// Connects; throws (orvo::net's errors) when it cannot.
    MonitorClient(const std::string& host, int port);
    ~MonitorClient();
    MonitorClient(const MonitorClient&) = delete;
    MonitorClient& operator=(const MonitorClient&) = delete;

    /// Reads every message that has arrived, waiting at most `wait` for the
    /// first; true when the ground truth changed. Throws MonitorError once
    /// the server has closed the connection.
    bool update(std::chrono::milliseconds wait);

    /// Called with every message as it arrives, before it is read: for
    /// recording the stream. An empty function stops the calls.
    using Tap = std::function<void(std::string_view message)>;
    void tap(Tap listener) { tap_ = std::move(listener); }

    const GroundTruth& truth() const { return reader_.truth(); }
    const RobotTruth* robot(Side side, int number) const { return reader_.robot(side, number); }
    const SceneReader& reader() const { return reader_; }

    /// Starts the game with `side` kicking off.
    void kick_off(Side side);
    /// Any play mode by its name (see play_modes.h); an unknown name throws
    /// std::invalid_argument, since the server ignores it silently.
    void play_mode(const std::string& name);
    /// Puts robot `number` of `side` at (x, y, z), its forward axis turned
    /// `heading_deg` from +x.
    void place_robot(Side side, int number, double x, double y, double z, double heading_deg = 0);
    /// Puts the ball at (x, y, z) moving at (vx, vy, vz) m/s.
    void place_ball(double x, double y, double z, double vx = 0, double vy = 0, double vz = 0);
    /// Sends one trainer command as it is.
    void send(std::string_view command);

private:
    std::unique_ptr<net::TCPSocket> socket_;
    std::unique_ptr<net::FrameReader> frames_;
    SceneReader reader_;
    Tap tap_;
    std::string payload_;
    std::string outgoing_;
};

} // namespace orvo::monitor

#endif
