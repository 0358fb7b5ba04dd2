#ifndef ORVO_DEMO_PLAY_SOCCER_H
#define ORVO_DEMO_PLAY_SOCCER_H

#include "roles.h"
#include "team_talk.h"

#include <orvo/behaviors/behavior.h>
#include <orvo/walk/walker.h>
#include <orvo/world/world_model.h>

#include <memory>
#include <optional>

namespace orvo::knowledgebase::injectors {
class Injector_Action;
}
namespace orvo::effectors {
class Effector_Say;
}
namespace orvo::getup {
class Skill_GetUp;
}
namespace orvo::head {
class Skill_Head;
}
namespace orvo::kick {
class Skill_Kick;
}
namespace orvo::skills {
class Skill_Joints;
}
namespace orvo::walk {
class Skill_Walk;
}

namespace demo {

class BeamTo;
class TeamConfiguration;
class WorldModel;

/// "behavior_play": the game itself, once kicked off. Each cycle the
/// player's belief (where it is, the ball, the others) takes the perception
/// and what the walk moved; it picks its role (keeper, chaser or support,
/// see decide()) and walks there through "skill_walk", the head aimed by
/// "skill_head". A fallen robot gets up first ("skill_getup"). In its turn
/// it tells its team-mates where it is and where the ball is ("effector_say"),
/// and it hears theirs: the ball goes to the one nearest it by what they
/// said, and a robot that has not seen the ball lately takes it from a mate.
/// A kick (an own set piece, a shot near the goal) stops the walk and hands
/// the legs and the head to "skill_kick" until the kick is done.
class PlaySoccer : public orvo::behaviors::Behavior {
public:
    PlaySoccer();
    ~PlaySoccer() override;
    void link(orvo::Class_Map& classes) override;
    /// Loads the walk, head, world and play parameters of the robot's type.
    void init() override;
    std::string get_name() const override { return "behavior_play"; }
    void operator()() override;
    /// After a goal, until the next kick-off: the robot gets up if it lies,
    /// stops into its stand and then moves once to its beam spot, where the
    /// play starts again from the kick-off.
    void between_goals();

    /// What the talk did over the game: texts said, team-mates' texts heard,
    /// cycles played and cycles this robot went for the ball (on its feet).
    struct TalkCounts {
        unsigned said = 0, heard = 0, played = 0, chased = 0;
    };
    const TalkCounts& talk_counts() const { return counts_; }

    const orvo::world::WorldModel& belief() const { return *belief_; }
    const Decision& decision() const { return decision_; }

private:
    void start();
    Situation situation() const;
    Spot clear_of_their_kick_off(Spot home) const;
    void walk(const Decision& decision, const Situation& now);
    /// The ball as the freshest mate who saw it lately said, when this robot
    /// has not seen it itself; its age then.
    std::optional<double> ball_from_mates(Spot& ball) const;
    void speak();
    /// The walk whose steps move the belief: the kick's own while it kicks.
    const orvo::walk::Odometry& moved() const;
    /// Whether a shot drove the joints this cycle (play_shot.cpp).
    bool shoot(const Decision& decision, const orvo::perception::Perception& now);
    void end_shot();
    bool own_set_piece() const;
    /// Whether it keeps off the ball after kicking a set piece.
    bool leaving_ball() const;

    orvo::knowledgebase::injectors::Injector_Action* actions = nullptr;
    WorldModel* world = nullptr;
    TeamConfiguration* configuration = nullptr;
    orvo::walk::Skill_Walk* walker = nullptr;
    orvo::head::Skill_Head* head = nullptr;
    orvo::skills::Skill_Joints* joints = nullptr;
    orvo::getup::Skill_GetUp* getup = nullptr;
    orvo::kick::Skill_Kick* kicker = nullptr;
    BeamTo* beam = nullptr;
    orvo::effectors::Effector_Say* say = nullptr;

    std::unique_ptr<orvo::world::WorldModel> belief_;
    PlayParams params_;
    Decision decision_;
    orvo::walk::Odometry odometry_;
    TeamTalk talk_;
    TalkCounts counts_;
    /// A kick under way: the walk coming to its stand, then the kick's own.
    enum class Shot { none, stopping, kicking };
    Shot shot_ = Shot::none;
    double shot_since_ = 0; ///< the world's seconds when it began
    Spot shot_aim_{};
    bool shot_set_piece_ = false;  ///< it is an own set piece's one touch
    double leave_ball_until_ = -1; ///< after kicking off, the ball is others' till then
    bool down_ = false;            ///< getting up this cycle
    bool started_ = false;
    bool beamed_after_goal_ = false;
    unsigned last_ms_ = 0; ///< the world's time at the last call
};

} // namespace demo

#endif
