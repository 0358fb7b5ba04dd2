#ifndef ORVO_TESTS_CORE_PLUGINS_RECORDED_H
#define ORVO_TESTS_CORE_PLUGINS_RECORDED_H

#include "recorder.h"

#include <orvo/core/agent.h>
#include <orvo/humanoid/base/constructable.h>

#include <string>
#include <utility>

// Components of the test plug-ins: they journal every lifecycle call under
// the name they report and fail on request. PLUGIN_ORIGIN names the plug-in
// file each copy is compiled into.
namespace orvo_test {

enum class Fault { none, needs_absent, link, init, finalize };

template <class Base> class Journaled : public Base {
public:
    Journaled(const char* factory, std::string name, Fault fault = Fault::none)
        : name(std::move(name)), fault(fault) {
        creations().push_back(Creation{this, factory, PLUGIN_ORIGIN, true});
    }
    ~Journaled() override {
        record(name + ".delete");
        for (auto& creation : creations()) {
            creation.alive = creation.alive && creation.component != this;
        }
    }

    void link(orvo::Class_Map& classes) override {
        record(name + ".link");
        if (fault == Fault::needs_absent) {
            orvo::get_class<orvo::Constructable>(*this, "absent", classes);
        }
        fail_if(Fault::link, "link", 5, "cannot link");
    }
    void init() override {
        record(name + ".init");
        if (fault == Fault::init) {
            throw orvo::LogicException(orvo::gen_ffl_string("plugins/recorded.h", "init", 7),
                                       "cannot start");
        }
    }
    void finalize() override {
        record(name + ".finalize");
        fail_if(Fault::finalize, "finalize", 9, "cannot stop");
    }
    std::string get_name() const override { return name; }

private:
    void fail_if(Fault when, const char* function, int line, const char* message) {
        if (fault == when) {
            throw orvo::Exception(orvo::gen_ffl_string("plugins/recorded.h", function, line),
                                  message, "Exception");
        }
    }

    std::string name;
    Fault fault;
};

using Recorded = Journaled<orvo::Constructable>;

struct RecordedAgent : Journaled<orvo::Agent> {
    RecordedAgent() : Journaled("agent", "agent") {}
    void run() override { record("agent.run"); }
};

} // namespace orvo_test

#define RECORDED_FACTORY(factory, ...)                                                             \
    extern "C" ORVO_API ::orvo::Constructable* create_##factory() {                                \
        return new ::orvo_test::Recorded(#factory, __VA_ARGS__);                                   \
    }

#endif
