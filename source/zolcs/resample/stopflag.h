// A request to stop that another thread may make while a call runs.
#pragma once

#include <atomic>
#include <cstdint>

namespace zolcs {

/// The pixels do not depend on when a request is seen, so nothing is ordered by it.
inline bool isRaised(std::int32_t& flag) {
    return std::atomic_ref<std::int32_t>(flag).load(std::memory_order_relaxed) != 0;
}

inline void setFlag(std::int32_t& flag, std::int32_t value) {
    std::atomic_ref<std::int32_t>(flag).store(value, std::memory_order_relaxed);
}

/// Where a loop looks whether it is to stop.
class StopFlag {
public:
    /// Vector loops look before each block of this many pixels.
    static constexpr int block = 16;

    /// Never raised.
    StopFlag() = default;
    explicit StopFlag(std::int32_t& flag) : flag_(&flag) {}

    /// False when it can never be raised.
    [[nodiscard]] bool isThere() const { return flag_ != nullptr; }

    [[nodiscard]] bool isRaised() const { return flag_ != nullptr && zolcs::isRaised(*flag_); }

private:
    std::int32_t* flag_ = nullptr;
};

}  // namespace zolcs
