#ifndef ORVO_KICK_SKILL_KICK_H
#define ORVO_KICK_SKILL_KICK_H

#include <orvo/kick/kicker.h>
#include <orvo/knowledgebase/descriptors/descriptor_skill.h>
#include <orvo/perception/perception.h>
#include <orvo/skills/skill.h>

#include <memory>
#include <ostream>
#include <string>

namespace orvo::effectors {
class Effector_Joints;
}

namespace orvo::kick {

/// The kick for plug-ins, registered as "skill_kick": a behavior asks for a
/// kick in a direction, and each cycle one call moves the kicker on (walking
/// up to the ball, then kicking), sends the joint speeds through
/// "effector_joints" and records the cycle in the action log. Robot type 0
/// with its installed walk and kick parameters until set_robot_type() or
/// set_params() says otherwise.
class ORVO_API Skill_Kick : public skills::Skill {
public:
    Skill_Kick();
    ~Skill_Kick() override;
    /// Fetches "injector_skill", then "effector_joints".
    void link(Class_Map& classes) override;
    /// "skill_kick".
    std::string get_name() const override;

    /// Loads the walk and kick parameters of `type` (0 to 4); throws
    /// ParamError when they cannot be read.
    void set_robot_type(int type);
    void set_params(int type, const walk::WalkParams& walk, const KickParams& kick);

    /// The kicker; loads type 0's when none is set yet.
    Kicker& kicker();

    /// One cycle: the kicker's update, the speeds of every joint in one
    /// message, and the record, which needs a current action.
    void operator()(const perception::Perception& perception);

private:
    std::unique_ptr<Kicker> kicker_;
    effectors::Effector_Joints* effector = nullptr;
};

/// What the action log keeps of one cycle of "skill_kick"; its properties are
/// "phase" and "foot" (strings), "direction" (degrees in the odometry frame),
/// "ball" and "stand" (Pose2 in the odometry frame, absent until the ball is
/// seen).
class ORVO_API Kick_Step : public knowledgebase::descriptors::Descriptor_Skill {
public:
    Kick_Step(const std::string& id, const Kicker& kicker);
    ~Kick_Step() override;
    /// "<id>: <phase> with the <foot> foot toward <direction>, ball (x, y)".
    std::ostream& print(std::ostream& out) const override;
};

} // namespace orvo::kick

extern "C" ORVO_API orvo::Constructable* create_skill_kick();

#endif
