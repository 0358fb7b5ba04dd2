#ifndef ORVO_TESTS_SUPPORT_FAILURE_H
#define ORVO_TESTS_SUPPORT_FAILURE_H

#include <orvo/core/exception.h>

#include <string>
#include <typeinfo>

namespace orvo_test {

/// "<type> @ <source> | <message>" of the `E` that `step` throws, or
/// "no exception": one comparison checks all three parts a caller sees. The
/// text starts with "subclass of E: " when a class derived from `E` was thrown.
template <class E = orvo::Exception, class Step> std::string failure(Step step) {
    try {
        step();
    } catch (const E& e) {
        const bool exact = typeid(e) == typeid(E);
        return (exact ? "" : "subclass of E: ") + e.get_type() + " @ " + e.get_source() + " | " +
               e.get_message();
    }
    return "no exception";
}

} // namespace orvo_test

#endif
