#include "named_descriptors.h"

#include <gtest/gtest.h>

#include <iterator>
#include <optional>
#include <random>
#include <set>
#include <vector>

namespace {

using orvo::knowledgebase::descriptors::Descriptor_Action;
using namespace orvo_test;

/// What a walk over the whole log keeps: every time whose wrapped age is
/// below the retention.
std::set<unsigned int> kept_by_walk(const std::set<unsigned int>& times, unsigned int now,
                                    unsigned int retention) {
    std::set<unsigned int> kept;
    for (const unsigned int time : times) {
        if (static_cast<unsigned int>(now - time) < retention) {
            kept.insert(time);
        }
    }
    return kept;
}

/// Times that sit on the edges that matter: around 0, around the largest
/// time, and around `now` and the window's far edge.
unsigned int pick(std::mt19937& random, unsigned int now, unsigned int retention) {
    const unsigned int anchors[] = {0u,
                                    0xFFFFFFFFu,
                                    now,
                                    now - retention,
                                    now - retention + 1u,
                                    static_cast<unsigned int>(random())};
    const unsigned int anchor = anchors[random() % 6];
    return anchor + static_cast<unsigned int>(random() % 7) - 3u;
}

TEST(Trimming, ErasesExactlyWhatAWalkOverTheWholeLogErases) {
    std::mt19937 random(20240611);
    for (int round = 0; round < 4000; ++round) {
        const unsigned int now = random() % 3 == 0 ? pick(random, 0, 0) : random();
        const unsigned int retentions[] = {0u,
                                           1u,
                                           2u,
                                           5u,
                                           0xFFFFFFFFu,
                                           0xFFFFFFFEu,
                                           static_cast<unsigned int>(random()),
                                           static_cast<unsigned int>(random() % 64)};
        const unsigned int retention = retentions[random() % 8];

        LinkedLog linked;
        std::set<unsigned int> times;
        const int count = static_cast<int>(random() % 12);
        for (int index = 0; index < count; ++index) {
            const unsigned int time = pick(random, now, retention);
            times.insert(time);
            linked.log.actions.emplace(time, boost::make_shared<Descriptor_Action>("b"));
        }
        // Marks anywhere in the log, or at its end.
        auto mark = [&]() {
            auto entry = linked.log.actions.begin();
            std::advance(entry, random() % (linked.log.actions.size() + 1));
            return entry;
        };
        linked.log.current_action = mark();
        linked.log.previous_action = mark();
        const auto current_time = linked.log.current_action == linked.log.actions.end()
                                      ? std::optional<unsigned int>()
                                      : linked.log.current_action->first;
        const auto previous_time = linked.log.previous_action == linked.log.actions.end()
                                       ? std::optional<unsigned int>()
                                       : linked.log.previous_action->first;

        linked.inject_action.resize_action_log(now, retention);

        const auto expected = kept_by_walk(times, now, retention);
        std::set<unsigned int> kept;
        for (const auto& entry : linked.log.actions) {
            kept.insert(entry.first);
        }
        ASSERT_EQ(kept, expected) << "now " << now << " retention " << retention;
        // A mark stays on a surviving entry and leaves an erased one for the end.
        const auto expect_mark = [&](const auto& mark_now, const std::optional<unsigned int>& at) {
            if (at && expected.count(*at) != 0) {
                ASSERT_TRUE(mark_now != linked.log.actions.end());
                EXPECT_EQ(mark_now->first, *at);
            } else {
                EXPECT_TRUE(mark_now == linked.log.actions.end());
            }
        };
        expect_mark(linked.log.current_action, current_time);
        expect_mark(linked.log.previous_action, previous_time);
    }
}

TEST(Trimming, ReleasesErasedActionsOldestFirst) {
    std::vector<std::string> released;
    struct Traced : Descriptor_Action {
        Traced(const std::string& name, std::vector<std::string>& released)
            : Descriptor_Action(name), released(released) {}
        ~Traced() override { released.push_back(get_initiator()); }
        std::vector<std::string>& released;
    };
    LinkedLog linked;
    for (const unsigned int time : {1u, 2u, 3u, 4u}) {
        linked.log.actions.emplace(
            time, boost::make_shared<Traced>("t" + std::to_string(time), released));
    }
    linked.inject_action.resize_action_log(2, 0);
    EXPECT_EQ(released, (std::vector<std::string>{"t1", "t2", "t3", "t4"}));
}

} // namespace
