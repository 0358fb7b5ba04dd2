#include <orvo/beliefs/belief_drawings.h>

#include <orvo/protocol/constants.h>
#include <orvo/protocol/drawing_wire.h>

#include <array>
#include <cmath>
#include <string>

namespace orvo::beliefs {

namespace {

namespace wire = protocol::drawing;

/// One shape in the viewer's datagram layout; plain arrays only, as the
/// collector deletes commands through the base class.
class Shape : public DrawingCommand {
public:
    Shape(wire::Kind kind, const std::string& name, wire::Colour colour)
        : DrawingCommand(name), kind_(kind), colour_(colour) {}
    int serialize(int header, unsigned char* buffer) override {
        return static_cast<int>(wire::encode(kind_, static_cast<std::uint8_t>(header), name,
                                             colour_, corners_.data(), count_, buffer));
    }
    Shape* add(double x, double y) {
        if (count_ < corners_.size())
            corners_[count_++] = {static_cast<float>(x), static_cast<float>(y)};
        return this;
    }

private:
    wire::Kind kind_;
    wire::Colour colour_;
    std::array<wire::Corner, 16> corners_{};
    std::size_t count_ = 0;
};

constexpr wire::Colour own{255, 200, 0};
constexpr wire::Colour ball_colour{255, 120, 0};
constexpr wire::Colour mate{60, 120, 255};
constexpr wire::Colour opponent{230, 40, 40};

void draw_pose(const world::Pose& pose, DebugDrawings& drawings) {
    const double h = pose.heading_deg * protocol::radians_per_degree;
    const double c = std::cos(h), s = std::sin(h);
    // An arrow 0.4 m long and 0.2 m wide at its base.
    auto* arrow = new Shape(wire::Kind::polygon, "belief.pose", own);
    arrow->add(pose.x + 0.3 * c, pose.y + 0.3 * s)
        ->add(pose.x - 0.1 * c - 0.1 * s, pose.y - 0.1 * s + 0.1 * c)
        ->add(pose.x - 0.1 * c + 0.1 * s, pose.y - 0.1 * s - 0.1 * c);
    drawings.addDrawing(arrow);
    auto* ring = new Shape(wire::Kind::polygon, "belief.pose_spread", own);
    const double r = std::max(pose.sigma_m, 0.05);
    for (int k = 0; k < 16; ++k) {
        const double a = 2 * M_PI * k / 16;
        ring->add(pose.x + r * std::cos(a), pose.y + r * std::sin(a));
    }
    drawings.addDrawing(ring);
}

} // namespace

void draw_beliefs(const world::WorldModel& world, DebugDrawings& drawings, double now,
                  double recent_s) {
    draw_pose(world.pose(), drawings);
    const world::BallBelief& ball = world.ball();
    if (ball.known) {
        drawings.addDrawing(
            (new Shape(wire::Kind::point, "belief.ball", ball_colour))->add(ball.x, ball.y));
        drawings.addDrawing((new Shape(wire::Kind::line, "belief.ball_velocity", ball_colour))
                                ->add(ball.x, ball.y)
                                ->add(ball.x + ball.vx, ball.y + ball.vy));
    }
    for (const auto& team : world.others())
        for (const world::OtherRobot& other : team) {
            if (!other.known || now - other.last_seen > recent_s)
                continue;
            const std::string name =
                std::string(other.team_mate ? "belief.mate." : "belief.opponent.") +
                std::to_string(other.number);
            drawings.addDrawing(
                (new Shape(wire::Kind::point, name, other.team_mate ? mate : opponent))
                    ->add(other.x, other.y));
        }
}

} // namespace orvo::beliefs
