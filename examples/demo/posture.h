#ifndef ORVO_DEMO_POSTURE_H
#define ORVO_DEMO_POSTURE_H

#include <orvo/skills/motion.h>
#include <orvo/skills/skill.h>

#include <array>
#include <memory>

namespace orvo::skills {
class Skill_Joints;
}

namespace demo {

class TeamConfiguration;
class WorldModel;

/// "skill_posture": the robot's bearing, through the library's
/// "skill_joints". From its first cycle it takes the ready stance and scans
/// with the head for as long as it plays; once the game has been kicked off
/// it waves with the right arm, once. Every behavior runs it last, so the
/// joints get one command a cycle, recorded in the behavior's action.
class Posture : public orvo::skills::Skill {
public:
    void link(orvo::Class_Map& classes) override;
    /// Loads the motions from the directory of the setting "motions" and
    /// tells "skill_joints" the robot's type; a bad motion file stops the start.
    void init() override;
    std::string get_name() const override { return "skill_posture"; }
    void operator()();

    static constexpr std::size_t window = 25; ///< cycles of the error figure
    /// The largest distance (degrees) of a joint from its motion's target
    /// over the last `window` cycles; 0 before the first.
    double worst_recent_error() const;

private:
    orvo::skills::Skill_Joints* joints = nullptr;
    WorldModel* world = nullptr;
    TeamConfiguration* configuration = nullptr;
    std::shared_ptr<const orvo::skills::Motion> ready, wave, head_scan;
    bool started = false;
    bool waved = false;
    std::array<double, window> errors{};
    std::size_t cycles = 0;
};

} // namespace demo

#endif
