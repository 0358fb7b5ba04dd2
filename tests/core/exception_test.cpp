#include <orvo/core/exception.h>

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <type_traits>

using orvo::Exception;

TEST(Exception, LocationTextAndPrint) {
    EXPECT_EQ(orvo::gen_ffl_string("core/src/architect.cpp", "construct", 93),
              "core/src/architect.cpp: In function 'construct' (line 93): ");
    std::ostringstream out;
    Exception("s", "m", "t").print(out) << "|";
    EXPECT_EQ(out.str(), "Exception of type(t):\ns\n\tm|");
}

TEST(Exception, ChainingGrowsTheSourceOutermostFirstAndKeepsTheCause) {
    const Exception middle("b", orvo::DataUnavailableException("a", "missing"));
    const Exception outer("c", middle);
    EXPECT_EQ(middle.get_source(), "b\n--> a");
    EXPECT_EQ(outer.get_source(), "c\n--> b\n--> a");
    EXPECT_EQ(outer.get_message(), "missing");
    EXPECT_EQ(outer.get_type(), "DataUnavailableException");
}

TEST(Exception, SubclassesStoreTheirOwnKindAndAreNoStandardErrors) {
    EXPECT_EQ(orvo::LogicException("s", "m").get_type(), "LogicException");
    EXPECT_EQ(orvo::DataUnavailableException("s", "m").get_type(), "DataUnavailableException");
    EXPECT_EQ(orvo::ValueOutOfBoundsException("s", "m").get_type(), "ValueOutOfBoundsException");
    static_assert(!std::is_base_of_v<std::exception, Exception>);
}

TEST(LinkException, NamesRequesterThenCollaboratorAndReraisingReplacesTheSource) {
    const orvo::LinkException inner("old", "agent", "messenger");
    EXPECT_EQ(inner.get_message(), "Error while linking <agent>\n\t-> class <messenger> not found");
    EXPECT_EQ(inner.get_type(), "LinkException");
    const orvo::LinkException outer("new", inner);
    EXPECT_EQ(outer.get_source(), "new");
    EXPECT_EQ(outer.get_message(), inner.get_message());
    EXPECT_EQ(outer.get_type(), "LinkException");
}
