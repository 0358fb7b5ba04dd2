#include <orvo/core/architect.h>

#include "support/scratch_dir.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Values = std::vector<std::string>;

TEST(ConfigReader, KeepsEveryQuirkOfTheFileFormat) {
    const struct {
        const char* content;
        Values values;
    } cases[] = {
        {"", {}},
        {"#skipped\n  #kept\n", {"#kept"}},                   // comments only at column 0
        {"a\n   b   \n\n     \nab\n", {"ab"}},                // one non-blank character: ignored
        {"  ab  \n", {"ab"}},                                 // both length rules...
        {"ab  \n", {"ab"}},                                   //
        {"  \tfoo\t  \n", {"foo\t"}},                         // ...keep a trailing tab here
        {"one\r\ntwo", {"one\r", "two"}},                     // CR kept, last line unterminated
        {"sample\nsample\n", {"earlier", "sample", "sample"}} // appended, duplicates kept
    };
    orvo_test::ScratchDir dir;
    std::vector<std::string> args{"agent"};
    orvo::Architect architect(args);
    for (const auto& sample : cases) {
        dir.write("values.cfg", sample.content);
        Values values;
        if (sample.values.size() == 3) {
            values.push_back("earlier");
        }
        architect.parse_config_file("values.cfg", values);
        EXPECT_EQ(values, sample.values) << sample.content;
    }

    // The failures' reports are checked whole where assembly chains them
    // (architect_test); here, what a refused file leaves behind.
    dir.write("values.cfg", "first\n\t\t\nnever\n");
    Values values;
    EXPECT_THROW(architect.parse_config_file("values.cfg", values), orvo::Exception);
    EXPECT_EQ(values, Values{"first"}); // what was read before the failure stays
}

} // namespace
