// How far the stack has grown, to end recursion in the DICOM toolkit before the stack does.
#pragma once

#include <cstdint>

namespace viewing {

/// Measures the stack of one thread from where this object was made.
class StackGrowth {
public:
    StackGrowth();
    /// The distance between the stack's end now and then, in the thread that made this.
    [[nodiscard]] std::uintptr_t bytes() const;

private:
    std::uintptr_t start_;
};

}  // namespace viewing
