// Scopes for GDI: whatever is made is deleted and whatever is selected is deselected, on every path.
//
// Declare a selection after what it selects and after its device context, so that it ends first.
#pragma once

#include "platform/platform.h"

namespace zolcs {

/// Owns what a Create call made; may be empty.
template <typename Handle>
class GdiObject {
public:
    explicit GdiObject(Handle handle = nullptr) : handle_(handle) {}
    ~GdiObject() {
        if (handle_ != nullptr) DeleteObject(handle_);
    }
    GdiObject(const GdiObject&) = delete;
    GdiObject& operator=(const GdiObject&) = delete;

    [[nodiscard]] Handle get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }

private:
    Handle handle_;
};

using Pen = GdiObject<HPEN>;
using Brush = GdiObject<HBRUSH>;
using Region = GdiObject<HRGN>;
using Bitmap = GdiObject<HBITMAP>;
using Font = GdiObject<HFONT>;

/// A memory device context that is compatible with another one, or with the screen for null.
class MemoryDC {
public:
    explicit MemoryDC(HDC like) : dc_(CreateCompatibleDC(like)) {}
    ~MemoryDC() {
        if (dc_ != nullptr) DeleteDC(dc_);
    }
    MemoryDC(const MemoryDC&) = delete;
    MemoryDC& operator=(const MemoryDC&) = delete;

    [[nodiscard]] HDC get() const { return dc_; }
    explicit operator bool() const { return dc_ != nullptr; }

private:
    HDC dc_;
};

/// The device context of a window's client area.
class WindowDC {
public:
    explicit WindowDC(HWND window) : window_(window), dc_(GetDC(window)) {}
    ~WindowDC() {
        if (dc_ != nullptr) ReleaseDC(window_, dc_);
    }
    WindowDC(const WindowDC&) = delete;
    WindowDC& operator=(const WindowDC&) = delete;

    [[nodiscard]] HDC get() const { return dc_; }
    explicit operator bool() const { return dc_ != nullptr; }

private:
    HWND window_;
    HDC dc_;
};

/// Selects a pen, brush, font or bitmap and selects the previous one back. Without an object it does nothing.
class SelectGuard {
public:
    SelectGuard(HDC dc, HGDIOBJ object) : dc_(dc), previous_(object != nullptr ? SelectObject(dc, object) : nullptr) {}
    ~SelectGuard() {
        if (previous_ != nullptr) SelectObject(dc_, previous_);
    }
    SelectGuard(const SelectGuard&) = delete;
    SelectGuard& operator=(const SelectGuard&) = delete;

    /// Selects another object; what was selected before the first one is what comes back.
    void change(HGDIOBJ object) {
        const HGDIOBJ replaced = object != nullptr ? SelectObject(dc_, object) : nullptr;
        if (previous_ == nullptr) previous_ = replaced;
    }

    /// Whether anything has been selected.
    explicit operator bool() const { return previous_ != nullptr; }

private:
    HDC dc_;
    HGDIOBJ previous_;
};

}  // namespace zolcs
