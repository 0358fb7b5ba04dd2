#include <orvo/core/constructable_proxy.h>

namespace orvo {

void Constructable_Proxy::link(Class_Map& classes) {
    this->classes = &classes;
}

std::string Constructable_Proxy::get_name() const {
    return "constructable_proxy";
}

} // namespace orvo

ORVO_COMPONENT_FACTORY(constructable_proxy, orvo::Constructable_Proxy)
