#include "readers.h"

#include <optional>

namespace orvo::perception::detail {

namespace {

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

void read_player(Scanner& scanner, SeenPlayer& out) {
    out.team.clear();
    out.id = 0;
    out.seen = 0;
    while (scanner.next_child()) {
        const char* start = scanner.position();
        const std::string_view name = scanner.atom();
        if (name == "team") {
            const std::string_view team = scanner.atom();
            out.team.assign(team.data(), team.size());
        } else if (name == "id") {
            out.id = scanner.number<int>();
        } else if (const auto part = body_part_by_name(name)) {
            // A part whose place is not a number is not seen; the others are.
            scanner.keep(start, [&] {
                if (read_located(scanner, out.parts[static_cast<std::size_t>(*part)])) {
                    out.seen |= 1u << static_cast<int>(*part);
                }
            });
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

// One object of "(See ...)", its name read already.
void read_seen(Scanner& scanner, std::string_view name, Perception& out) {
    Vision& vision = out.vision;
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

} // namespace

void read_vision(Scanner& scanner, Perception& out) {
    out.has_vision = true;
    Vision& vision = out.vision;
    while (scanner.next_child()) {
        const char* start = scanner.position();
        const std::string_view name = scanner.atom();
        const std::size_t lines = vision.lines.size();
        const std::size_t players = vision.players.size();
        // Each object on its own: a line with an end that is not a number is
        // lost, the flags, the ball and the robots beside it are not.
        if (!scanner.keep(start, [&] { read_seen(scanner, name, out); })) {
            vision.lines.resize(lines);
            if (vision.players.size() != players) {
                vision.players.drop_last();
            }
        }
    }
}

} // namespace orvo::perception::detail
