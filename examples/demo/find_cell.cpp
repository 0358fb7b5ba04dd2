#include "find_cell.h"

#include "drawings.h"
#include "records.h"
#include "world_model.h"

#include <orvo/knowledgebase/injectors/injector_skill.h>

#include <boost/make_shared.hpp>

#include <cstdio>

namespace demo {

void FindCell::link(orvo::Class_Map& classes) {
    Skill::link(classes);
    world = orvo::get_class<WorldModel>(*this, "worldmodel", classes);
}

orvo::math::Vector2d FindCell::operator()() {
    const orvo::math::Vector2d me(world->position());
    const std::vector<orvo::math::Vector2d> none;
    const std::vector<orvo::math::Vector2d> mates = world->team_mates();
    orvo::math::Polygon& cell = world->cell();
    cell.reset();
    // A cut only considers points within twice the radius the previous update
    // left; measuring the whole half first makes every team-mate count.
    cell.update(none, me);
    const orvo::math::Vector2d centroid = cell.update(mates, me);

    const wire::Colour colour = world->colour();
    auto* outline = new PolygonDrawing("cell", colour);
    for (const auto& corner : cell.get_corners()) {
        outline->add_corner(corner.first.x, corner.first.y);
    }
    orvo::DebugDrawings& drawings = world->drawings();
    drawings.addDrawing(outline);
    drawings.addDrawing(new PointDrawing("me", colour, me.x, me.y));
    drawings.addDrawing(new LineDrawing("to_centroid", colour, me.x, me.y, centroid.x, centroid.y));

    char note[96];
    std::snprintf(note, sizeof note, "%zu mates, area %.1f, centroid (%.2f, %.2f)", mates.size(),
                  cell.get_area(), centroid.x, centroid.y);
    boost::shared_ptr<orvo::knowledgebase::descriptors::Descriptor_Skill> record =
        boost::make_shared<SkillRecord>(get_name(), note);
    (*get_skill_injector())(record);
    return centroid;
}

} // namespace demo
