// What other libraries lose, kept out of the leak sanitizer's count.
#pragma once

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace zoltest {

/// Memory that is allocated while this lives does not count as lost. For calls into libraries that leak by themselves;
/// as short as can be, and never where our own memory is not watched elsewhere.
class [[maybe_unused]] ForeignLeaks {
public:
#if defined(__SANITIZE_ADDRESS__)
    ForeignLeaks() { __lsan_disable(); }
    ~ForeignLeaks() { __lsan_enable(); }
#else
    ForeignLeaks() = default;
    ~ForeignLeaks() = default;
#endif
    ForeignLeaks(const ForeignLeaks&) = delete;
    ForeignLeaks& operator=(const ForeignLeaks&) = delete;
};

}  // namespace zoltest
