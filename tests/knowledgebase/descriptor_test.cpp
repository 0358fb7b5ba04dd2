#include "named_descriptors.h"

#include <orvo/core/exception.h>
#include <orvo/knowledgebase/descriptors/descriptor.h>
#include <orvo/knowledgebase/descriptors/property.h>

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

namespace {

using orvo::Property;
using orvo::knowledgebase::descriptors::Descriptor;
using namespace orvo_test;

/// A plug-in descriptor that falls back on the base text.
class Plain : public Descriptor {
public:
    std::ostream& print(std::ostream& out) const override { return Descriptor::print(out); }
    std::string to_eval() const override { return "(plain)"; }
};

TEST(Descriptor, NewDescriptorHasNoPropertyAndReportsTheMissingOne) {
    Plain plain;
    EXPECT_FALSE(plain.has_property(""));
    EXPECT_FALSE(plain.has_property("speed"));
    try {
        plain.get_property("speed");
        FAIL() << "no exception";
    } catch (const orvo::DataUnavailableException& missing) {
        EXPECT_EQ(missing.get_source(), "knowledgebase/descriptors/src/descriptor.cpp: In function "
                                        "'get_property' (line 50): ");
        EXPECT_EQ(missing.get_message(),
                  "Tried to retrieve property for current descriptor which is not available");
        EXPECT_EQ(missing.get_type(), "DataUnavailableException");
    }
}

TEST(Descriptor, LookupIsExactAndTheFirstPropertyOfAnIdStays) {
    Plain plain;
    EXPECT_TRUE(plain.add_property(Property("speed", 3)));
    EXPECT_FALSE(plain.add_property(Property("speed", 4)));
    EXPECT_TRUE(plain.has_property("speed"));
    for (const char* absent : {"Speed", "spee", "speed ", ""}) {
        EXPECT_FALSE(plain.has_property(absent)) << absent;
        EXPECT_THROW(plain.get_property(absent), orvo::DataUnavailableException) << absent;
    }
    const Property& held = plain.get_property("speed");
    EXPECT_EQ(boost::any_cast<int>(held.get_value()), 3);
    EXPECT_EQ(&held, &plain.get_property("speed"));
    EXPECT_EQ(plain.get_properties().size(), 1u);
}

TEST(Descriptor, PropertiesIterateInByteWiseIdOrder) {
    Plain plain;
    for (const char* id : {"b", "a", "ab", "B"}) {
        plain.add_property(Property(id, 0));
    }
    std::vector<std::string> ids;
    for (const Property& property : plain.get_properties()) {
        ids.push_back(property.get_id());
    }
    EXPECT_EQ(ids, (std::vector<std::string>{"B", "a", "ab", "b"}));
}

TEST(Descriptor, BaseTextIsExactlyTheNoDescriptionLine) {
    Plain plain;
    std::ostringstream out;
    EXPECT_EQ(&plain.print(out), &out);
    EXPECT_EQ(out.str(), "No description available!");
    EXPECT_EQ(out.str().size(), 25u);
}

TEST(SkillAndEffectorDescriptors, RenderTheirIdsOnly) {
    EXPECT_EQ(skill("kick")->to_eval(), "(skill (id kick))");
    EXPECT_EQ(skill("")->to_eval(), "(skill (id ))");
    EXPECT_EQ(skill("a b)")->to_eval(), "(skill (id a b)))");
    EXPECT_EQ(effector("say")->to_eval(), "(effector (id say))");
    EXPECT_EQ(effector("say", "(say hello)", true)->to_eval(), "(effector (id say))");
    EXPECT_EQ(effector("say", "(say hello)", false)->to_eval(), "(effector (id say))");
}

} // namespace
