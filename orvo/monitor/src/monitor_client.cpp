#include <orvo/monitor/monitor_client.h>
#include <orvo/monitor/play_modes.h>
#include <orvo/net/addr.h>
#include <orvo/net/frame_reader.h>
#include <orvo/net/tcp_socket.h>
#include <orvo/protocol/framing.h>

#include <sys/socket.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace orvo::monitor {

namespace {

// A whole scene of two full teams is some 150 kB; the agent port's limit
// would do, but the monitor may one day carry more.
constexpr std::uint32_t frame_limit = 8u << 20;

const char* team_of(Side side) {
    return side == Side::left ? "Left" : "Right";
}

} // namespace

MonitorError::~MonitorError() = default;

MonitorClient::MonitorClient(const std::string& host, int port)
    : socket_(std::make_unique<net::TCPSocket>(net::Addr(0, net::Addr::ANY),
                                               net::Addr(static_cast<unsigned short>(port), host))),
      frames_(std::make_unique<net::FrameReader>(frame_limit)) {
    payload_.reserve(1u << 16);
    outgoing_.reserve(256);
}

MonitorClient::~MonitorClient() = default;

bool MonitorClient::update(std::chrono::milliseconds wait) {
    bool changed = false;
    for (;;) {
        net::Received got;
        try {
            got = frames_->read(socket_->getFD(), payload_, wait);
        } catch (const net::FrameTooLarge& error) {
            throw MonitorError(error.what());
        }
        if (got == net::Received::closed) {
            throw MonitorError("the server closed the monitor connection");
        }
        if (got == net::Received::timed_out) {
            return changed;
        }
        if (tap_) {
            tap_(payload_);
        }
        changed = reader_.read(payload_) || changed;
        wait = std::chrono::milliseconds::zero(); // the rest: only what is there
    }
}

void MonitorClient::kick_off(Side side) {
    char command[32];
    std::snprintf(command, sizeof command, "(kickOff %s)", team_of(side));
    send(command);
}

void MonitorClient::play_mode(const std::string& name) {
    if (play_mode_number(name) < 0) {
        throw std::invalid_argument("no play mode is called \"" + name + "\"");
    }
    char command[64];
    std::snprintf(command, sizeof command, "(playMode %s)", name.c_str());
    send(command);
}

void MonitorClient::place_robot(Side side, int number, double x, double y, double z,
                                double heading_deg) {
    // The server turns a placed robot by its own angle, which faces the
    // robot's forward axis along +y at 0: a quarter turn from our heading.
    const double server_angle = heading_deg - 90.0;
    char command[160];
    std::snprintf(command, sizeof command, "(agent (unum %d) (team %s) (move %.4f %.4f %.4f %.3f))",
                  number, team_of(side), x, y, z, server_angle);
    send(command);
}

void MonitorClient::place_ball(double x, double y, double z, double vx, double vy, double vz) {
    char command[160];
    std::snprintf(command, sizeof command, "(ball (pos %.4f %.4f %.4f) (vel %.4f %.4f %.4f))", x, y,
                  z, vx, vy, vz);
    send(command);
}

void MonitorClient::send(std::string_view command) {
    outgoing_.clear();
    protocol::append_frame(outgoing_, command);
    const char* at = outgoing_.data();
    std::size_t left = outgoing_.size();
    while (left > 0) {
        // No SIGPIPE from a server that went away: the next update reports it.
        const ssize_t sent = ::send(socket_->getFD(), at, left, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) {
            continue;
        }
        if (sent <= 0) {
            return;
        }
        at += sent;
        left -= static_cast<std::size_t>(sent);
    }
}

} // namespace orvo::monitor
