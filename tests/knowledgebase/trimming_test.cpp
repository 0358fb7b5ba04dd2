#include "named_descriptors.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <set>

namespace {

using orvo::knowledgebase::descriptors::Descriptor_Action;
using namespace orvo_test;

/// Times that sit on the edges that matter: around 0, around the largest
/// time, and around `now` and the window's far edge.
unsigned int pick(std::mt19937& random, unsigned int now, unsigned int retention) {
    const unsigned int anchors[] = {
        0u, 0xFFFFFFFFu, now, now - retention, now - retention + 1u, unsigned(random())};
    return anchors[random() % 6] + static_cast<unsigned int>(random() % 7) - 3u;
}

// Trimming must erase exactly what a walk over the whole log would: every
// time whose wrapped age is not below the retention.
TEST(Trimming, ErasesExactlyWhatAWalkOverTheWholeLogErases) {
    std::mt19937 random(20240611);
    for (int round = 0; round < 4000; ++round) {
        const unsigned int now = random() % 3 == 0 ? pick(random, 0, 0) : random();
        const unsigned int retentions[] = {
            0u, 1u, 2u, 5u, 0xFFFFFFFFu, 0xFFFFFFFEu, unsigned(random()), unsigned(random() % 64)};
        const unsigned int retention = retentions[random() % 8];

        // Filled through the injector, which trims nothing but the time just
        // after `at` when it keeps everything; its last two injections leave
        // the marks on arbitrary entries.
        LinkedLog linked;
        for (int count = random() % 12; count > 0; --count) {
            const unsigned int at = pick(random, now, retention);
            linked.inject_action("b", at, 0xFFFFFFFFu);
        }
        const auto& actions = linked.log.get_actions();
        std::set<unsigned int> expected;
        for (const auto& entry : actions) {
            if (now - entry.first < retention) {
                expected.insert(entry.first);
            }
        }
        // A mark whose entry survives keeps it; an erased one moves to the end.
        const auto marks = [&] {
            return std::array{linked.log.get_current_action(), linked.log.get_previous_action()};
        };
        std::array<const Descriptor_Action*, 2> marked{};
        for (int which = 0; which < 2; ++which) {
            const auto mark = marks()[which];
            const bool survives = mark != actions.end() && expected.count(mark->first) != 0;
            marked[which] = survives ? mark->second.get() : nullptr;
        }

        linked.inject_action.resize_action_log(now, retention);

        std::set<unsigned int> kept;
        for (const auto& entry : actions) {
            kept.insert(entry.first);
        }
        ASSERT_EQ(kept, expected) << "now " << now << " retention " << retention;
        for (int which = 0; which < 2; ++which) {
            const auto mark = marks()[which];
            EXPECT_EQ(mark == actions.end() ? nullptr : mark->second.get(), marked[which]);
        }
    }
}

} // namespace
