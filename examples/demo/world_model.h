#ifndef ORVO_DEMO_WORLD_MODEL_H
#define ORVO_DEMO_WORLD_MODEL_H

#include <orvo/debug/debug_drawings.h>
#include <orvo/humanoid/base/constructable.h>
#include <orvo/math/polygon.h>
#include <orvo/math/vector2d.h>
#include <orvo/math/vector3d.h>
#include <orvo/perception/perception.h>
#include <orvo/protocol/drawing_wire.h>
#include <orvo/robot/joints.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace demo {

namespace wire = orvo::protocol::drawing;

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

    void update(const orvo::perception::Perception& perception);
    /// The perception of this cycle (the agent's own, valid until the next).
    const orvo::perception::Perception& perception() const { return *last; }

    /// Simulation time in milliseconds: the knowledge base's clock.
    unsigned int time() const { return time_ms; }
    /// Server time in seconds, as the last perception told it.
    double seconds() const { return time_s; }
    int number() const { return unum; }
    bool on_right_side() const { return right_side; }
    /// The play mode last reported (unknown before the first, and for a name
    /// the library does not know).
    orvo::perception::PlayMode play_mode() const { return mode; }
    /// Whether the play mode lets the agent beam: before kick-off and after a goal.
    bool may_beam() const;
    /// Whether the game has been kicked off.
    bool kicked_off() const {
        return has_mode && mode != orvo::perception::PlayMode::BeforeKickOff;
    }
    /// Whether the agent has beamed since it started.
    bool has_beamed() const { return beamed; }
    const orvo::math::Vector3d& position() const { return own_position; }
    /// No server reports the position: the agent remembers its beams.
    void beamed_to(float x, float y);
    /// Team-mates where each was last seen, in the team's frame.
    std::vector<orvo::math::Vector2d> team_mates() const;
    float head_pan() const {
        return static_cast<float>(angles[orvo::robot::index(orvo::robot::Joint::neck_yaw)]);
    }
    /// Every joint's angle as last reported, in degrees.
    const orvo::robot::JointValues& joint_angles() const { return angles; }

    orvo::math::Polygon& cell() { return own_cell; }
    orvo::DebugDrawings& drawings() { return *debug; }
    /// The player's colour in drawings.
    wire::Colour colour() const;

private:
    TeamConfiguration* configuration = nullptr;
    std::unique_ptr<orvo::DebugDrawings> debug;
    const orvo::perception::Perception* last = nullptr;
    unsigned int time_ms = 0;
    int unum = 0;
    bool right_side = false;
    double time_s = 0;
    bool has_mode = false;
    orvo::perception::PlayMode mode = orvo::perception::PlayMode::unknown;
    bool beamed = false;
    orvo::math::Vector3d own_position;
    std::map<int, orvo::math::Vector2d> mates;
    orvo::robot::JointValues angles{};
    orvo::math::Polygon own_cell;
};

} // namespace demo

#endif
