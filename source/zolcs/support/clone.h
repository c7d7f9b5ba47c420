// Clones of objects that hosts handle through an interface.
#pragma once

#include <new>

namespace zolcs {

/// A copy on the heap, made by the copy constructor; null when memory is exhausted.
template <typename Object>
Object* cloneOf(const Object& original) noexcept {
    try {
        return new Object(original);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace zolcs
