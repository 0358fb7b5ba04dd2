#include <orvo/core/architect.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

// Writes `content` to a fresh file and reads it back through the assembler's reader.
class ConfigReader : public ::testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/orvo-config-XXXXXX";
        const int fd = mkstemp(name);
        ASSERT_GE(fd, 0);
        close(fd);
        path = name;
    }
    void TearDown() override { std::remove(path.c_str()); }

    std::vector<std::string> read(const std::string& content) {
        std::ofstream(path, std::ios::binary) << content;
        std::vector<std::string> values;
        architect.parse_config_file(path, values);
        return values;
    }

    std::vector<std::string> args{"agent"};
    orvo::Architect architect{args};
    std::string path;
};

using Values = std::vector<std::string>;

} // namespace

TEST_F(ConfigReader, EmptyFileGivesNothing) {
    EXPECT_EQ(read(""), Values{});
}

TEST_F(ConfigReader, CommentsOnlyAtColumnZero) {
    EXPECT_EQ(read("#skipped\n  #kept\n"), Values{"#kept"});
}

TEST_F(ConfigReader, LinesWithOneNonBlankCharacterAreIgnored) {
    EXPECT_EQ(read("a\n   b   \n\n     \nab\n"), Values{"ab"});
}

TEST_F(ConfigReader, LengthRulesKeepTrailingCharactersAfterLeadingBlanks) {
    EXPECT_EQ(read("  ab  \n"), Values{"ab"});
    EXPECT_EQ(read("ab  \n"), Values{"ab"});
    // first = 2, last = 6: "\tfoo\t  " after the first cut, "foo\t" after the second.
    EXPECT_EQ(read("  \tfoo\t  \n"), Values{"foo\t"});
}

TEST_F(ConfigReader, CarriageReturnAndUnterminatedLastLineAreKept) {
    EXPECT_EQ(read("one\r\ntwo"), (Values{"one\r", "two"}));
}

TEST_F(ConfigReader, AppendsToTheCallersValuesAndKeepsDuplicates) {
    std::ofstream(path) << "sample\nsample\n";
    Values values{"earlier"};
    architect.parse_config_file(path, values);
    EXPECT_EQ(values, (Values{"earlier", "sample", "sample"}));
}

TEST_F(ConfigReader, TabOnlyValueFailsAfterKeepingEarlierValues) {
    std::ofstream(path) << "first\n\t\t\nnever\n";
    Values values;
    try {
        architect.parse_config_file(path, values);
        FAIL() << "no exception";
    } catch (const orvo::Exception& e) {
        EXPECT_EQ(e.get_message(), "Error while parsing values!");
        EXPECT_EQ(e.get_type(), "Exception");
        EXPECT_EQ(e.get_source(),
                  "core/src/architect.cpp: In function 'parse_config_file' (line 359): ");
    }
    EXPECT_EQ(values, Values{"first"});
}

TEST_F(ConfigReader, MissingFileFailsToOpen) {
    Values values;
    try {
        architect.parse_config_file(path + ".absent", values);
        FAIL() << "no exception";
    } catch (const orvo::Exception& e) {
        EXPECT_EQ(e.get_message(), "Opening file failed!");
        EXPECT_EQ(e.get_type(), "Exception");
        EXPECT_EQ(e.get_source(),
                  "core/src/architect.cpp: In function 'parse_config_file' (line 303): ");
    }
}
