#ifndef ORVO_DEMO_FIND_CELL_H
#define ORVO_DEMO_FIND_CELL_H

#include <orvo/math/vector2d.h>
#include <orvo/skills/skill.h>

namespace demo {

class WorldModel;

/// "skill_find_cell": the agent's Voronoi cell among its team-mates within
/// the own half. Draws the cell, the agent and the way to the cell's centroid,
/// and returns the centroid.
class FindCell : public orvo::skills::Skill {
public:
    void link(orvo::Class_Map& classes) override;
    std::string get_name() const override { return "skill_find_cell"; }
    orvo::math::Vector2d operator()();

private:
    WorldModel* world = nullptr;
};

} // namespace demo

#endif
