#include <orvo/core/constructable_proxy.h>
#include <orvo/humanoid/base/constructable.h>

#include "support/failure.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <type_traits>

namespace {

struct Named : orvo::Constructable {
    explicit Named(std::string name) : name(std::move(name)) {}
    void link(orvo::Class_Map&) override {}
    std::string get_name() const override { return name; }
    std::string name;
};

struct Other : Named {
    Other() : Named("other") {}
};

TEST(GetClass, EveryOutcomeOfALookup) {
    Named requester("agent");
    Named plain("plain");
    Other other;
    orvo::Class_Map classes{{"other", &other}, {"empty", nullptr}, {"plain", &plain}};
    EXPECT_EQ(orvo::get_class<Other>(requester, "other", classes), &other);
    EXPECT_EQ(orvo::get_class<orvo::Constructable>(requester, "other", classes), &other);
    // A null entry or the wrong class gives null without error.
    EXPECT_EQ(orvo::get_class<Other>(requester, "empty", classes), nullptr);
    EXPECT_EQ(orvo::get_class<Other>(requester, "plain", classes), nullptr);
    // The lookup is case-sensitive.
    EXPECT_EQ(orvo_test::failure<orvo::LinkException>(
                  [&] { orvo::get_class<Other>(requester, "Other", classes); }),
              "LinkException @ humanoid/base/constructable.h: In function 'get_class' (line "
              "119):  | Error while linking <agent>\n\t-> class <Other> not found");
}

// Plug-ins rely on the exact map type, and with it on byte-wise name order.
static_assert(std::is_same_v<orvo::Class_Map, std::map<const std::string, orvo::Constructable*>>);

} // namespace
