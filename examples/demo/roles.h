#ifndef ORVO_DEMO_ROLES_H
#define ORVO_DEMO_ROLES_H

#include <vector>

namespace demo {

/// A point in the team's frame: own goal at x = -15, metres.
struct Spot {
    double x = 0;
    double y = 0;
};

/// What a team-mate said lately about itself and the ball.
struct HeardMate {
    int number = 0;
    double ball_distance = 0; ///< from the ball as it believes it (m)
    bool chasing = false;     ///< it was going for the ball when it spoke
};

/// What a player knows when it picks its role: its number, its place and
/// heading (degrees), the ball, the team-mates it has seen lately, its spot
/// of the formation and what its team-mates said lately.
struct Situation {
    int number = 0;
    Spot self;
    double heading_deg = 0;
    bool ball_known = false;
    Spot ball;
    std::vector<Spot> mates;
    Spot home;
    /// Whether it dribbled last cycle: a dribble goes on while the ball
    /// stays just ahead, though the ball rolls off the line-up spot.
    bool dribbling = false;
    /// A set piece of the own team (kick-off, kick-in, corner, goal kick,
    /// free kick): its taker may touch the ball only once before another
    /// player has, so the chaser lines up a step from the ball and kicks it
    /// rather than dribble.
    bool own_set_piece = false;
    /// The team-mates heard lately. The ball goes to the one nearest it by
    /// what each said; while nobody has been heard, by the mates seen.
    std::vector<HeardMate> heard{};
    /// Whether it went for the ball last cycle.
    bool chasing = false;
    /// Every other robot seen lately, of either team.
    std::vector<Spot> others{};
    /// False while this robot, having kicked off, must leave the ball to
    /// another: a second touch before anyone else's is a free kick for the
    /// other team.
    bool may_touch = true;
};

enum class Role { keeper, chaser, support };

/// Where a player goes this cycle, and whether it walks straight on through
/// the ball toward the opponents' goal (a dribble) rather than to the spot.
struct Decision {
    Role role = Role::support;
    Spot target;
    bool dribble = false;
    /// Near the target, turn to face this way (degrees), as the chaser does
    /// to line up toward the goal.
    bool face = false;
    double face_deg = 0;
    /// Lined up to kick the ball toward `aim` (an own set piece, or a shot
    /// near the opponents' goal) rather than dribble.
    bool kick = false;
    Spot aim{};
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
    double dribble_keep_m = 0;    ///< a dribble goes on while the ball is this near
    double dribble_keep_deg = 0;  ///< and within this of straight ahead
    double dribble_side_gain = 0; ///< m/s sideways per metre the ball is off centre
    double position_near = 0;     ///< within this of a spot to face, it steps there
    double position_gain = 0;     ///< m/s per metre off the spot
    double face_gain = 0;         ///< deg/s per degree off the way to face
    double area_margin = 0;       ///< field players keep this far out of the own penalty box
    double crowd_m = 0;           ///< a robot this near in the way slows the player down
    double crowd_deg = 0;         ///< "in the way": within this of the way it walks
    double crowd_speed = 0;       ///< m/s, the speed it walks at then
    double shot_range_m = 0;      ///< a ball this near the opponents' goal is shot at it
    double shot_aim_y = 0;     ///< the shot aims this far off the goal's centre, on the ball's side
    double shot_max_s = 0;     ///< a shot not done by then is given up
    double set_piece_kick = 0; ///< 1: own set pieces are kicked; 0: left to the referee
    double set_piece_clear_s = 0; ///< their kicker leaves the ball this long
    double circle_margin =
        0; ///< at the other team's kick-off it waits this far outside the centre circle
};

/// Picks the role and the spot: the keeper (number 1) holds its line between
/// ball and goal; the player nearest the ball lines up behind it facing the
/// opponents' goal and dribbles; the others keep the formation shifted
/// toward the ball; near the opponents' goal, and at an own set piece, the
/// lined-up chaser kicks instead of dribbling. Among heard team-mates the one going for the ball
/// keeps it until another is nearer by the chaser margin, and of two equally near the lower number
/// goes, so that the team agrees on one. Only the keeper enters the own penalty box: the referee
/// calls a fourth defender in it a foul, and a ball there is the keeper's.
Decision decide(const Situation& now, const PlayParams& params);

/// The fastest a player may walk toward `toward` (m/s): crowd_speed while
/// another robot stands in its way within crowd_m, 0 (no limit) otherwise.
/// The referee calls a robot that runs into another faster than 0.4 m/s
/// for charging.
double speed_limit(const Situation& now, Spot toward, const PlayParams& params);

} // namespace demo

#endif
