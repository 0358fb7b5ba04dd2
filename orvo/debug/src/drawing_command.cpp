#include <orvo/debug/drawing_command.h>

namespace orvo {

// Defined out of line so the class has one home for its vtable.
DrawingCommand::~DrawingCommand() = default;

} // namespace orvo
