// Memory device contexts: drawing on bitmaps.
#include "platform/gdi/dc.h"
#include "platform/gdi/rastercanvas.h"

namespace zolgdi {

namespace {

class MemoryDc : public DeviceContext {
public:
    explicit MemoryDc(const Capabilities& capabilities) : DeviceContext(capabilities) {
        state.bitmap = Selection<Bitmap>(stockObject(STOCK_BITMAP));
        if (!state.bitmap) throw std::bad_alloc();
    }

    Canvas* canvas() override {
        canvas_.setPixels(state.bitmap->pixels());
        return &canvas_;
    }

private:
    RasterCanvas canvas_;
};

}  // namespace

}  // namespace zolgdi

using zolgdi::DcLock;
using zolgdi::guarded;

HDC CreateCompatibleDC(HDC dc) {
    return guarded(nullptr, [&]() -> HDC {
        zolgdi::Capabilities capabilities = zolgdi::screenCapabilities();
        if (dc != nullptr) {
            const DcLock lock(dc);
            if (!lock) return nullptr;
            capabilities = lock->capabilities;
        }
        return zolgdi::publish<HDC>(std::make_shared<zolgdi::MemoryDc>(capabilities));
    });
}

BOOL DeleteDC(HDC dc) {
    const auto context = zolgdi::find<zolgdi::DeviceContext>(dc);
    if (!context || !context->deletable()) return FALSE;
    return zolgdi::HandleTable::instance().remove(dc) ? TRUE : FALSE;
}
