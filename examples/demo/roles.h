#ifndef ORVO_DEMO_ROLES_H
#define ORVO_DEMO_ROLES_H

#include <vector>

namespace demo {

/// A point in the team's frame: own goal at x = -15, metres.
struct Spot {
    double x = 0;
    double y = 0;
};

/// What a player knows when it picks its role: its number, its place and
/// heading (degrees), the ball, the team-mates it has seen lately and its
/// spot of the formation.
struct Situation {
    int number = 0;
    Spot self;
    double heading_deg = 0;
    bool ball_known = false;
    Spot ball;
    std::vector<Spot> mates;
    Spot home;
};

enum class Role { keeper, chaser, support };

/// Where a player goes this cycle, and whether it walks straight on through
/// the ball toward the opponents' goal (a dribble) rather than to the spot.
struct Decision {
    Role role = Role::support;
    Spot target;
    bool dribble = false;
};

/// Numbers that shape the team's play, from the parameter file
/// "play/type<T>.json" (metres and degrees).
struct PlayParams {
    static PlayParams for_type(int type);

    double keeper_x = 0;      ///< the keeper's line
    double keeper_reach = 0;  ///< how far it follows the ball along the line
    double keeper_clear = 0;  ///< ball this close to the goal: the keeper goes for it
    double behind_ball = 0;   ///< where the chaser lines up, behind the ball
    double around_ball = 0;   ///< how wide it walks round a ball it is in front of
    double aligned_m = 0;     ///< this close to its line-up spot, it dribbles
    double aligned_deg = 0;   ///< and facing the goal within this
    double chaser_margin = 0; ///< a mate nearer the ball by this much chases instead
    double follow_x = 0;      ///< share of the ball's x the formation follows
    double follow_y = 0;
};

/// Picks the role and the spot: the keeper (number 1) holds its line between
/// ball and goal; the player nearest the ball lines up behind it facing the
/// opponents' goal and dribbles; the others keep the formation shifted
/// toward the ball.
Decision decide(const Situation& now, const PlayParams& params);

} // namespace demo

#endif
