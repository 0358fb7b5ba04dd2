#include "take_position.h"

#include "beam_to.h"
#include "formation.h"
#include "posture.h"
#include "world_model.h"

#include <orvo/knowledgebase/injectors/injector_action.h>
#include <orvo/math/random_number_generator.h>

#include <gsl/gsl_rng.h>

namespace demo {

void TakePosition::link(orvo::Class_Map& classes) {
    actions = orvo::get_class<orvo::knowledgebase::injectors::Injector_Action>(
        *this, "injector_action", classes);
    random = orvo::get_class<orvo::math::Random_Number_Generator>(*this, "random_number_generator",
                                                                  classes);
    world = orvo::get_class<WorldModel>(*this, "worldmodel", classes);
    beam = orvo::get_class<BeamTo>(*this, "skill_beam", classes);
    posture = orvo::get_class<Posture>(*this, "skill_posture", classes);
}

void TakePosition::operator()() {
    (*actions)(get_name(), world->time(), action_retention);
    const auto& spot = formation_spot(world->number());
    const auto shift = [this] {
        return static_cast<float>((gsl_rng_uniform(random->rng.get()) * 2.0 - 1.0) * jitter);
    };
    const float dx = shift();
    const float dy = shift();
    (*beam)(orvo::math::Vector2d(spot.x + dx, spot.y + dy));
    (*posture)();
}

} // namespace demo
