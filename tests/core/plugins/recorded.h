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

struct Faults {
    const char* needs = nullptr; ///< a collaborator link() asks for
    bool link_fails = false;
    bool init_fails = false;
    bool finalize_fails = false;
};

inline void note_creation(orvo::Constructable* component, const char* factory) {
    creations().push_back(Creation{component, factory, PLUGIN_ORIGIN, true});
}

inline void note_deletion(orvo::Constructable* component, const std::string& name) {
    record(name + ".delete");
    for (auto& creation : creations()) {
        if (creation.component == component) {
            creation.alive = false;
        }
    }
}

class Recorded : public orvo::Constructable {
public:
    Recorded(const char* factory, std::string name, Faults faults = Faults())
        : name(std::move(name)), faults(faults) {
        note_creation(this, factory);
    }
    ~Recorded() override { note_deletion(this, name); }

    void link(orvo::Class_Map& classes) override {
        record(name + ".link");
        if (faults.needs != nullptr) {
            orvo::get_class<orvo::Constructable>(*this, faults.needs, classes);
        }
        if (faults.link_fails) {
            throw orvo::Exception(orvo::gen_ffl_string("plugins/recorded.h", "link", 5),
                                  "cannot link", "Exception");
        }
    }
    void init() override {
        record(name + ".init");
        if (faults.init_fails) {
            throw orvo::LogicException(orvo::gen_ffl_string("plugins/recorded.h", "init", 7),
                                       "cannot start");
        }
    }
    void finalize() override {
        record(name + ".finalize");
        if (faults.finalize_fails) {
            throw orvo::Exception(orvo::gen_ffl_string("plugins/recorded.h", "finalize", 9),
                                  "cannot stop", "Exception");
        }
    }
    std::string get_name() const override { return name; }

private:
    std::string name;
    Faults faults;
};

class RecordedAgent : public orvo::Agent {
public:
    RecordedAgent() { note_creation(this, "agent"); }
    ~RecordedAgent() override { note_deletion(this, "agent"); }
    void link(orvo::Class_Map&) override { record("agent.link"); }
    void init() override { record("agent.init"); }
    void finalize() override { record("agent.finalize"); }
    void run() override { record("agent.run"); }
};

} // namespace orvo_test

#define RECORDED_FACTORY(factory, ...)                                                             \
    extern "C" ORVO_API ::orvo::Constructable* create_##factory() {                                \
        return new ::orvo_test::Recorded(#factory, __VA_ARGS__);                                   \
    }

#endif
