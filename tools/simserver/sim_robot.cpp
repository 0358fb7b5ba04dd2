#include "sim_robot.h"

#include <cstdlib>
#include <mutex>
#include <thread>

#include <orvo/net/comm_unit.h>

namespace orvo::sim {

int number_in(const std::string& perception) {
    const auto at = perception.find("(unum ");
    return at == std::string::npos ? 0 : std::atoi(perception.c_str() + at + 6);
}

SimRobot::SimRobot(const std::string& host, int port, const RobotEntry& entry)
    : link_(std::make_unique<net::CommUnit>()), entry_(entry) {
    if (!link_->open_connection(host, static_cast<unsigned int>(port))) {
        throw SimRobotError("cannot connect to the server at " + host + ":" + std::to_string(port));
    }
    link_->write_message("(scene rsg/agent/nao/nao_hetero.rsg " + std::to_string(entry.type) + ")");
}

SimRobot::~SimRobot() {
    link_->close_connection();
}

int SimRobot::join(int cycles) {
    receive();
    // An init sent before the first perception is ignored by the server.
    send("(init (unum " + std::to_string(entry_.number) + ")(teamname " + entry_.team + "))");
    for (int cycle = 0; cycle < cycles; ++cycle) {
        number_ = number_in(receive());
        if (number_ != 0) {
            return number_;
        }
        send("");
    }
    throw SimRobotError("the server gave robot type " + std::to_string(entry_.type) +
                        " no number within " + std::to_string(cycles) + " cycles");
}

const std::string& SimRobot::receive() {
    const auto result = link_->receive_message(payload_, entry_.wait);
    if (result == net::Received::closed) {
        throw SimRobotError("the server closed the robot's connection");
    }
    if (result == net::Received::timed_out) {
        throw SimRobotError("no perception from the server within " +
                            std::to_string(entry_.wait.count()) + " ms");
    }
    return payload_;
}

void SimRobot::send(const std::string& commands) {
    outgoing_.assign(commands);
    outgoing_ += "(syn)";
    link_->write_message(outgoing_);
}

void JoinGate::syn(SimRobot& robot, const std::string& commands) {
    std::shared_lock hold(gate_);
    robot.send(commands);
}

std::unique_ptr<SimRobot> connect_at_rest(const std::string& host, int port,
                                          const RobotEntry& entry) {
    constexpr std::chrono::milliseconds settle{30};
    std::this_thread::sleep_for(settle); // the cycle in progress ends
    auto robot = std::make_unique<SimRobot>(host, port, entry);
    std::this_thread::sleep_for(settle); // the server takes the scene at rest
    return robot;
}

std::unique_ptr<SimRobot> JoinGate::connect(const std::string& host, int port,
                                            const RobotEntry& entry) {
    std::unique_lock hold(gate_);
    return connect_at_rest(host, port, entry);
}

} // namespace orvo::sim
