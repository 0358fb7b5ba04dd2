#include <orvo/behaviors/behavior.h>

namespace orvo::behaviors {

Behavior::~Behavior() = default;
void Behavior::operator()() {}

} // namespace orvo::behaviors
