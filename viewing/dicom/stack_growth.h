// How far the stack has grown.
#pragma once

#include <cstdint>

namespace viewing {

/// Measures one thread's stack from where the measuring began.
class StackGrowth {
public:
    StackGrowth();
    [[nodiscard]] std::uintptr_t bytes() const;

private:
    std::uintptr_t start_;
};

}  // namespace viewing
