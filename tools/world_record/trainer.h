#ifndef ORVO_TOOLS_WORLD_RECORD_TRAINER_H
#define ORVO_TOOLS_WORLD_RECORD_TRAINER_H

#include <orvo/net/comm_unit.h>

#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <string>

namespace orvo::record {

/// Commands on the server's monitor port, from a connection of its own whose
/// incoming scene updates are read and dropped, so that the server never
/// waits on it.
class Trainer {
public:
    explicit Trainer(int port) {
        if (!link_.open_connection("127.0.0.1", static_cast<unsigned int>(port)))
            throw std::runtime_error("cannot connect to the monitor port");
    }
    void say(const std::string& command) { link_.write_message(command); }
    /// Puts left robot 1 at `x`, `y` facing `heading_deg` (0: the opponent's goal).
    void place(double x, double y, double heading_deg) {
        // The trainer's angle turns the torso from facing +y.
        char text[128];
        std::snprintf(text, sizeof text, "(agent (unum 1) (team Left) (move %.2f %.2f 0.35 %.1f))",
                      x, y, heading_deg - 90);
        say(text);
    }
    void drain() {
        while (link_.receive_message(scratch_, std::chrono::milliseconds(0)) ==
               net::Received::message) {
        }
    }

private:
    net::CommUnit link_;
    std::string scratch_;
};

} // namespace orvo::record

#endif
