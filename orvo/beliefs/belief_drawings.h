#ifndef ORVO_BELIEFS_BELIEF_DRAWINGS_H
#define ORVO_BELIEFS_BELIEF_DRAWINGS_H

#include <orvo/core/export.h>
#include <orvo/debug/debug_drawings.h>
#include <orvo/world/world_model.h>

namespace orvo::beliefs {

/// Adds this cycle's beliefs of `world` to `drawings`, in the team's frame,
/// so that a viewer shows them beside the truth: the own pose as an arrow
/// with a ring of its spread ("belief.pose", "belief.pose_spread"), the ball
/// with its velocity over one second ("belief.ball", "belief.ball_velocity")
/// and every robot seen within `recent_s` seconds of `now`
/// ("belief.mate.N" blue, "belief.opponent.N" red).
ORVO_API void draw_beliefs(const world::WorldModel& world, DebugDrawings& drawings, double now,
                           double recent_s = 2.0);

} // namespace orvo::beliefs

#endif
