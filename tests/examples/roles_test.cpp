// The demo team's choice of role and spot, on situations whose answer is
// clear from the field.
#include "roles.h"
#include "team_talk.h"

#include <gtest/gtest.h>

namespace {

using demo::Decision;
using demo::Role;
using demo::Situation;

demo::PlayParams params() {
    demo::PlayParams p;
    p.keeper_x = -14.3;
    p.keeper_reach = 0.9;
    p.keeper_clear = 2.5;
    p.behind_ball = 0.25;
    p.around_ball = 0.6;
    p.aligned_m = 0.2;
    p.aligned_deg = 20;
    p.chaser_margin = 0.3;
    p.follow_x = 0.5;
    p.follow_y = 0.3;
    p.dribble_keep_m = 0.6;
    p.dribble_keep_deg = 40;
    p.area_margin = 0.5;
    p.crowd_m = 0.8;
    p.crowd_deg = 60;
    p.crowd_speed = 0.25;
    p.shot_range_m = 5;
    p.shot_aim_y = 0.5;
    p.set_piece_kick = 1;
    return p;
}

struct Expected {
    Role role;
    demo::Spot target;
    bool dribble;
    bool kick = false; ///< toward the goal, beside its centre on the ball's side
};

struct Case {
    const char* what;
    Situation now;
    Expected expected;
};

const demo::Spot home{-6, 2};
const Case cases[] = {
    {"keeper follows the ball along its line, within reach",
     {1, {-14, 0}, 0, true, {0, 4}, {}, home},
     {Role::keeper, {-14.3, 0.9}, false}},
    {"keeper goes for a ball at its goal",
     {1, {-14, 0}, 0, true, {-13.5, 0}, {}, home},
     {Role::keeper, {-13.75, 0}, false}},
    {"nearest player lines up behind the ball",
     {5, {-2, 0}, 0, true, {0, 0}, {}, home},
     {Role::chaser, {-0.25, 0}, false}},
    {"lined up and facing the goal, it dribbles",
     {5, {-0.3, 0}, 5, true, {0, 0}, {}, home},
     {Role::chaser, {-0.25, 0}, true}},
    {"lined up but facing away, it turns first",
     {5, {-0.3, 0}, 90, true, {0, 0}, {}, home},
     {Role::chaser, {-0.25, 0}, false}},
    {"dribbling into the ball, nearer than its line-up spot, it dribbles on",
     {5, {-0.1, 0.05}, 10, true, {0, 0}, {}, home, true},
     {Role::chaser, {-0.25, 0}, true}},
    {"own kick-off: lined up behind the ball facing the goal, it kicks",
     {5, {-0.3, 0}, 5, true, {0, 0}, {}, home, false, true},
     {Role::chaser, {-0.25, 0}, false, true}},
    {"near the opponents' goal, lined up, it shoots rather than dribbles",
     {5, {11.7, 0}, 0, true, {12, 0}, {}, home},
     {Role::chaser, {11.75, 0}, false, true}},
    {"dribbling into the ball near the goal, it shoots",
     {5, {11.9, 0.05}, 10, true, {12, 0}, {}, home, true},
     {Role::chaser, {11.75, 0}, false, true}},
    {"having kicked off, it leaves the ball to others though nearest",
     {5, {-2, 0}, 0, true, {0, 0}, {}, home, false, false, {}, false, {}, false},
     {Role::support, {-6, 2}, false}},
    {"the ball got away from the dribble: it lines up again",
     {5, {-1.5, 0}, 0, true, {0, 0}, {}, home, true},
     {Role::chaser, {-0.25, 0}, false}},
    {"in front of the ball it walks round it on its own side",
     {5, {1, 0.5}, 180, true, {0, 0}, {}, home},
     {Role::chaser, {-0.6, 0.6}, false}},
    {"a mate nearer the ball chases; this one follows the formation",
     {5, {-3, 0}, 0, true, {2, 1}, {{1.5, 1}}, home},
     {Role::support, {-5, 2.3}, false}},
    {"a mate heard nearer the ball chases, though a seen mate is farther",
     {5, {-3, 0}, 0, true, {0, 0}, {{5, 5}}, home, false, false, {{3, 2.5, false}}},
     {Role::support, {-6, 2}, false}},
    {"heard mates farther away: it chases, though a seen mate is nearer",
     {5, {-2, 0}, 0, true, {0, 0}, {{-0.5, 0}}, home, false, false, {{3, 2.5, false}}},
     {Role::chaser, {-0.25, 0}, false}},
    {"the chasing mate keeps the ball against one nearer by less than the margin",
     {5, {-2, 0}, 0, true, {0, 0}, {}, home, false, false, {{3, 2.2, true}}},
     {Role::support, {-6, 2}, false}},
    {"this chaser keeps it too, against a mate nearer by less than the margin",
     {5, {-2, 0}, 0, true, {0, 0}, {}, home, false, false, {{3, 1.8, false}}, true},
     {Role::chaser, {-0.25, 0}, false}},
    {"a mate nearer by more than the margin takes over from the chaser",
     {5, {-2, 0}, 0, true, {0, 0}, {}, home, false, false, {{3, 1.6, false}}, true},
     {Role::support, {-6, 2}, false}},
    {"equally near: the lower number goes; the keeper's word does not count",
     {5, {-2, 0}, 0, true, {0, 0}, {}, home, false, false, {{1, 0.1, true}, {7, 2, false}}},
     {Role::chaser, {-0.25, 0}, false}},
    {"a ball in the own penalty box: the chaser waits at its front edge, the keeper clears",
     {5, {-14.5, 0}, 0, true, {-14, 0}, {}, home},
     {Role::chaser, {-12.7, 0}, false}},
    {"the formation follows the ball back, but not into the own penalty box",
     {3, {-9, 0}, 0, true, {-14, 0.5}, {{-13, 0}}, {-9.5, 0}},
     {Role::support, {-12.7, 0.15}, false}},
    {"no ball seen: home",
     {5, {-3, 0}, 0, false, {2, 1}, {}, home},
     {Role::support, {-6, 2}, false}},
};

TEST(Roles, EachSituationGetsItsRoleAndSpot) {
    for (const Case& c : cases) {
        const Decision d = demo::decide(c.now, params());
        const Expected& e = c.expected;
        EXPECT_EQ(d.role, e.role) << c.what;
        EXPECT_NEAR(d.target.x, e.target.x, 1e-9) << c.what;
        EXPECT_NEAR(d.target.y, e.target.y, 1e-9) << c.what;
        EXPECT_EQ(d.dribble, e.dribble) << c.what;
        EXPECT_EQ(d.kick, e.kick) << c.what;
        if (e.kick) {
            EXPECT_NEAR(d.aim.x, 15, 1e-9) << c.what;
            EXPECT_NEAR(d.aim.y, c.now.own_set_piece ? 0 : 0.5, 1e-9) << c.what;
        }
        // A chaser lines up facing the opponents' goal, here straight ahead;
        // the keeper faces the field wherever it steps.
        if (e.role != Role::support) {
            EXPECT_TRUE(d.face) << c.what;
            EXPECT_NEAR(d.face_deg, 0, 1e-9) << c.what;
        }
    }
}

// What a player says comes back to the centimetre, within the server's 20
// characters; and in 22 cycles each of eleven speaks once, never two in a
// row (a listener would lose the second).
TEST(Roles, TeamMatesSpeakInTurnsAndAreUnderstood) {
    demo::MateReport said;
    said.number = 11;
    said.self = {-15.5, 10.49};
    said.ball_age = 3.7;
    said.ball = {14.99, -0.01};
    said.ball_distance = 30.5;
    said.chasing = true;
    const std::string text = demo::encode(said);
    EXPECT_LE(text.size(), 20u);
    const auto heard = demo::decode(text);
    ASSERT_TRUE(heard);
    EXPECT_EQ(heard->number, 11);
    EXPECT_NEAR(heard->self.x, -15.5, 1e-9);
    EXPECT_NEAR(heard->self.y, 10.49, 1e-9);
    EXPECT_NEAR(*heard->ball_age, 3.7, 1e-9);
    EXPECT_NEAR(heard->ball.x, 14.99, 1e-9);
    EXPECT_NEAR(heard->ball.y, -0.01, 1e-9);
    EXPECT_NEAR(heard->ball_distance, 30.5, 1e-9);
    EXPECT_TRUE(heard->chasing);
    said.ball_age.reset();
    EXPECT_FALSE(demo::decode(demo::encode(said))->ball_age);
    EXPECT_FALSE(demo::decode("hello"));

    const demo::TeamTalk talk;
    int last = -10, spoke[12] = {};
    for (int cycle = 1000; cycle < 1022; ++cycle) {
        for (int number = 1; number <= 11; ++number) {
            if (talk.my_turn(number, cycle * 0.02)) {
                EXPECT_GE(cycle - last, 2) << number;
                last = cycle;
                ++spoke[number];
            }
        }
    }
    for (int number = 1; number <= 11; ++number) {
        EXPECT_EQ(spoke[number], 1) << number;
    }
}

TEST(SpeedLimit, SlowsOnlyForARobotNearAndInTheWay) {
    // Walking from the origin toward (3, 0).
    const struct {
        const char* what;
        demo::Spot other;
        double limit;
    } cases[] = {{"near, straight ahead", {0.5, 0}, 0.25},
                 {"near, 45 degrees off the way", {0.4, 0.4}, 0.25},
                 {"near, beside", {0, 0.5}, 0},
                 {"near, behind", {-0.5, 0}, 0},
                 {"ahead but far", {2, 0}, 0}};
    for (const auto& c : cases) {
        Situation now;
        now.others = {c.other};
        EXPECT_DOUBLE_EQ(demo::speed_limit(now, {3, 0}, params()), c.limit) << c.what;
    }
}

} // namespace
