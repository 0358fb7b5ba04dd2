#include "scanner.h"

#include <orvo/perception/perception_reader.h>

#include <cstring>
#include <optional>

namespace orvo::perception {

namespace {

using detail::Scanner;

// Perceptor names have at most four characters; packed into one integer
// they are found by comparing integers, not strings.
std::uint32_t pack(std::string_view name) {
    std::uint32_t key = 0;
    if (!name.empty()) {
        std::memcpy(&key, name.data(), name.size());
    }
    return key;
}

void read_vector(Scanner& scanner, math::Vector3d& out) {
    out.x = scanner.number<float>();
    out.y = scanner.number<float>();
    out.z = scanner.number<float>();
    out.length_valid = false;
}

// "(pol D A E)", its name read already.
void read_polar(Scanner& scanner, math::Polar& out) {
    out.distance = scanner.number<float>();
    out.azimuth = scanner.number<float>();
    out.elevation = scanner.number<float>();
    scanner.close();
}

// The server's own layout of a seen point, " (pol D A E)" (after the
// object's name or the previous point), read without the general steps;
// false at the first difference.
bool read_polar_as_sent(Scanner& scanner, math::Polar& out) {
    if (!scanner.skip_literal(" (pol ")) {
        return false;
    }
    out.distance = scanner.number<float>();
    out.azimuth = scanner.number<float>();
    out.elevation = scanner.number<float>();
    return scanner.skip_literal(")");
}

// An object seen at one place, "(NAME (pol D A E))", its name read already;
// false when it came without a "pol".
bool read_located(Scanner& scanner, math::Polar& out) {
    const char* start = scanner.position();
    if (read_polar_as_sent(scanner, out) && scanner.skip_literal(")")) {
        return true;
    }
    scanner.rewind(start);
    bool located = false;
    while (scanner.next_child()) {
        if (scanner.atom() == "pol") {
            read_polar(scanner, out);
            located = true;
        } else {
            scanner.close();
        }
    }
    return located;
}

std::optional<Landmark> landmark_by_name(std::string_view name) {
    if (name.size() != 3 || (name[0] != 'F' && name[0] != 'G') ||
        (name[1] != '1' && name[1] != '2') || (name[2] != 'L' && name[2] != 'R')) {
        return std::nullopt;
    }
    // In the order of Landmark: flags, then goal posts; left before right, 1 before 2.
    const int index = (name[0] == 'G') * 4 + (name[2] == 'R') * 2 + (name[1] == '2');
    return static_cast<Landmark>(index);
}

// Compared with literals of known length, the names compile to a few
// integer comparisons instead of calls to memcmp.
std::optional<BodyPart> body_part_by_name(std::string_view name) {
    if (name == "head") {
        return BodyPart::head;
    }
    if (name == "rlowerarm") {
        return BodyPart::right_lower_arm;
    }
    if (name == "llowerarm") {
        return BodyPart::left_lower_arm;
    }
    if (name == "rfoot") {
        return BodyPart::right_foot;
    }
    if (name == "lfoot") {
        return BodyPart::left_foot;
    }
    return std::nullopt;
}

std::optional<Foot> foot_by_name(std::string_view name) {
    if (name == "lf") {
        return Foot::left;
    }
    if (name == "rf") {
        return Foot::right;
    }
    if (name == "lf1") {
        return Foot::left_toe;
    }
    if (name == "rf1") {
        return Foot::right_toe;
    }
    return std::nullopt;
}

// The server's own layout of a joint, " (n NAME) (ax DEGREES))" after the
// "HJ", read without the general steps; false at the first difference.
bool read_joint_as_sent(Scanner& scanner, std::string_view& name, float& angle) {
    if (!scanner.skip_literal(" (n ")) {
        return false;
    }
    name = scanner.atom();
    if (name.empty() || !scanner.skip_literal(") (ax ")) {
        return false;
    }
    angle = scanner.number<float>();
    return scanner.skip_literal("))");
}

// "(HJ (n NAME) (ax DEGREES))", its name read already. `expected` is where
// the search for the name starts, since the server keeps the joints' order.
void read_joint(Scanner& scanner, const std::array<std::uint32_t, robot::joint_count>& keys,
                std::size_t& expected, Perception& out) {
    const char* start = scanner.position();
    std::string_view name;
    float angle = 0;
    if (!read_joint_as_sent(scanner, name, angle)) {
        scanner.rewind(start);
        name = {};
        bool has_angle = false;
        while (scanner.next_child()) {
            const std::string_view key = scanner.atom();
            if (key == "n") {
                name = scanner.atom();
            } else if (key == "ax") {
                angle = scanner.number<float>();
                has_angle = true;
            }
            scanner.close();
        }
        if (!has_angle) {
            return;
        }
    }
    if (name.size() > 4) {
        return;
    }
    const std::uint32_t key = pack(name);
    for (std::size_t tried = 0, i = expected; tried < keys.size(); ++tried, ++i) {
        i = i == keys.size() ? 0 : i;
        if (keys[i] == key) {
            out.joints.set(static_cast<robot::Joint>(i), angle);
            expected = i + 1;
            return;
        }
    }
}

void read_time(Scanner& scanner, Perception& out) {
    while (scanner.next_child()) {
        if (scanner.atom() == "now") {
            out.time = scanner.number<double>();
            out.has_time = true;
        }
        scanner.close();
    }
}

void read_game_state(Scanner& scanner, GameState& out) {
    while (scanner.next_child()) {
        const std::string_view name = scanner.atom();
        if (name == "t") {
            out.time = scanner.number<double>();
        } else if (name == "pm") {
            const std::string_view mode = scanner.atom();
            out.play_mode_name.assign(mode.data(), mode.size());
            out.play_mode = play_mode_by_name(mode);
        } else if (name == "sl") {
            out.score_left = scanner.number<int>();
        } else if (name == "sr") {
            out.score_right = scanner.number<int>();
        } else if (name == "unum") {
            out.unum = scanner.number<int>();
        } else if (name == "team") {
            const std::string_view side = scanner.atom();
            out.side = side == "left" ? Side::left : side == "right" ? Side::right : Side::none;
        }
        scanner.close();
    }
}

// "(GYR (n torso) (rt X Y Z))" and "(ACC (n torso) (a X Y Z))": the torso is
// the only place either sensor sits, so the name is not checked.
template <std::size_t N>
bool read_sensor(Scanner& scanner, const char (&key)[N], math::Vector3d& out) {
    bool found = false;
    while (scanner.next_child()) {
        if (scanner.atom() == std::string_view(key, N - 1)) {
            read_vector(scanner, out);
            found = true;
        }
        scanner.close();
    }
    return found;
}

void read_foot(Scanner& scanner, Perception& out) {
    std::string_view name;
    math::Vector3d contact;
    math::Vector3d force;
    while (scanner.next_child()) {
        const std::string_view key = scanner.atom();
        if (key == "n") {
            name = scanner.atom();
        } else if (key == "c") {
            read_vector(scanner, contact);
        } else if (key == "f") {
            read_vector(scanner, force);
        }
        scanner.close();
    }
    if (const auto foot = foot_by_name(name)) {
        FootForce& sensor = out.feet[static_cast<std::size_t>(*foot)];
        sensor.touches = true;
        sensor.contact = contact;
        sensor.force = force;
    }
}

void read_player(Scanner& scanner, SeenPlayer& out) {
    out.team.clear();
    out.id = 0;
    out.seen = 0;
    while (scanner.next_child()) {
        const std::string_view name = scanner.atom();
        if (name == "team") {
            const std::string_view team = scanner.atom();
            out.team.assign(team.data(), team.size());
        } else if (name == "id") {
            out.id = scanner.number<int>();
        } else if (const auto part = body_part_by_name(name)) {
            if (read_located(scanner, out.parts[static_cast<std::size_t>(*part)])) {
                out.seen |= 1u << static_cast<int>(*part);
            }
            continue; // read_located left the part's list already
        }
        scanner.close();
    }
}

void read_line(Scanner& scanner, std::vector<SeenLine>& out) {
    SeenLine& line = out.emplace_back();
    const char* start = scanner.position();
    if (read_polar_as_sent(scanner, line.begin) && read_polar_as_sent(scanner, line.end) &&
        scanner.skip_literal(")")) {
        return;
    }
    scanner.rewind(start);
    int ends = 0;
    while (scanner.next_child()) {
        if (scanner.atom() == "pol" && ends < 2) {
            read_polar(scanner, ends == 0 ? line.begin : line.end);
            ++ends;
        } else {
            scanner.close();
        }
    }
    if (ends < 2) {
        out.pop_back();
    }
}

void read_position(Scanner& scanner, Perception& out) {
    read_vector(scanner, out.position);
    out.has_position = true;
    scanner.close();
}

void read_vision(Scanner& scanner, Perception& out) {
    out.has_vision = true;
    Vision& vision = out.vision;
    while (scanner.next_child()) {
        const std::string_view name = scanner.atom();
        if (name == "L") {
            read_line(scanner, vision.lines);
        } else if (name == "P") {
            read_player(scanner, vision.players.add());
        } else if (name == "B") {
            vision.sees_ball = read_located(scanner, vision.ball) || vision.sees_ball;
        } else if (const auto landmark = landmark_by_name(name)) {
            const auto index = static_cast<std::size_t>(*landmark);
            if (read_located(scanner, vision.landmarks[index])) {
                vision.landmarks_seen |= 1u << index;
            }
        } else if (name == "mypos") {
            // Where a server tells the position inside the vision.
            read_position(scanner, out);
        } else {
            scanner.close();
        }
    }
}

// "(hear TEAM TIME self|DIRECTION TEXT)", or without the team from older servers.
void read_hear(Scanner& scanner, Perception& out) {
    std::string_view atoms[4];
    std::size_t count = 0;
    for (std::string_view atom; scanner.next_atom(atom);) {
        if (count < 4) {
            atoms[count] = atom;
        }
        ++count;
    }
    if (count != 3 && count != 4) {
        return;
    }
    const std::string_view* value = count == 4 ? atoms + 1 : atoms;
    Heard& heard = out.heard.add();
    heard.team.assign(count == 4 ? atoms[0].data() : "", count == 4 ? atoms[0].size() : 0);
    heard.time = scanner.to_number<double>(value[0]);
    heard.self = value[1] == "self";
    heard.direction = heard.self ? 0.0f : scanner.to_number<float>(value[1]);
    heard.text.assign(value[2].data(), value[2].size());
}

} // namespace

std::string ReadResult::describe() const {
    const char* what = "read";
    switch (fault) {
    case ReadFault::none:
        return what;
    case ReadFault::unclosed:
        what = "message ends inside an element";
        break;
    case ReadFault::unopened:
        what = "')' closes no element";
        break;
    case ReadFault::stray_text:
        what = "text outside every element";
        break;
    case ReadFault::bad_number:
        what = "not a number";
        break;
    }
    return std::string(what) + " at byte " + std::to_string(offset);
}

PerceptionReader::PerceptionReader() {
    for (const robot::JointInfo& joint : robot::joint_table()) {
        joint_keys[static_cast<std::size_t>(joint.joint)] = pack(joint.perceptor);
    }
}

ReadResult PerceptionReader::read(std::string_view message, Perception& out) const {
    out.clear();
    Scanner scanner(message);
    // Joints come in the same order every message: look where the last one was found first.
    std::size_t expected_joint = 0;
    try {
        while (!scanner.done()) {
            scanner.open_element();
            const std::string_view name = scanner.atom();
            if (name == "HJ") {
                read_joint(scanner, joint_keys, expected_joint, out);
            } else if (name == "See") {
                read_vision(scanner, out);
            } else if (name == "FRP") {
                read_foot(scanner, out);
            } else if (name == "time") {
                read_time(scanner, out);
            } else if (name == "GS") {
                out.has_game_state = true;
                read_game_state(scanner, out.game_state);
            } else if (name == "GYR") {
                out.has_gyroscope = read_sensor(scanner, "rt", out.gyroscope);
            } else if (name == "ACC") {
                out.has_accelerometer = read_sensor(scanner, "a", out.accelerometer);
            } else if (name == "hear") {
                read_hear(scanner, out);
            } else if (name == "mypos") {
                read_position(scanner, out);
            } else {
                scanner.close();
            }
        }
    } catch (const detail::Fault& fault) {
        return {fault.fault, fault.offset};
    }
    return {};
}

} // namespace orvo::perception
