#include <orvo/core/agent.h>

namespace orvo {

Agent::~Agent() = default;
std::string Agent::get_name() const {
    return "agent";
}

} // namespace orvo
