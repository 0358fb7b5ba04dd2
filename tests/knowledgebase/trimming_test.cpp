#include "named_descriptors.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <set>

namespace {

using orvo::knowledgebase::descriptors::Descriptor_Action;
using namespace orvo_test;

/// Times that sit on the edges that matter: around 0, around the largest
/// time, and around `now` and the window's far edge.
unsigned int pick(std::mt19937& random, unsigned int now, unsigned int retention) {
    const unsigned int anchors[] = {0u,
                                    0xFFFFFFFFu,
                                    now,
                                    now - retention,
                                    now - retention + 1u,
                                    static_cast<unsigned int>(random())};
    return anchors[random() % 6] + static_cast<unsigned int>(random() % 7) - 3u;
}

// Trimming must erase exactly what a walk over the whole log would: every
// time whose wrapped age is not below the retention.
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
        auto& actions = linked.log.actions;
        for (int count = random() % 12; count > 0; --count) {
            actions.emplace(pick(random, now, retention),
                            boost::make_shared<Descriptor_Action>("b"));
        }
        std::set<unsigned int> expected;
        for (const auto& entry : actions) {
            if (now - entry.first < retention) {
                expected.insert(entry.first);
            }
        }
        // Marks anywhere in the log or at its end; an erased one moves to the end.
        auto& marks = linked.log;
        const Descriptor_Action* marked[2] = {};
        for (auto* mark : {&marks.current_action, &marks.previous_action}) {
            *mark = std::next(actions.begin(), random() % (actions.size() + 1));
            const bool survives = *mark != actions.end() && expected.count((*mark)->first) != 0;
            marked[mark == &marks.previous_action] = survives ? (*mark)->second.get() : nullptr;
        }

        linked.inject_action.resize_action_log(now, retention);

        std::set<unsigned int> kept;
        for (const auto& entry : actions) {
            kept.insert(entry.first);
        }
        ASSERT_EQ(kept, expected) << "now " << now << " retention " << retention;
        for (int which = 0; which < 2; ++which) {
            const auto mark = which == 0 ? marks.current_action : marks.previous_action;
            EXPECT_EQ(mark == actions.end() ? nullptr : mark->second.get(), marked[which]);
        }
    }
}

} // namespace
