#include "drills.h"

#include <orvo/body/kinematics.h>
#include <orvo/protocol/constants.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>
#include <random>
#include <sstream>

namespace orvo::drill {

const char* const reach_usage =
    "  reach [--angle DEG] [--joints NAME,NAME...] [--samples N]\n"
    "       no server: the fastest the right foot can meet a ball, the left foot flat on\n"
    "       the ground, with every joint named (default: every leg joint) at its speed\n"
    "       limit at once, along a line DEG up (default 20); by the body model's\n"
    "       kinematics over N random poses (default 200000, --seed); mass and grip left out\n";

namespace {

constexpr double pi = 3.14159265358979323846;
/// The ball's contacts bounce at 0.8 (the server's ball scene): off a foot far
/// heavier than itself it leaves at up to 1.8 times the foot's speed.
constexpr double ball_bounce = 0.8;
/// The kicking foot meets the ball with the middle of its front face, 1 cm
/// above the sole (the foot frame: x right, y to the toes, z up).
const Eigen::Vector3d contact_on_foot(0, 0.08, 0.01);
constexpr double foot_half_width = 0.04;
constexpr double foot_half_length = 0.08;
/// How far the contact may sit from the height the line asks for, metres.
constexpr double height_margin = 0.005;
/// Poses that kick from beside or behind the support foot, that dig the
/// kicking foot into the ground or lay the torso down are left out.
constexpr double least_ahead = 0.05;
constexpr double ground_margin = 0.002;
constexpr double most_torso_tilt_deg = 50;
/// Rolls beyond this only move the foot sideways.
constexpr double most_roll_deg = 10;
constexpr double nudge_deg = 0.01;

struct ReachOptions {
    double angle_deg = 20;
    std::vector<robot::Joint> joints;
    int samples = 200000;
};

std::vector<robot::Joint> leg_joints() {
    std::vector<robot::Joint> joints;
    for (const robot::JointInfo& joint : robot::joint_table()) {
        const std::string_view name = joint.name;
        if (name.find("hip") != std::string_view::npos ||
            name.find("knee") != std::string_view::npos ||
            name.find("ankle") != std::string_view::npos) {
            joints.push_back(joint.joint);
        }
    }
    return joints;
}

std::vector<robot::Joint> parse_joints(const std::string& list) {
    std::vector<robot::Joint> joints;
    std::istringstream words(list);
    for (std::string name; std::getline(words, name, ',');) {
        const auto& table = robot::joint_table();
        const auto found = std::find_if(table.begin(), table.end(),
                                        [&](const robot::JointInfo& j) { return j.name == name; });
        if (found == table.end()) {
            throw UsageError("no joint \"" + name + "\"");
        }
        joints.push_back(found->joint);
    }
    return joints;
}

Eigen::Isometry3d sole(const body::BodyModel& model, const robot::JointValues& angles,
                       body::Leg leg) {
    return body::foot_pose(model, leg, body::leg_angles(angles, leg));
}

/// The right foot in the frame of the left sole, which stays on the ground.
Eigen::Isometry3d right_in_left(const body::BodyModel& model, const robot::JointValues& angles) {
    return sole(model, angles, body::Leg::left).inverse() * sole(model, angles, body::Leg::right);
}

/// How far the torso leans from upright, standing on the left sole `left`.
double torso_tilt_deg(const Eigen::Isometry3d& left) {
    const Eigen::Vector3d up = left.inverse().linear() * Eigen::Vector3d::UnitZ();
    return std::acos(std::clamp(up.z(), -1.0, 1.0)) * 180 / pi;
}

bool foot_clear(const Eigen::Isometry3d& foot) {
    for (double x : {-foot_half_width, foot_half_width}) {
        for (double y : {-foot_half_length, foot_half_length}) {
            if ((foot * Eigen::Vector3d(x, y, 0)).z() < -ground_margin) {
                return false;
            }
        }
    }
    return true;
}

/// Where each sampled joint's angle is drawn from: its range, the rolls'
/// narrowed; the hip yaw-pitch stays at 0.
struct Sampled {
    std::size_t index;
    double low;
    double high;
};

std::vector<Sampled> sampled_ranges(const std::vector<robot::Joint>& legs) {
    std::vector<Sampled> ranges;
    for (robot::Joint joint : legs) {
        const robot::JointInfo& info = robot::joint_table()[robot::index(joint)];
        const std::string_view name = info.name;
        if (name.find("yaw") != std::string_view::npos) {
            continue;
        }
        const bool roll = name.find("roll") != std::string_view::npos;
        ranges.push_back({robot::index(joint),
                          roll ? std::max(info.min_deg, -most_roll_deg) : info.min_deg,
                          roll ? std::min(info.max_deg, most_roll_deg) : info.max_deg});
    }
    return ranges;
}

robot::JointValues random_pose(const std::vector<Sampled>& ranges, std::mt19937& random) {
    robot::JointValues angles{};
    for (const Sampled& range : ranges) {
        angles[range.index] = std::uniform_real_distribution<double>(range.low, range.high)(random);
    }
    return angles;
}

struct Reach {
    double speed = 0;
    robot::JointValues angles{};
    std::vector<double> shares;
    Eigen::Vector3d contact = Eigen::Vector3d::Zero();
};

/// The foot's speed along `line` with each joint in `joints` at its limit,
/// turning whichever way helps: the sum of what each adds alone.
Reach reach_at(const body::BodyModel& model, const robot::JointValues& angles,
               const Eigen::Vector3d& contact, const std::vector<robot::Joint>& joints,
               const Eigen::Vector3d& line) {
    Reach reach{0, angles, {}, contact};
    const robot::JointValues limits = robot::speed_limits_deg(model.type());
    for (robot::Joint joint : joints) {
        robot::JointValues nudged = angles;
        nudged[robot::index(joint)] += nudge_deg;
        const double moved =
            line.dot(right_in_left(model, nudged) * contact_on_foot - reach.contact);
        const double share = std::fabs(moved) / nudge_deg * limits[robot::index(joint)];
        reach.shares.push_back(share);
        reach.speed += share;
    }
    return reach;
}

Reach best_reach(const body::BodyModel& model, const ReachOptions& reach, unsigned seed) {
    const double angle = reach.angle_deg * pi / 180;
    const Eigen::Vector3d line(0, std::cos(angle), std::sin(angle));
    // Below the ball's centre by as much as the line rises through it.
    const double height = protocol::ball_radius * (1 - std::sin(angle));
    const std::vector<Sampled> ranges = sampled_ranges(leg_joints());
    std::mt19937 random(seed);
    Reach best;
    for (int i = 0; i < reach.samples; ++i) {
        const robot::JointValues angles = random_pose(ranges, random);
        const Eigen::Isometry3d left = sole(model, angles, body::Leg::left);
        const Eigen::Isometry3d foot = left.inverse() * sole(model, angles, body::Leg::right);
        const Eigen::Vector3d contact = foot * contact_on_foot;
        if (std::fabs(contact.z() - height) > height_margin || contact.y() < least_ahead ||
            !foot_clear(foot) || torso_tilt_deg(left) > most_torso_tilt_deg) {
            continue;
        }
        Reach now = reach_at(model, angles, contact, reach.joints, line);
        if (now.speed > best.speed) {
            best = std::move(now);
        }
    }
    return best;
}

} // namespace

int run_reach(Arguments& arguments) {
    ReachOptions reach;
    const DrillOptions options = parse_common(arguments, [&](Arguments& words) {
        if (words.flag() == "--angle") {
            reach.angle_deg = words.number();
        } else if (words.flag() == "--joints") {
            reach.joints = parse_joints(words.text());
        } else if (words.flag() == "--samples") {
            reach.samples = words.integer();
        } else {
            return false;
        }
        return true;
    });
    if (reach.joints.empty()) {
        reach.joints = leg_joints();
    }
    const body::BodyModel model = body::BodyModel::for_type(options.type);
    const Reach best = best_reach(model, reach, options.seed);
    if (best.speed <= 0) {
        throw std::runtime_error("no pose met the ball; take more --samples");
    }
    nlohmann::json angles = nlohmann::json::object();
    nlohmann::json shares = nlohmann::json::object();
    for (robot::Joint joint : leg_joints()) {
        angles[std::string(robot::joint_table()[robot::index(joint)].name)] =
            best.angles[robot::index(joint)];
    }
    for (std::size_t i = 0; i < reach.joints.size(); ++i) {
        shares[std::string(robot::joint_table()[robot::index(reach.joints[i])].name)] =
            best.shares[i];
    }
    const double foot = best.speed;
    std::cout << nlohmann::json{{"type", options.type},
                                {"angle_deg", reach.angle_deg},
                                {"foot_speed_mps", foot},
                                {"ball_speed_mps", foot * (1 + ball_bounce)},
                                {"contact", {best.contact.x(), best.contact.y(), best.contact.z()}},
                                {"torso_tilt_deg",
                                 torso_tilt_deg(sole(model, best.angles, body::Leg::left))},
                                {"angles", angles},
                                {"shares_mps", shares}}
              << '\n';
    return 0;
}

} // namespace orvo::drill
