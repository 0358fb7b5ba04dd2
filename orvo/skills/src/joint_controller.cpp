#include <orvo/skills/joint_controller.h>

#include <algorithm>

namespace orvo::skills {

void JointController::step(const robot::JointValues& targets, const robot::JointValues& rates,
                           const robot::JointValues& angles, const robot::JointSet& joints,
                           robot::JointValues& speeds) {
    const auto& table = robot::joint_table();
    for (std::size_t i = 0; i < robot::joint_count; ++i) {
        if (!joints.test(i)) {
            continue;
        }
        const double target = std::clamp(targets[i], table[i].min_deg, table[i].max_deg);
        // A target held at the range's end stands still, whatever its rate.
        const double rate = target == targets[i] ? rates[i] : 0.0;
        const double turn =
            read_before_.test(i) ? (angles[i] - previous_[i]) / robot::cycle_seconds : rate;
        const double speed =
            rate + gains_.proportional * (target - angles[i]) + gains_.derivative * (rate - turn);
        speeds[i] = std::clamp(speed, -limits_[i], limits_[i]) / robot::degrees_per_radian;
        previous_[i] = angles[i];
    }
    read_before_ = joints;
}

} // namespace orvo::skills
