#include "zolcs/ccsmmx.h"

#include "platform/compiler.h"
#include "zolcs/simd/capability.h"

CCsMmx::CCsMmx() { zolcs::setProcessorCapability(zolProcessorHasMmx() ? 1 : 0); }
