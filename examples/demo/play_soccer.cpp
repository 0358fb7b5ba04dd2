#include "play_soccer.h"

#include "beam_to.h"
#include "formation.h"
#include "team_configuration.h"
#include "world_model.h"

#include <orvo/beliefs/belief_drawings.h>
#include <orvo/effectors/effector_say.h>
#include <orvo/getup/skill_getup.h>
#include <orvo/head/skill_head.h>
#include <orvo/kick/skill_kick.h>
#include <orvo/knowledgebase/injectors/injector_action.h>
#include <orvo/params/param_set.h>
#include <orvo/skills/skill_joints.h>
#include <orvo/walk/skill_walk.h>
#include <orvo/world/field.h>

#include <algorithm>
#include <cmath>

namespace demo {

namespace {

using orvo::params::params_path;
constexpr double degrees = 180 / M_PI;
/// Team-mates count while seen this recently (s).
constexpr double mates_recent_s = 3;
/// The ball counts while seen this recently (s).
constexpr double ball_recent_s = 4;
/// What a team-mate said counts this long (s): its turn comes every 0.44 s,
/// so one lost message is not yet forgetting it.
constexpr double heard_recent_s = 1;
/// The distance to the ball said by a robot that does not know where the
/// ball is or lies on the ground: never the nearest.
constexpr double far_from_ball = 40;

// Whether the play mode gives the ball to the other team: its kick-off, kick
// in, corner, goal kick or free kick, when the referee keeps us off the ball.
bool theirs(orvo::perception::PlayMode mode, bool right_side) {
    using orvo::perception::PlayMode;
    switch (mode) {
    case PlayMode::KickOff_Left:
    case PlayMode::KickIn_Left:
    case PlayMode::corner_kick_left:
    case PlayMode::goal_kick_left:
    case PlayMode::free_kick_left:
    case PlayMode::direct_free_kick_left:
    case PlayMode::pass_left:
        return right_side;
    case PlayMode::KickOff_Right:
    case PlayMode::KickIn_Right:
    case PlayMode::corner_kick_right:
    case PlayMode::goal_kick_right:
    case PlayMode::free_kick_right:
    case PlayMode::direct_free_kick_right:
    case PlayMode::pass_right:
        return !right_side;
    default:
        return false;
    }
}

} // namespace

PlaySoccer::PlaySoccer() = default;
PlaySoccer::~PlaySoccer() = default;

// Who touched the ball since its set piece's kick is not seen: a robot
// beside the ball may only stand there, and one believed at it may be
// elsewhere. The taker waits the whole time.
bool PlaySoccer::leaving_ball() const {
    return world->seconds() < leave_ball_until_;
}

bool PlaySoccer::own_set_piece() const {
    return theirs(world->play_mode(), !world->on_right_side());
}

void PlaySoccer::link(orvo::Class_Map& classes) {
    actions = orvo::get_class<orvo::knowledgebase::injectors::Injector_Action>(
        *this, "injector_action", classes);
    world = orvo::get_class<WorldModel>(*this, "worldmodel", classes);
    configuration = orvo::get_class<TeamConfiguration>(*this, "configuration", classes);
    walker = orvo::get_class<orvo::walk::Skill_Walk>(*this, "skill_walk", classes);
    head = orvo::get_class<orvo::head::Skill_Head>(*this, "skill_head", classes);
    joints = orvo::get_class<orvo::skills::Skill_Joints>(*this, "skill_joints", classes);
    getup = orvo::get_class<orvo::getup::Skill_GetUp>(*this, "skill_getup", classes);
    kicker = orvo::get_class<orvo::kick::Skill_Kick>(*this, "skill_kick", classes);
    beam = orvo::get_class<BeamTo>(*this, "skill_beam", classes);
    say = orvo::get_class<orvo::effectors::Effector_Say>(*this, "effector_say", classes);
}

void PlaySoccer::init() {
    const int type = static_cast<int>(configuration->settings.type);
    walker->set_robot_type(type);
    walker->leave_head();
    getup->set_robot_type(type);
    kicker->set_robot_type(type);
    head->set_params(orvo::head::HeadParams::load(params_path("head", type)));
    belief_ = std::make_unique<orvo::world::WorldModel>(
        orvo::world::WorldParams::load(params_path("world", type)));
    params_ = PlayParams::for_type(type);
}

// The first cycle of play: the stance and head scan of before the kick-off
// give way to the walk and the head skill; the belief starts at the beam.
void PlaySoccer::start() {
    joints->player().release_all();
    belief_->set_team(configuration->settings.team, world->on_right_side()
                                                        ? orvo::perception::Side::right
                                                        : orvo::perception::Side::left);
    belief_->place(world->position().x, world->position().y, 0);
    shot_ = Shot::none;
    leave_ball_until_ = -1;
    odometry_ = moved();
    started_ = true;
}

std::optional<double> PlaySoccer::ball_from_mates(Spot& ball) const {
    const double now = world->seconds();
    std::optional<double> freshest;
    for (const MateReport& mate : talk_.reports()) {
        if (mate.heard_at < 0 || !mate.ball_age) {
            continue;
        }
        const double age = *mate.ball_age + (now - mate.heard_at);
        if (age < ball_recent_s && (!freshest || age < *freshest)) {
            freshest = age;
            ball = mate.ball;
        }
    }
    return freshest;
}

// At the other team's kick-off the referee moves robots out of the centre
// circle; a spot inside it would walk the robot back in, and out again,
// until it falls. It waits just outside instead.
Spot PlaySoccer::clear_of_their_kick_off(Spot home) const {
    using orvo::perception::PlayMode;
    const PlayMode mode = world->play_mode();
    const bool their_kick_off =
        (mode == PlayMode::KickOff_Left || mode == PlayMode::KickOff_Right) &&
        theirs(mode, world->on_right_side());
    const double clear = orvo::world::field::centre_circle_radius + params_.circle_margin;
    const double from_centre = std::hypot(home.x, home.y);
    if (!their_kick_off || from_centre >= clear) {
        return home;
    }
    return from_centre > 0 ? Spot{home.x * clear / from_centre, home.y * clear / from_centre}
                           : Spot{-clear, 0};
}

Situation PlaySoccer::situation() const {
    const orvo::world::Pose& pose = belief_->pose();
    const orvo::world::BallBelief& ball = belief_->ball();
    const double now = world->seconds();
    Situation out;
    out.number = world->number();
    out.self = {pose.x, pose.y};
    out.heading_deg = pose.heading_deg;
    out.ball = {ball.x, ball.y};
    const bool seen = ball.known && now - ball.last_seen < ball_recent_s;
    // While the other team has a set piece the ball is not ours to play:
    // the formation holds.
    out.ball_known =
        (seen || ball_from_mates(out.ball)) && !theirs(world->play_mode(), world->on_right_side());
    for (const auto& team : belief_->others()) {
        for (const orvo::world::OtherRobot& other : team) {
            if (other.known && now - other.last_seen < mates_recent_s) {
                (other.team_mate ? out.mates : out.others).push_back({other.x, other.y});
            }
        }
    }
    out.others.insert(out.others.end(), out.mates.begin(), out.mates.end());
    for (const MateReport& mate : talk_.reports()) {
        if (mate.heard_at >= 0 && now - mate.heard_at < heard_recent_s) {
            out.heard.push_back({mate.number, mate.ball_distance, mate.chasing});
        }
    }
    out.chasing = decision_.role == Role::chaser;
    out.home = clear_of_their_kick_off({world->position().x, world->position().y});
    out.dribbling = decision_.dribble;
    out.own_set_piece = own_set_piece();
    out.may_touch = !leaving_ball();
    return out;
}

// In its turn: where it is, the ball as it believes it (its own sight, or
// else a mate's), how far it is from it and whether it goes for it.
void PlaySoccer::speak() {
    const double now = world->seconds();
    if (!talk_.my_turn(world->number(), now)) {
        return;
    }
    const orvo::world::Pose& pose = belief_->pose();
    const orvo::world::BallBelief& ball = belief_->ball();
    MateReport report;
    report.number = world->number();
    report.self = {pose.x, pose.y};
    if (ball.known && now - ball.last_seen < ball_recent_s) {
        report.ball_age = now - ball.last_seen;
        report.ball = {ball.x, ball.y};
    } else {
        report.ball_age = ball_from_mates(report.ball);
    }
    report.ball_distance = report.ball_age && !down_ && !leaving_ball()
                               ? std::hypot(report.ball.x - pose.x, report.ball.y - pose.y)
                               : far_from_ball;
    report.chasing = decision_.role == Role::chaser && world->number() != 1 && !down_;
    counts_.said += (*say)(encode(report)) ? 1 : 0;
}

// Dribbling walks on through the ball toward the goal, stepping sideways to
// keep the ball in front; near a spot with a way to face it steps there and
// turns; any other spot is handed to the walk in its own odometry frame.
// With a robot in the way, it walks slowly and straight toward the spot.
void PlaySoccer::walk(const Decision& decision, const Situation& now) {
    orvo::walk::Walker& walk = walker->walker();
    const orvo::world::Pose& pose = belief_->pose();
    const double h = pose.heading_deg / degrees;
    const auto ahead_of = [&](double dx, double dy) { return std::cos(h) * dx + std::sin(h) * dy; };
    const auto left_of = [&](double dx, double dy) { return -std::sin(h) * dx + std::cos(h) * dy; };
    const double dx = decision.target.x - pose.x, dy = decision.target.y - pose.y;
    const double ahead = ahead_of(dx, dy), left = left_of(dx, dy);
    const orvo::world::BallBelief& ball = belief_->ball();
    const double limit =
        speed_limit(now, decision.dribble ? Spot{ball.x, ball.y} : decision.target, params_);
    if (decision.dribble) {
        const double goal = std::atan2(-pose.y, 15 - pose.x) * degrees;
        walk.set_velocity(limit > 0 ? std::min(limit, walk.params().max_forward)
                                    : walk.params().max_forward,
                          params_.dribble_side_gain * left_of(ball.x - pose.x, ball.y - pose.y),
                          std::remainder(goal - pose.heading_deg, 360.0));
        return;
    }
    const double way = std::hypot(dx, dy);
    if (decision.face && way < params_.position_near) {
        const double gain =
            limit > 0 && params_.position_gain * way > limit ? limit / way : params_.position_gain;
        walk.set_velocity(gain * ahead, gain * left,
                          params_.face_gain *
                              std::remainder(decision.face_deg - pose.heading_deg, 360.0));
        return;
    }
    if (limit > 0 && way > 0) {
        const double speed = std::min(limit, params_.position_gain * way);
        walk.set_velocity(speed * ahead / way, speed * left / way,
                          params_.face_gain * std::atan2(left, ahead) * degrees);
        return;
    }
    const orvo::walk::Odometry& at = walk.odometry();
    const double o = at.heading / degrees;
    walk.walk_to(at.x + std::cos(o) * ahead - std::sin(o) * left,
                 at.y + std::sin(o) * ahead + std::cos(o) * left);
}

void PlaySoccer::operator()() {
    (*actions)(get_name(), world->time(), action_retention);
    // Play starts at the kick-off and again after each goal's beams.
    constexpr unsigned one_cycle_ms = 20;
    if (!started_ || world->time() > last_ms_ + one_cycle_ms) {
        start();
    }
    last_ms_ = world->time();
    beamed_after_goal_ = false;
    const orvo::perception::Perception& now = world->perception();
    const orvo::walk::Odometry& step = moved();
    belief_->update(now, orvo::world::step_between(odometry_.x, odometry_.y, odometry_.heading,
                                                   step.x, step.y, step.heading));
    odometry_ = step;
    counts_.heard +=
        talk_.listen(now, configuration->settings.team, world->number(), world->seconds());
    orvo::beliefs::draw_beliefs(*belief_, world->drawings(), now.time);
    const Situation seen = situation();
    decision_ = decide(seen, params_);
    // A robot on the ground gets up first: the get-up has every joint then,
    // and the walk starts again from its stand.
    down_ = (*getup)(now);
    ++counts_.played;
    counts_.chased += decision_.role == Role::chaser && world->number() != 1 && !down_ ? 1 : 0;
    speak();
    if (down_) {
        end_shot();
        walker->walker().stop();
        return;
    }
    if (shoot(decision_, now)) {
        return;
    }
    walk(decision_, seen);
    (*walker)(now);
    (*head)(*belief_, now.time);
    (*joints)(world->joint_angles(), now.time);
}

void PlaySoccer::between_goals() {
    end_shot();
    const orvo::perception::Perception& now = world->perception();
    if ((*getup)(now)) {
        walker->walker().stop();
        return;
    }
    // A beam moves the robot as it stands: mid-step it would land on one
    // foot, so the walk comes to its stand first, and goes on holding it
    // (a joint left without commands keeps its last speed).
    walker->walker().stop();
    (*walker)(now);
    (*joints)(world->joint_angles(), now.time);
    if (!beamed_after_goal_ && walker->walker().standing()) {
        (*beam)(formation_spot(world->number()));
        beamed_after_goal_ = true;
        started_ = false; // the belief starts again at the beam
    }
}

} // namespace demo
