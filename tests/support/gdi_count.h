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

/// False where the system does not count: then gdiObjectCount() is always the same.
inline bool canCountGdiObjects() {
    const unsigned int before = gdiObjectCount();
    HPEN const pen = CreatePen(PS_SOLID, 1, RGB(1, 2, 3));
    const bool counts = gdiObjectCount() != before;
    DeleteObject(pen);
    return counts;
}

}  // namespace zoltest
