#include <orvo/communication/configuration.h>

namespace orvo::communication {

// Out of line so that the class's type information lives in the library and
// a plug-in's subclass is found by dynamic_cast from every module.
Configuration::~Configuration() = default;

void Configuration::link(Class_Map&) {}

std::string Configuration::get_name() const {
    return "configuration";
}

} // namespace orvo::communication
