// Builds images, shutters, planes and transformations from fuzzer bytes.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsraster.h"

namespace zolfuzz {

using Bytes = FuzzedDataProvider;

/// Any double at all, with ordinary ones most often.
inline double number(Bytes& in) {
    switch (in.ConsumeIntegralInRange(0, 3)) {
        case 0:
            return in.ConsumeFloatingPointInRange(-4.0, 4.0);
        case 1:
            return in.ConsumeFloatingPointInRange(-70000.0, 70000.0);
        case 2:
            return in.ConsumeFloatingPointInRange(-1e-3, 1e-3);
        default: {
            const auto bits = in.ConsumeIntegral<std::uint64_t>();
            double value = 0.0;
            std::memcpy(&value, &bits, sizeof value);
            return value;
        }
    }
}

inline int coordinate(Bytes& in) {
    return in.ConsumeBool() ? in.ConsumeIntegralInRange(-80, 160) : in.ConsumeIntegral<std::int32_t>();
}

inline RECT rect(Bytes& in) {
    RECT r{};
    r.left = coordinate(in);
    r.top = coordinate(in);
    r.right = coordinate(in);
    r.bottom = coordinate(in);
    return r;
}

inline std::vector<CPoint> polygon(Bytes& in) {
    std::vector<CPoint> vertices;
    const int count = in.ConsumeIntegralInRange(0, 9);
    for (int i = 0; i < count; ++i) {
        const int x = coordinate(in);
        const int y = coordinate(in);
        vertices.emplace_back(x, y);
    }
    return vertices;
}

inline CCs2dTrafo trafo(Bytes& in) {
    CCs2dTrafo t;
    if (in.ConsumeBool()) {
        const double m[6] = {number(in), number(in), number(in), number(in), number(in), number(in)};
        t = CCs2dTrafo(m[0], m[1], m[2], m[3], m[4], m[5]);
    }
    const int operations = in.ConsumeIntegralInRange(0, 5);
    for (int i = 0; i < operations; ++i) {
        switch (in.ConsumeIntegralInRange(0, 9)) {
            case 0:
                t.scale(number(in));
                break;
            case 1:
                t.scale2dMatrix(number(in));
                break;
            case 2: {
                const double dx = number(in);
                t.translate(dx, number(in));
                break;
            }
            case 3:
                t.rotate(in.ConsumeBool() ? 90.0 * in.ConsumeIntegralInRange(-4, 4) : number(in));
                break;
            case 4:
                t.mirror(in.ConsumeIntegralInRange(0, 3));
                break;
            case 5:
                t.setDstSmallerSide(in.ConsumeIntegralInRange(0, 1));
                break;
            case 6:
                t.setFitIntoSegementMode(in.ConsumeBool());
                break;
            case 7:
                t.setDspScaleFactor(number(in));
                break;
            case 8:
                t.swapSourceDimension(in.ConsumeBool(), in.ConsumeBool());
                break;
            default: {
                const double px = number(in);
                t.setDspPanFactor(px, number(in));
            }
        }
    }
    return t;
}

/// A bit plane of exactly the bytes that its size needs, so that a read beyond it is seen.
class Plane {
public:
    explicit Plane(Bytes& in)
        : rows(in.ConsumeIntegralInRange<std::uint16_t>(0, 70)),
          columns(in.ConsumeIntegralInRange<std::uint16_t>(0, 70)) {
        const std::size_t size = (static_cast<std::size_t>(rows) * columns + 7) / 8;
        data = std::make_unique<unsigned char[]>(size);
        const auto fill = in.ConsumeIntegral<unsigned char>();
        std::memset(data.get(), fill, size);
        originX = coordinate(in);
        originY = coordinate(in);
    }

    std::uint16_t rows;
    std::uint16_t columns;
    std::int32_t originX = 0;
    std::int32_t originY = 0;
    std::unique_ptr<unsigned char[]> data;
};

/// Sets random shutters and planes on a raster; the planes must outlive it.
inline void decorate(Bytes& in, CCsRaster& raster, std::vector<Plane>& planes) {
    if (in.ConsumeBool()) raster.setRectShutter(rect(in));
    if (in.ConsumeBool()) raster.setCircShutter(rect(in));
    if (in.ConsumeBool()) raster.setPolygonalShutter(polygon(in));
    raster.setPresentationShutterValue(in.ConsumeIntegral<unsigned short>());
    raster.setEmbeddedOverlayStatus(in.ConsumeBool());
    const int count = in.ConsumeIntegralInRange(0, 3);
    planes.reserve(static_cast<std::size_t>(count) + 1);
    for (int i = 0; i < count; ++i) {
        const Plane& plane = planes.emplace_back(in);
        CCs60XXOverlay overlay;
        overlay.originX = plane.originX;
        overlay.originY = plane.originY;
        overlay.rows = plane.rows;
        overlay.columns = plane.columns;
        overlay.data = in.ConsumeIntegralInRange(0, 7) == 0 ? nullptr : plane.data.get();
        raster.add60XXOverlayInfo(overlay);
    }
    if (in.ConsumeBool()) {
        const Plane& plane = planes.emplace_back(in);
        CCsBitmapShutterInfo info;
        info.tag = in.ConsumeIntegralInRange(0U, 1U);
        info.originX = plane.originX;
        info.originY = plane.originY;
        info.rows = plane.rows;
        info.columns = plane.columns;
        info.data = plane.data.get();
        info.presentationValue = in.ConsumeIntegral<unsigned short>();
        raster.setBitmapShutterInfo(info);
    }
}

/// Fills an image's whole buffer with what is left of a repeating pattern of the input.
inline void scribble(Bytes& in, CCsImage& image, std::size_t bytes) {
    const std::vector<unsigned char> pattern = in.ConsumeBytes<unsigned char>(64);
    unsigned char* pixels = image.getOrigin();
    if (pixels != nullptr && !pattern.empty()) {
        for (std::size_t i = 0; i < bytes; ++i) pixels[i] = pattern[i % pattern.size()];
    }
    image.unlock();
}

}  // namespace zolfuzz
