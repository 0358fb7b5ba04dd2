// Which scene nodes are the ball and the robots, and the ground truth they
// give: found once per whole scene, derived again after every change.
#include <orvo/monitor/scene_reader.h>

#include <Eigen/Core>
#include <boost/math/constants/constants.hpp>

#include <array>
#include <charconv>
#include <cmath>

namespace orvo::monitor {

namespace {

// Body parts drawn with a model of their own, by the model's name without
// the robot-type digits some models carry ("lupperarm0" is "lupperarm").
constexpr std::array<std::string_view, 14> part_names = {
    "torso",  "head",  "lupperarm", "llowerarm", "rupperarm", "rlowerarm", "lthigh",
    "lshank", "lfoot", "rthigh",    "rshank",    "rfoot",     "ltoe",      "rtoe"};
constexpr int torso_name = 0;
constexpr int head_name = 1;
constexpr int lfoot_name = 8;
constexpr int rfoot_name = 11;
constexpr int ltoe_name = 12;
constexpr int rtoe_name = 13;

constexpr double degrees_per_radian = boost::math::double_constants::radian;

int part_name(std::string_view model) {
    while (!model.empty() && model.back() >= '0' && model.back() <= '9') {
        model.remove_suffix(1);
    }
    for (std::size_t i = 0; i < part_names.size(); ++i) {
        if (part_names[i] == model) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

bool starts_with(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

/// The number that `text` ends with after `prefix`, or `fallback`.
int number_after(std::string_view text, std::string_view prefix, int fallback) {
    int value = fallback;
    const std::string_view digits = text.substr(prefix.size());
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return error == std::errc() && end == digits.data() + digits.size() ? value : fallback;
}

} // namespace

void SceneReader::classify_mesh(Node& node, std::string_view mesh) {
    constexpr std::string_view folder = "models/";
    constexpr std::string_view suffix = ".obj";
    if (!starts_with(mesh, folder) || mesh.size() < folder.size() + suffix.size() ||
        mesh.substr(mesh.size() - suffix.size()) != suffix) {
        return; // a plain shape: no name to go by
    }
    const std::string_view model =
        mesh.substr(folder.size(), mesh.size() - folder.size() - suffix.size());
    if (model == "soccerball") {
        node.role = Role::ball;
    } else if (starts_with(model, "naobody")) {
        node.role = Role::torso;
        node.type = number_after(model, "naobody", 0);
        node.name = torso_name;
    } else if (model == "naohead") {
        node.role = Role::part;
        node.name = head_name;
    } else if ((node.name = part_name(model)) >= 0) {
        node.role = Role::part;
    }
}

void SceneReader::classify_material(Node& node, std::string_view material) {
    if (material == "matLeft") {
        node.right = false;
    } else if (material == "matRight") {
        node.right = true;
    } else if (starts_with(material, "matNum")) {
        node.number = number_after(material, "matNum", 0);
    }
}

void SceneReader::index_scene() {
    ball_ = -1;
    robot_count_ = 0;
    for (int i = 0; i < static_cast<int>(nodes_.size()); ++i) {
        const Node& node = nodes_[static_cast<std::size_t>(i)];
        if (node.role == Role::ball && node.parent >= 0) {
            ball_ = node.parent;
        } else if (node.role == Role::torso) {
            if (robot_count_ == robot_nodes_.size()) {
                robot_nodes_.emplace_back();
            }
            index_robot(i, robot_nodes_[robot_count_]);
            if (robot_nodes_[robot_count_].torso >= 0) {
                ++robot_count_;
            }
        }
    }
    truth_.robots.resize(robot_count_);
    for (std::size_t r = 0; r < robot_count_; ++r) {
        describe_robot(robot_nodes_[r], truth_.robots[r]);
    }
}

void SceneReader::index_robot(int mesh, RobotNodes& robot) {
    // mesh <- offset transform <- the torso's transform <- the robot, whose
    // children are the transforms of all its parts.
    robot.torso = -1;
    robot.mesh = mesh;
    robot.parts.clear();
    const int offset = nodes_[static_cast<std::size_t>(mesh)].parent;
    const int torso = offset >= 0 ? nodes_[static_cast<std::size_t>(offset)].parent : -1;
    const int body = torso >= 0 ? nodes_[static_cast<std::size_t>(torso)].parent : -1;
    if (body < 0) {
        return;
    }
    robot.torso = torso;
    const int depth = nodes_[static_cast<std::size_t>(body)].depth;
    for (std::size_t j = static_cast<std::size_t>(body) + 1;
         j < nodes_.size() && nodes_[j].depth > depth; ++j) {
        if (nodes_[j].parent == body && nodes_[j].transform) {
            robot.parts.push_back(static_cast<int>(j));
        }
    }
}

void SceneReader::describe_robot(const RobotNodes& nodes, RobotTruth& robot) const {
    const Node& mesh = nodes_[static_cast<std::size_t>(nodes.mesh)];
    robot.side = mesh.right ? Side::right : Side::left;
    robot.number = mesh.number;
    robot.type = mesh.type;
    robot.parts.resize(nodes.parts.size());
    for (std::size_t k = 0; k < nodes.parts.size(); ++k) {
        // A part is named after the first model in its subtree.
        const auto part = static_cast<std::size_t>(nodes.parts[k]);
        int name = -1;
        for (std::size_t j = part + 1; j < nodes_.size() && nodes_[j].depth > nodes_[part].depth;
             ++j) {
            if (nodes_[j].name >= 0) {
                name = nodes_[j].name;
                break;
            }
        }
        // Type 4 draws each toe with its foot's model, in the part after the foot.
        if (k > 0 && (name == lfoot_name || name == rfoot_name) &&
            robot.parts[k - 1].name == part_names[static_cast<std::size_t>(name)]) {
            name = name == lfoot_name ? ltoe_name : rtoe_name;
        }
        robot.parts[k].name = name >= 0 ? part_names[static_cast<std::size_t>(name)] : "";
    }
}

void SceneReader::pose_of(int node, Pose& pose) const {
    Eigen::Map<Eigen::Matrix4d> global(pose.m);
    global = Eigen::Map<const Eigen::Matrix4d>(nodes_[static_cast<std::size_t>(node)].m);
    for (int p = nodes_[static_cast<std::size_t>(node)].parent; p >= 0;
         p = nodes_[static_cast<std::size_t>(p)].parent) {
        const Node& above = nodes_[static_cast<std::size_t>(p)];
        if (above.transform) {
            global = Eigen::Map<const Eigen::Matrix4d>(above.m) * global;
        }
    }
}

void SceneReader::derive() {
    Pose pose;
    if (ball_ >= 0) {
        pose_of(ball_, pose);
        for (int i = 0; i < 3; ++i) {
            truth_.ball[i] = pose.m[12 + i];
        }
    }
    for (std::size_t r = 0; r < robot_count_; ++r) {
        const RobotNodes& nodes = robot_nodes_[r];
        RobotTruth& robot = truth_.robots[r];
        for (std::size_t k = 0; k < nodes.parts.size(); ++k) {
            pose_of(nodes.parts[k], robot.parts[k].pose);
        }
        pose_of(nodes.torso, pose);
        const double* m = pose.m;
        robot.x = m[12];
        robot.y = m[13];
        robot.z = m[14];
        // Columns 1 and 2 are the torso's forward (local y) and up (local z) axes.
        robot.heading_deg = std::atan2(m[5], m[4]) * degrees_per_radian;
        const double up = std::sqrt(m[8] * m[8] + m[9] * m[9] + m[10] * m[10]);
        const double cosine = up > 0 ? std::fmax(-1.0, std::fmin(1.0, m[10] / up)) : 1.0;
        robot.tilt_deg = std::acos(cosine) * degrees_per_radian;
    }
}

} // namespace orvo::monitor
