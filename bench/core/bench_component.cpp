// One of the benchmark's plug-ins: twenty trivial components whose names
// carry the library's number, so that no two libraries export the same factory.
#include <orvo/core/agent.h>
#include <orvo/humanoid/base/constructable.h>

#include <string>
#include <utility>

namespace {

class Component : public orvo::Constructable {
public:
    explicit Component(std::string name) : name(std::move(name)) {}
    void link(orvo::Class_Map&) override { ++calls; }
    void init() override { ++calls; }
    void finalize() override { ++calls; }
    std::string get_name() const override { return name; }

private:
    std::string name;
    int calls = 0;
};

class Agent : public orvo::Agent {
public:
    void link(orvo::Class_Map&) override {}
    void run() override {}
};

} // namespace

#define BENCH_CAT_(a, b, c, d) a##b##c##d
#define BENCH_CAT(a, b, c, d) BENCH_CAT_(a, b, c, d)
#define BENCH_STR_(x) #x
#define BENCH_STR(x) BENCH_STR_(x)
// create_l<lib>_c<k> makes the component "l<lib>_c<k>".
#define BENCH_FACTORY(k)                                                                           \
    extern "C" ORVO_API orvo::Constructable* BENCH_CAT(create_l, BENCH_LIB, _c, k)() {             \
        return new Component(BENCH_STR(BENCH_CAT(l, BENCH_LIB, _c, k)));                           \
    }

// The first library's first component is the agent the host receives.
#if BENCH_LIB == 0
ORVO_COMPONENT_FACTORY(agent, Agent)
#else
BENCH_FACTORY(10)
#endif
BENCH_FACTORY(11)
BENCH_FACTORY(12)
BENCH_FACTORY(13)
BENCH_FACTORY(14)
BENCH_FACTORY(15)
BENCH_FACTORY(16)
BENCH_FACTORY(17)
BENCH_FACTORY(18)
BENCH_FACTORY(19)
BENCH_FACTORY(20)
BENCH_FACTORY(21)
BENCH_FACTORY(22)
BENCH_FACTORY(23)
BENCH_FACTORY(24)
BENCH_FACTORY(25)
BENCH_FACTORY(26)
BENCH_FACTORY(27)
BENCH_FACTORY(28)
BENCH_FACTORY(29)
