// A check for user-interface code that must not stop the program: when it fails it says where on
// standard error and runs the recovery given, so that a palette with a bug goes on working for the
// user instead of taking the drawing down with it. Bugs in the drawing database stay hard asserts.
#pragma once

#include <cstdio>

namespace veltarn::detail {

inline void softAssertFailed(const char* condition, const char* file, int line) {
    std::fprintf(stderr, "veltarn: soft assert \"%s\" failed at %s:%d\n", condition, file, line);
}

}  // namespace veltarn::detail

// VELTARN_SOFT_ASSERT(item != nullptr, return);  VELTARN_SOFT_ASSERT(row < rows, row = rows - 1);
#define VELTARN_SOFT_ASSERT(condition, recovery)                                      \
    if (condition) {                                                                  \
    } else {                                                                          \
        ::veltarn::detail::softAssertFailed(#condition, __FILE__, __LINE__);          \
        recovery;                                                                     \
    }                                                                                 \
    do {                                                                              \
    } while (false)
