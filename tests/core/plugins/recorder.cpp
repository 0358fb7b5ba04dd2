#include "recorder.h"

#include <algorithm>

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
    const auto& made = creations();
    const auto found =
        std::find_if(made.begin(), made.end(), [component](const Creation& creation) {
            return creation.component == component;
        });
    return found == made.end() ? nullptr : &*found;
}

void record(const std::string& event) {
    journal().push_back(event);
}

void reset() {
    journal().clear();
    creations().clear();
}

} // namespace orvo_test
