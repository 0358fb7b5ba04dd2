#include "beam_to.h"

#include "beam_effector.h"
#include "records.h"
#include "world_model.h"

#include <orvo/knowledgebase/injectors/injector_skill.h>
#include <orvo/protocol/constants.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cstdio>

namespace demo {

void BeamTo::link(orvo::Class_Map& classes) {
    Skill::link(classes);
    beam = orvo::get_class<BeamEffector>(*this, "effector_beam", classes);
    world = orvo::get_class<WorldModel>(*this, "worldmodel", classes);
}

void BeamTo::operator()(const orvo::math::Vector2d& target) {
    // Servers accept beams to the own half only.
    constexpr auto half_length = static_cast<float>(orvo::protocol::field_length / 2);
    constexpr auto half_width = static_cast<float>(orvo::protocol::field_width / 2);
    const float x = std::clamp(target.x, -half_length, 0.0f);
    const float y = std::clamp(target.y, -half_width, half_width);
    char note[64];
    std::snprintf(note, sizeof note, "to (%.2f, %.2f)", x, y);
    boost::shared_ptr<orvo::knowledgebase::descriptors::Descriptor_Skill> record =
        boost::make_shared<SkillRecord>(get_name(), note);
    (*get_skill_injector())(record);
    (*beam)(x, y, 0.0f);
    world->beamed_to(x, y);
}

} // namespace demo
