#include "named_descriptors.h"
#include "support/failure.h"

#include <orvo/knowledgebase/descriptors/descriptor.h>
#include <orvo/knowledgebase/descriptors/descriptor_action.h>
#include <orvo/knowledgebase/descriptors/property.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <utility>
#include <vector>

namespace {

using orvo::Property;
using orvo::knowledgebase::descriptors::Descriptor;
using orvo::knowledgebase::descriptors::Descriptor_Action;
using namespace orvo_test;

template <class Printable> std::string printed(const Printable& printable) {
    std::ostringstream out;
    EXPECT_EQ(&printable.print(out), &out);
    return out.str();
}

/// A plug-in descriptor that falls back on the base text.
class Plain : public Descriptor {
public:
    std::ostream& print(std::ostream& out) const override { return Descriptor::print(out); }
    std::string to_eval() const override { return "(plain)"; }
};

TEST(Descriptor, PropertiesAreFirstWinsExactAndByteOrdered) {
    Plain plain;
    EXPECT_EQ(printed(plain), "No description available!");
    EXPECT_EQ(failure<orvo::DataUnavailableException>([&] { plain.get_property("speed"); }),
              "DataUnavailableException @ knowledgebase/descriptors/src/descriptor.cpp: In "
              "function 'get_property' (line 50):  | Tried to retrieve property for current "
              "descriptor which is not available");
    EXPECT_TRUE(plain.add_property(Property("speed", 3)));
    EXPECT_FALSE(plain.add_property(Property("speed", 4)));
    for (const char* absent : {"Speed", "spee", "speed ", ""}) {
        EXPECT_FALSE(plain.has_property(absent)) << absent;
        EXPECT_THROW(plain.get_property(absent), orvo::DataUnavailableException) << absent;
    }
    EXPECT_EQ(boost::any_cast<int>(plain.get_property("speed").get_value()), 3);
    for (const char* id : {"b", "a", "ab", "B"}) {
        plain.add_property(Property(id, 0));
    }
    std::vector<std::string> ids;
    for (const Property& property : plain.get_properties()) {
        ids.push_back(property.get_id());
    }
    EXPECT_EQ(ids, (std::vector<std::string>{"B", "a", "ab", "b", "speed"}));
}

TEST(DescriptorAction, GetSkillFindsTheFirstAtAnEightBitPositionOrReportsItsAbsence) {
    Descriptor_Action action("b");
    const std::string at = "DataUnavailableException @ "
                           "knowledgebase/descriptors/src/descriptor_action.cpp: In function ";
    EXPECT_EQ(failure<orvo::DataUnavailableException>([&] { action.get_skill("walk"); }),
              at + "'get_skill' (line 192):  | Tried to retrieve skill for current action that "
                   "has not been used in skill chain yet!");
    EXPECT_EQ(failure<orvo::DataUnavailableException>([&] { action.get_effector("legs"); }),
              at + "'get_effector' (line 167):  | Tried to retrieve effector for current action "
                   "that has not been invoked yet!");
    const auto first_walk = skill("walk");
    action.add_skill(first_walk);
    action.add_skill(skill("kick"));
    action.add_skill(skill("walk"));
    EXPECT_EQ(action.get_skill("walk"), std::make_pair(std::uint8_t(0), first_walk));
    EXPECT_EQ(action.get_skill("kick").first, 1);
    EXPECT_THROW(action.get_skill("Walk"), orvo::DataUnavailableException);
    for (int index = 3; index < 300; ++index) {
        action.add_skill(skill(index == 260 || index == 290 ? "x" : "y"));
    }
    EXPECT_EQ(action.get_skill("x").first, 4);
    EXPECT_EQ(action.get_skill_chain().size(), 300u);
}

} // namespace
