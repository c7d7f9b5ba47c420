// Makes large allocations through the non-throwing new[] fail, to see what the library does without memory.
#pragma once

#include <cstddef>

namespace zoltest {

/// False where the tests' own operator new[] cannot be put into the library's way.
[[nodiscard]] bool canFailNothrowNew();

/// While it lives, a non-throwing new[] of `bytes` and more gives null. One at a time.
class NothrowNewLimit {
public:
    explicit NothrowNewLimit(std::size_t bytes);
    ~NothrowNewLimit();
    NothrowNewLimit(const NothrowNewLimit&) = delete;
    NothrowNewLimit& operator=(const NothrowNewLimit&) = delete;

    /// Requests that were refused since the last limit was set.
    [[nodiscard]] static int refusals();
};

}  // namespace zoltest
