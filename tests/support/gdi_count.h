// How many GDI objects the process holds, to see that nothing leaks.
#pragma once

#include "platform/platform.h"

namespace zoltest {

inline unsigned int gdiObjectCount() {
#if defined(_WIN32)
    return GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
#else
    return ZolGdiObjectCount();
#endif
}

}  // namespace zoltest
