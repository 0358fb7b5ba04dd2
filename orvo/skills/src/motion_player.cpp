#include <orvo/skills/motion_player.h>

#include <algorithm>
#include <cmath>

namespace orvo::skills {

namespace {

/// Where a motion is: in the keyframe `segment` leads to, `eased` of the way
/// there; `segment` is the number of keyframes once the motion is over.
struct Point {
    std::size_t segment;
    double eased;
};

Point locate(const Motion& motion, double elapsed) {
    const auto& keyframes = motion.keyframes();
    for (std::size_t i = 0; i < keyframes.size(); ++i) {
        if (elapsed < keyframes[i].duration) {
            const double x = std::max(elapsed, 0.0) / keyframes[i].duration;
            // Eased in and out: every keyframe is reached at rest, so a joint
            // never has to turn about at full speed.
            return {i, x * x * (3 - 2 * x)};
        }
        elapsed -= keyframes[i].duration;
    }
    return {keyframes.size(), 0.0};
}

double clamped(std::size_t joint, double degrees) {
    return robot::clamp_to_range(static_cast<robot::Joint>(joint), degrees);
}

} // namespace

MotionPlayer::MotionPlayer() {
    owner_.fill(no_track);
}

void MotionPlayer::play(std::shared_ptr<const Motion> motion, bool loop) {
    if (!motion) {
        return;
    }
    Track track;
    track.joints = motion->joints();
    track.motion = std::move(motion);
    track.loop = loop;
    tracks_.push_back(std::move(track));
    const int index = static_cast<int>(tracks_.size()) - 1;
    for (std::size_t j = 0; j < robot::joint_count; ++j) {
        if (tracks_.back().joints.test(j)) {
            owner_[j] = index;
        }
    }
    driven_ |= tracks_.back().joints;
    drop_idle_tracks();
}

void MotionPlayer::hold(robot::Joint joint, double degrees) {
    const std::size_t j = robot::index(joint);
    owner_[j] = no_track;
    held_[j] = robot::clamp_to_range(joint, degrees);
    driven_.set(j);
    drop_idle_tracks();
}

void MotionPlayer::release(robot::Joint joint) {
    owner_[robot::index(joint)] = no_track;
    driven_.reset(robot::index(joint));
    drop_idle_tracks();
}

void MotionPlayer::release_all() {
    owner_.fill(no_track);
    driven_.reset();
    tracks_.clear();
}

void MotionPlayer::update(double now, const robot::JointValues& angles) {
    for (Track& track : tracks_) {
        if (!track.started) {
            track.started = true;
            track.start = now;
            track.from = angles;
            resolve(track);
        }
        const double duration = track.motion->duration();
        const double elapsed = std::max(now - track.start, 0.0);
        if (!track.loop && elapsed >= duration) {
            hold_last_pose(track);
            continue;
        }
        const long pass = track.loop ? static_cast<long>(std::floor(elapsed / duration)) : 0;
        if (pass != track.pass) {
            track.pass = pass;
            track.from = track.poses.back();
            resolve(track);
        }
    }
    drop_idle_tracks();

    for (std::size_t t = 0; t < tracks_.size(); ++t) {
        const Track& track = tracks_[t];
        const double elapsed =
            std::max(now - track.start, 0.0) - track.pass * track.motion->duration();
        const Point at = locate(*track.motion, elapsed);
        const Point next = locate(*track.motion, elapsed + robot::cycle_seconds);
        const auto pose = [&](const Point& point, std::size_t j) {
            if (point.segment == track.poses.size()) {
                return track.poses.back()[j];
            }
            const double a = point.segment == 0 ? track.from[j] : track.poses[point.segment - 1][j];
            return a + (track.poses[point.segment][j] - a) * point.eased;
        };
        for (std::size_t j = 0; j < robot::joint_count; ++j) {
            if (owner_[j] == static_cast<int>(t)) {
                targets_[j] = clamped(j, pose(at, j));
                rates_[j] = (clamped(j, pose(next, j)) - targets_[j]) / robot::cycle_seconds;
            }
        }
    }
    for (std::size_t j = 0; j < robot::joint_count; ++j) {
        if (driven_.test(j) && owner_[j] == no_track) {
            targets_[j] = held_[j];
            rates_[j] = 0;
        }
    }
}

bool MotionPlayer::playing(const std::string& name) const {
    return std::any_of(tracks_.begin(), tracks_.end(),
                       [&](const Track& track) { return track.motion->name() == name; });
}

std::string MotionPlayer::playing() const {
    std::string names;
    for (const Track& track : tracks_) {
        names += (names.empty() ? "" : " ") + track.motion->name();
    }
    return names;
}

void MotionPlayer::resolve(Track& track) const {
    const auto& keyframes = track.motion->keyframes();
    track.poses.resize(keyframes.size());
    const robot::JointValues* previous = &track.from;
    for (std::size_t i = 0; i < keyframes.size(); ++i) {
        for (std::size_t j = 0; j < robot::joint_count; ++j) {
            // Clamped before easing, so a joint glides to its range's end too.
            track.poses[i][j] =
                keyframes[i].joints.test(j) ? clamped(j, keyframes[i].angles[j]) : (*previous)[j];
        }
        previous = &track.poses[i];
    }
}

void MotionPlayer::hold_last_pose(Track& track) {
    for (std::size_t j = 0; j < robot::joint_count; ++j) {
        if (owner_[j] != no_track && &tracks_[owner_[j]] == &track) {
            held_[j] = clamped(j, track.poses.back()[j]);
            owner_[j] = no_track;
        }
    }
}

void MotionPlayer::drop_idle_tracks() {
    std::vector<bool> busy(tracks_.size(), false);
    for (const int owner : owner_) {
        if (owner != no_track) {
            busy[owner] = true;
        }
    }
    if (std::find(busy.begin(), busy.end(), false) == busy.end()) {
        return;
    }
    std::vector<int> renumbered(tracks_.size(), no_track);
    std::vector<Track> kept;
    for (std::size_t t = 0; t < tracks_.size(); ++t) {
        if (busy[t]) {
            renumbered[t] = static_cast<int>(kept.size());
            kept.push_back(std::move(tracks_[t]));
        }
    }
    tracks_ = std::move(kept);
    for (int& owner : owner_) {
        owner = owner == no_track ? no_track : renumbered[owner];
    }
}

} // namespace orvo::skills
