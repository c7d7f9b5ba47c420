// Clones of overlays.
#pragma once

#include "zolcs/ccsoverlay.h"

#include <new>

namespace zolcs {

/// A copy on the heap, made by the copy constructor; null when memory is exhausted.
template <typename Overlay>
CCsOverlay* cloneOf(const Overlay& original) noexcept {
    try {
        return new Overlay(original);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace zolcs
