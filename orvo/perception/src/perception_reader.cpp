#include "readers.h"
#include "scanner.h"

#include <orvo/perception/perception_reader.h>

#include <optional>

namespace orvo::perception {

namespace {

using detail::read_position;
using detail::read_vector;
using detail::read_vision;
using detail::Scanner;

// Perceptor names have at most four characters; packed into one integer
// they are found by comparing integers, not strings.
// (Shifted into a register: bytes copied into memory and read back as one
// integer would stall the processor's store forwarding.)
std::uint32_t pack(std::string_view name) {
    std::uint32_t key = 0;
    for (std::size_t i = 0; i < name.size(); ++i) {
        key |= std::uint32_t{static_cast<unsigned char>(name[i])} << (8 * i);
    }
    return key;
}

// Compared with literals of known length, the names compile to a few
// integer comparisons instead of calls to memcmp.
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
    // The numbers first: a message whose time is not a number is not heard at all.
    const double time = scanner.to_number<double>(value[0]);
    const bool self = value[1] == "self";
    const float direction = self ? 0.0f : scanner.to_number<float>(value[1]);
    Heard& heard = out.heard.add();
    heard.team.assign(count == 4 ? atoms[0].data() : "", count == 4 ? atoms[0].size() : 0);
    heard.time = time;
    heard.self = self;
    heard.direction = direction;
    heard.text.assign(value[2].data(), value[2].size());
}

// One top-level element, its name read already.
void read_element(Scanner& scanner, std::string_view name,
                  const std::array<std::uint32_t, robot::joint_count>& joint_keys,
                  std::size_t& expected_joint, Perception& out) {
    if (name == "HJ") {
        read_joint(scanner, joint_keys, expected_joint, out);
    } else if (name == "See") {
        read_vision(scanner, out);
    } else if (name == "FRP") {
        read_foot(scanner, out);
    } else if (name == "time") {
        read_time(scanner, out);
    } else if (name == "GS") {
        read_game_state(scanner, out.game_state);
        out.has_game_state = true;
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

} // namespace

std::string ReadResult::describe() const {
    const char* what = "read";
    switch (fault) {
    case ReadFault::none:
        if (lost == 0) {
            return what;
        }
        return "read, " + std::to_string(lost) + (lost == 1 ? " element" : " elements") +
               " lost (the first: not a number at byte " + std::to_string(lost_offset) + ")";
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
    ReadResult result;
    try {
        while (!scanner.done()) {
            scanner.open_element();
            const char* start = scanner.position();
            const std::string_view name = scanner.atom();
            scanner.keep(start,
                         [&] { read_element(scanner, name, joint_keys, expected_joint, out); });
        }
    } catch (const detail::Fault& fault) {
        result.fault = fault.fault;
        result.offset = fault.offset;
    }
    out.lost_elements = scanner.lost();
    result.lost = scanner.lost();
    result.lost_offset = scanner.first_lost();
    return result;
}

} // namespace orvo::perception
