// The player's kicks: the own set pieces and a shot near the opponents' goal.
// The kick walks up to the ball with a walk of its own, so the game's walk
// first comes to its stand and then leaves the legs to it.
#include "play_soccer.h"

#include "world_model.h"

#include <orvo/head/skill_head.h>
#include <orvo/kick/kicker.h>
#include <orvo/kick/skill_kick.h>
#include <orvo/skills/skill_joints.h>
#include <orvo/walk/skill_walk.h>

#include <algorithm>
#include <cmath>

namespace demo {

namespace {

constexpr double degrees = 180 / M_PI;
/// The kick turns its direction at most this far from the robot's heading.
constexpr double widest_kick_deg = 45;

} // namespace

const orvo::walk::Odometry& PlaySoccer::moved() const {
    return shot_ == Shot::kicking ? kicker->kicker().walker().odometry()
                                  : walker->walker().odometry();
}

bool PlaySoccer::shoot(const Decision& decision, const orvo::perception::Perception& now) {
    const double seconds = world->seconds();
    if (shot_ == Shot::none) {
        if (!decision.kick) {
            return false;
        }
        shot_ = Shot::stopping;
        shot_since_ = seconds;
        shot_aim_ = decision.aim;
        shot_set_piece_ = own_set_piece();
    }
    // Play stopping stops it: a set piece of the other team's is not its to
    // play, and one of its own is taken by the set piece's own kick.
    const bool playing = world->play_mode() == orvo::perception::PlayMode::PlayOn ||
                         (shot_set_piece_ && own_set_piece());
    if (!playing || seconds - shot_since_ > params_.shot_max_s) {
        end_shot();
        return false;
    }
    if (shot_ == Shot::stopping) {
        walker->walker().stop();
        (*walker)(now);
        (*head)(*belief_, now.time);
        (*joints)(world->joint_angles(), now.time);
        if (walker->walker().standing()) {
            const orvo::world::Pose& pose = belief_->pose();
            const double way =
                std::atan2(shot_aim_.y - pose.y, shot_aim_.x - pose.x) * degrees - pose.heading_deg;
            kicker->kicker().start(
                std::clamp(std::remainder(way, 360.0), -widest_kick_deg, widest_kick_deg));
            shot_ = Shot::kicking;
            odometry_ = moved();
        }
        return true;
    }
    (*kicker)(now);
    // A set piece's walk up that touched the ball has taken it (play is on):
    // the kick would be a second touch.
    using orvo::kick::KickPhase;
    const KickPhase phase = kicker->kicker().phase();
    const bool walking_up = phase == KickPhase::approach || phase == KickPhase::settle;
    if (kicker->kicker().finished() || (shot_set_piece_ && walking_up && !own_set_piece())) {
        end_shot();
    }
    return true;
}

void PlaySoccer::end_shot() {
    if (shot_ == Shot::none) {
        return;
    }
    // Once a set piece's kick (or its walk up) has touched the ball, play is
    // on and the taker keeps off it for a while.
    if (shot_set_piece_ && !own_set_piece()) {
        leave_ball_until_ = world->seconds() + params_.set_piece_clear_s;
    }
    shot_ = Shot::none;
    odometry_ = moved();
}

} // namespace demo
