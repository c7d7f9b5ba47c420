// Windows of the host and their device contexts.
#include "platform/gdi/dc.h"
#include "platform/gdi/rastercanvas.h"

ZolHostWindow::~ZolHostWindow() = default;

RECT ZolHostWindow::windowRect() {
    const SIZE size = clientSize();
    return {0, 0, size.cx, size.cy};
}

namespace zolgdi {

namespace {

/// A window's handle. The lock is held while the host is called, so that destroying the handle waits for the call.
class Window : public Object {
public:
    explicit Window(ZolHostWindow* host) : host_(host) {}

    /// Calls the host, if it still is there.
    template <typename Result, typename Call>
    Result call(Result gone, const Call& call) {
        const std::lock_guard lock(mutex_);
        return host_ != nullptr ? call(*host_) : gone;
    }
    void detach() {
        const std::lock_guard lock(mutex_);
        host_ = nullptr;
    }

private:
    std::recursive_mutex mutex_;
    ZolHostWindow* host_;
};

class WindowDc : public DeviceContext {
public:
    /// Without a window: the screen.
    WindowDc(const Capabilities& capabilities, HWND handle, std::shared_ptr<Window> window)
        : DeviceContext(capabilities), handle_(handle), window_(std::move(window)) {
        const ZolPixelSurface none;
        const ZolPixelSurface surface =
            window_ ? window_->call(none, [](ZolHostWindow& host) { return host.surface(); }) : none;
        if (surface.pixels == nullptr || surface.width <= 0 || surface.height <= 0) return;
        Pixels pixels;
        pixels.top = static_cast<BYTE*>(surface.pixels);
        pixels.stride = surface.stride;
        pixels.width = surface.width;
        pixels.height = surface.height;
        canvas_.setPixels(pixels);
    }

    /// A window that is gone has no pixels any more.
    Canvas* canvas() override {
        if (window_ && !window_->call(false, [](ZolHostWindow&) { return true; })) canvas_.setPixels({});
        return &canvas_;
    }
    [[nodiscard]] bool deletable() const override { return false; }

    [[nodiscard]] HWND handle() const { return handle_; }
    void present() {
        if (window_) window_->call(0, [](ZolHostWindow& host) { return host.present(), 0; });
    }

private:
    HWND handle_;
    std::shared_ptr<Window> window_;
    RasterCanvas canvas_;
};

Capabilities capabilitiesOf(Window& window) {
    Capabilities capabilities = screenCapabilities();
    return window.call(capabilities, [&](ZolHostWindow& host) {
        const SIZE size = host.clientSize();
        capabilities.width = size.cx;
        capabilities.height = size.cy;
        if (host.dpi() > 0) capabilities.dpi = host.dpi();
        return capabilities;
    });
}

}  // namespace

}  // namespace zolgdi

using zolgdi::find;
using zolgdi::guarded;
using zolgdi::Window;
using zolgdi::WindowDc;

HWND ZolCreateHostWindow(ZolHostWindow* window) {
    return guarded(nullptr, [&]() -> HWND {
        return window != nullptr ? zolgdi::publish<HWND>(std::make_shared<Window>(window)) : nullptr;
    });
}

BOOL ZolDestroyHostWindow(HWND window) {
    const auto object = find<Window>(window);
    if (!object || !zolgdi::HandleTable::instance().remove(window)) return FALSE;
    object->detach();
    return TRUE;
}

HDC GetDC(HWND window) {
    return guarded(nullptr, [&]() -> HDC {
        auto object = find<Window>(window);
        if (window != nullptr && !object) return nullptr;
        const auto capabilities = object ? zolgdi::capabilitiesOf(*object) : zolgdi::screenCapabilities();
        return zolgdi::publish<HDC>(std::make_shared<WindowDc>(capabilities, window, std::move(object)));
    });
}

int ReleaseDC(HWND window, HDC dc) {
    const auto context = find<WindowDc>(dc);
    if (!context || context->handle() != window || !zolgdi::HandleTable::instance().remove(dc)) return 0;
    context->present();
    return 1;
}

BOOL InvalidateRect(HWND window, const RECT* area, BOOL /*erase*/) {
    const auto object = find<Window>(window);
    if (!object) return FALSE;
    return object->call(FALSE, [&](ZolHostWindow& host) {
        const SIZE size = host.clientSize();
        const RECT client{0, 0, size.cx, size.cy};
        const RECT dirty = area != nullptr ? zolgdi::intersection(*area, client) : client;
        if (!zolgdi::isEmpty(dirty)) host.invalidate(dirty);
        return TRUE;
    });
}

BOOL GetClientRect(HWND window, LPRECT rect) {
    const auto object = find<Window>(window);
    if (!object || rect == nullptr) return FALSE;
    return object->call(FALSE, [&](ZolHostWindow& host) {
        const SIZE size = host.clientSize();
        *rect = {0, 0, size.cx, size.cy};
        return TRUE;
    });
}

BOOL GetWindowRect(HWND window, LPRECT rect) {
    const auto object = find<Window>(window);
    if (!object || rect == nullptr) return FALSE;
    return object->call(FALSE, [&](ZolHostWindow& host) {
        *rect = host.windowRect();
        return TRUE;
    });
}

BOOL IsWindow(HWND window) { return find<Window>(window) ? TRUE : FALSE; }
