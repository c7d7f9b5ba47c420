// Device contexts.
#pragma once

#include "platform/gdi/canvas.h"
#include "platform/gdi/path.h"

#include <optional>
#include <string_view>
#include <utility>

namespace zolgdi {

/// An object's use by a device context; it counts as selected as long as this lives.
template <typename T>
class Selection {
public:
    Selection() = default;
    explicit Selection(HGDIOBJ handle) : object_(find<T>(handle)) {
        if (object_ && HandleTable::instance().select(handle)) handle_ = handle;
        if (handle_ == nullptr) object_ = nullptr;
    }
    Selection(const Selection& other) : Selection(other.handle_) {}
    Selection(Selection&& other) noexcept
        : object_(std::move(other.object_)), handle_(std::exchange(other.handle_, nullptr)) {}
    Selection& operator=(Selection other) noexcept {
        std::swap(object_, other.object_);
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Selection() {
        object_ = nullptr;
        if (handle_ != nullptr) HandleTable::instance().deselect(handle_);
    }

    explicit operator bool() const { return handle_ != nullptr; }
    const T* operator->() const { return object_.get(); }
    const T& operator*() const { return *object_; }
    [[nodiscard]] HGDIOBJ handle() const { return handle_; }

private:
    std::shared_ptr<T> object_;
    HGDIOBJ handle_ = nullptr;
};

/// What GetDeviceCaps answers from.
struct Capabilities {
    int technology = DT_RASDISPLAY;
    int width = 0;   ///< pixels
    int height = 0;  ///< pixels
    int dpi = 96;

    [[nodiscard]] int millimetres(int pixels) const;
    [[nodiscard]] int value(int index) const;
};

/// The screen's, for device contexts without a window.
constexpr Capabilities screenCapabilities() { return {DT_RASDISPLAY, 1920, 1080, 96}; }

/// What SaveDC keeps.
struct State {
    /// A new device context's: stock objects, black on white. Fails (throws std::bad_alloc) without memory only.
    State();

    [[nodiscard]] Affine toDevice() const;

    Selection<Bitmap> bitmap;  ///< of memory device contexts only
    Selection<Pen> pen;
    Selection<Brush> brush;
    Selection<Font> font;
    COLORREF textColor = RGB(0, 0, 0);
    COLORREF backgroundColor = RGB(255, 255, 255);
    int backgroundMode = OPAQUE;
    int fillMode = ALTERNATE;
    int stretchMode = BLACKONWHITE;
    POINT position{0, 0};
    std::optional<Area> clip;  ///< device pixels
    int graphicsMode = GM_COMPATIBLE;
    int mapMode = MM_TEXT;
    POINT windowOrigin{0, 0};
    SIZE windowExtent{1, 1};  ///< never 0
    POINT viewportOrigin{0, 0};
    SIZE viewportExtent{1, 1};  ///< never 0
    XFORM world{1.0F, 0.0F, 0.0F, 1.0F, 0.0F, 0.0F};
};

class DeviceContext : public Object {
public:
    explicit DeviceContext(const Capabilities& capabilities) : capabilities(capabilities) {}

    /// What drawing goes to now; null when nothing can be drawn.
    virtual Canvas* canvas() = 0;
    /// Whether DeleteDC takes it; a window's is released instead.
    [[nodiscard]] virtual bool deletable() const { return true; }

    [[nodiscard]] Affine toDevice() const { return state.toDevice(); }
    /// The pixels that drawing may change.
    [[nodiscard]] Area clipArea();

    std::recursive_mutex mutex;
    Capabilities capabilities;
    State state;
    std::vector<State> saved;
    Path path;
};

/// A device context for the length of a call: found and locked, or nothing.
class DcLock {
public:
    explicit DcLock(HDC dc) : dc_(find<DeviceContext>(dc)) {
        if (dc_) lock_ = std::unique_lock(dc_->mutex);
    }
    explicit operator bool() const { return dc_ != nullptr; }
    DeviceContext* operator->() const { return dc_.get(); }
    DeviceContext& operator*() const { return *dc_; }

private:
    std::shared_ptr<DeviceContext> dc_;
    std::unique_lock<std::recursive_mutex> lock_;
};

/// Two device contexts for the length of a call, which may be the same one.
class DcPairLock {
public:
    DcPairLock(HDC first, HDC second) : first_(find<DeviceContext>(first)), second_(find<DeviceContext>(second)) {
        if (first_ && second_ && first_ != second_) {
            firstLock_ = std::unique_lock(first_->mutex, std::defer_lock);
            secondLock_ = std::unique_lock(second_->mutex, std::defer_lock);
            std::lock(firstLock_, secondLock_);
        } else if (first_) {
            firstLock_ = std::unique_lock(first_->mutex);
        }
    }
    explicit operator bool() const { return first_ != nullptr && second_ != nullptr; }
    [[nodiscard]] DeviceContext& first() const { return *first_; }
    [[nodiscard]] DeviceContext& second() const { return *second_; }

private:
    std::shared_ptr<DeviceContext> first_;
    std::shared_ptr<DeviceContext> second_;
    std::unique_lock<std::recursive_mutex> firstLock_;
    std::unique_lock<std::recursive_mutex> secondLock_;
};

/// Runs `body` on a device context; gives `failure` for a wrong handle and when memory is exhausted.
template <typename Result, typename Body>
Result withDc(HDC dc, Result failure, const Body& body) noexcept {
    return guarded(failure, [&]() -> Result {
        const DcLock lock(dc);
        return lock ? body(*lock) : failure;
    });
}

/// As withDc, where there must be something to draw on.
template <typename Result, typename Body>
Result withCanvas(HDC dc, Result failure, const Body& body) noexcept {
    return withDc(dc, failure, [&](DeviceContext& context) -> Result {
        Canvas* canvas = context.canvas();
        return canvas != nullptr ? body(context, *canvas) : failure;
    });
}

/// Sets a value of a device context and returns the previous one.
template <typename T>
T replaceState(HDC dc, T State::*field, T value, T failure) noexcept {
    return withDc(dc, failure, [&](DeviceContext& context) { return std::exchange(context.state.*field, value); });
}

}  // namespace zolgdi
