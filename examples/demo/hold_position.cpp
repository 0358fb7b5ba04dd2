#include "hold_position.h"

#include "find_cell.h"
#include "look_around.h"
#include "world_model.h"

#include <orvo/knowledgebase/injectors/injector_action.h>

namespace demo {

void HoldPosition::link(orvo::Class_Map& classes) {
    actions = orvo::get_class<orvo::knowledgebase::injectors::Injector_Action>(
        *this, "injector_action", classes);
    world = orvo::get_class<WorldModel>(*this, "worldmodel", classes);
    find_cell = orvo::get_class<FindCell>(*this, "skill_find_cell", classes);
    look = orvo::get_class<LookAround>(*this, "skill_look", classes);
}

void HoldPosition::operator()() {
    (*actions)(get_name(), world->time(), action_retention);
    (*find_cell)();
    (*look)();
}

} // namespace demo
