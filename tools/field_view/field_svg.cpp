#include "field_svg.h"

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

} // namespace

std::string field_svg(const FieldPicture& picture) {
    std::ostringstream out;
    out.setf(std::ios::fixed);
    out.precision(1);
    const float width = (field_length + 2 * margin) * scale;
    const float height = (field_width + 2 * margin) * scale;
    out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << width << "\" height=\"" << height
        << "\" viewBox=\"0 0 " << width << ' ' << height << "\">\n";
    out << "<title>" << escaped(picture.title) << "</title>\n";
    write_field(out);
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
    out << "<text x=\"8\" y=\"18\" font-family=\"sans-serif\" font-size=\"14\" fill=\"#ffffff\">"
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
