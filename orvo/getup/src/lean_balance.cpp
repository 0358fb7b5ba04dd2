#include <orvo/getup/lean_balance.h>

#include <algorithm>
#include <cmath>

namespace orvo::getup {

LeanBalance::LeanBalance(const params::ParamSet& params, const std::string& name) {
    const std::string prefix = name + ".balance.";
    if (!params.has(prefix + "from")) {
        return;
    }
    // All or nothing: a file that says where the balance starts must say how it acts.
    from_ = std::max(1, static_cast<int>(params[prefix + "from"]));
    lean_ = params[prefix + "lean"];
    damping_ = params[prefix + "damping"];
    hip_ = params[prefix + "hip"];
    ankle_ = params[prefix + "ankle"];
    limit_ = std::abs(params[prefix + "limit"]);
    for (int frame = 1; frame < from_; ++frame) {
        times_.push_back(params[name + "." + std::to_string(frame) + ".time"]);
    }
}

double LeanBalance::starts_after(int first, int last) const {
    if (from_ == 0 || from_ > last) {
        return -1;
    }
    // The balance starts as the motion sets out towards keyframe `from_`: at
    // once when that was in an earlier part.
    double after = 0;
    for (int frame = std::max(first, 1); frame < from_; ++frame) {
        after += times_[static_cast<std::size_t>(frame - 1)];
    }
    return after;
}

void LeanBalance::apply(double lean_back, double lean_rate, robot::JointValues& targets) const {
    if (from_ == 0) {
        return;
    }
    const double error = lean_back - lean_ + damping_ * lean_rate;
    const auto bend = [&](robot::Joint left, robot::Joint right, double gain) {
        const double by = std::clamp(gain * error, -limit_, limit_);
        for (const robot::Joint joint : {left, right}) {
            targets[robot::index(joint)] =
                robot::clamp_to_range(joint, targets[robot::index(joint)] + by);
        }
    };
    bend(robot::Joint::left_hip_pitch, robot::Joint::right_hip_pitch, hip_);
    bend(robot::Joint::left_ankle_pitch, robot::Joint::right_ankle_pitch, ankle_);
}

} // namespace orvo::getup
