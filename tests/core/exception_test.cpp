#include <orvo/core/exception.h>

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <type_traits>

// The layers' chained reports are checked where they are raised; here are the
// parts no other test sees whole: the printed form, the cause's kind kept
// through chaining, and a re-raised link failure's replaced source.
TEST(Exception, PrintChainAndLinkRenaming) {
    std::ostringstream out;
    orvo::Exception("s", "m", "t").print(out) << "|";
    EXPECT_EQ(out.str(), "Exception of type(t):\ns\n\tm|");

    const orvo::Exception outer("c",
                                orvo::Exception("b", orvo::ValueOutOfBoundsException("a", "m")));
    EXPECT_EQ(outer.get_source(), "c\n--> b\n--> a");
    EXPECT_EQ(outer.get_type(), "ValueOutOfBoundsException");

    const orvo::LinkException inner("old", "agent", "messenger");
    const orvo::LinkException renamed("new", inner);
    EXPECT_EQ(renamed.get_source(), "new");
    EXPECT_EQ(renamed.get_message(),
              "Error while linking <agent>\n\t-> class <messenger> not found");
    static_assert(!std::is_base_of_v<std::exception, orvo::Exception>);
}
