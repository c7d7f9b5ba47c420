// Nearest-neighbour resampling restated pixel by pixel: every destination pixel finds its own row's span and its own
// source position from the start, in 64 bits.
#pragma once

#include "reference/shutter_reference.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zolref {

/// Pixels as they lie in memory; `pitch` in pixels.
struct Pixels {
    unsigned char* first = nullptr;
    int width = 0, height = 0, pitch = 0, bytes = 0;
};

inline unsigned char* pixelAt(const Pixels& image, std::int64_t x, std::int64_t y) {
    return image.first + (y * image.pitch + x) * image.bytes;
}

/// The 16.16 position (u, v) of a destination pixel is start + x * stepX + y * stepY.
struct Stepping {
    bool drawable = false;  // false: background everywhere
    std::int64_t stepXu = 0, stepXv = 0, stepYu = 0, stepYv = 0;
    std::int64_t originU = 0, originV = 0;
    std::int64_t limitU = 0, limitV = 0;
    int dstWidth = 0, dstHeight = 0;
};

/// Towards zero. Good up to 2 to the 39th, beyond which rows and columns could leave 64 bits.
inline std::int64_t toFixed(double value) { return static_cast<std::int64_t>(value * 65536.0); }

inline Stepping steppingOf(const double toImage[6], const Pixels& src, const Pixels& dst) {
    Stepping s;
    s.dstWidth = dst.width;
    s.dstHeight = dst.height;
    for (int i = 0; i < 6; ++i) {
        if (!std::isfinite(toImage[i])) return s;
    }
    if (src.width < 1 || src.height < 1) return s;
    s.stepXu = toFixed(toImage[0]);
    s.stepXv = toFixed(toImage[1]);
    s.stepYu = toFixed(toImage[2]);
    s.stepYv = toFixed(toImage[3]);
    s.originU = toFixed(toImage[4]);
    s.originV = toFixed(toImage[5]);
    s.limitU = static_cast<std::int64_t>(src.width) * 65536;
    s.limitV = static_cast<std::int64_t>(src.height) * 65536;
    s.drawable = true;
    return s;
}

/// The last column before the span and the last column in it, for one of the two coordinates: p its value at the row's
/// first column, s its step, L its limit.
inline void boundsOfCoordinate(std::int64_t p, std::int64_t s, std::int64_t L, std::int64_t& lo, std::int64_t& hi) {
    if (p > 0) {
        if (s == 0) {
            lo = -1000000;
        } else if (s > 0) {
            lo = -((p - 1 + s) / s);
        } else {
            lo = -(p / s);
        }
    } else {
        if (s == 0) {
            lo = 1000000;
        } else if (s > 0) {
            lo = -(p / s);
        } else {
            lo = ((-1 - s) - p) / s;
        }
    }
    const std::int64_t q = L - p - 1;
    if (q < 0) {
        if (s == 0) {
            hi = -1000000;
        } else if (s < 0) {
            hi = -((p - L + 1) / s);
        } else {
            hi = -((s - L + p) / s);
        }
    } else {
        if (s == 0) {
            hi = 1000000;
        } else if (s < 0) {
            hi = ((L - s - p) - 2) / s;
        } else {
            hi = q / s;
        }
    }
    if (hi < lo) {
        const std::int64_t old = hi;
        hi = lo;
        lo = old;
    }
}

inline std::int64_t clampColumn(std::int64_t column, int width) {
    if (column > width - 1) return width - 1;
    if (column < -1) return -1;
    return column;
}

/// The source position of a destination pixel; false where the background shows.
inline bool sourcePosition(const Stepping& s, int x, int y, std::int64_t& u, std::int64_t& v) {
    if (!s.drawable) return false;
    const std::int64_t rowU = (s.stepXu + s.stepYu) / 2 + s.originU + y * s.stepYu;
    const std::int64_t rowV = (s.stepXv + s.stepYv) / 2 + s.originV + y * s.stepYv;
    std::int64_t lo = 0, hi = 0, lo2 = 0, hi2 = 0;
    boundsOfCoordinate(rowU, s.stepXu, s.limitU, lo, hi);
    boundsOfCoordinate(rowV, s.stepXv, s.limitV, lo2, hi2);
    const std::int64_t first = clampColumn(lo > lo2 ? lo : lo2, s.dstWidth);
    const std::int64_t last = clampColumn(hi < hi2 ? hi : hi2, s.dstWidth);
    if (!(first < x && x <= last)) return false;
    u = rowU + x * s.stepXu;
    v = rowV + x * s.stepXv;
    return true;
}

