#ifndef ORVO_PROTOCOL_CONSTANTS_H
#define ORVO_PROTOCOL_CONSTANTS_H

// The simulated world's fixed figures as the server states them: the field,
// the clock and the angle unit of its messages (degrees, while commands to
// the joints take radians).

namespace orvo::protocol {

/// The field's length along x (goal to goal) and its width along y, metres.
constexpr double field_length = 30.0;
constexpr double field_width = 20.0;
/// The inner width of each goal, metres.
constexpr double goal_width = 2.1;
constexpr double ball_radius = 0.042;

/// One simulation cycle: the server's step and the period of its perceptions.
constexpr double cycle_seconds = 0.02;
/// The period of the server's messages to monitors (every second cycle).
constexpr double monitor_step_seconds = 0.04;

constexpr double degrees_per_radian = 57.29577951308232;
constexpr double radians_per_degree = 0.017453292519943295;

} // namespace orvo::protocol

#endif
