#include "zolcs/simd/capability.h"

#include <atomic>

namespace zolcs {

namespace {

// Constant-initialised, so that constructors of static objects may already ask.
constinit std::atomic<int> capabilityFlag{0};

}  // namespace

int processorCapability() { return capabilityFlag.load(std::memory_order_relaxed); }

void setProcessorCapability(int capability) { capabilityFlag.store(capability, std::memory_order_relaxed); }

}  // namespace zolcs
