#include <orvo/core/constructable_proxy.h>
#include <orvo/humanoid/base/constructable.h>

#include <gtest/gtest.h>

namespace {

class Named : public orvo::Constructable {
public:
    explicit Named(std::string name) : name(std::move(name)) {}
    void link(orvo::Class_Map&) override {}
    std::string get_name() const override { return name; }

private:
    std::string name;
};

class Other : public Named {
public:
    Other() : Named("other") {}
};

int deletions = 0;
class Counted : public Named {
public:
    Counted() : Named("counted") {}
    ~Counted() override { ++deletions; }
};

} // namespace

TEST(GetClass, FindsTheRegisteredComponentOfTheRightClass) {
    Named requester("requester");
    Other other;
    orvo::Class_Map classes{{"other", &other}};
    EXPECT_EQ(orvo::get_class<Other>(requester, "other", classes), &other);
    EXPECT_EQ(orvo::get_class<orvo::Constructable>(requester, "other", classes), &other);
}

TEST(GetClass, NullEntryAndWrongClassGiveNullWithoutError) {
    Named requester("requester");
    Named plain("plain");
    orvo::Class_Map classes{{"empty", nullptr}, {"plain", &plain}};
    EXPECT_EQ(orvo::get_class<Other>(requester, "empty", classes), nullptr);
    EXPECT_EQ(orvo::get_class<Other>(requester, "plain", classes), nullptr);
}

TEST(GetClass, MissingNameRaisesFromTheHeaderLocation) {
    Named requester("agent");
    Other other;
    orvo::Class_Map classes{{"Messenger", &other}};
    try {
        orvo::get_class<Other>(requester, "messenger", classes); // lookup is case-sensitive
        FAIL() << "no LinkException";
    } catch (const orvo::LinkException& e) {
        EXPECT_EQ(e.get_source(),
                  "humanoid/base/constructable.h: In function 'get_class' (line 119): ");
        EXPECT_EQ(e.get_message(), "Error while linking <agent>\n\t-> class <messenger> not found");
        EXPECT_EQ(e.get_type(), "LinkException");
    }
}

TEST(ClassMap, OrdersNamesByteWise) {
    orvo::Class_Map classes{{"b", nullptr}, {"B", nullptr}, {"a", nullptr}, {"_", nullptr}};
    std::string order;
    for (const auto& entry : classes) {
        order += entry.first;
    }
    EXPECT_EQ(order, "B_ab");
}

TEST(Destroy, DeletesThroughTheVirtualDestructorAndIgnoresNull) {
    deletions = 0;
    destroy(nullptr);
    destroy(new Counted);
    EXPECT_EQ(deletions, 1);
}

TEST(ConstructableProxy, KeepsTheMapItWasLinkedWith) {
    orvo::Constructable* made = create_constructable_proxy();
    auto* proxy = dynamic_cast<orvo::Constructable_Proxy*>(made);
    ASSERT_NE(proxy, nullptr);
    EXPECT_EQ(proxy->get_name(), "constructable_proxy");
    EXPECT_EQ(proxy->classes, nullptr);
    orvo::Class_Map classes;
    proxy->link(classes);
    EXPECT_EQ(proxy->classes, &classes);
    destroy(made);
}
