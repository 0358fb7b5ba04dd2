// Parameter files: what a search may rely on (every value within its range)
// and what the walk needs (every parameter present).
#include <orvo/params/param_set.h>
#include <orvo/walk/walk_params.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using orvo::walk::ParamError;
using orvo::walk::ParamSet;

struct BadFile {
    const char* why;
    const char* text;
};

TEST(ParamSet, RefusesEntriesASearchCouldNotUse) {
    const BadFile cases[] = {
        {"not JSON", "{\"a\": "},
        {"not an object", "[1, 2]"},
        {"entry not an object", "{\"a\": 1}"},
        {"value missing", "{\"a\": {\"min\": 0, \"max\": 1}}"},
        {"min not a number", "{\"a\": {\"value\": 0.5, \"min\": \"0\", \"max\": 1}}"},
        {"value below min", "{\"a\": {\"value\": -0.1, \"min\": 0, \"max\": 1}}"},
        {"value above max", "{\"a\": {\"value\": 1.5, \"min\": 0, \"max\": 1}}"},
        {"min above max", "{\"a\": {\"value\": 0.5, \"min\": 1, \"max\": 0}}"},
    };
    for (const BadFile& bad : cases) {
        EXPECT_THROW(ParamSet::parse(bad.text, "test"), ParamError) << bad.why;
    }
    // A missing file, and a set without the walk's entries (every type's file
    // has them all: the kick's tests load each).
    EXPECT_THROW(ParamSet::load(std::string(ORVO_PARAMS) + "/walk/none.json"), ParamError);
    EXPECT_THROW(orvo::walk::WalkParams::from(ParamSet::parse("{}", "empty")), ParamError);
}

TEST(ParamSet, ReadsValuesAndKeepsSetsWithinRange) {
    ParamSet set = ParamSet::parse(
        R"({"step_time": {"value": 0.3, "min": 0.2, "max": 0.5},
            "lean": {"value": 0, "min": 0, "max": 0}})",
        "test");
    EXPECT_DOUBLE_EQ(set["step_time"], 0.3);
    EXPECT_DOUBLE_EQ(set["lean"], 0);
    set.set("step_time", 0.5);
    EXPECT_DOUBLE_EQ(set["step_time"], 0.5);
    EXPECT_THROW(set.set("step_time", 0.51), ParamError);
    EXPECT_THROW(set.set("absent", 0), ParamError);
    EXPECT_THROW(set["absent"], ParamError);
    // What dump() writes, parse() reads back the same.
    const ParamSet again = ParamSet::parse(set.dump(), "again");
    EXPECT_DOUBLE_EQ(again["step_time"], 0.5);
    EXPECT_DOUBLE_EQ(again.entries().at("step_time").max, 0.5);
}

} // namespace
