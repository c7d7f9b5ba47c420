// How much memory a piece of work takes at its height.
#pragma once

#include <sys/resource.h>

#include <cstddef>

namespace zoltest {

/// By how much the process's peak has grown since this was made. Work that stays below an earlier peak counts as none,
/// so a figure that must not be missed needs a process of its own, as each test has one under ctest.
class PeakMemory {
public:
    /// Bytes.
    [[nodiscard]] std::size_t grown() const { return peak() - before_; }

private:
    static std::size_t peak() {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        constexpr std::size_t unit = 1024;
        return static_cast<std::size_t>(usage.ru_maxrss) * unit;
    }

    std::size_t before_ = peak();
};

}  // namespace zoltest
