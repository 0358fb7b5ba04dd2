#ifndef ORVO_WALK_SKILL_WALK_H
#define ORVO_WALK_SKILL_WALK_H

#include <orvo/knowledgebase/descriptors/descriptor_skill.h>
#include <orvo/perception/perception.h>
#include <orvo/skills/skill.h>
#include <orvo/walk/walker.h>

#include <memory>
#include <ostream>
#include <string>

namespace orvo::effectors {
class Effector_Joints;
}

namespace orvo::walk {

/// The walk for plug-ins, registered as "skill_walk": a behavior sets a
/// velocity or a spot, and each cycle one call moves the gait on, sends the
/// joint speeds through "effector_joints" and records the cycle in the action
/// log. The walk of robot type 0 with its installed parameters until
/// set_robot_type() or set_params() says otherwise.
class ORVO_API Skill_Walk : public skills::Skill {
public:
    Skill_Walk();
    ~Skill_Walk() override;
    /// Fetches "injector_skill", then "effector_joints".
    void link(Class_Map& classes) override;
    /// "skill_walk".
    std::string get_name() const override;

    /// Loads the walk parameters of `type` (0 to 4) from params_path("walk",
    /// type); throws ParamError when they cannot be read.
    void set_robot_type(int type);
    /// Walks robot `type` with `params` instead of the installed ones.
    void set_params(int type, const WalkParams& params);

    /// Leaves the neck to another skill (a head skill): the walk no longer
    /// sends its joints.
    void leave_head();

    /// The walk; loads type 0's when none is set yet.
    Walker& walker();

    /// One cycle: the walk's update, the speeds of every joint of the robot in
    /// one message, and the record, which needs a current action.
    void operator()(const perception::Perception& perception);

private:
    std::unique_ptr<Walker> walker_;
    effectors::Effector_Joints* effector = nullptr;
    bool head_left_ = false;
};

/// What the action log keeps of one cycle of "skill_walk"; its properties are
/// "target" and "velocity" (forward m/s, sideways m/s, turn deg/s, as
/// Velocity), "odometry" (Odometry) and "support" ("left", "right" or
/// "stand", a string).
class ORVO_API Walk_Step : public knowledgebase::descriptors::Descriptor_Skill {
public:
    Walk_Step(const std::string& id, const Walker& walker);
    ~Walk_Step() override;
    /// "<id>: <support> at (f, s, t) toward (f, s, t), odometry (x, y, h)".
    std::ostream& print(std::ostream& out) const override;
};

} // namespace orvo::walk

extern "C" ORVO_API orvo::Constructable* create_skill_walk();

#endif
