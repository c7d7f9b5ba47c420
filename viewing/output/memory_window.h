// The window into which a picture is painted: pixels in memory, nothing on a screen.
#pragma once

#include "platform/platform.h"
#include "viewing/image/picture.h"

#include <utility>

namespace viewing {

/// A window without a screen, which holds the pixels of its client area.
class MemoryWindow : private ZolHostWindow {
public:
    /// A black client area of this size in pixels, both sides at least 1. Refuses when no window can be made.
    MemoryWindow(int width, int height);
    MemoryWindow(const MemoryWindow&) = delete;
    MemoryWindow& operator=(const MemoryWindow&) = delete;
    ~MemoryWindow() override;

    /// The window, which lives as long as this object.
    [[nodiscard]] HWND handle() const { return handle_; }

    /// Moves the client area's pixels out; what is painted afterwards is lost.
    [[nodiscard]] Picture takePicture() { return std::move(picture_); }

private:
    SIZE clientSize() override;
    ZolPixelSurface surface() override;
    void present() override {}
    void invalidate(const RECT& /*area*/) override {}

    Picture picture_;
    HWND handle_ = nullptr;
};

}  // namespace viewing
