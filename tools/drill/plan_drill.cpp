#include "drills.h"

#include <orvo/body/kinematics.h>
#include <orvo/walk/gait.h>
#include <orvo/walk/leg_targets.h>
#include <orvo/walk/walk_params.h>
#include <orvo/walk/walker.h>

#include <algorithm>
#include <cmath>
#include <iostream>

namespace orvo::drill {

const char* const plan_usage =
    "  plan --velocity VX VY TURN\n"
    "       no server: the fastest each leg joint turns in the walk's plan over steady\n"
    "       steps at that velocity (limited as the walk limits it), against its speed limit;\n"
    "       a joint asked past it lags and the feet land short of where the plan puts them\n";

namespace {

/// Steps taken before the peaks count: the first ones start from the stand.
constexpr int settle_steps = 4;
constexpr int measured_steps = 4;
/// Far finer than the server's cycle, so that the peaks are the plan's own.
constexpr double sample_seconds = 0.001;

robot::JointValues planned_angles(const body::BodyModel& model, const walk::Gait& gait,
                                  const walk::WalkParams& now) {
    robot::JointValues angles{};
    for (walk::Side side : {walk::Side::left, walk::Side::right}) {
        body::LegAngles leg{};
        walk::leg_angles(model, side, gait.sole(side), {now.lean, 0}, leg);
        body::set_leg_angles(angles, walk::leg_of(side), leg);
    }
    return angles;
}

/// The plan's fastest rate of every joint (rad/s) over the measured steps.
robot::JointValues peak_rates(const body::BodyModel& model, const walk::WalkParams& now,
                              const walk::Velocity& velocity) {
    walk::Gait gait(now, model.hip_width());
    robot::JointValues peaks{};
    robot::JointValues before = planned_angles(model, gait, now);
    walk::Side support = walk::Side::right;
    for (int step = 0; step < settle_steps + measured_steps; ++step) {
        gait.begin(support, velocity, 1);
        bool ended = false;
        while (!ended) {
            ended = gait.advance(sample_seconds);
            const robot::JointValues angles = planned_angles(model, gait, now);
            if (step >= settle_steps) {
                for (std::size_t i = 0; i < robot::joint_count; ++i) {
                    const double rate = std::fabs(angles[i] - before[i]) /
                                        robot::degrees_per_radian / sample_seconds;
                    peaks[i] = std::max(peaks[i], rate);
                }
            }
            before = angles;
        }
        support = walk::other(support);
    }
    return peaks;
}

} // namespace

int run_plan(Arguments& arguments) {
    walk::Velocity velocity;
    bool moves = false;
    const DrillOptions options = parse_common(arguments, [&](Arguments& words) {
        if (words.flag() != "--velocity") {
            return false;
        }
        velocity = {words.number(), words.value(), words.value()};
        moves = true;
        return true;
    });
    if (!moves) {
        throw UsageError("plan needs --velocity");
    }
    const walk::WalkParams params = walk::WalkParams::from(walk::ParamSet::load(
        options.params.empty() ? walk::params_path("walk", options.type) : options.params));
    const body::BodyModel model = body::BodyModel::for_type(options.type);
    // Limited as the walk limits what it is asked.
    walk::Walker walker(model, params);
    walker.set_velocity(velocity.forward, velocity.sideways, velocity.turn);
    velocity = walker.target();
    const walk::WalkParams now = params.at_speed(velocity.forward);
    const robot::JointValues peaks = peak_rates(model, now, velocity);
    nlohmann::json joints = nlohmann::json::object();
    nlohmann::json over = nlohmann::json::array();
    // The walk's own cap where it is below the motor's (type 2's ankle pitch).
    const robot::JointValues limits = robot::speed_limits_deg(options.type, params.joint_speed);
    for (const robot::JointInfo& joint : robot::joint_table()) {
        const double peak = peaks[robot::index(joint.joint)];
        if (peak <= 0) {
            continue;
        }
        const double limit = limits[robot::index(joint.joint)] / robot::degrees_per_radian;
        joints[std::string(joint.name)] = {{"peak_rad_s", peak}, {"limit_rad_s", limit}};
        if (peak > limit) {
            over.push_back(joint.name);
        }
    }
    std::cout << nlohmann::json{{"type", options.type},
                                {"velocity", {velocity.forward, velocity.sideways, velocity.turn}},
                                {"step_time", now.step_time},
                                {"joints", joints},
                                {"over_limit", over}}
              << '\n';
    return 0;
}

} // namespace orvo::drill
