#include "spread_out.h"

#include "beam_to.h"
#include "find_cell.h"
#include "formation.h"
#include "posture.h"
#include "world_model.h"

#include <orvo/knowledgebase/injectors/injector_action.h>

#include <cmath>

namespace demo {

void SpreadOut::link(orvo::Class_Map& classes) {
    actions = orvo::get_class<orvo::knowledgebase::injectors::Injector_Action>(
        *this, "injector_action", classes);
    world = orvo::get_class<WorldModel>(*this, "worldmodel", classes);
    find_cell = orvo::get_class<FindCell>(*this, "skill_find_cell", classes);
    beam = orvo::get_class<BeamTo>(*this, "skill_beam", classes);
    posture = orvo::get_class<Posture>(*this, "skill_posture", classes);
}

void SpreadOut::operator()() {
    (*actions)(get_name(), world->time(), action_retention);
    const orvo::math::Vector2d me(world->position());
    const orvo::math::Vector2d centroid = (*find_cell)();
    const orvo::math::Vector2d way(centroid.x - me.x, centroid.y - me.y);
    // Halfway there, but never off the leash; a player pulled to the end of its
    // leash stays put instead of beaming to the same spot every cycle.
    const orvo::math::Vector2d target =
        on_leash(world->number(), orvo::math::Vector2d(me.x + step * way.x, me.y + step * way.y));
    if (std::hypot(target.x - me.x, target.y - me.y) > settled) {
        (*beam)(target);
    }
    (*posture)();
}

} // namespace demo
