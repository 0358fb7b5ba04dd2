#ifndef ORVO_DEMO_DRAWINGS_H
#define ORVO_DEMO_DRAWINGS_H

#include <orvo/debug/drawing_command.h>
#include <orvo/protocol/drawing_wire.h>

#include <array>
#include <cstddef>
#include <string>

namespace demo {

namespace wire = orvo::protocol::drawing;

/// The demo's drawing commands. Each encodes itself in the layout of
/// orvo/protocol/drawing_wire.h. They hold only plain arrays, since the collector deletes
/// commands through the base class.
class ShapeDrawing : public orvo::DrawingCommand {
public:
    ShapeDrawing(wire::Kind kind, const std::string& name, wire::Colour colour)
        : orvo::DrawingCommand(name), kind(kind), colour(colour) {}
    int serialize(int header, unsigned char* buffer) override {
        return static_cast<int>(wire::encode(kind, static_cast<std::uint8_t>(header), name, colour,
                                             corners.data(), count, buffer));
    }

protected:
    void add(float x, float y) {
        if (count < corners.size()) {
            corners[count++] = wire::Corner{x, y};
        }
    }

private:
    wire::Kind kind;
    wire::Colour colour;
    std::array<wire::Corner, wire::max_corners> corners{};
    std::size_t count = 0;
};

class PointDrawing : public ShapeDrawing {
public:
    PointDrawing(const std::string& name, wire::Colour colour, float x, float y)
        : ShapeDrawing(wire::Kind::point, name, colour) {
        add(x, y);
    }
};

class LineDrawing : public ShapeDrawing {
public:
    LineDrawing(const std::string& name, wire::Colour colour, float x1, float y1, float x2,
                float y2)
        : ShapeDrawing(wire::Kind::line, name, colour) {
        add(x1, y1);
        add(x2, y2);
    }
};

class PolygonDrawing : public ShapeDrawing {
public:
    PolygonDrawing(const std::string& name, wire::Colour colour)
        : ShapeDrawing(wire::Kind::polygon, name, colour) {}
    /// Corners beyond wire::max_corners are dropped.
    void add_corner(float x, float y) { add(x, y); }
};

} // namespace demo

#endif
