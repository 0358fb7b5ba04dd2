#ifndef ORVO_WORLD_FIELD_H
#define ORVO_WORLD_FIELD_H

#include <orvo/core/export.h>
#include <orvo/perception/perception.h>
#include <orvo/protocol/constants.h>

#include <array>
#include <cstddef>

namespace orvo::world::field {

// The field as the server builds it (its soccer scene and rules file). Every
// position here is in the left team's frame: own goal at x = -15, y to the
// left of a robot that faces the opponent's goal. A right-side robot's frame
// is this one turned by 180 degrees (landmark() does that).
constexpr double length = protocol::field_length;
constexpr double width = protocol::field_width;
constexpr double half_length = length / 2;
constexpr double half_width = width / 2;
constexpr double goal_width = protocol::goal_width;
constexpr double goal_height = 0.8;
/// The goal markers the robot sees sit half way up the posts.
constexpr double goal_marker_height = goal_height / 2;
constexpr double penalty_length = 1.8;
/// The penalty box spans the goal plus 3.9 m.
constexpr double penalty_half_width = (3.9 + goal_width) / 2;
constexpr double centre_circle_radius = 2.0;
/// The server draws the centre circle as this many straight pieces.
constexpr std::size_t centre_circle_pieces = 10;

struct Point3 {
    double x = 0;
    double y = 0;
    double z = 0;
};

struct Segment {
    double x1, y1, x2, y2;
};

/// 11 straight lines and the centre circle's pieces.
constexpr std::size_t segment_count = 11 + centre_circle_pieces;

/// Where a corner flag or goal marker stands, in the frame of a team on `side`
/// (Side::none counts as left).
ORVO_API Point3 landmark(perception::Landmark which,
                         perception::Side side = perception::Side::left);

/// Every painted line as straight segments. The layout is point symmetric, so
/// it is the same in both teams' frames.
ORVO_API const std::array<Segment, segment_count>& segments();

/// Distance from (x, y) to the nearest painted line, that line's nearest
/// point and its index in segments().
struct Nearest {
    double distance;
    double x;
    double y;
    std::size_t segment;
};
ORVO_API Nearest nearest_line(double x, double y);
/// The same for one given segment.
ORVO_API Nearest nearest_on(std::size_t segment, double x, double y);

} // namespace orvo::world::field

#endif
