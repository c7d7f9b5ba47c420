// Whether the packed processor paths may run: one flag for the whole process.
#pragma once

namespace zolcs {

/// Non-zero when the packed paths are on; 0 until a CCsMmx has been constructed. Any thread may ask.
[[nodiscard]] int processorCapability();

/// Switches the packed paths on or off for every call that starts afterwards.
void setProcessorCapability(int capability);

}  // namespace zolcs
