#ifndef ORVO_HEAD_SKILL_HEAD_H
#define ORVO_HEAD_SKILL_HEAD_H

#include <orvo/head/head_aim.h>
#include <orvo/knowledgebase/descriptors/descriptor_skill.h>
#include <orvo/skills/skill.h>

#include <ostream>
#include <string>

namespace orvo::skills {
class Skill_Joints;
}

namespace orvo::head {

/// Points the head, registered as "skill_head": each cycle it decides with a
/// HeadAim where to look and has "skill_joints" hold the neck there (that
/// skill's own run then sends the speeds).
class ORVO_API Skill_Head : public skills::Skill {
public:
    Skill_Head();
    ~Skill_Head() override;
    /// Fetches "injector_skill", then "skill_joints".
    void link(Class_Map& classes) override;
    /// Throws LogicException when a collaborator is missing or of another class.
    void init() override;
    /// "skill_head".
    std::string get_name() const override;

    void set_params(const HeadParams& params) { aim_ = HeadAim(params); }

    /// One cycle at server time `now` (seconds).
    void operator()(const world::WorldModel& world, double now);
    const HeadTarget& target() const { return target_; }

private:
    HeadAim aim_;
    HeadTarget target_;
    skills::Skill_Joints* joints_ = nullptr;
};

/// What the action log keeps of one cycle of "skill_head": properties "mode"
/// (string), "yaw" and "pitch" (deg, double).
class ORVO_API Head_Aim : public knowledgebase::descriptors::Descriptor_Skill {
public:
    Head_Aim(const std::string& id, const HeadTarget& target);
    ~Head_Aim() override;
    /// "<id>: <mode>, yaw <deg> pitch <deg>" (one decimal).
    std::ostream& print(std::ostream& out) const override;
};

} // namespace orvo::head

extern "C" ORVO_API orvo::Constructable* create_skill_head();

#endif
