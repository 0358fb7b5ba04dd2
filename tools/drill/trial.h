#ifndef ORVO_TOOLS_DRILL_TRIAL_H
#define ORVO_TOOLS_DRILL_TRIAL_H

#include "drill_options.h"

#include <orvo/monitor/monitor_client.h>
#include <orvo/perception/perception.h>
#include <orvo/perception/perception_reader.h>
#include <orvo/robot/joints.h>

#include <nlohmann/json.hpp>

#include <array>
#include <memory>
#include <optional>
#include <string>

namespace orvo::sim {
class SimServer;
class SimRobot;
} // namespace orvo::sim

namespace orvo::drill {

/// A torso on the field as the monitor sees it: metres and degrees; the
/// heading counts whole turns rather than wrapping at 180.
struct FieldPose {
    double x = 0;
    double y = 0;
    double heading = 0;
};

/// One run of a drill: a server (a new one of our own, or the one given), the
/// monitor connected to it, one robot of the drill's type joined, beamed and
/// play on. Measures by the monitor only: the robot's pose, its falls (each
/// time its torso tilts beyond 53 degrees or drops below 0.25 m) and the game
/// time. Everything it started ends with it.
class Trial {
public:
    Trial(const DrillOptions& options, const FieldPose& beam);
    ~Trial();
    Trial(const Trial&) = delete;
    Trial& operator=(const Trial&) = delete;

    /// One cycle: sends `commands` and reads the next perception.
    const perception::Perception& step(const std::string& commands);
    const perception::Perception& perception() const { return perception_; }
    /// The text of the last perception, as the server sent it.
    const std::string& payload() const;

    /// Waits (briefly) until the monitor has shown the game up to the robot's
    /// last perception: the monitor's stream lags behind in bursts.
    void catch_up();
    /// The robot's pose by the monitor, once it has seen the robot.
    std::optional<FieldPose> pose() const;
    /// Everything the monitor shows of the robot, once it has seen it.
    const monitor::RobotTruth* truth() const;
    /// Game time by the monitor, seconds.
    double game_time() const;
    /// Everything the monitor shows now.
    const monitor::GroundTruth& monitor_truth() const { return monitor_->truth(); }
    /// The monitor connection, for the trainer's commands.
    monitor::MonitorClient& monitor() { return *monitor_; }
    /// The robot's number on the field.
    int number() const { return number_; }
    /// Whether the monitor shows the robot lying or sitting now.
    bool down() const { return down_; }
    /// What every drill reports of a run: "skill", "type", "run",
    /// "start_time" (given) and "end_time" (now, game time) and "falls".
    nlohmann::json record(const std::string& skill, const DrillOptions& options, int run,
                          double start_time) const;
    /// Falls counted since the trial began.
    int falls() const { return falls_; }
    /// The torso's height (m) and tilt from upright (deg) by the monitor.
    double height() const { return height_; }
    double tilt() const { return tilt_; }

private:
    void watch();

    std::unique_ptr<sim::SimServer> server_;
    std::unique_ptr<monitor::MonitorClient> monitor_;
    std::unique_ptr<sim::SimRobot> robot_;
    perception::PerceptionReader reader_;
    perception::Perception perception_;
    int number_ = 0;
    int falls_ = 0;
    bool down_ = false;
    std::optional<FieldPose> pose_;
    double height_ = 0;
    double tilt_ = 0;
};

/// The ball's radius on this server, metres: where its centre lies at rest.
constexpr double ball_radius = 0.042;

/// Each foot's place on the field by the monitor, metres: left x, y, z, then
/// right x, y, z; zeros for a foot not seen yet.
std::array<double, 6> feet_on_field(const Trial& trial);

/// The server's command setting the speeds (rad/s) of the joints in `joints`.
std::string joint_command(const robot::JointSet& joints, const robot::JointValues& speeds);

/// `pose` seen from `origin`: metres forward and left of it, degrees turned.
FieldPose relative_to(const FieldPose& origin, const FieldPose& pose);

} // namespace orvo::drill

#endif
