#ifndef ORVO_SKILLS_SKILL_JOINTS_H
#define ORVO_SKILLS_SKILL_JOINTS_H

#include <orvo/knowledgebase/descriptors/descriptor_skill.h>
#include <orvo/robot/joints.h>
#include <orvo/skills/joint_controller.h>
#include <orvo/skills/motion_player.h>
#include <orvo/skills/skill.h>

#include <ostream>
#include <string>

namespace orvo::effectors {
class Effector_Joints;
}

namespace orvo::skills {

/// Moves the joints, registered as "skill_joints": plays motions and holds
/// poses through the player, turns the targets into speeds with the joint
/// controller and sends them through "effector_joints", all in one call per
/// cycle. Only the joints of the robot's type are driven.
class ORVO_API Skill_Joints : public Skill {
public:
    Skill_Joints();
    ~Skill_Joints() override;
    /// Fetches "injector_skill", then "effector_joints".
    void link(Class_Map& classes) override;
    /// Throws LogicException when a collaborator registered under its name is
    /// of another class, which the link left as null.
    void init() override;
    /// "skill_joints".
    std::string get_name() const override;

    /// 0 to 4 (default 0); only type 4 drives the toes.
    void set_robot_type(int type);

    MotionPlayer& player() { return player_; }
    const MotionPlayer& player() const { return player_; }
    JointController& controller() { return controller_; }

    /// One cycle at simulation time `now` (seconds), with the angles read
    /// this cycle (deg): updates the targets, sends the speeds of every driven
    /// joint in one message and reports the run to the skill injector, which
    /// needs a current action.
    void operator()(const robot::JointValues& angles, double now);

    /// The largest |target - angle| of this cycle's driven joints (deg), 0
    /// when none is driven.
    double worst_error() const { return worst_error_; }

private:
    MotionPlayer player_;
    JointController controller_;
    effectors::Effector_Joints* effector = nullptr;
    robot::JointSet robot_joints;
    robot::JointValues speeds{};
    double worst_error_ = 0;
};

/// What the action log keeps of one cycle of "skill_joints"; its properties
/// are "motions" (the names playing, a string), "joints" (how many are
/// driven, std::size_t) and "worst_error" (deg, double).
class ORVO_API Joint_Motion : public knowledgebase::descriptors::Descriptor_Skill {
public:
    Joint_Motion(const std::string& id, const std::string& motions, std::size_t joints,
                 double worst_error);
    ~Joint_Motion() override;
    /// "<id>: <motions or holding>, <joints> joints, worst error <deg, 2 decimals> deg".
    std::ostream& print(std::ostream& out) const override;
};

} // namespace orvo::skills

extern "C" ORVO_API orvo::Constructable* create_skill_joints();

#endif
