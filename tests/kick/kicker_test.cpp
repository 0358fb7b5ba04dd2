// The kicker's decisions without a server, fed made-up sightings of a ball
// that lies still: it walks toward a ball far off, steps back from one too
// close, kicks one lying where the kick needs it, waits while one seen on the
// spot still moves, walks on to one the swing would pass over or meet too
// early, and gives up on one it never sees.
#include <orvo/kick/kicker.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using orvo::kick::KickPhase;

orvo::params::ParamSet load(const std::string& skill) {
    return orvo::params::ParamSet::load(std::string(ORVO_PARAMS) + "/" + skill + "/type0.json");
}

/// A perception that sees the ball at (`x`, `y`) on the ground of the
/// torso's level frame, the neck straight and the torso leaning `lean`.
orvo::perception::Perception seeing(double x, double y, double lean) {
    const double up = -0.45;
    const double l = lean * M_PI / 180;
    const double forward = (x - std::sin(l) * up) / std::cos(l);
    const double distance = std::sqrt(forward * forward + y * y + up * up);
    orvo::perception::Perception perception;
    perception.has_vision = true;
    perception.vision.sees_ball = true;
    perception.vision.ball = orvo::math::Polar(
        static_cast<float>(distance), static_cast<float>(std::atan2(y, forward) * 180 / M_PI),
        static_cast<float>(std::asin(up / distance) * 180 / M_PI));
    return perception;
}

struct Case {
    const char* what;
    bool sees;
    double ball_x, ball_y; ///< from the hips, as a share of the spot's offsets (1: on the spot)
    KickPhase expected;
    double seconds;
    double jitter = 0;   ///< the ball seen this much further forward every other sighting
    bool settles = true; ///< false: it may end walking again or standing for a look
};

TEST(Kicker, WalksUpKicksOrGivesUp) {
    const auto walk = orvo::walk::WalkParams::from(load("walk"));
    auto set = load("kick");
    set.set("ball_still", 0.005);
    const auto kick = orvo::kick::KickParams::from(set);
    const auto model = orvo::body::BodyModel::for_type(0);
    const double line = model.hip_width() + walk.foot_y + kick.ball_y;
    const Case cases[] = {
        {"far ahead", true, 8, 0.5, KickPhase::approach, 1},
        {"too close", true, (kick.ball_x - kick.kick_tolerance_close - 0.01) / kick.ball_x, 1,
         KickPhase::approach, 4},
        {"on the spot", true, 1, 1, KickPhase::done, 4},
        {"never seen", false, 1, 1, KickPhase::failed, kick.give_up_time + 1},
        {"still moving", true, 1, 1, KickPhase::settle, 4, 0.02},
        // Within the last look's tolerance but beyond the swing's reach: it
        // walks on rather than kicks (or stands there for ever).
        {"a little too close", true,
         (kick.ball_x - (kick.kick_tolerance_close + kick.tolerance_x) / 2) / kick.ball_x, 1,
         KickPhase::approach, 4, 0, false},
        {"a little too far", true,
         (kick.ball_x + (kick.kick_tolerance_far + kick.kick_tolerance_x) / 2) / kick.ball_x, 1,
         KickPhase::approach, 4, 0, false},
    };
    ASSERT_LT(kick.kick_tolerance_far, kick.kick_tolerance_x);
    ASSERT_LT(kick.kick_tolerance_close, kick.tolerance_x);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        orvo::kick::Kicker kicker(model, walk, kick);
        const auto seen = seeing(c.ball_x * kick.ball_x, c.ball_y * line, walk.lean);
        const auto moved_on = seeing(c.ball_x * kick.ball_x + c.jitter, c.ball_y * line, walk.lean);
        const orvo::perception::Perception nothing;
        kicker.start(0);
        bool moved = false;
        bool kicked = false;
        int cycle = 0;
        for (double t = 0; t < c.seconds && !kicker.finished(); t += 0.02) {
            kicker.update(!c.sees ? nothing : ++cycle % 6 < 3 ? seen : moved_on);
            moved = moved || kicker.walker().target().forward != 0;
            kicked = kicked || kicker.phase() == KickPhase::kick;
        }
        if (c.settles) {
            EXPECT_EQ(kicker.phase(), c.expected) << orvo::kick::phase_name(kicker.phase());
        }
        EXPECT_EQ(kicked, c.expected == KickPhase::done);
        EXPECT_EQ(moved, c.expected == KickPhase::approach);
        if (c.sees) {
            EXPECT_EQ(kicker.kicking(), orvo::walk::Side::left);
        }
    }
}

} // namespace
