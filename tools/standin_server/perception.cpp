#include "perception.h"

#include <orvo/protocol/constants.h>

#include <cmath>
#include <cstdio>

namespace standin {

namespace {

using orvo::robot::Joint;

using orvo::protocol::degrees_per_radian;
constexpr float head_height = 0.5f;
// The camera sees this far to each side of where the head points, and up and down.
constexpr double view_half_angle = 60;

struct Landmark {
    const char* name;
    float x, y, z; ///< field frame
};

// Goal posts, corner flags and the ball at the centre spot, where the stand-in keeps it.
constexpr Landmark landmarks[] = {
    {"F1L", -15, 10, 0},      {"F2L", -15, -10, 0},      {"F1R", 15, 10, 0},
    {"F2R", 15, -10, 0},      {"G1L", -15, 1.05f, 0.8f}, {"G2L", -15, -1.05f, 0.8f},
    {"G1R", 15, 1.05f, 0.8f}, {"G2R", 15, -1.05f, 0.8f}, {"B", 0, 0, 0.04f},
};

// The order in which a real server reports the joints after the head; the
// force sensors of a foot come between its ankle joints.
constexpr Joint arms[] = {Joint::right_shoulder_pitch, Joint::right_shoulder_roll,
                          Joint::right_elbow_yaw,      Joint::right_elbow_roll,
                          Joint::left_shoulder_pitch,  Joint::left_shoulder_roll,
                          Joint::left_elbow_yaw,       Joint::left_elbow_roll};
struct Leg {
    Joint first[5];
    Joint ankle_roll, toe;
    const char *foot, *toes;
};
constexpr Leg legs[] = {
    {{Joint::right_hip_yaw_pitch, Joint::right_hip_roll, Joint::right_hip_pitch,
      Joint::right_knee_pitch, Joint::right_ankle_pitch},
     Joint::right_ankle_roll,
     Joint::right_toe,
     "rf",
     "rf1"},
    {{Joint::left_hip_yaw_pitch, Joint::left_hip_roll, Joint::left_hip_pitch,
      Joint::left_knee_pitch, Joint::left_ankle_pitch},
     Joint::left_ankle_roll,
     Joint::left_toe,
     "lf",
     "lf1"},
};

class Writer {
public:
    explicit Writer(std::string& out_) : out(out_) {}
    template <typename... Values> void put(const char* format, Values... values) {
        char part[256];
        const int n = std::snprintf(part, sizeof part, format, values...);
        out.append(part, static_cast<std::size_t>(std::min<int>(n, sizeof part - 1)));
    }
    void joint(const Body& body, Joint joint) {
        put("(HJ (n %s) (ax %.2f))", std::string(orvo::robot::info(joint).perceptor).c_str(),
            body.angle(joint));
    }
    /// A robot standing still carries half its weight on each foot.
    void foot(const char* name) {
        put("(FRP (n %s) (c 0.00 -0.01 -0.01) (f 0.00 0.00 22.59))", name);
    }
    void text(std::string_view more) { out += more; }
    /// " (NAME (pol D A E))": distance and angles of a point as `agent`'s
    /// camera in its head sees it; nothing when the point is out of view.
    bool seen(const Agent& agent, std::string_view name, float x, float y, float z) {
        const double dx = x - agent.x, dy = y - agent.y, dz = z - head_height;
        const double flat = std::hypot(dx, dy);
        const double pan = agent.rotation + agent.body.angle(Joint::neck_yaw);
        const double azimuth = std::remainder(std::atan2(dy, dx) * degrees_per_radian - pan, 360.0);
        const double elevation =
            std::atan2(dz, flat) * degrees_per_radian - agent.body.angle(Joint::neck_pitch);
        if (std::abs(azimuth) > view_half_angle || std::abs(elevation) > view_half_angle) {
            return false;
        }
        text(" (");
        text(name);
        put(" (pol %.2f %.2f %.2f))", std::hypot(flat, dz), azimuth, elevation);
        return true;
    }

private:
    std::string& out;
};

void write_vision(Writer& w, const Agent& agent, const Agents& agents) {
    w.text("(See");
    for (const Landmark& mark : landmarks) {
        w.seen(agent, mark.name, mark.x, mark.y, mark.z);
    }
    for (const auto& other : agents) {
        if (other.get() == &agent || other->link.closed() || !other->joined()) {
            continue;
        }
        std::string player =
            "P (team " + other->team + ") (id " + std::to_string(other->unum) + ")";
        std::string head;
        Writer part(head);
        if (part.seen(agent, "head", other->x, other->y, head_height)) {
            w.text(" (" + player + head + ")");
        }
    }
    w.text(")");
}

} // namespace

std::string write_perception(const Agent& agent, const Moment& moment, const Agents& agents) {
    std::string message;
    message.reserve(2048);
    Writer w(message);
    w.put("(time (now %.2f))(GS ", moment.now);
    if (agent.announce) {
        w.put("(unum %d) (team %s) ", agent.unum, agent.side == 0 ? "left" : "right");
    }
    w.put("(sl 0) (sr 0) (t %.2f) (pm %s))", moment.game_time,
          std::string(orvo::protocol::name_of(moment.mode)).c_str());
    for (const std::string& hear : agent.heard) {
        message += hear;
    }
    w.put("(GYR (n torso) (rt 0.00 0.00 0.00))(ACC (n torso) (a 0.00 0.00 9.81))");
    const Body& body = agent.body;
    w.joint(body, Joint::neck_yaw);
    w.joint(body, Joint::neck_pitch);
    if (sees(moment.cycle)) {
        write_vision(w, agent, agents);
    }
    for (Joint joint : arms) {
        w.joint(body, joint);
    }
    const bool toes = body.joints() > static_cast<std::size_t>(Joint::right_toe);
    for (const Leg& leg : legs) {
        for (Joint joint : leg.first) {
            w.joint(body, joint);
        }
        w.foot(leg.foot);
        w.joint(body, leg.ankle_roll);
        if (toes) {
            w.joint(body, leg.toe);
            w.foot(leg.toes);
        }
    }
    // Only the stand-in tells an agent where it is, in its team's frame.
    const float mirror = agent.side == 0 ? 1.0f : -1.0f;
    w.put("(mypos %.2f %.2f %.2f)", mirror * agent.x + 0.0f, mirror * agent.y + 0.0f, agent.z);
    return message;
}

} // namespace standin
