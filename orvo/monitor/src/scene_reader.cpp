#include <orvo/monitor/scene_reader.h>

#include "scene_text.h"

#include <cstring>
#include <string>

namespace orvo::monitor {

namespace {

// The scene nests four deep (robot, part, offset, mesh); anything far deeper
// is not a scene and must not exhaust the stack.
constexpr int max_depth = 32;

template <typename T> void assign(T& field, T value, bool& changed) {
    if (field != value) {
        field = value;
        changed = true;
    }
}

void assign_text(std::string& field, std::string_view value, bool& changed) {
    if (field != value) {
        field.assign(value.data(), value.size());
        changed = true;
    }
}

} // namespace

SceneReader::SceneReader() = default;
SceneReader::~SceneReader() = default;

bool SceneReader::read(std::string_view message) {
    ++counts_.messages;
    changed_ = false;
    SceneText text(message);
    bool ok = text.take('(');
    if (ok && text.peek() == '(') {
        // The header: the environment on a whole scene, the time and what
        // else changed on an update. A message may end after it.
        ok = read_header(text) && (text.at_end() || text.take('('));
    }
    if (ok && !text.at_end()) {
        const std::string_view kind = text.word();
        const bool whole = kind == "RSG";
        ok = (whole || kind == "RDS") && text.close() && text.take('(') && read_scene(text, whole);
    }
    if (!ok) {
        ++counts_.malformed;
    }
    if (changed_) {
        derive();
    }
    return changed_;
}

bool SceneReader::read_header(SceneText& text) {
    while (text.take('(')) {
        const std::string_view name = text.word();
        double time = 0;
        int value = 0;
        if (name == "time" && text.number(time)) {
            assign(truth_.time, time, changed_);
        } else if (name == "play_mode" && text.number(value)) {
            assign(truth_.play_mode, value, changed_);
        } else if (name == "score_left" && text.number(value)) {
            assign(truth_.score_left, value, changed_);
        } else if (name == "score_right" && text.number(value)) {
            assign(truth_.score_right, value, changed_);
        } else if (name == "half" && text.number(value)) {
            assign(truth_.half, value, changed_);
        } else if (name == "foul") {
            read_foul(text);
        } else if (name == "team_left") {
            assign_text(truth_.team_left, text.word(), changed_);
        } else if (name == "team_right") {
            assign_text(truth_.team_right, text.word(), changed_);
        }
        if (!text.close()) {
            return false;
        }
    }
    return text.take(')');
}

void SceneReader::read_foul(SceneText& text) {
    // "(foul INDEX TYPE TEAM NUMBER)", the team 1 for left and 2 for right.
    Foul foul;
    int team = 0;
    if (!text.number(foul.index) || !text.number(foul.type) || !text.number(team) ||
        !text.number(foul.number) || (team != 1 && team != 2)) {
        return; // not a foul this client can place: the header goes on
    }
    foul.side = team == 1 ? Side::left : Side::right;
    // The header names the time before the fouls; a foul heard again (a
    // stream read twice) is not a second foul.
    foul.time = truth_.time;
    if (truth_.fouls.empty() || foul.index > truth_.fouls.back().index) {
        truth_.fouls.push_back(foul);
        changed_ = true;
    }
}

bool SceneReader::read_scene(SceneText& text, bool whole) {
    if (whole) {
        ++counts_.scenes;
        nodes_.clear(); // keeps the capacity for the next scene
        changed_ = true;
    } else if (nodes_.empty()) {
        ++counts_.mismatched; // an update of a scene never seen
        return true;
    }
    next_ = 0;
    bool ok = true;
    while (ok && text.take('(')) {
        ok = text.word() == "nd" && read_node(text, -1, 0, whole);
    }
    ok = ok && text.take(')');
    if (whole) {
        index_scene();
    } else if (next_ != static_cast<int>(nodes_.size())) {
        ++counts_.mismatched;
    }
    return ok;
}

bool SceneReader::read_node(SceneText& text, int parent, int depth, bool whole) {
    if (depth > max_depth) {
        return false;
    }
    int index = -1;
    if (whole) {
        index = static_cast<int>(nodes_.size());
        nodes_.emplace_back();
        nodes_.back().parent = parent;
        nodes_.back().depth = depth;
    } else if (next_ < static_cast<int>(nodes_.size())) {
        index = next_++;
    } else {
        next_ = static_cast<int>(nodes_.size()) + 1; // counted as a mismatch
    }
    const char first = text.peek();
    if (first != '(' && first != ')') {
        const std::string_view kind = text.word();
        if (whole) {
            nodes_[static_cast<std::size_t>(index)].transform = kind == "TRF";
        }
    }
    for (;;) {
        if (text.take(')')) {
            return true;
        }
        if (!text.take('(')) {
            // A stray word is skipped; the end of the text cuts the node short.
            if (text.word().empty()) {
                return false;
            }
            continue;
        }
        const std::string_view name = text.word();
        const bool ok = name == "nd" ? read_node(text, index, depth + 1, whole)
                                     : read_attribute(text, name, index, whole);
        if (!ok) {
            return false;
        }
    }
}

bool SceneReader::read_attribute(SceneText& text, std::string_view name, int node, bool whole) {
    if (node >= 0) {
        Node& n = nodes_[static_cast<std::size_t>(node)];
        if (name == "SLT") {
            read_matrix(text, node);
        } else if (whole && name == "load") {
            classify_mesh(n, text.word());
        } else if (whole && (name == "resetMaterials" || name == "sMat")) {
            for (std::string_view material = text.word(); !material.empty();
                 material = text.word()) {
                classify_material(n, material);
            }
        }
    }
    return text.close();
}

void SceneReader::read_matrix(SceneText& text, int node) {
    double m[16];
    for (double& value : m) {
        if (!text.number(value)) {
            return; // not a matrix: the node keeps its pose
        }
    }
    Node& n = nodes_[static_cast<std::size_t>(node)];
    if (std::memcmp(n.m, m, sizeof m) != 0) {
        std::memcpy(n.m, m, sizeof m);
        changed_ = true;
    }
}

const RobotTruth* SceneReader::robot(Side side, int number) const {
    for (const RobotTruth& r : truth_.robots) {
        if (r.side == side && r.number == number) {
            return &r;
        }
    }
    return nullptr;
}

} // namespace orvo::monitor
