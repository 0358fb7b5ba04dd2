#include "recorder.h"

namespace orvo_test {

std::vector<std::string>& journal() {
    static std::vector<std::string> events;
    return events;
}

std::vector<Creation>& creations() {
    static std::vector<Creation> made;
    return made;
}

const Creation* creation_of(const orvo::Constructable* component) {
    for (const auto& creation : creations()) {
        if (creation.component == component) {
            return &creation;
        }
    }
    return nullptr;
}

void record(const std::string& event) {
    journal().push_back(event);
}

void reset() {
    journal().clear();
    creations().clear();
}

} // namespace orvo_test
