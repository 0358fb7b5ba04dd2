#ifndef ORVO_BODY_SRC_BUILTIN_BODIES_H
#define ORVO_BODY_SRC_BUILTIN_BODIES_H

#include <string_view>

namespace orvo::body::detail {

/// The text of body/typeN.json as it was when the library was built; empty
/// outside 0..4.
std::string_view builtin_body_json(int type);

} // namespace orvo::body::detail

#endif
