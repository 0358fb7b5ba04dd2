#include <orvo/humanoid/base/constructable.h>

namespace orvo {

Constructable::~Constructable() = default;
void Constructable::init() {}
void Constructable::finalize() {}

} // namespace orvo

extern "C" void destroy(orvo::Constructable* component) {
    delete component;
}
