// The window into which a picture is painted: pixels in memory, nothing on a screen.
#pragma once

#include "platform/platform.h"
#include "viewing/image/picture.h"

#include <utility>

namespace viewing {

class HostWindow : private ZolHostWindow {
public:
    /// A black client area of this size, both sides at least 1.
    HostWindow(int width, int height);
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;
    ~HostWindow() override;

    [[nodiscard]] HWND handle() const { return handle_; }

    /// Takes the client area's pixels away; what is painted afterwards is painted nowhere.
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
