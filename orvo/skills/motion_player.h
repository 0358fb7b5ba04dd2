#ifndef ORVO_SKILLS_MOTION_PLAYER_H
#define ORVO_SKILLS_MOTION_PLAYER_H

#include <orvo/core/export.h>
#include <orvo/robot/joints.h>
#include <orvo/skills/motion.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace orvo::skills {

/// Decides, cycle by cycle, where every driven joint should be. Several
/// motions play at once on the joints they name (a head scan beside a wave):
/// a motion that starts takes its joints from whatever drove them. A motion
/// starts from the angles read on its first cycle and moves smoothly (eased
/// in and out) from keyframe to keyframe; when a motion ends, its joints hold
/// its last pose. A looping motion goes on from its last keyframe to its
/// first.
class ORVO_API MotionPlayer {
public:
    MotionPlayer();

    /// Plays `motion` from the next cycle on.
    void play(std::shared_ptr<const Motion> motion, bool loop = false);
    /// Holds `joint` at `degrees` (clamped to its range), taking it from any motion.
    void hold(robot::Joint joint, double degrees);
    /// Stops driving `joint`, or every joint.
    void release(robot::Joint joint);
    void release_all();

    /// The targets at simulation time `now` (seconds) for the driven joints,
    /// given the angles read this cycle (deg).
    void update(double now, const robot::JointValues& angles);

    /// Targets (deg), clamped to the ranges, as of the last update.
    const robot::JointValues& targets() const { return targets_; }
    /// How fast each target moves over the next cycle (deg/s).
    const robot::JointValues& rates() const { return rates_; }
    /// The joints that have a target.
    const robot::JointSet& driven() const { return driven_; }
    /// Whether a motion of this name still drives a joint.
    bool playing(const std::string& name) const;
    /// Names of the motions playing, oldest first, blank-separated ("" when none).
    std::string playing() const;

private:
    struct Track {
        std::shared_ptr<const Motion> motion;
        bool loop = false;
        bool started = false;
        double start = 0;
        long pass = 0;
        robot::JointSet joints;
        /// The pose every keyframe reaches, joints it leaves out carried over;
        /// `from` is where the current pass starts.
        robot::JointValues from{};
        std::vector<robot::JointValues> poses;
    };

    void resolve(Track& track) const;
    /// The pose of `track` at `elapsed` seconds into its current pass.
    double angle_at(const Track& track, std::size_t joint, double elapsed) const;
    void drop_idle_tracks();
    void hold_last_pose(Track& track);

    std::vector<Track> tracks_;
    /// Which track drives each joint; no_track for a held or idle joint.
    std::array<int, robot::joint_count> owner_;
    robot::JointValues held_{};
    robot::JointValues targets_{};
    robot::JointValues rates_{};
    robot::JointSet driven_;

    static constexpr int no_track = -1;
};

} // namespace orvo::skills

#endif
