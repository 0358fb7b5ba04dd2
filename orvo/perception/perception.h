#ifndef ORVO_PERCEPTION_PERCEPTION_H
#define ORVO_PERCEPTION_PERCEPTION_H

#include <orvo/core/export.h>
#include <orvo/math/polar.h>
#include <orvo/math/vector3d.h>
#include <orvo/perception/play_mode.h>
#include <orvo/perception/reused_list.h>
#include <orvo/robot/joints.h>

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace orvo::perception {

enum class Side : std::uint8_t { none, left, right };

/// "(GS (unum N) (team left|right) (sl N) (sr N) (t T) (pm MODE))"; number and
/// side come only in the one message that answers the robot's "init".
struct GameState {
    int unum = 0;           ///< 0 unless this message tells it
    Side side = Side::none; ///< none unless this message tells it
    int score_left = 0;
    int score_right = 0;
    double time = 0; ///< game time, seconds
    PlayMode play_mode = PlayMode::unknown;
    std::string play_mode_name; ///< as sent, also when the mode is unknown
};

/// Every joint angle of "(HJ (n NAME) (ax DEGREES))", by joint.
class JointAngles {
public:
    bool has(robot::Joint joint) const { return (present >> index(joint)) & 1u; }
    /// Degrees; 0 for a joint this message did not report.
    float operator[](robot::Joint joint) const { return degrees[index(joint)]; }
    /// How many joints this message reported.
    std::size_t count() const { return std::bitset<robot::joint_count>(present).count(); }

    void clear() {
        present = 0;
        degrees.fill(0.0f);
    }
    void set(robot::Joint joint, float value) {
        degrees[index(joint)] = value;
        present |= 1u << index(joint);
    }

private:
    static std::size_t index(robot::Joint joint) { return static_cast<std::size_t>(joint); }
    std::array<float, robot::joint_count> degrees{};
    std::uint32_t present = 0;
};

/// The force sensors under the feet; robot type 4 also has one under each toe.
enum class Foot : std::uint8_t { left, right, left_toe, right_toe };
constexpr std::size_t foot_count = 4;

/// "(FRP (n lf) (c X Y Z) (f X Y Z))", sent only while the foot touches something.
struct FootForce {
    bool touches = false;   ///< reported in this message
    math::Vector3d contact; ///< contact point, metres, in the foot's frame
    math::Vector3d force;   ///< newtons
};

/// The fixed markers of the field: corner flags and goal posts.
enum class Landmark : std::uint8_t { F1L, F2L, F1R, F2R, G1L, G2L, G1R, G2R };
constexpr std::size_t landmark_count = 8;

/// The body parts a seen robot shows: "head", "rlowerarm", "llowerarm",
/// "rfoot", "lfoot".
enum class BodyPart : std::uint8_t { head, right_lower_arm, left_lower_arm, right_foot, left_foot };
constexpr std::size_t body_part_count = 5;

/// "(P (team NAME) (id N) (head (pol D A E)) ...)": another robot (or the
/// agent's own arms and feet) with the parts in view.
struct SeenPlayer {
    std::string team;
    int id = 0;
    std::array<math::Polar, body_part_count> parts;
    std::uint8_t seen = 0; ///< bit per BodyPart

    bool sees(BodyPart part) const { return (seen >> static_cast<int>(part)) & 1u; }
    const math::Polar& operator[](BodyPart part) const {
        return parts[static_cast<std::size_t>(part)];
    }
};

/// "(L (pol ...) (pol ...))": the visible stretch of a field line.
struct SeenLine {
    math::Polar begin;
    math::Polar end;
};

/// Everything of "(See ...)". Polar values: metres and degrees, relative to
/// the camera in the robot's head.
struct Vision {
    std::array<math::Polar, landmark_count> landmarks;
    std::uint8_t landmarks_seen = 0; ///< bit per Landmark
    bool sees_ball = false;
    math::Polar ball;
    ReusedList<SeenPlayer> players;
    std::vector<SeenLine> lines;

    bool sees(Landmark landmark) const {
        return (landmarks_seen >> static_cast<int>(landmark)) & 1u;
    }
    const math::Polar& operator[](Landmark landmark) const {
        return landmarks[static_cast<std::size_t>(landmark)];
    }
};

/// "(hear TEAM TIME self|DIRECTION TEXT)"; servers of the older form leave
/// the team out, which leaves `team` empty.
struct Heard {
    std::string team;
    double time = 0;
    bool self = false;   ///< the robot hears itself
    float direction = 0; ///< degrees, when not self
    std::string text;
};

/// One perception message, typed. Every value is a copy: nothing refers to
/// the message text, so a Perception outlives the buffer it was read from.
/// A PerceptionReader fills it again for every message and keeps the
/// storage of lists and strings, so keep one Perception per agent and reuse it.
struct ORVO_API Perception {
    bool has_time = false;
    double time = 0; ///< server time, seconds: "(time (now T))"

    bool has_game_state = false;
    GameState game_state;

    bool has_gyroscope = false;
    math::Vector3d gyroscope; ///< degrees per second: "(GYR (n torso) (rt X Y Z))"
    bool has_accelerometer = false;
    math::Vector3d accelerometer; ///< m/s²: "(ACC (n torso) (a X Y Z))"

    JointAngles joints;
    std::array<FootForce, foot_count> feet;
    const FootForce& operator[](Foot foot) const { return feet[static_cast<std::size_t>(foot)]; }

    bool has_vision = false;
    Vision vision;

    /// "(mypos X Y Z)": only the stand-in server tells a robot where it is.
    bool has_position = false;
    math::Vector3d position;

    ReusedList<Heard> heard;

    /// Elements of this message left out because a value in them was not a
    /// finite number: each reads as if the server had not sent it.
    std::uint32_t lost_elements = 0;

    /// Forgets the previous message's content, keeping the storage.
    void clear();
};

} // namespace orvo::perception

#endif
