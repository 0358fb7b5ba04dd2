#ifndef ORVO_GETUP_SKILL_GETUP_H
#define ORVO_GETUP_SKILL_GETUP_H

#include <orvo/fall/fall_detector.h>
#include <orvo/getup/getup.h>
#include <orvo/knowledgebase/descriptors/descriptor_skill.h>
#include <orvo/perception/perception.h>
#include <orvo/skills/skill.h>

#include <memory>
#include <ostream>
#include <string>

namespace orvo::effectors {
class Effector_Joints;
}

namespace orvo::getup {

/// Falls and get-ups for plug-ins, registered as "skill_getup". Call it every
/// cycle: it watches the posture with its fall detector and, once the robot
/// lies, takes the joints and gets it up, sending the joint speeds through
/// "effector_joints" and recording each cycle it drives them in the action
/// log. Robot type 0 with its installed parameters until set_robot_type().
class ORVO_API Skill_GetUp : public skills::Skill {
public:
    Skill_GetUp();
    ~Skill_GetUp() override;
    /// Fetches "injector_skill", then "effector_joints".
    void link(Class_Map& classes) override;
    /// "skill_getup".
    std::string get_name() const override;

    /// Loads the fall and get-up parameters of `type` (0 to 4); throws
    /// ParamError when they cannot be read.
    void set_robot_type(int type);

    /// One cycle. Returns true when it drove the joints this cycle (the robot
    /// is down or getting up): other skills should leave them alone then.
    bool operator()(const perception::Perception& perception);

    /// The detector and the get-up; type 0's when none is set yet.
    const fall::FallDetector& detector();
    const GetUp& getup();

private:
    void load_default();

    std::unique_ptr<fall::FallDetector> detector_;
    std::unique_ptr<GetUp> getup_;
    effectors::Effector_Joints* effector = nullptr;
};

/// What the action log keeps of one cycle of "skill_getup"; its properties
/// are "posture" and "motion" (strings) and "tilt" (deg, double).
class ORVO_API Get_Up_Step : public knowledgebase::descriptors::Descriptor_Skill {
public:
    Get_Up_Step(const std::string& id, const std::string& posture, const std::string& motion,
                double tilt);
    ~Get_Up_Step() override;
    /// "<id>: <posture>, <motion>, tilt <deg, 1 decimal>".
    std::ostream& print(std::ostream& out) const override;
};

} // namespace orvo::getup

extern "C" ORVO_API orvo::Constructable* create_skill_getup();

#endif
