// Chooses between the packed and the plain processor paths for as long as it lives.
#pragma once

#include "zolcs/simd/capability.h"

namespace zoltest {

class CapabilityGuard {
public:
    explicit CapabilityGuard(int capability) : before_(zolcs::processorCapability()) {
        zolcs::setProcessorCapability(capability);
    }
    ~CapabilityGuard() { zolcs::setProcessorCapability(before_); }
    CapabilityGuard(const CapabilityGuard&) = delete;
    CapabilityGuard& operator=(const CapabilityGuard&) = delete;

private:
    int before_;
};

}  // namespace zoltest
