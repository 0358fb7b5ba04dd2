#ifndef ORVO_DEMO_BEAM_TO_H
#define ORVO_DEMO_BEAM_TO_H

#include <orvo/math/vector2d.h>
#include <orvo/skills/skill.h>

namespace demo {

class BeamEffector;
class WorldModel;

/// "skill_beam": moves the agent to a spot of its own half, facing the
/// opponent's goal, and remembers where it went.
class BeamTo : public orvo::skills::Skill {
public:
    void link(orvo::Class_Map& classes) override;
    std::string get_name() const override { return "skill_beam"; }
    void operator()(const orvo::math::Vector2d& target);

private:
    BeamEffector* beam = nullptr;
    WorldModel* world = nullptr;
};

} // namespace demo

#endif
