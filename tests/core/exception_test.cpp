#include <orvo/core/exception.h>

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

using orvo::Exception;
using orvo::gen_ffl_string;

TEST(LocationText, HasFileFunctionAndLine) {
    EXPECT_EQ(gen_ffl_string("f", "g", 7), "f: In function 'g' (line 7): ");
    EXPECT_EQ(gen_ffl_string("core/src/architect.cpp", "construct", 93),
              "core/src/architect.cpp: In function 'construct' (line 93): ");
}

TEST(Exception, PrintWritesTypeSourceAndMessageWithoutNewline) {
    std::ostringstream out;
    Exception("s", "m", "t").print(out) << "|";
    EXPECT_EQ(out.str(), "Exception of type(t):\ns\n\tm|");
}

TEST(Exception, ChainingGrowsTheSourceOutermostFirstAndKeepsTheCause) {
    const orvo::DataUnavailableException first("a", "missing");
    const Exception middle("b", first);
    const Exception outer("c", middle);
    EXPECT_EQ(middle.get_source(), "b\n--> a");
    EXPECT_EQ(outer.get_source(), "c\n--> b\n--> a");
    EXPECT_EQ(outer.get_message(), "missing");
    EXPECT_EQ(outer.get_type(), "DataUnavailableException");
}

TEST(Exception, SubclassesStoreTheirOwnKind) {
    EXPECT_EQ(orvo::LogicException("s", "m").get_type(), "LogicException");
    EXPECT_EQ(orvo::DataUnavailableException("s", "m").get_type(), "DataUnavailableException");
    EXPECT_EQ(orvo::ValueOutOfBoundsException("s", "m").get_type(), "ValueOutOfBoundsException");
}

TEST(LinkException, NamesRequesterThenMissingCollaborator) {
    const orvo::LinkException e("s", "agent", "messenger");
    EXPECT_EQ(e.get_message(), "Error while linking <agent>\n\t-> class <messenger> not found");
    EXPECT_EQ(e.get_type(), "LinkException");
    EXPECT_EQ(e.get_source(), "s");
}

TEST(LinkException, ReraisingReplacesTheSource) {
    const orvo::LinkException inner("old", "agent", "messenger");
    const orvo::LinkException outer("new", inner);
    EXPECT_EQ(outer.get_source(), "new");
    EXPECT_EQ(outer.get_message(), inner.get_message());
    EXPECT_EQ(outer.get_type(), "LinkException");
}

TEST(Exception, IsNotCaughtAsStandardError) {
    bool caught_as_framework_error = false;
    try {
        try {
            throw orvo::LogicException("s", "m");
        } catch (const std::exception&) {
            FAIL() << "a framework failure was caught as a standard error";
        }
    } catch (const Exception&) {
        caught_as_framework_error = true;
    }
    EXPECT_TRUE(caught_as_framework_error);
}
