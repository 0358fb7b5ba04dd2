#include "perception.h"

namespace demo {

bool PerceptionParser::parse(std::string_view message, Perception& out) {
    out.has_time = out.has_game_state = out.has_vision = false;
    out.has_head_angles = false;
    out.unum = 0;
    out.side.clear();
    out.play_mode.clear();
    out.players.clear();
    const bool balanced = tree.parse(message);
    for (std::int32_t element = tree.root(); element != SExpression::none;
         element = tree.next(element)) {
        const std::string_view name = tree.head(element);
        if (name == "time") {
            float now = 0;
            if (to_float(tree.value(element, "now"), now)) {
                out.now = now;
                out.has_time = true;
            }
        } else if (name == "GS") {
            out.has_game_state = true;
            float game_time = 0;
            if (to_float(tree.value(element, "t"), game_time)) {
                out.game_time = game_time;
            }
            out.play_mode = std::string(tree.value(element, "pm"));
            to_int(tree.value(element, "unum"), out.unum);
            out.side = std::string(tree.value(element, "team"));
        } else if (name == "HJ") {
            const std::string_view joint = tree.value(element, "n");
            if (joint == "hj1") {
                out.has_head_angles |= to_float(tree.value(element, "ax"), out.head_pan);
            } else if (joint == "hj2") {
                out.has_head_angles |= to_float(tree.value(element, "ax"), out.head_tilt);
            }
        } else if (name == "See") {
            out.has_vision = true;
            read_vision(element, out);
        }
    }
    return balanced && out.has_time;
}

void PerceptionParser::read_vision(std::int32_t see, Perception& out) const {
    for (std::int32_t object = tree.first_argument(see); object != SExpression::none;
         object = tree.next(object)) {
        if (tree.head(object) != "P") {
            continue;
        }
        SeenPlayer player;
        player.team = std::string(tree.value(object, "team"));
        to_int(tree.value(object, "id"), player.id);
        // Any reported body part will do; the head is the best guess of the position.
        std::int32_t part = tree.find(object, "head");
        if (part == SExpression::none) {
            for (std::int32_t child = tree.first_argument(object); child != SExpression::none;
                 child = tree.next(child)) {
                if (tree.find(child, "pol") != SExpression::none) {
                    part = child;
                    break;
                }
            }
        }
        const std::int32_t pol = tree.find(part, "pol");
        const std::int32_t d = tree.first_argument(pol);
        const std::int32_t a = d == SExpression::none ? d : tree.next(d);
        const std::int32_t e = a == SExpression::none ? a : tree.next(a);
        if (e != SExpression::none && to_float(tree[d].atom, player.distance) &&
            to_float(tree[a].atom, player.azimuth) && to_float(tree[e].atom, player.elevation)) {
            out.players.push_back(std::move(player));
        }
    }
}

} // namespace demo
