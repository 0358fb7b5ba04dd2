#ifndef ORVO_DEMO_WORLD_MODEL_H
#define ORVO_DEMO_WORLD_MODEL_H

#include "drawing_wire.h"
#include "perception.h"

#include <orvo/debug/debug_drawings.h>
#include <orvo/humanoid/base/constructable.h>
#include <orvo/math/polygon.h>
#include <orvo/math/vector2d.h>
#include <orvo/math/vector3d.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace demo {

class TeamConfiguration;

/// How long the knowledge base keeps an action, in simulation milliseconds:
/// the last ten cycles.
constexpr unsigned int action_retention = 200;

/// The "worldmodel" component: what the agent believes about itself and its
/// team-mates, updated from each perception, plus the cycle's debug drawings.
/// Positions are in the team's own frame (its goal at negative x).
class WorldModel : public orvo::Constructable {
public:
    void link(orvo::Class_Map& classes) override;
    /// Opens the debug drawings towards the server's host and drawing port.
    void init() override;
    std::string get_name() const override { return "worldmodel"; }

    void update(const Perception& perception);

    /// Simulation time in milliseconds: the knowledge base's clock.
    unsigned int time() const { return time_ms; }
    int number() const { return unum; }
    bool on_right_side() const { return right_side; }
    /// The play mode last reported ("BeforeKickOff", "PlayOn", ...).
    const std::string& play_mode() const { return mode; }
    /// Whether the play mode lets the agent beam: before kick-off and after a goal.
    bool may_beam() const;
    /// Whether the game has been kicked off.
    bool kicked_off() const { return !mode.empty() && mode != "BeforeKickOff"; }
    /// Whether the agent has beamed since it started.
    bool has_beamed() const { return beamed; }
    const orvo::math::Vector3d& position() const { return own_position; }
    /// No server reports the position: the agent remembers its beams.
    void beamed_to(float x, float y);
    /// Team-mates where each was last seen, in the team's frame.
    std::vector<orvo::math::Vector2d> team_mates() const;
    float head_pan() const { return head_pan_degrees; }

    orvo::math::Polygon& cell() { return own_cell; }
    orvo::DebugDrawings& drawings() { return *debug; }
    /// The player's colour in drawings.
    wire::Colour colour() const;

private:
    TeamConfiguration* configuration = nullptr;
    std::unique_ptr<orvo::DebugDrawings> debug;
    unsigned int time_ms = 0;
    int unum = 0;
    bool right_side = false;
    std::string mode;
    bool beamed = false;
    orvo::math::Vector3d own_position;
    std::map<int, orvo::math::Vector2d> mates;
    float head_pan_degrees = 0;
    orvo::math::Polygon own_cell;
};

} // namespace demo

#endif
