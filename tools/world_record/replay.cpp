#include "replay.h"

#include <orvo/perception/perception_reader.h>
#include <orvo/world/world_model.h>

#include <algorithm>
#include <cmath>

namespace orvo::record {

double quantile(std::vector<double>& values, double share) {
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const auto at = static_cast<std::size_t>(share * static_cast<double>(values.size() - 1) + 0.5);
    return values[std::min(at, values.size() - 1)];
}

namespace {

void hide_landmarks(perception::Perception& now, int keep) {
    for (std::size_t i = 0; i < perception::landmark_count; ++i)
        if ((now.vision.landmarks_seen >> i) & 1u) {
            if (keep > 0)
                --keep;
            else
                now.vision.landmarks_seen &= static_cast<std::uint8_t>(~(1u << i));
        }
}

} // namespace

Scores replay(const std::vector<Frame>& frames, const world::WorldParams& params,
              world::Method method, const Handicap& handicap, unsigned seed) {
    Scores scores;
    if (frames.empty())
        return scores;
    world::WorldModel model(params, method, seed);
    model.set_team("orvo", perception::Side::left);
    model.place(frames[0].x, frames[0].y, frames[0].heading_deg);
    perception::PerceptionReader reader;
    perception::Perception now;
    std::vector<double> position, heading, ball;
    double moved_at = -1, last_move = -1e9, prev_x = frames[0].x, prev_y = frames[0].y;
    for (const Frame& f : frames) {
        if (!reader.read(f.payload, now))
            continue;
        hide_landmarks(now, handicap.max_landmarks);
        model.update(now, {f.dx + handicap.false_step_m, f.dy, f.dturn_deg});
        if (!f.truth_known)
            continue;
        if (std::hypot(f.x - prev_x, f.y - prev_y) > 1.0) {
            if (handicap.until_moved)
                break;
            moved_at = last_move = now.time;
            ++scores.moves;
        }
        prev_x = f.x;
        prev_y = f.y;
        ++scores.frames;
        const world::Pose& pose = model.pose();
        const double error = std::hypot(pose.x - f.x, pose.y - f.y);
        if (now.time - last_move >= 1.0) {
            position.push_back(error);
            heading.push_back(std::abs(std::remainder(pose.heading_deg - f.heading_deg, 360.0)));
        }
        if (moved_at >= 0 && error < 0.5) {
            scores.recovery_worst_s = std::max(scores.recovery_worst_s, now.time - moved_at);
            moved_at = -1;
        }
        const world::BallBelief& b = model.ball();
        if (f.ball_known && b.known && now.time - b.last_seen <= 1.0)
            ball.push_back(std::hypot(b.x - f.ball_x, b.y - f.ball_y));
    }
    if (moved_at >= 0)
        scores.recovery_worst_s = -1;
    scores.position_median_m = quantile(position, 0.5);
    scores.position_p95_m = quantile(position, 0.95);
    scores.heading_median_deg = quantile(heading, 0.5);
    scores.ball_median_m = quantile(ball, 0.5);
    return scores;
}

} // namespace orvo::record