inline void store32(unsigned char* to, std::uint32_t value) {
    to[0] = static_cast<unsigned char>(value & 255);
    to[1] = static_cast<unsigned char>((value >> 8) & 255);
    to[2] = static_cast<unsigned char>((value >> 16) & 255);
    to[3] = static_cast<unsigned char>((value >> 24) & 255);
}

inline unsigned load16(const unsigned char* from) { return from[0] + 256U * from[1]; }

/// Whole pixels of one to eight bytes; `background` is one such pixel, its lowest byte first.
inline void nearestCopy(const double m[6], const Pixels& src, const Pixels& dst, std::uint64_t background) {
    const Stepping s = steppingOf(m, src, dst);
    for (int y = 0; y < dst.height; ++y) {
        for (int x = 0; x < dst.width; ++x) {
            unsigned char* out = pixelAt(dst, x, y);
            std::int64_t u = 0, v = 0;
            const bool inside = sourcePosition(s, x, y, u, v);
            for (int i = 0; i < dst.bytes; ++i) {
                if (inside) {
                    out[i] = pixelAt(src, u >> 16, v >> 16)[i];
                } else {
                    out[i] = static_cast<unsigned char>((background >> (8 * i)) & 255);
                }
            }
        }
    }
}

/// Byte through a table; the background goes through it too.
inline void nearestGrey8Table(const double m[6], const Pixels& src, const Pixels& dst, const unsigned char* table,
                              unsigned char background) {
    const Stepping s = steppingOf(m, src, dst);
    for (int y = 0; y < dst.height; ++y) {
        for (int x = 0; x < dst.width; ++x) {
            std::int64_t u = 0, v = 0;
            if (sourcePosition(s, x, y, u, v)) {
                *pixelAt(dst, x, y) = table[*pixelAt(src, u >> 16, v >> 16)];
            } else {
                *pixelAt(dst, x, y) = table[background];
            }
        }
    }
}

/// Three 16-bit channels through a byte table of 4096 entries; the fourth byte is 0.
inline void nearestRgb12Table(const double m[6], const Pixels& src, const Pixels& dst, const unsigned char* table,
                              std::uint32_t background) {
    const Stepping s = steppingOf(m, src, dst);
    for (int y = 0; y < dst.height; ++y) {
        for (int x = 0; x < dst.width; ++x) {
            unsigned char* out = pixelAt(dst, x, y);
            std::int64_t u = 0, v = 0;
            if (!sourcePosition(s, x, y, u, v)) {
                store32(out, background);
                continue;
            }
            for (int channel = 0; channel < 3; ++channel) {
                const unsigned value = load16(pixelAt(src, u >> 16, v >> 16) + 2 * channel);
                out[channel] = table[value > 4095 ? 4095 : value];
            }
            out[3] = 0;
        }
    }
}

/// Bytes 0, 1 and 2 each through a table of their own; the fourth byte is 0.
inline void nearestRgb8Tables(const double m[6], const Pixels& src, const Pixels& dst, const unsigned char* table0,
                              const unsigned char* table1, const unsigned char* table2, std::uint32_t background) {
    const Stepping s = steppingOf(m, src, dst);
    for (int y = 0; y < dst.height; ++y) {
        for (int x = 0; x < dst.width; ++x) {
            unsigned char* out = pixelAt(dst, x, y);
            std::int64_t u = 0, v = 0;
            if (!sourcePosition(s, x, y, u, v)) {
                store32(out, background);
                continue;
            }
            const unsigned char* in = pixelAt(src, u >> 16, v >> 16);
            out[0] = table0[in[0]];
            out[1] = table1[in[1]];
            out[2] = table2[in[2]];
            out[3] = 0;
        }
    }
}

/// Four bytes into three, their order reversed.
inline void nearestRgb24Save(const double m[6], const Pixels& src, const Pixels& dst, unsigned char background) {
    const Stepping s = steppingOf(m, src, dst);
    for (int y = 0; y < dst.height; ++y) {
        for (int x = 0; x < dst.width; ++x) {
            unsigned char* out = pixelAt(dst, x, y);
            std::int64_t u = 0, v = 0;
            const bool inside = sourcePosition(s, x, y, u, v);
            const unsigned char* in = inside ? pixelAt(src, u >> 16, v >> 16) : nullptr;
            out[0] = inside ? in[2] : background;
            out[1] = inside ? in[1] : background;
            out[2] = inside ? in[0] : background;
        }
    }
}

/// What the grey member with shutters and overlays knows besides the two images.
struct GreyView {
    bool twelveBit = true;  // values are masked to 12 bits
    bool greyMap = true;    // the map is one for grey values
    bool enabled = true;    // and is enabled
    const std::uint32_t* table = nullptr;
    const std::uint32_t* planeColours = nullptr;
    const std::uint32_t* groupColours = nullptr;
    RasterShutters shutters;
    const unsigned char* padding = nullptr;
    unsigned char background = 0;
};

