#include <orvo/getup/getup_motions.h>

#include <orvo/robot/joints.h>

#include <cstdio>
#include <limits>
#include <map>
#include <string_view>

namespace orvo::getup {

namespace {

/// Whether a joint of this name turns the other way on the other side. The
/// two hip yaw-pitch joints share one range and turn the legs alike: they do not.
bool mirror_sign(std::string_view side_free) {
    if (side_free == "hip_yaw_pitch") {
        return false;
    }
    return side_free.find("roll") != std::string_view::npos ||
           side_free.find("yaw") != std::string_view::npos;
}

/// The keys of a keyframe that say when to go on rather than where to go.
bool timing_key(std::string_view key) {
    return key == "time" || key == "lean" || key == "risen" || key == "wait";
}

/// The joint on the other side: "left_hip_roll" for "right_hip_roll".
std::string other_side(const std::string& joint) {
    if (joint.rfind("left_", 0) == 0) {
        return "right_" + joint.substr(5);
    }
    if (joint.rfind("right_", 0) == 0) {
        return "left_" + joint.substr(6);
    }
    return joint;
}

std::string side_free(const std::string& joint) {
    const std::size_t cut = joint.find('_');
    return cut == std::string::npos ? joint : joint.substr(cut + 1);
}

/// The angles of one keyframe by full joint name, mirrored when asked.
std::map<std::string, double> keyframe_angles(const params::ParamSet& set,
                                              const std::string& prefix, bool mirrored) {
    std::map<std::string, double> angles;
    for (const auto& [key, param] : set.entries()) {
        if (key.rfind(prefix, 0) != 0) {
            continue;
        }
        const std::string name = key.substr(prefix.size());
        if (timing_key(name)) {
            continue;
        }
        if (robot::joint_by_name(name)) {
            angles[name] = param.value;
        } else if (robot::joint_by_name("left_" + name)) {
            angles["left_" + name] = param.value;
            angles["right_" + name] = mirror_sign(name) ? -param.value : param.value;
        } else {
            throw params::ParamError(set.origin() + ": \"" + key + "\" names no joint");
        }
    }
    if (!mirrored) {
        return angles;
    }
    std::map<std::string, double> swapped;
    for (const auto& [joint, value] : angles) {
        swapped[other_side(joint)] = mirror_sign(side_free(joint)) ? -value : value;
    }
    return swapped;
}

} // namespace

skills::Motion motion_from(const params::ParamSet& set, const std::string& name, bool mirrored) {
    return motion_part(set, name, 1, std::numeric_limits<int>::max(), mirrored);
}

skills::Motion motion_part(const params::ParamSet& set, const std::string& name, int first,
                           int last, bool mirrored) {
    std::string text;
    char number[32];
    for (int frame = first; frame <= last; ++frame) {
        const std::string prefix = name + "." + std::to_string(frame) + ".";
        if (!set.has(prefix + "time")) {
            break;
        }
        std::snprintf(number, sizeof number, "%.4f", set[prefix + "time"]);
        text += number;
        for (const auto& [joint, value] : keyframe_angles(set, prefix, mirrored)) {
            std::snprintf(number, sizeof number, "=%.3f", value);
            text += ' ' + joint + number;
        }
        text += '\n';
    }
    if (text.empty()) {
        throw params::ParamError(set.origin() + ": no keyframe \"" + name + "." +
                                 std::to_string(first) + ".time\"");
    }
    return skills::Motion::parse(text, (mirrored ? "getup_mirrored_" : "getup_") + name);
}

} // namespace orvo::getup
