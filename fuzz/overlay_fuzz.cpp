// Overlays of every kind in nested groups: drawn in every mode on a small bitmap, picked, dragged, reshaped and cloned.
// No GDI object may be left over.
#include <array>
#include <cstddef>
#include <cstdlib>
#include <memory>

#include "fuzz_input.h"
#include "zolcs/ccsellipse.h"
#include "zolcs/ccsgroup.h"
#include "zolcs/ccsline.h"
#include "zolcs/ccstext.h"
#include "zolcs/ccstrack.h"

namespace {

using zolfuzz::Bytes;
using zolfuzz::coordinate;
using zolfuzz::number;

/// A device context on a bitmap of 64 by 64 pixels.
class Canvas {
public:
    Canvas() {
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = 64;
        info.bmiHeader.biHeight = -64;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        void* bits = nullptr;
        bitmap_ = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
        previous_ = SelectObject(dc, bitmap_);
    }
    ~Canvas() {
        SelectObject(dc, previous_);
        DeleteObject(bitmap_);
        DeleteDC(dc);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    HDC dc = CreateCompatibleDC(nullptr);

private:
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ previous_ = nullptr;
};

std::vector<CCsPointDouble> points(Bytes& in) {
    std::vector<CCsPointDouble> out(in.ConsumeIntegralInRange<std::size_t>(0, 6));
    for (CCsPointDouble& point : out) {
        const double x = number(in);
        point.setPosition(x, number(in));
    }
    return out;
}

CCsOverlay* overlay(Bytes& in, CCs2dTrafo& view, int depth) {
    static constexpr std::array<const wchar_t*, 4> strings{L"note", L"", nullptr, L"\u05E7\u05D5 \u76F4 12"};
    CCs2dTrafo* const t = in.ConsumeIntegralInRange(0, 7) == 0 ? nullptr : &view;
    switch (in.ConsumeIntegralInRange(0, depth > 0 ? 5 : 4)) {
        case 0: {
            auto* const line = new CCsLine(t, points(in), in.ConsumeIntegralInRange(-1, 9), in.ConsumeBool(),
                                           in.ConsumeBool(), in.ConsumeBool());
            if (in.ConsumeBool()) line->close();
            if (in.ConsumeBool()) line->setColorFilled(in.ConsumeIntegral<std::uint32_t>());
            if (in.ConsumeBool()) line->select();
            line->setShadow(in.ConsumeBool());
            return line;
        }
        case 1: {
            std::array<double, 8> n{};
            for (double& value : n) value = number(in);
            auto* const line =
                new CCsLine(t, n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7], 0, in.ConsumeBool(), in.ConsumeBool());
            if (in.ConsumeBool()) line->select();
            if (in.ConsumeBool()) line->setColorFilled(0xFF00);
            return line;
        }
        case 2: {
            const CCsPoint first(coordinate(in), coordinate(in));
            auto* const ellipse = new CCsEllipse(t, first, CCsPoint(coordinate(in), coordinate(in)));
            ellipse->setFilled(in.ConsumeBool());
            return ellipse;
        }
        case 3: {
            std::array<CCsPointDouble, 4> p;
            for (CCsPointDouble& point : p) point.setPosition(number(in), number(in));
            auto* const ellipse = new CCsEllipse(t, p[0], p[1], p[2], p[3]);
            RECT rect{};
            ellipse->select(rect);
            return ellipse;
        }
        case 4: {
            auto* const text = new CCsText(t, number(in), number(in), in.PickValueInArray(strings),
                                           in.ConsumeIntegralInRange(0, 3), in.ConsumeBool());
            if (in.ConsumeBool()) text->setTransformable(0);
            return text;
        }
        default: {
            auto* const group = new CCsGroup;
            const int count = in.ConsumeIntegralInRange(0, 3);
            for (int i = 0; i < count; ++i) group->append(*overlay(in, view, depth - 1));
            group->setGroupPickFlag(in.ConsumeIntegralInRange(0, 1));
            return group;
        }
    }
}

void use(Bytes& in, CCsGroup& group, CCs2dTrafo& view, CCs2dTrafo& output) {
    const Canvas canvas;
    CCsRegion region;
    const int steps = in.ConsumeIntegralInRange(1, 8);
    for (int i = 0; i < steps; ++i) {
        CCs2dTrafo* const t = in.ConsumeIntegralInRange(0, 7) == 0 ? nullptr : &view;
        group.setDicomPrintFlag(in.ConsumeBool());
        group.render(t, in.ConsumeBool() ? &output : nullptr, in.ConsumeIntegral<std::uint32_t>(), canvas.dc,
                     in.ConsumeIntegralInRange(0, 5), 64, 64, coordinate(in), coordinate(in));
        if (CCsOverlay* const one = group.Find(in.ConsumeIntegralInRange(1, 4))) {
            one->render(t, &output, 0, canvas.dc,
                        static_cast<CCsImageTextFont::CCsImageTextFontType>(in.ConsumeIntegralInRange(-1, 4)),
                        in.ConsumeIntegralInRange(0, 5), 64, 64, 0, coordinate(in));
        }
        CCsTrack track(&group);
        track.downEvent(coordinate(in), coordinate(in));
        track.motionEvent(coordinate(in), coordinate(in));
        CCsOverlay* const picked = in.ConsumeBool() ? track.getPicked() : group.Find(in.ConsumeIntegralInRange(1, 4));
        if (picked != nullptr) {
            const int dx = track.getDx();
            const int dy = track.getDy();
            const int x = track.getX();
            const int y = track.getY();
            picked->move(t, dx, dy, x, y, &region);
            if (auto* const line = dynamic_cast<CCsLine*>(picked)) {
                line->moveRectangle(t, dx, dy, x, y, &region);
                line->moveSquare(t, dx, dy, x, y, &region);
                line->moveCircle(t, dx, dy, x, y, &region);
            }
            if (auto* const ellipse = dynamic_cast<CCsEllipse*>(picked)) {
                ellipse->beginMove(t, dx, dy, x, y, &region);
                ellipse->endMove(t, dx, dy, x, y, &region);
            }
            if (in.ConsumeBool()) picked->dspToImg(t);
            if (picked != &group && in.ConsumeIntegralInRange(0, 7) == 0) delete picked;
        }
        RECT size{};
        group.getSize(size);
        if (in.ConsumeBool()) view.scale(number(in));
    }
    const CCsGroup copy(group);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Bytes in(data, size);
    static int width = 0;
    width = in.ConsumeIntegralInRange(-1, 20);
    myCSFontWidth = in.ConsumeBool() ? &width : nullptr;
    myCSFontName = in.ConsumeBool() ? L"No Such Face" : nullptr;
    const unsigned int before = ZolGdiObjectCount();
    {
        CCs2dTrafo view = zolfuzz::trafo(in);
        view.setSizes(in.ConsumeIntegralInRange(1, 70000), 64, 64, 64, 1.0, 1.0, coordinate(in), 0);
        CCs2dTrafo output = zolfuzz::trafo(in);
        CCsGroup group;
        const int count = in.ConsumeIntegralInRange(1, 4);
        for (int i = 0; i < count; ++i) group.append(*overlay(in, view, 2));
        use(in, group, view, output);
    }
    if (ZolGdiObjectCount() != before) std::abort();
    return 0;
}
