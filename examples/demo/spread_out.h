#ifndef ORVO_DEMO_SPREAD_OUT_H
#define ORVO_DEMO_SPREAD_OUT_H

#include <orvo/behaviors/behavior.h>

namespace orvo::knowledgebase::injectors {
class Injector_Action;
}

namespace demo {

class BeamTo;
class FindCell;
class Posture;
class WorldModel;

/// "behavior_spread_out": while the play mode allows beams, moves the player
/// halfway towards the centroid of its Voronoi cell among its team-mates, as
/// far as the leash around its formation spot allows, and keeps its posture,
/// the head scanning. Played by the whole team, cycle after cycle, this evens
/// out the formation over the team's half.
class SpreadOut : public orvo::behaviors::Behavior {
public:
    void link(orvo::Class_Map& classes) override;
    std::string get_name() const override { return "behavior_spread_out"; }
    void operator()() override;

    static constexpr float step = 0.5f;     ///< share of the way to the centroid per cycle
    static constexpr float settled = 0.02f; ///< metres from the centroid that need no beam

private:
    orvo::knowledgebase::injectors::Injector_Action* actions = nullptr;
    WorldModel* world = nullptr;
    FindCell* find_cell = nullptr;
    BeamTo* beam = nullptr;
    Posture* posture = nullptr;
};

} // namespace demo

#endif
