#include "field_svg.h"

#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace field_view {

namespace {

constexpr float scale = 30.0f; // pixels per metre
constexpr float margin = 1.5f; // metres around the field

float to_px_x(float x) {
    return (x + field_length / 2 + margin) * scale;
}
float to_px_y(float y) {
    return (field_width / 2 - y + margin) * scale;
}

std::string colour_text(const orvo::protocol::drawing::Colour& c) {
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", c.red, c.green, c.blue);
    return text;
}

std::string escaped(const std::string& text) {
    std::string out;
    for (const char c : text) {
        switch (c) {
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '&':
            out += "&amp;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

void write_field(std::ostream& out) {
    const float l = field_length / 2;
    const float w = field_width / 2;
    out << "<rect x=\"0\" y=\"0\" width=\"" << (field_length + 2 * margin) * scale << "\" height=\""
        << (field_width + 2 * margin) * scale << "\" fill=\"#2e7d32\"/>\n";
    out << "<g stroke=\"#ffffff\" stroke-width=\"2\" fill=\"none\">\n";
    out << "<rect x=\"" << to_px_x(-l) << "\" y=\"" << to_px_y(w) << "\" width=\""
        << field_length * scale << "\" height=\"" << field_width * scale << "\"/>\n";
    out << "<line x1=\"" << to_px_x(0) << "\" y1=\"" << to_px_y(w) << "\" x2=\"" << to_px_x(0)
        << "\" y2=\"" << to_px_y(-w) << "\"/>\n";
    out << "<circle cx=\"" << to_px_x(0) << "\" cy=\"" << to_px_y(0) << "\" r=\"" << 2 * scale
        << "\"/>\n";
    for (const float side : {-1.0f, 1.0f}) {
        const float goal_x = side * l;
        out << "<rect x=\"" << to_px_x(side < 0 ? goal_x - 0.6f : goal_x) << "\" y=\""
            << to_px_y(1.05f) << "\" width=\"" << 0.6f * scale << "\" height=\"" << 2.1f * scale
            << "\"/>\n";
        out << "<rect x=\"" << to_px_x(side < 0 ? goal_x : goal_x - 1.8f) << "\" y=\""
            << to_px_y(3.0f) << "\" width=\"" << 1.8f * scale << "\" height=\"" << 6.0f * scale
            << "\"/>\n";
    }
    out << "</g>\n";
}

void write_shape(std::ostream& out, const orvo::protocol::drawing::Shape& shape, int side) {
    // Drawings come in the sender's own frame; the right team looks the other way.
    const float mirror = side == 0 ? 1.0f : -1.0f;
    const std::string colour = colour_text(shape.colour);
    const int number = shape.header & 0x7F;
    const std::string owner = std::string(" data-side=\"") + (side == 0 ? "left" : "right") +
                              "\" data-unum=\"" + std::to_string(number) + "\" data-name=\"" +
                              escaped(shape.name) + "\"";
    switch (shape.kind) {
    case orvo::protocol::drawing::Kind::point:
        out << "<circle class=\"point\"" << owner << " cx=\""
            << to_px_x(mirror * shape.corners[0].x) << "\" cy=\""
            << to_px_y(mirror * shape.corners[0].y) << "\" r=\"3\" fill=\"" << colour << "\"/>\n";
        break;
    case orvo::protocol::drawing::Kind::line:
        out << "<line class=\"line\"" << owner << " x1=\"" << to_px_x(mirror * shape.corners[0].x)
            << "\" y1=\"" << to_px_y(mirror * shape.corners[0].y) << "\" x2=\""
            << to_px_x(mirror * shape.corners[1].x) << "\" y2=\""
            << to_px_y(mirror * shape.corners[1].y) << "\" stroke=\"" << colour
            << "\" stroke-width=\"2\"/>\n";
        break;
    case orvo::protocol::drawing::Kind::polygon:
        out << "<polygon class=\"cell\"" << owner << " points=\"";
        for (std::size_t i = 0; i < shape.corners.size(); ++i) {
            out << (i == 0 ? "" : " ") << to_px_x(mirror * shape.corners[i].x) << ','
                << to_px_y(mirror * shape.corners[i].y);
        }
        out << "\" fill=\"" << colour << "\" fill-opacity=\"0.35\" stroke=\"" << colour
            << "\" stroke-width=\"1.5\"/>\n";
        break;
    }
}

void write_robot(std::ostream& out, const RobotMark& robot) {
    const float x = to_px_x(robot.x), y = to_px_y(robot.y);
    const float radians = robot.heading_deg * static_cast<float>(M_PI) / 180.0f;
    const char* fill = robot.side == 0 ? "#fdd835" : "#1e88e5";
    out << "<g class=\"robot\" data-side=\"" << (robot.side == 0 ? "left" : "right")
        << "\" data-unum=\"" << robot.unum << "\" data-fallen=\"" << (robot.fallen ? 1 : 0)
        << "\">";
    // The line shows where the robot faces; lying, it faces nowhere.
    if (!robot.fallen) {
        out << "<line x1=\"" << x << "\" y1=\"" << y << "\" x2=\"" << x + 20 * std::cos(radians)
            << "\" y2=\"" << y - 20 * std::sin(radians)
            << "\" stroke=\"#000000\" stroke-width=\"3\"/>";
    }
    out << "<circle cx=\"" << x << "\" cy=\"" << y << "\" r=\"12\" fill=\"" << fill
        << "\" stroke=\"" << (robot.fallen ? "#d32f2f" : "#000000") << "\" stroke-width=\""
        << (robot.fallen ? 3 : 1.5) << "\"" << (robot.fallen ? " stroke-dasharray=\"4 3\"" : "")
        << "/>";
    out << "<text x=\"" << x << "\" y=\"" << y + 5
        << "\" font-family=\"sans-serif\" font-size=\"14\" font-weight=\"bold\" "
           "text-anchor=\"middle\">"
        << robot.unum << "</text></g>\n";
}

void write_game(std::ostream& out, const GameMarks& game) {
    for (const auto& robot : game.robots) {
        write_robot(out, robot);
    }
    out << "<circle class=\"ball\" cx=\"" << to_px_x(game.ball_x) << "\" cy=\""
        << to_px_y(game.ball_y)
        << "\" r=\"6\" fill=\"#ffffff\" stroke=\"#000000\" stroke-width=\"1.5\"/>\n";
}

/// What the page's header shows, as attributes of the picture.
void write_game_attributes(std::ostream& out, const GameMarks& game) {
    out << " data-clock=\"" << clock_text(game.time) << "\" data-half=\"" << game.half
        << "\" data-mode=\"" << escaped(game.play_mode) << "\" data-team-left=\""
        << escaped(game.team_left) << "\" data-team-right=\"" << escaped(game.team_right)
        << "\" data-score-left=\"" << game.score_left << "\" data-score-right=\""
        << game.score_right << '"';
}

} // namespace

std::string clock_text(double seconds) {
    const long whole = seconds > 0 ? static_cast<long>(seconds) : 0;
    char text[32];
    std::snprintf(text, sizeof text, "%02ld:%02ld", whole / 60, whole % 60);
    return text;
}

std::string field_svg(const FieldPicture& picture) {
    std::ostringstream out;
    out.setf(std::ios::fixed);
    out.precision(1);
    const float width = (field_length + 2 * margin) * scale;
    const float height = (field_width + 2 * margin) * scale;
    out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << width << "\" height=\"" << height
        << "\" viewBox=\"0 0 " << width << ' ' << height << '"';
    if (picture.game) {
        write_game_attributes(out, *picture.game);
    }
    out << ">\n<title>" << escaped(picture.title) << "</title>\n";
    write_field(out);
    // The truth first: what the agents believe is drawn over it.
    if (picture.game) {
        write_game(out, *picture.game);
    }
    // Cells first, so that lines, points and players stay visible on top.
    for (const orvo::protocol::drawing::Kind layer :
         {orvo::protocol::drawing::Kind::polygon, orvo::protocol::drawing::Kind::line,
          orvo::protocol::drawing::Kind::point}) {
        for (const auto& [header, shapes] : picture.drawings) {
            for (const auto& shape : shapes) {
                if (shape.kind == layer) {
                    write_shape(out, shape, header >> 7);
                }
            }
        }
    }
    for (const auto& player : picture.players) {
        const char* fill = player.side == 0 ? "#fdd835" : "#1e88e5";
        out << "<g class=\"agent\" data-side=\"" << (player.side == 0 ? "left" : "right")
            << "\" data-unum=\"" << player.unum << "\">";
        out << "<circle cx=\"" << to_px_x(player.x) << "\" cy=\"" << to_px_y(player.y)
            << "\" r=\"9\" fill=\"" << fill << "\" stroke=\"#000000\" stroke-width=\"1.5\"/>";
        out << "<text x=\"" << to_px_x(player.x) << "\" y=\"" << to_px_y(player.y) + 4
            << "\" font-family=\"sans-serif\" font-size=\"11\" text-anchor=\"middle\">"
            << player.unum << "</text></g>\n";
    }
    out << "<text class=\"caption\" x=\"8\" y=\"18\" font-family=\"sans-serif\" font-size=\"14\" "
           "fill=\"#ffffff\">"
        << escaped(picture.caption) << "</text>\n";
    out << "</svg>\n";
    return out.str();
}

bool write_field_svg(const std::string& path, const FieldPicture& picture) {
    const std::string temporary = path + ".tmp";
    {
        std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
        file << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" << field_svg(picture);
        if (!file.flush()) {
            std::remove(temporary.c_str());
            return false;
        }
    }
    return std::rename(temporary.c_str(), path.c_str()) == 0;
}

} // namespace field_view
