#include "look_around.h"

#include "head_effector.h"
#include "records.h"
#include "world_model.h"

#include <orvo/knowledgebase/extractors/extractor_action.h>
#include <orvo/knowledgebase/injectors/injector_skill.h>

#include <boost/make_shared.hpp>

#include <cstdio>
#include <cstdlib>

namespace demo {

void LookAround::link(orvo::Class_Map& classes) {
    Skill::link(classes);
    head = orvo::get_class<HeadEffector>(*this, "effector_head", classes);
    world = orvo::get_class<WorldModel>(*this, "worldmodel", classes);
    extractor = orvo::get_class<orvo::knowledgebase::extractors::Extractor_Action>(
        *this, "extractor_action", classes);
}

void LookAround::operator()() {
    // Age 0 is the action under way; age 1 is the previous cycle's.
    float speed = pan_speed;
    const auto* previous = (*extractor)(1);
    if (previous != nullptr && previous->has_effector("effector_head")) {
        const std::string& command = previous->get_effector("effector_head")->get_message();
        if (command.rfind("(he1 ", 0) == 0) {
            speed = std::strtof(command.c_str() + 5, nullptr);
        }
    }
    if (world->head_pan() > pan_limit) {
        speed = -pan_speed;
    } else if (world->head_pan() < -pan_limit) {
        speed = pan_speed;
    }
    char note[48];
    std::snprintf(note, sizeof note, "pan %+.0f deg, turning %s", world->head_pan(),
                  speed > 0 ? "left" : "right");
    boost::shared_ptr<orvo::knowledgebase::descriptors::Descriptor_Skill> record =
        boost::make_shared<SkillRecord>(get_name(), note);
    (*get_skill_injector())(record);
    (*head)(speed, 0.0f);
}

} // namespace demo
