#include <orvo/body/body_model.h>

#include "builtin_bodies.h"
#include "chain.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace orvo::body {

namespace {

using nlohmann::json;
using robot::Joint;

Eigen::Vector3d vector_of(const json& value) {
    Eigen::Vector3d v;
    for (int i = 0; i < 3; ++i) {
        v[i] = value.at(i).get<double>();
    }
    return v;
}

// -1 for a null parent, else the index of an earlier joint of that name.
int earlier_joint(const json& name, const std::vector<JointModel>& joints) {
    if (name.is_null()) {
        return -1;
    }
    const auto joint = robot::joint_by_name(name.get<std::string>());
    for (std::size_t i = 0; joint && i < joints.size(); ++i) {
        if (joints[i].joint == *joint) {
            return static_cast<int>(i);
        }
    }
    throw std::invalid_argument("\"" + name.get<std::string>() +
                                "\" is no joint listed before its children");
}

JointModel joint_of(const json& entry, const std::vector<JointModel>& joints) {
    JointModel joint;
    const auto name = entry.at("joint").get<std::string>();
    const auto which = robot::joint_by_name(name);
    if (!which) {
        throw std::invalid_argument("unknown joint \"" + name + "\"");
    }
    joint.joint = *which;
    joint.parent = earlier_joint(entry.at("parent"), joints);
    joint.anchor = vector_of(entry.at("anchor"));
    joint.axis = vector_of(entry.at("axis"));
    if (!(joint.axis.norm() > 0.5)) {
        throw std::invalid_argument("joint \"" + name + "\" has no axis");
    }
    // The scene files write 45-degree axes as 0.7071; the direction is meant.
    joint.axis.normalize();
    joint.min_deg = entry.at("min_deg").get<double>();
    joint.max_deg = entry.at("max_deg").get<double>();
    joint.max_speed = entry.at("max_speed").get<double>();
    return joint;
}

} // namespace

BodyModel BodyModel::for_type(int type) {
    const std::string_view text = detail::builtin_body_json(type);
    if (text.empty()) {
        throw std::invalid_argument("robot type " + std::to_string(type) +
                                    " does not exist (types are 0 to 4)");
    }
    return parse(text, "built-in body of type " + std::to_string(type));
}

BodyModel BodyModel::load(const std::string& json_path) {
    std::ifstream in(json_path);
    if (!in) {
        throw std::runtime_error(json_path + ": cannot be read");
    }
    std::ostringstream text;
    text << in.rdbuf();
    return parse(text.str(), json_path);
}

BodyModel BodyModel::parse(std::string_view text, const std::string& origin) {
    BodyModel model;
    try {
        const json doc = json::parse(text);
        model.type_ = doc.at("type").get<int>();
        model.index_.fill(-1);
        for (const json& entry : doc.at("joints")) {
            model.joints_.push_back(joint_of(entry, model.joints_));
            model.index_[robot::index(model.joints_.back().joint)] =
                static_cast<int>(model.joints_.size() - 1);
        }
        for (const json& entry : doc.at("parts")) {
            Part part;
            part.name = entry.at("part").get<std::string>();
            part.mass = entry.at("mass").get<double>();
            part.centre = vector_of(entry.at("centre"));
            part.joint = earlier_joint(entry.at("joint"), model.joints_);
            model.parts_.push_back(part);
        }
        for (Leg leg : {Leg::left, Leg::right}) {
            const json& sole = doc.at("soles").at(leg == Leg::left ? "left" : "right");
            model.sole_[side(leg)] = vector_of(sole.at("centre"));
        }
        model.derive();
    } catch (const std::exception& error) {
        throw std::runtime_error(origin + ": not a body: " + error.what());
    }
    return model;
}

const JointModel& BodyModel::joint(robot::Joint joint) const {
    const int i = index_[robot::index(joint)];
    if (i < 0) {
        throw std::invalid_argument("robot type " + std::to_string(type_) + " has no " +
                                    std::string(robot::info(joint).name));
    }
    return joints_[static_cast<std::size_t>(i)];
}

// The figures a walk asks for, worked out once from the joints and parts.
void BodyModel::derive() {
    for (std::size_t s = 0; s < 2; ++s) {
        for (std::size_t k = 0; k < 6; ++k) {
            chains_[s][k] = index_[robot::index(detail::leg_joint_ids[s][k])];
            if (chains_[s][k] < 0) {
                throw std::invalid_argument(
                    "a leg lacks " + std::string(robot::info(detail::leg_joint_ids[s][k]).name));
            }
        }
        for (std::size_t k = 1; k < 6; ++k) {
            if (joints_[static_cast<std::size_t>(chains_[s][k])].parent != chains_[s][k - 1]) {
                throw std::invalid_argument("a leg's joints do not form a chain");
            }
        }
    }
    const auto anchor = [this](Joint joint) -> const Eigen::Vector3d& {
        return this->joint(joint).anchor;
    };
    hip_offset_[0] = anchor(Joint::left_hip_pitch);
    hip_offset_[1] = anchor(Joint::right_hip_pitch);
    thigh_length_ = anchor(Joint::right_hip_pitch).z() - anchor(Joint::right_knee_pitch).z();
    shin_length_ = anchor(Joint::right_knee_pitch).z() - anchor(Joint::right_ankle_pitch).z();
    foot_height_ = anchor(Joint::right_ankle_pitch).z() - sole_[1].z();
    total_mass_ = 0;
    leg_mass_ = 0;
    const int first_right = chains_[1][0];
    for (const Part& part : parts_) {
        total_mass_ += part.mass;
        // A part belongs to the right leg when its joint descends from the
        // right hip yaw-pitch.
        for (int j = part.joint; j >= 0; j = joints_[static_cast<std::size_t>(j)].parent) {
            if (j == first_right) {
                leg_mass_ += part.mass;
                break;
            }
        }
    }
}

} // namespace orvo::body
