#include "roles.h"

#include <orvo/params/param_set.h>
#include <orvo/world/field.h>

#include <algorithm>
#include <cmath>

namespace demo {

namespace {

constexpr double goal_x = 15;
constexpr double degrees = 180 / M_PI;

double distance(const Spot& a, const Spot& b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

// By what the mates said: the keeper aside, who has the lowest claim, the
// distance less the margin for the one already going.
bool nearest_by_heard(const Situation& now, const PlayParams& params) {
    const auto claim = [&](double distance, bool chasing) {
        return distance - (chasing ? params.chaser_margin : 0);
    };
    const double mine = claim(distance(now.self, now.ball), now.chasing);
    return std::none_of(now.heard.begin(), now.heard.end(), [&](const HeardMate& mate) {
        const double theirs = claim(mate.ball_distance, mate.chasing);
        return mate.number != 1 && (theirs < mine || (theirs == mine && mate.number < now.number));
    });
}

bool nearest_to_ball(const Situation& now, const PlayParams& params) {
    if (!now.heard.empty()) {
        return nearest_by_heard(now, params);
    }
    const double mine = distance(now.self, now.ball);
    return std::none_of(now.mates.begin(), now.mates.end(), [&](const Spot& mate) {
        return distance(mate, now.ball) + params.chaser_margin < mine;
    });
}

// Behind the ball on the line from the opponents' goal through it; a player
// in front of the ball first walks round it on the side it stands.
Decision chase(const Situation& now, const PlayParams& params) {
    const double gx = goal_x - now.ball.x, gy = -now.ball.y;
    const double length = std::max(std::hypot(gx, gy), 1e-6);
    const double ux = gx / length, uy = gy / length;
    // At a set piece left to the referee it keeps a step clear of the ball;
    // one it kicks, it lines up near the kick's own stand, so that the
    // kick's walk up is short and does not push the ball first.
    const bool waits = now.own_set_piece && params.set_piece_kick <= 0;
    const double behind = waits ? params.around_ball : params.behind_ball;
    Decision out{Role::chaser,
                 {now.ball.x - behind * ux, now.ball.y - behind * uy},
                 false,
                 true,
                 std::atan2(uy, ux) * degrees};
    // Dribbling, the robot walks into the ball: it stays nearer the ball than
    // its line-up spot, which must not read as standing in front of it.
    // A dribble pushes the ball into a keeper; a kick goes past it. At the
    // set piece a kick is the one touch the taker is allowed.
    const bool shot = distance(now.ball, {goal_x, 0}) < params.shot_range_m;
    const auto kick = [&] {
        out.kick = true;
        out.aim = {goal_x, now.own_set_piece ? 0.0 : std::copysign(params.shot_aim_y, now.ball.y)};
        return out;
    };
    const double bx = now.ball.x - now.self.x, by = now.ball.y - now.self.y;
    const double bearing = std::remainder(std::atan2(by, bx) * degrees - now.heading_deg, 360.0);
    if (!now.own_set_piece && now.dribbling && std::hypot(bx, by) < params.dribble_keep_m &&
        std::abs(bearing) < params.dribble_keep_deg) {
        out.dribble = !shot;
        return shot ? kick() : out;
    }
    const double ahead = (now.self.x - now.ball.x) * ux + (now.self.y - now.ball.y) * uy;
    if (ahead > -params.behind_ball / 2) {
        const double side = (now.self.x - now.ball.x) * -uy + (now.self.y - now.ball.y) * ux;
        const double sign = side >= 0 ? 1 : -1;
        out.target = {now.ball.x - params.around_ball * ux - sign * params.around_ball * uy,
                      now.ball.y - params.around_ball * uy + sign * params.around_ball * ux};
        return out;
    }
    const double facing = std::remainder(out.face_deg - now.heading_deg, 360.0);
    const bool aligned =
        distance(now.self, out.target) < params.aligned_m && std::abs(facing) < params.aligned_deg;
    if (aligned && (now.own_set_piece ? params.set_piece_kick > 0 : shot)) {
        return kick();
    }
    out.dribble = !now.own_set_piece && aligned;
    return out;
}

// A field player's spot inside the own penalty box (or within the margin
// of it) moves out to the box's front edge.
Decision out_of_own_box(Decision decision, const PlayParams& params) {
    namespace field = orvo::world::field;
    const double front = -field::half_length + field::penalty_length + params.area_margin;
    Spot& spot = decision.target;
    if (spot.x < front && std::abs(spot.y) < field::penalty_half_width + params.area_margin) {
        spot.x = front;
        decision.dribble = false;
    }
    return decision;
}

} // namespace

double speed_limit(const Situation& now, Spot toward, const PlayParams& params) {
    const double dx = toward.x - now.self.x, dy = toward.y - now.self.y;
    const double way = std::hypot(dx, dy);
    const double cone = std::cos(params.crowd_deg / degrees);
    for (const Spot& other : now.others) {
        const double ox = other.x - now.self.x, oy = other.y - now.self.y;
        const double near = std::hypot(ox, oy);
        if (near < params.crowd_m && ox * dx + oy * dy >= cone * near * way) {
            return params.crowd_speed;
        }
    }
    return 0;
}

PlayParams PlayParams::for_type(int type) {
    const auto set = orvo::params::ParamSet::load(orvo::params::params_path("play", type));
    PlayParams out;
    out.keeper_x = set["keeper_x"];
    out.keeper_reach = set["keeper_reach"];
    out.keeper_clear = set["keeper_clear"];
    out.behind_ball = set["behind_ball"];
    out.around_ball = set["around_ball"];
    out.aligned_m = set["aligned_m"];
    out.aligned_deg = set["aligned_deg"];
    out.chaser_margin = set["chaser_margin"];
    out.follow_x = set["follow_x"];
    out.follow_y = set["follow_y"];
    out.dribble_keep_m = set["dribble_keep_m"];
    out.dribble_keep_deg = set["dribble_keep_deg"];
    out.dribble_side_gain = set["dribble_side_gain"];
    out.position_near = set["position_near"];
    out.position_gain = set["position_gain"];
    out.face_gain = set["face_gain"];
    out.area_margin = set["area_margin"];
    out.crowd_m = set["crowd_m"];
    out.crowd_deg = set["crowd_deg"];
    out.crowd_speed = set["crowd_speed"];
    out.shot_range_m = set["shot_range_m"];
    out.shot_aim_y = set["shot_aim_y"];
    out.shot_max_s = set["shot_max_s"];
    out.set_piece_kick = set["set_piece_kick"];
    out.set_piece_clear_s = set["set_piece_clear_s"];
    out.circle_margin = set["circle_margin"];
    return out;
}

Decision decide(const Situation& now, const PlayParams& params) {
    if (now.number == 1) {
        const bool near_goal = now.ball_known && now.ball.x < -goal_x + params.keeper_clear &&
                               std::abs(now.ball.y) < params.keeper_clear;
        if (near_goal) {
            Decision out = chase(now, params);
            out.role = Role::keeper;
            return out;
        }
        const double y =
            now.ball_known ? std::clamp(now.ball.y * 0.5, -params.keeper_reach, params.keeper_reach)
                           : 0.0;
        // On its line the keeper steps along it facing the field rather
        // than turning its back to the ball.
        return {Role::keeper, {params.keeper_x, y}, false, true, 0.0};
    }
    if (!now.ball_known) {
        return {Role::support, now.home, false};
    }
    if (now.may_touch && nearest_to_ball(now, params)) {
        return out_of_own_box(chase(now, params), params);
    }
    return out_of_own_box(
        {Role::support,
         {now.home.x + params.follow_x * now.ball.x, now.home.y + params.follow_y * now.ball.y},
         false},
        params);
}

} // namespace demo
