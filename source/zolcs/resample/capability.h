// Whether the packed processor paths may run: one flag for the whole process.
#pragma once

#include "zolcs/ccsexport.h"

namespace zolcs {

/// Non-zero when the packed paths are on; 0 until a CCsMmx has been constructed. Any thread may ask.
[[nodiscard]] ZOLWEBCS_API int processorCapability();

/// Switches the packed paths on or off for every call that starts afterwards.
ZOLWEBCS_API void setProcessorCapability(int capability);

}  // namespace zolcs
