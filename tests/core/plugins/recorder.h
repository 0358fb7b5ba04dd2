#ifndef ORVO_TESTS_CORE_PLUGINS_RECORDER_H
#define ORVO_TESTS_CORE_PLUGINS_RECORDER_H

#include <orvo/humanoid/base/constructable.h>

#include <string>
#include <vector>

// Shared by the test plug-ins and the tests that load them: one instance per
// process, so what a component does inside a plug-in is visible to the test.
namespace orvo_test {

/// One component created by a test plug-in.
struct Creation {
    orvo::Constructable* component;
    std::string factory; ///< the part of "create_<factory>" that made it
    std::string origin;  ///< the plug-in file it came from, e.g. "alpha.agent3"
    bool alive;
};

/// Lifecycle calls in the order they happened, as "<name>.<hook>".
std::vector<std::string>& journal();
std::vector<Creation>& creations();
/// The creation record of `component`, or null when no test plug-in made it.
const Creation* creation_of(const orvo::Constructable* component);
void record(const std::string& event);
void reset();

} // namespace orvo_test

#endif
