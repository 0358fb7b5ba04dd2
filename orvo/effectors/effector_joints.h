#ifndef ORVO_EFFECTORS_EFFECTOR_JOINTS_H
#define ORVO_EFFECTORS_EFFECTOR_JOINTS_H

#include <orvo/effectors/effector.h>
#include <orvo/knowledgebase/descriptors/descriptor_effector.h>
#include <orvo/robot/joints.h>

#include <ostream>
#include <string>

namespace orvo::effectors {

/// Drives the joint motors, registered as "effector_joints". Each call sends
/// the speed of every joint it is given in one message, "(he1 0.500)(he2
/// -0.300)...", so that a cycle's joint commands reach the server together.
class ORVO_API Effector_Joints : public Effector {
public:
    Effector_Joints();
    ~Effector_Joints() override;
    /// Throws LogicException when "messenger" or "injector_effector" is of
    /// another class, which the link left as null.
    void init() override;
    /// "effector_joints".
    std::string get_name() const override;

    /// Sends "(EFFECTOR SPEED)" for every joint in `joints`, in the order of
    /// the joint table; speeds in rad/s, clamped to the fastest the joint
    /// turns on any robot type (the server clamps to the robot's own). Reports
    /// the command to the effector injector, which needs a current action.
    /// An empty set sends and reports nothing.
    void operator()(const robot::JointValues& speeds, const robot::JointSet& joints);

    /// The last message sent.
    const std::string& get_command() const { return command; }

private:
    std::string command;
};

/// What the action log keeps of one joint command: the message sent, and as
/// properties the joints it concerns ("joints", a robot::JointSet) and their
/// speeds ("speeds", robot::JointValues, rad/s).
class ORVO_API Joint_Command : public knowledgebase::descriptors::Descriptor_Effector {
public:
    Joint_Command(const std::string& id, const std::string& command,
                  const robot::JointValues& speeds, const robot::JointSet& joints);
    ~Joint_Command() override;
    /// "<id>: <message>".
    std::ostream& print(std::ostream& out) const override;
};

} // namespace orvo::effectors

extern "C" ORVO_API orvo::Constructable* create_effector_joints();

#endif
