// Parameter files: every robot type's loads, and a file with a fault is refused.
#include <gtest/gtest.h>

#include <orvo/world/world_params.h>

#include <string>

#include "support/scratch_dir.h"
#include "support/text.h"

namespace {

TEST(WorldParams, EveryRobotTypeHasAFile) {
    for (int type = 0; type < 5; ++type)
        EXPECT_GE(orvo::world::WorldParams::for_type(WORLD_PARAMS, type).particles, 20) << type;
}

struct FaultCase {
    const char* edit_from;
    const char* edit_to;
    const char* message;
};

// The file format itself is checked where it is read; here what the world
// model adds: every entry it needs, and nothing else.
const FaultCase fault_cases[] = {
    {"\"particles\"", "\"particle\"", "no parameter \"particles\""},
    {"{\n \"particles\"", "{\n \"colour\": {\"value\": 1, \"min\": 0, \"max\": 2}, \"particles\"",
     "unknown entry \"colour\""},
};

class Faulty : public testing::TestWithParam<FaultCase> {};

TEST_P(Faulty, FileIsRefusedWithTheReason) {
    std::string text = orvo_test::read_text(std::string(WORLD_PARAMS) + "/type0.json");
    const auto at = text.find(GetParam().edit_from);
    ASSERT_NE(at, std::string::npos);
    text.replace(at, std::string(GetParam().edit_from).size(), GetParam().edit_to);
    orvo_test::ScratchDir dir;
    dir.write("type0.json", text);
    try {
        orvo::world::WorldParams::load("type0.json");
        FAIL() << "accepted";
    } catch (const orvo::world::WorldParamsError& e) {
        EXPECT_NE(std::string(e.what()).find(GetParam().message), std::string::npos) << e.what();
    }
}

INSTANTIATE_TEST_SUITE_P(World, Faulty, testing::ValuesIn(fault_cases));

} // namespace
