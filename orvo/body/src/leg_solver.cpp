// Inverse kinematics of one leg: a first guess from the leg seen as two
// straight segments, then Gauss-Newton steps on the exact joints (the knee
// sits 5 mm forward of the hip and the ankle roll axis 5 mm below the ankle
// pitch axis, which the guess leaves out).
#include <orvo/body/kinematics.h>

#include "chain.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace orvo::body {

namespace {

using detail::LegVector;
using detail::radians_per_degree;
using Joints = std::array<const JointModel*, 6>;
using Matrix6 = Eigen::Matrix<double, 6, 6>;

constexpr double pi = 3.14159265358979323846;
constexpr int max_iterations = 60;
// A radian of tilt weighs like 10 cm of position, so that an unreachable
// pose trades neither wholly for the other.
constexpr double tilt_weight = 0.1;
// Enough to keep a straight knee (a singular leg) from throwing the step far.
constexpr double damping = 1e-10;
constexpr double max_step = 0.3;         // rad per iteration
constexpr double reach_tolerance = 1e-5; // m, and rad of tilt
constexpr double range_margin = 0.5;     // rad
constexpr double range_tolerance = 1e-6; // deg

double clamped_acos(double c) {
    return std::acos(std::clamp(c, -1.0, 1.0));
}

// The five angles below a given hip yaw-pitch (radians), from the leg as a
// thigh and a shank meeting at the knee, the foot rigid below the ankle.
LegVector first_guess(const Joints& leg, const Eigen::Vector3d& sole0,
                      const Eigen::Isometry3d& target, double hyp) {
    const Eigen::Isometry3d below_hip = detail::turn(*leg[0], hyp).inverse() * target;
    const Eigen::Vector3d& hip = leg[2]->anchor;
    const Eigen::Vector3d ankle =
        below_hip.translation() + below_hip.linear() * (leg[4]->anchor - sole0);
    const Eigen::Vector3d d = ankle - hip;
    const double roll = std::atan2(-d.x(), -d.z());
    const Eigen::Vector3d v = Eigen::AngleAxisd(-roll, Eigen::Vector3d::UnitY()) * d;
    const double thigh = (leg[3]->anchor - hip).norm();
    const double shank = (leg[4]->anchor - leg[3]->anchor).norm();
    const double reach = std::clamp(v.norm(), std::abs(thigh - shank) + 1e-9, thigh + shank);
    const double knee =
        -(pi - clamped_acos((thigh * thigh + shank * shank - reach * reach) / (2 * thigh * shank)));
    const double pitch =
        std::atan2(v.y(), -v.z()) +
        clamped_acos((thigh * thigh + reach * reach - shank * shank) / (2 * thigh * reach));
    const Eigen::Matrix3d rest =
        Eigen::AngleAxisd(pitch + knee, Eigen::Vector3d::UnitX()).toRotationMatrix().transpose() *
        Eigen::AngleAxisd(-roll, Eigen::Vector3d::UnitY()) * below_hip.linear();
    const Eigen::Vector3d up = rest.col(2);
    LegVector q;
    q << hyp, roll, pitch, knee, std::atan2(-up.y(), up.z()),
        std::asin(std::clamp(up.x(), -1.0, 1.0));
    return q;
}

struct Evaluation {
    Eigen::Isometry3d sole;
    Matrix6 jacobian; // columns: joints; rows: position, then rotation
};

Evaluation evaluate(const Joints& leg, const Eigen::Vector3d& sole0, const LegVector& q) {
    Evaluation e;
    std::array<Eigen::Vector3d, 6> axes;
    std::array<Eigen::Vector3d, 6> anchors;
    Eigen::Isometry3d pose = Eigen::Isometry3d::Identity();
    for (std::size_t k = 0; k < 6; ++k) {
        axes[k] = pose.linear() * leg[k]->axis;
        anchors[k] = pose * leg[k]->anchor;
        pose = pose * detail::turn(*leg[k], q[static_cast<Eigen::Index>(k)]);
    }
    e.sole = pose * Eigen::Translation3d(sole0);
    for (std::size_t k = 0; k < 6; ++k) {
        e.jacobian.col(static_cast<Eigen::Index>(k))
            << axes[k].cross(e.sole.translation() - anchors[k]),
            axes[k];
    }
    return e;
}

// Position and rotation still to go; with `heading_free` the turn about the
// wanted sole's own up axis is left out (a fixed hip yaw-pitch decides it).
Eigen::Matrix<double, 6, 1> error(const Evaluation& e, const Eigen::Isometry3d& target,
                                  bool heading_free) {
    Eigen::Matrix<double, 6, 1> err;
    const Eigen::AngleAxisd rotation(target.linear() * e.sole.linear().transpose());
    Eigen::Vector3d turn = rotation.angle() * rotation.axis();
    if (heading_free) {
        const Eigen::Vector3d up = target.linear().col(2);
        turn -= up * up.dot(turn);
    }
    err << target.translation() - e.sole.translation(), turn;
    return err;
}

LegVector refine(const Joints& leg, const Eigen::Vector3d& sole0, const Eigen::Isometry3d& target,
                 LegVector q, bool hyp_free) {
    Eigen::Matrix<double, 6, 1> weights;
    weights << 1, 1, 1, tilt_weight, tilt_weight, tilt_weight;
    const Eigen::Vector3d up = target.linear().col(2);
    for (int i = 0; i < max_iterations; ++i) {
        Evaluation e = evaluate(leg, sole0, q);
        const Eigen::Matrix<double, 6, 1> err = error(e, target, !hyp_free);
        if (!err.allFinite() || err.norm() < 1e-12) {
            break;
        }
        if (!hyp_free) {
            e.jacobian.col(0).setZero();
            e.jacobian.bottomRows<3>() -= up * (up.transpose() * e.jacobian.bottomRows<3>());
        }
        const Matrix6 wj = weights.asDiagonal() * e.jacobian;
        const Matrix6 normal = wj.transpose() * wj + damping * Matrix6::Identity();
        LegVector step = normal.ldlt().solve(wj.transpose() * (weights.asDiagonal() * err));
        if (!step.allFinite()) {
            break;
        }
        const double largest = step.cwiseAbs().maxCoeff();
        if (largest > max_step) {
            step *= max_step / largest;
        }
        q += step;
        // Near the joints' ranges, so that a step never carries the knee
        // over to bending forwards, a pose the leg has no way back from;
        // a little beyond them, so that an iterate may pass a limit on its
        // way.
        for (std::size_t k = 0; k < 6; ++k) {
            const double low = leg[k]->min_deg * radians_per_degree - range_margin;
            const double high = leg[k]->max_deg * radians_per_degree + (k == 3 ? 0 : range_margin);
            q[static_cast<Eigen::Index>(k)] =
                std::clamp(q[static_cast<Eigen::Index>(k)], low, high);
        }
    }
    return q;
}

// Refines from the guess for hip yaw-pitch `hyp` (radians), then clamps to
// the joints' ranges and says how near the sole came.
LegSolution solve_from(const BodyModel& model, Leg leg, const Eigen::Isometry3d& target, double hyp,
                       bool hyp_free) {
    const Joints joints = detail::leg_joints(model, leg);
    const Eigen::Vector3d& sole0 = model.sole_centre(leg);
    // The heading last: from the position and tilt met for this hip
    // yaw-pitch, the heading is one small turn away.
    LegVector q = refine(joints, sole0, target, first_guess(joints, sole0, target, hyp), false);
    if (hyp_free) {
        q = refine(joints, sole0, target, q, true);
    }
    if (!q.allFinite()) {
        q = first_guess(joints, sole0, target, hyp);
    }
    bool clamped = false;
    for (std::size_t k = 0; k < 6; ++k) {
        double& deg = q[static_cast<Eigen::Index>(k)];
        deg = std::remainder(deg, 2 * pi) * robot::degrees_per_radian;
        const double within = std::clamp(deg, joints[k]->min_deg, joints[k]->max_deg);
        clamped = clamped || std::abs(within - deg) > range_tolerance;
        deg = within;
    }
    LegSolution out;
    out.angles = detail::to_angles(q);
    const Eigen::Isometry3d reached = foot_pose(model, leg, out.angles);
    out.position_error = (reached.translation() - target.translation()).norm();
    const double tilt = clamped_acos(reached.linear().col(2).dot(target.linear().col(2)));
    out.tilt_error_deg = tilt * robot::degrees_per_radian;
    double heading = 0;
    if (hyp_free) {
        heading = Eigen::AngleAxisd(target.linear() * reached.linear().transpose()).angle();
    }
    out.reachable = !clamped && out.position_error < reach_tolerance && tilt < reach_tolerance &&
                    heading < reach_tolerance;
    return out;
}

LegSolution solve(const BodyModel& model, Leg leg, const Eigen::Isometry3d& target, double hyp_deg,
                  bool hyp_free) {
    if (!target.matrix().allFinite() || !std::isfinite(hyp_deg)) {
        LegSolution out;
        out.position_error = out.tilt_error_deg = std::numeric_limits<double>::infinity();
        return out;
    }
    const double hyp = hyp_deg * radians_per_degree;
    if (!hyp_free) {
        return solve_from(model, leg, target, hyp, false);
    }
    LegSolution best = solve_from(model, leg, target, hyp, true);
    if (best.reachable) {
        return best;
    }
    // Where the thigh lies across the hip yaw-pitch axis the heading hardly
    // depends on it, and the first start may end in the wrong branch: try
    // starts over the joint's range, nearest first.
    const JointModel& joint = *detail::leg_joints(model, leg)[0];
    std::vector<double> starts;
    for (double deg = joint.min_deg; deg <= joint.max_deg; deg += 7.5) {
        starts.push_back(deg * radians_per_degree);
    }
    std::sort(starts.begin(), starts.end(),
              [hyp](double x, double y) { return std::abs(x - hyp) < std::abs(y - hyp); });
    for (const double start : starts) {
        LegSolution out = solve_from(model, leg, target, start, true);
        if (out.reachable) {
            return out;
        }
        if (out.position_error + 0.01 * out.tilt_error_deg <
            best.position_error + 0.01 * best.tilt_error_deg) {
            best = out;
        }
    }
    return best;
}

} // namespace

LegSolution solve_leg(const BodyModel& model, Leg leg, const Eigen::Isometry3d& sole_in_torso,
                      double hip_yaw_pitch_deg) {
    return solve(model, leg, sole_in_torso, hip_yaw_pitch_deg, false);
}

LegSolution solve_leg(const BodyModel& model, Leg leg, const Eigen::Isometry3d& sole_in_torso) {
    // The hip yaw-pitch axis leans 45 degrees out of the vertical, so the
    // foot's heading turns by about its z share of the joint's angle.
    const JointModel& hyp = *detail::leg_joints(model, leg)[0];
    const Eigen::Vector3d forward = sole_in_torso.linear().col(1);
    const double heading = std::atan2(-forward.x(), forward.y()) * robot::degrees_per_radian;
    const double guess =
        std::isfinite(heading) ? std::clamp(heading / hyp.axis.z(), hyp.min_deg, hyp.max_deg) : 0;
    return solve(model, leg, sole_in_torso, guess, true);
}

} // namespace orvo::body
