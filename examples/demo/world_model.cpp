#include "world_model.h"

#include "team_configuration.h"

#include <orvo/math/polar.h>

#include <cmath>

namespace demo {

namespace {
// The own half, corners clockwise seen from above, each edge leading to the next corner.
orvo::math::Polygon::Corner_List own_half() {
    const orvo::math::Vector2d nodes[] = {{-15, 10}, {0, 10}, {0, -10}, {-15, -10}};
    orvo::math::Polygon::Corner_List corners;
    for (std::size_t i = 0; i < 4; ++i) {
        const auto& node = nodes[i];
        const auto& next = nodes[(i + 1) % 4];
        corners.emplace_back(node, orvo::math::Vector2d(next.x - node.x, next.y - node.y));
    }
    return corners;
}
} // namespace

void WorldModel::link(orvo::Class_Map& classes) {
    configuration = orvo::get_class<TeamConfiguration>(*this, "configuration", classes);
}

void WorldModel::init() {
    own_cell.set_corners(own_half());
    debug = std::make_unique<orvo::DebugDrawings>();
    const Settings& settings = configuration->settings;
    const std::string& to = settings.drawing_host.empty() ? settings.host : settings.drawing_host;
    // Port 0: any local port, so that every agent of a team has its own.
    debug->init(to.c_str(), static_cast<int>(settings.drawing_port), 0);
}

void WorldModel::update(const orvo::perception::Perception& perception) {
    last = &perception;
    namespace perceived = orvo::perception;
    if (perception.has_time) {
        time_s = perception.time;
        time_ms = static_cast<unsigned int>(std::llround(perception.time * 1000.0));
    }
    if (perception.has_game_state) {
        const perceived::GameState& state = perception.game_state;
        if (state.unum != 0) {
            unum = state.unum;
            debug->setId(unum);
        }
        if (state.side != perceived::Side::none) {
            right_side = state.side == perceived::Side::right;
            debug->setTeam(right_side ? 1 : 0);
        }
        has_mode = true;
        mode = state.play_mode;
    }
    for (std::size_t i = 0; i < orvo::robot::joint_count; ++i) {
        const auto joint = static_cast<orvo::robot::Joint>(i);
        if (perception.joints.has(joint)) {
            angles[i] = perception.joints[joint];
        }
    }
    if (perception.has_vision) {
        // A narrow view shows some team-mates at a time; the others stay where last seen.
        const std::string& team = configuration->settings.team;
        for (const perceived::SeenPlayer& player : perception.vision.players) {
            if (player.team != team || player.id == unum || player.seen == 0) {
                continue;
            }
            // Where the head is, or else the first part in view.
            std::size_t part = 0;
            while ((player.seen >> part & 1u) == 0) {
                ++part;
            }
            const orvo::math::Polar& seen = player.parts[part];
            // The eyes sit in the head, which pans; the body faces the
            // opponent's goal, so the body's frame is the team's frame.
            const orvo::math::Vector3d relative(
                orvo::math::Polar(seen.distance, seen.azimuth + head_pan(), seen.elevation));
            mates[player.id] =
                orvo::math::Vector2d(own_position.x + relative.x, own_position.y + relative.y);
        }
    }
}

bool WorldModel::may_beam() const {
    using orvo::perception::PlayMode;
    return mode == PlayMode::BeforeKickOff || mode == PlayMode::Goal_Left ||
           mode == PlayMode::Goal_Right;
}

void WorldModel::beamed_to(float x, float y) {
    own_position = orvo::math::Vector3d(x, y, own_position.z);
    beamed = true;
}

std::vector<orvo::math::Vector2d> WorldModel::team_mates() const {
    std::vector<orvo::math::Vector2d> result;
    result.reserve(mates.size());
    for (const auto& [id, where] : mates) {
        result.push_back(where);
    }
    return result;
}

wire::Colour WorldModel::colour() const {
    static const wire::Colour palette[] = {{230, 25, 75},   {60, 180, 75},  {255, 225, 25},
                                           {0, 130, 200},   {245, 130, 48}, {145, 30, 180},
                                           {70, 240, 240},  {240, 50, 230}, {210, 245, 60},
                                           {250, 190, 212}, {0, 128, 128},  {170, 110, 40}};
    return palette[static_cast<unsigned>(unum) % (sizeof palette / sizeof palette[0])];
}

} // namespace demo
