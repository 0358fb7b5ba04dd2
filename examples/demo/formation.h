#ifndef ORVO_DEMO_FORMATION_H
#define ORVO_DEMO_FORMATION_H

#include <orvo/math/vector2d.h>

#include <cmath>

namespace demo {

/// The team's formation in its own frame (own goal at x = -15): a goalkeeper
/// on its line (the play files' keeper_x), three defenders, four midfielders
/// and three forwards, no two spots closer than 4 m.
inline const orvo::math::Vector2d& formation_spot(int number) {
    static const orvo::math::Vector2d spots[] = {
        {-14.3f, 0}, {-9.5f, -6},   {-9.5f, 0},  {-9.5f, 6}, {-5.5f, -8.5f}, {-5.5f, -3},
        {-5.5f, 3},  {-5.5f, 8.5f}, {-1.5f, -6}, {-1.5f, 0}, {-1.5f, 6}};
    constexpr int count = sizeof spots / sizeof spots[0];
    return spots[((number - 1) % count + count) % count];
}

/// How far a player may stray from its spot. Spreading out works on what the
/// player has seen of its team-mates, and a narrow camera sees them late; the
/// leash keeps any two players at least 4 - 2 * 1.4 = 1.2 m apart whatever
/// they believe.
constexpr float formation_leash = 1.4f;

/// `target`, pulled back onto the leash around the spot of player `number`.
inline orvo::math::Vector2d on_leash(int number, orvo::math::Vector2d target) {
    const orvo::math::Vector2d& spot = formation_spot(number);
    const float dx = target.x - spot.x;
    const float dy = target.y - spot.y;
    const float distance = std::hypot(dx, dy);
    if (distance <= formation_leash) {
        return target;
    }
    const float scale = formation_leash / distance;
    return orvo::math::Vector2d(spot.x + dx * scale, spot.y + dy * scale);
}

} // namespace demo

#endif
