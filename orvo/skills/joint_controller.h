#ifndef ORVO_SKILLS_JOINT_CONTROLLER_H
#define ORVO_SKILLS_JOINT_CONTROLLER_H

#include <orvo/core/export.h>
#include <orvo/robot/joints.h>

namespace orvo::skills {

/// Turns joint targets into the speeds the server takes, one cycle at a time.
///
/// For each joint: speed = rate + P * (target - angle) + D * (rate - turn),
/// where `angle` is the angle read this cycle, `turn` how fast the joint
/// turned since the previous cycle's reading and `rate` how fast the target
/// itself moves (deg/s, 0 for a held pose). Feeding the target's rate forward
/// lets a joint follow a moving target without lagging behind it; the
/// derivative acts on the readings rather than on the error, so a target
/// that jumps does not kick. Targets are clamped to the joint's range (a
/// clamped target does not move), speeds to each joint's speed limit, which
/// differs by robot type (type 2's ankles); type 0's unless told.
///
/// The defaults settle a 230-degree swing within 2 degrees in about 40 cycles
/// and stay stable when the server applies a speed up to three cycles late;
/// following a motion, a joint keeps within a degree of it when its speed acts
/// a cycle late, within two when two cycles late.
class ORVO_API JointController {
public:
    struct Gains {
        double proportional = 15.0; ///< per second
        double derivative = 0.6;    ///< dimensionless
    };

    JointController() = default;
    explicit JointController(const Gains& gains) : gains_(gains) {}
    /// `limits`: each joint's speed limit, deg/s (robot::speed_limits_deg).
    JointController(const Gains& gains, const robot::JointValues& limits)
        : gains_(gains), limits_(limits) {}

    const Gains& gains() const { return gains_; }

    /// One cycle for the joints in `joints`: reads `targets` and `rates` (deg,
    /// deg/s) and `angles` (deg, read this cycle), writes `speeds` (rad/s).
    /// Entries of joints not in `joints` are neither read nor written.
    void step(const robot::JointValues& targets, const robot::JointValues& rates,
              const robot::JointValues& angles, const robot::JointSet& joints,
              robot::JointValues& speeds);

    /// Forgets the previous readings: the next cycle has no derivative term.
    void reset() { read_before_.reset(); }

private:
    Gains gains_;
    robot::JointValues limits_ = robot::speed_limits_deg(0);
    robot::JointValues previous_{};
    robot::JointSet read_before_;
};

} // namespace orvo::skills

#endif
