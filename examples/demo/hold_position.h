#ifndef ORVO_DEMO_HOLD_POSITION_H
#define ORVO_DEMO_HOLD_POSITION_H

#include <orvo/behaviors/behavior.h>

namespace orvo::knowledgebase::injectors {
class Injector_Action;
}

namespace demo {

class FindCell;
class LookAround;
class WorldModel;

/// "behavior_hold_position": once the game runs, a beam no longer moves the
/// player; it stays where it spread out to, keeps its cell in the drawings
/// and looks around.
class HoldPosition : public orvo::behaviors::Behavior {
public:
    void link(orvo::Class_Map& classes) override;
    std::string get_name() const override { return "behavior_hold_position"; }
    void operator()() override;

private:
    orvo::knowledgebase::injectors::Injector_Action* actions = nullptr;
    WorldModel* world = nullptr;
    FindCell* find_cell = nullptr;
    LookAround* look = nullptr;
};

} // namespace demo

#endif
