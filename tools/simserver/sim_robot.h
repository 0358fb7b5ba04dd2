#ifndef ORVO_TOOLS_SIMSERVER_SIM_ROBOT_H
#define ORVO_TOOLS_SIMSERVER_SIM_ROBOT_H

#include <chrono>
#include <memory>
#include <shared_mutex>
#include <stdexcept>
#include <string>

namespace orvo::net {
class CommUnit;
}

namespace orvo::sim {

/// The robot's connection failed, closed or did not join in time.
class SimRobotError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct RobotEntry {
    int type = 0;   ///< robot type, 0 to 4
    int number = 0; ///< the number asked for; 0 lets the server pick
    std::string team = "orvo";
    /// How long to wait for each perception (the server may be slow to start).
    std::chrono::milliseconds wait{10000};
};

/// One robot on a real server, driven from the calling thread: the bare
/// connection that drills and tests use instead of a whole plug-in agent.
/// It joins the way a server requires (the scene, then "init" only after the
/// first perception) and, in sync mode, ends every command with "(syn)" so
/// the server steps on. In sync mode connect the next robot only once this
/// one has joined: a connection that comes sooner stalls the server.
class SimRobot {
public:
    /// Connects to `host`:`port` and sends the scene; join() completes the entry.
    SimRobot(const std::string& host, int port, const RobotEntry& entry);
    ~SimRobot();
    SimRobot(const SimRobot&) = delete;
    SimRobot& operator=(const SimRobot&) = delete;

    /// Waits for the first perception, sends "init", then steps until a
    /// perception names the robot's number (at most `cycles` cycles).
    /// Returns the number the server gave.
    int join(int cycles = 100);
    /// The next perception's payload; throws SimRobotError when none comes
    /// within the entry's wait or the server closed the connection.
    const std::string& receive();
    /// Sends `commands` followed by "(syn)" as one frame.
    void send(const std::string& commands);
    /// One cycle: send, then receive.
    const std::string& step(const std::string& commands = "") {
        send(commands);
        return receive();
    }
    int number() const { return number_; }
    const std::string& last() const { return payload_; }

private:
    std::unique_ptr<net::CommUnit> link_;
    RobotEntry entry_;
    std::string payload_;
    std::string outgoing_;
    int number_ = 0;
};

/// Connects a robot to a sync-mode server at rest: waits for the cycle in
/// progress to end, connects (see SimRobot's constructor), and waits again
/// while the server takes the scene. A scene taken mid-cycle can stall the
/// server for good; the caller keeps the other robots from "(syn)"ing meanwhile.
std::unique_ptr<SimRobot> connect_at_rest(const std::string& host, int port,
                                          const RobotEntry& entry);

/// Robots that step in threads of one process, in sync mode: a robot that
/// connects while the others' "(syn)"s are moving the server through a cycle
/// can stall the server for good (measured: 6 of 14 teams of eleven; none of
/// 25 with this gate). The others send through syn() while connect() holds
/// the gate, so a robot connects to a server at rest.
class JoinGate {
public:
    /// Sends `commands` and "(syn)" for `robot`, unless a robot is connecting.
    void syn(SimRobot& robot, const std::string& commands = "");
    /// Connects a robot (see SimRobot's constructor) while the others wait.
    std::unique_ptr<SimRobot> connect(const std::string& host, int port, const RobotEntry& entry);

private:
    std::shared_mutex gate_;
};

/// The number a perception's game state gives ("(unum N)"), or 0.
int number_in(const std::string& perception);

} // namespace orvo::sim

#endif
