// The argument checks that the primitives share. Private to the library.
#pragma once

#include "zolipp/zolipp.h"

#include <algorithm>
#include <cstdint>
#include <new>

namespace zolipp {

inline bool isEmpty(IppiSize size) { return size.width < 1 || size.height < 1; }
inline bool isEmpty(IppiRect rect) { return rect.width < 1 || rect.height < 1; }

/// True when a row of `width` pixels fits the step.
inline bool holdsRow(int step, std::int64_t width, int bytesOfPixel) { return step >= width * bytesOfPixel; }

inline bool isInterpolation(int value) {
    return value == IPPI_INTER_NN || value == IPPI_INTER_LINEAR || value == IPPI_INTER_CUBIC;
}

/// The part of a rectangle within an image; width or height is 0 or less where there is none.
inline IppiRect cutTo(IppiRect rect, std::int64_t imageWidth, std::int64_t imageHeight) {
    const auto cut = [](std::int64_t start, std::int64_t length, std::int64_t limit, int& from, int& size) {
        const std::int64_t first = std::max<std::int64_t>(start, 0);
        const std::int64_t end = std::min(start + length, limit);
        from = static_cast<int>(first);
        size = static_cast<int>(std::max<std::int64_t>(end - first, 0));
    };
    IppiRect part{};
    cut(rect.x, rect.width, imageWidth, part.x, part.width);
    cut(rect.y, rect.height, imageHeight, part.y, part.height);
    return part;
}

/// Runs work that allocates: callers in C expect a status, never an exception.
template <typename Work>
IppStatus withMemory(Work work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return ippStsMemAllocErr;
    }
}

}  // namespace zolipp
