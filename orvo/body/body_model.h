#ifndef ORVO_BODY_BODY_MODEL_H
#define ORVO_BODY_BODY_MODEL_H

#include <orvo/core/export.h>
#include <orvo/robot/joints.h>

#include <Eigen/Geometry>

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace orvo::body {

/// The body's frame, used by every function of this module: the centre of the
/// torso, x to the robot's right, y forward, z up (the frame the server's
/// scene files build the robot in and the monitor shows the torso in).
/// Lengths in metres, angles in degrees with the server's signs, joint speeds
/// in radians per second, masses in kilograms.
enum class Leg { left, right };

/// One leg's joint angles in degrees, with the signs the server reports.
struct LegAngles {
    double hip_yaw_pitch = 0;
    double hip_roll = 0;
    double hip_pitch = 0;
    double knee = 0;
    double ankle_pitch = 0;
    double ankle_roll = 0;
};

/// One hinge as the server builds it. `anchor` is a point of the axis and
/// `axis` its unit direction, both in the body frame with every joint at 0;
/// `parent` is the index (in BodyModel::joints()) of the joint that carries
/// this one, -1 when the torso does. Positive angles turn the child part
/// about `axis` by the right-hand rule.
struct JointModel {
    robot::Joint joint{};
    int parent = -1;
    Eigen::Vector3d anchor = Eigen::Vector3d::Zero();
    Eigen::Vector3d axis = Eigen::Vector3d::UnitX();
    double min_deg = 0;
    double max_deg = 0;
    double max_speed = 0; ///< rad/s
};

/// One rigid part of the body: its mass, its centre with every joint at 0 and
/// the index of the joint that moves it (-1 for the torso).
struct Part {
    std::string name;
    double mass = 0;
    Eigen::Vector3d centre = Eigen::Vector3d::Zero();
    int joint = -1;
};

/// The body of one robot type: where the joints are, which way they turn,
/// how far and how fast, and what each part weighs. The figures are the
/// server's own (its robot type table and scene files), one data file per
/// type; they are facts of the robot, not settings, so a walk never tunes
/// them.
class ORVO_API BodyModel {
public:
    /// The built-in model of robot type `type`; throws std::invalid_argument
    /// outside 0..4.
    static BodyModel for_type(int type);
    /// A model read from a data file (the installed ones live in
    /// share/orvo/body/typeN.json); throws std::runtime_error naming the file
    /// when it cannot be read or does not describe a body.
    static BodyModel load(const std::string& json_path);
    /// A model from the text of a data file; `origin` names it in errors.
    static BodyModel parse(std::string_view json, const std::string& origin);

    int type() const { return type_; }
    double total_mass() const { return total_mass_; }
    /// One leg from the hip joints down, foot included.
    double leg_mass() const { return leg_mass_; }
    /// Hip joint centre to knee axis, along z with every joint at 0 (the
    /// knee axis also sits 5 mm forward of the hip on every type).
    double thigh_length() const { return thigh_length_; }
    /// Knee axis to ankle pitch axis, along z.
    double shin_length() const { return shin_length_; }
    /// How far each hip joint centre lies beside the torso centre (x).
    double hip_width() const { return hip_offset_[1].x(); }
    /// Ankle pitch axis above the sole.
    double foot_height() const { return foot_height_; }
    /// The hip joint centre, where the leg's three hip axes meet, in the body
    /// frame.
    const Eigen::Vector3d& hip_offset(Leg leg) const { return hip_offset_[side(leg)]; }
    /// The sole's centre (the middle of the footprint's bottom face, toes
    /// included) in the body frame with every joint at 0.
    const Eigen::Vector3d& sole_centre(Leg leg) const { return sole_[side(leg)]; }

    /// Whether this type has the joint (only type 4 has toes).
    bool has(robot::Joint joint) const { return index_[robot::index(joint)] >= 0; }
    /// The joint as built; throws std::invalid_argument when this type lacks it.
    const JointModel& joint(robot::Joint joint) const;
    /// The fastest the server turns the joint, rad/s (type 2's ankles differ).
    double max_speed(robot::Joint joint) const { return this->joint(joint).max_speed; }
    /// Every joint of this type, each after the joint that carries it.
    const std::vector<JointModel>& joints() const { return joints_; }
    const std::vector<Part>& parts() const { return parts_; }
    /// Indices into joints() of one leg's six joints, hip yaw-pitch first.
    const std::array<int, 6>& leg_chain(Leg leg) const { return chains_[side(leg)]; }

private:
    BodyModel() = default;
    static std::size_t side(Leg leg) { return leg == Leg::left ? 0 : 1; }
    void derive();

    int type_ = 0;
    std::vector<JointModel> joints_;
    std::vector<Part> parts_;
    std::array<int, robot::joint_count> index_{};
    std::array<std::array<int, 6>, 2> chains_{};
    std::array<Eigen::Vector3d, 2> hip_offset_;
    std::array<Eigen::Vector3d, 2> sole_;
    double total_mass_ = 0;
    double leg_mass_ = 0;
    double thigh_length_ = 0;
    double shin_length_ = 0;
    double foot_height_ = 0;
};

} // namespace orvo::body

#endif