/// The circle as resampling takes it: the centre comes from the box's own radius, also where that is 0.
inline Circle circleInResampling(const Box& box, int dstWidth) {
    const float w = std::fabs(static_cast<float>(box.left - box.right));
    const float h = std::fabs(static_cast<float>(box.top - box.bottom));
    Circle circle;
    circle.radius = (w < h ? w : h) * 0.5F;
    circle.centreX = box.left + static_cast<int>(circle.radius);
    circle.centreY = box.top + static_cast<int>(circle.radius);
    if (circle.radius == 0) circle.radius = static_cast<float>(dstWidth - 1);
    return circle;
}

/// Outside the rectangle, the circle or the polygon; the bitmap shutter counts only where none of them is on.
inline bool hiddenInResampling(const RasterShutters& shutters, int dstWidth, std::int64_t u, std::int64_t v) {
    const float uf = static_cast<float>(u) * 1.5258789e-5F;
    const float vf = static_cast<float>(v) * 1.5258789e-5F;
    const bool display = shutters.rectOn || shutters.circOn || shutters.polygonOn;
    if (!display) {
        if (!shutters.bitmapOn) return false;
        return bitmapShutterHides(shutters.bitmap, static_cast<int>(u / 65536), static_cast<int>(v / 65536));
    }
    if (shutters.rectOn) {
        if (!insideRectangle(shutters.rect, static_cast<int>(u >> 16), static_cast<int>(v >> 16))) return true;
    }
    if (shutters.circOn) {
        const Circle circle = circleInResampling(boxOf(shutters.circle), dstWidth);
        const float dx = uf - static_cast<float>(circle.centreX);
        const float dy = vf - static_cast<float>(circle.centreY);
        const float distance = std::sqrt(dx * dx + dy * dy);
        if (distance > circle.radius) return true;
    }
    if (shutters.polygonOn) {
        if (!insidePolygon(shutters.polygon, static_cast<double>(uf), static_cast<double>(vf))) return true;
    }
    return false;
}

/// What one pixel inside the image shows instead of its value: plane, embedded bits, shutter, padding. False where it
/// shows the value.
inline bool shownAbove(const GreyView& view, const Pixels& src, int dstWidth, std::int64_t u, std::int64_t v,
                       std::uint32_t& out) {
    const unsigned value = load16(pixelAt(src, u >> 16, v >> 16));
    const int columnOfPlane = static_cast<int>(static_cast<float>(u) * 1.5258789e-5F);
    const int rowOfPlane = static_cast<int>(static_cast<float>(v) * 1.5258789e-5F);
    const bool overlays = view.greyMap && view.enabled;
    if (overlays && view.groupColours != nullptr) {
        const int plane = firstPlaneAt(view.shutters.planes, columnOfPlane, rowOfPlane);
        if (plane >= 0) {
            out = view.groupColours[plane > 15 ? 15 : plane];
            return true;
        }
    }
    if (overlays && view.shutters.embedded && view.planeColours != nullptr && value > 4095) {
        out = view.planeColours[value >> 12];
        return true;
    }
    if (hiddenInResampling(view.shutters, dstWidth, u, v)) {
        out = (presentationValueOf(view.shutters) / 256U) * 0x10101U;
        return true;
    }
    if (view.padding != nullptr && columnOfPlane < src.width && rowOfPlane < src.height) {
        const std::int64_t index = static_cast<std::int64_t>(rowOfPlane) * src.width + columnOfPlane;
        if (bitOf(view.padding, index)) {
            out = view.background;
            return true;
        }
    }
    return false;
}

/// One pixel inside the image: what goes before the table, else the table.
inline std::uint32_t greyPixel(const GreyView& view, const Pixels& src, int dstWidth, std::int64_t u, std::int64_t v) {
    std::uint32_t out = 0;
    if (shownAbove(view, src, dstWidth, u, v, out)) return out;
    return view.table[load16(pixelAt(src, u >> 16, v >> 16)) & (view.twelveBit ? 4095U : 65535U)];
}

inline void nearestGrey(const double m[6], const Pixels& src, const Pixels& dst, const GreyView& view) {
    const Stepping s = steppingOf(m, src, dst);
    for (int y = 0; y < dst.height; ++y) {
        for (int x = 0; x < dst.width; ++x) {
            std::int64_t u = 0, v = 0;
            std::uint32_t value = view.background;
            if (sourcePosition(s, x, y, u, v)) value = greyPixel(view, src, dst.width, u, v);
            store32(pixelAt(dst, x, y), value);
        }
    }
}

}  // namespace zolref
