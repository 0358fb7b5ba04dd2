#ifndef ORVO_DEMO_TEAM_AGENT_H
#define ORVO_DEMO_TEAM_AGENT_H

#include "server_clock.h"
#include "sync_gate.h"

#include <orvo/core/agent.h>
#include <orvo/perception/perception.h>
#include <orvo/perception/perception_reader.h>

#include <chrono>
#include <ostream>
#include <string>
#include <vector>

namespace orvo::behaviors {
class Behavior;
}
namespace orvo::communication {
class Messenger;
}
namespace orvo::knowledgebase {
class ActionLog;
}
namespace orvo::net {
class CommUnit;
}

namespace demo {

class TakePosition;
class PlaySoccer;
class Posture;
class TeamConfiguration;
class WorldModel;

/// The "agent": puts its robot on the field, joins the team once the server
/// has sent the first perception, then plays one cycle per server message
/// (read the perception, let a behavior act, send the drawings, end with
/// "(syn)") until the server closes the connection or the configured number
/// of server cycles has passed since the kick-off; then reports what it did.
class TeamAgent : public orvo::Agent {
public:
    void link(orvo::Class_Map& classes) override;
    void run() override;

    /// One cycle for one server message; public so that it can be timed alone.
    void play(const std::string& message);
    void report(std::ostream& out);

private:
    void join();
    void act();

    orvo::communication::Messenger* messenger = nullptr;
    orvo::net::CommUnit* communit = nullptr;
    TeamConfiguration* configuration = nullptr;
    WorldModel* world = nullptr;
    orvo::knowledgebase::ActionLog* action_log = nullptr;
    TakePosition* take_position = nullptr;
    orvo::behaviors::Behavior* spread_out = nullptr;
    orvo::behaviors::Behavior* hold_position = nullptr;
    PlaySoccer* play_soccer = nullptr;

    Posture* posture = nullptr;

    orvo::perception::PerceptionReader reader;
    orvo::perception::Perception perception;
    ServerClock clock;
    SyncGate gate;
    bool kicked_off = false;
    /// When the robot was first beamed (s; -1 once beamed again, before a
    /// playing team's kick-off).
    double placed_at = -1;
    static constexpr double replace_after_s = 1.0;
    unsigned before_kick_off = 0; ///< server cycles from the first perception to the kick-off
    bool joined = false;          ///< "init" sent
    unsigned unreadable = 0;
    unsigned lost_elements = 0;             ///< left out of perceptions that were read
    std::vector<std::string> lost_examples; ///< the first perceptions that lost elements
    std::vector<double> cycle_micros;       ///< receive to "(syn)" sent, per cycle
};

} // namespace demo

#endif
