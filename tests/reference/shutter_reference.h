// Shutters, bit planes and point conversions restated one point at a time.
//
// The records are plain data that the host fills, so they are used as they are; none of their users is.
#pragma once

#include "zolcs/ccsrecords.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zolref {

// ---------------------------------------------------------------------------------------------------------------
// Conversions

/// Half away from zero.
inline int roundOff(double v) {
    const double fraction = v - std::trunc(v);
    if (v >= 0) return static_cast<int>(fraction >= 0.5 ? std::ceil(v) : std::floor(v));
    return static_cast<int>(fraction <= -0.5 ? std::floor(v) : std::ceil(v));
}

inline void mapPoint(const double m[6], double x, double y, double& outX, double& outY) {
    outX = m[0] * x + m[2] * y + m[4];
    outY = m[1] * x + m[3] * y + m[5];
}

inline void mapRounded(const double m[6], int x, int y, int& outX, int& outY) {
    double realX = 0;
    double realY = 0;
    mapPoint(m, x, y, realX, realY);
    outX = roundOff(realX);
    outY = roundOff(realY);
}

/// Towards zero, unlike the other direction.
inline void mapTruncated(const double m[6], int x, int y, int& outX, int& outY) {
    double realX = 0;
    double realY = 0;
    mapPoint(m, x, y, realX, realY);
    outX = static_cast<int>(realX);
    outY = static_cast<int>(realY);
}

struct Box {
    int left = 0, top = 0, right = 0, bottom = 0;
};

inline Box normalised(int x1, int y1, int x2, int y2) {
    Box box;
    box.left = x1 <= x2 ? x1 : x2;
    box.right = x1 <= x2 ? x2 : x1;
    box.top = y1 <= y2 ? y1 : y2;
    box.bottom = y1 <= y2 ? y2 : y1;
    return box;
}

inline Box boxOf(const RECT& rect) {
    Box box;
    box.left = static_cast<int>(rect.left);
    box.top = static_cast<int>(rect.top);
    box.right = static_cast<int>(rect.right);
    box.bottom = static_cast<int>(rect.bottom);
    return box;
}

inline Box mapBoxRounded(const double m[6], const Box& in) {
    int x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    mapRounded(m, in.left, in.top, x1, y1);
    mapRounded(m, in.right, in.bottom, x2, y2);
    return normalised(x1, y1, x2, y2);
}

inline Box mapBoxTruncated(const double m[6], const Box& in) {
    int x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    mapTruncated(m, in.left, in.top, x1, y1);
    mapTruncated(m, in.right, in.bottom, x2, y2);
    return normalised(x1, y1, x2, y2);
}

/// The common part, right and bottom exclusive; all zero and false when there is none.
inline bool intersectBoxes(const Box& one, const Box& two, Box& out) {
    Box common;
    common.left = one.left > two.left ? one.left : two.left;
    common.top = one.top > two.top ? one.top : two.top;
    common.right = one.right < two.right ? one.right : two.right;
    common.bottom = one.bottom < two.bottom ? one.bottom : two.bottom;
    if (common.left >= common.right || common.top >= common.bottom) {
        out = Box();
        return false;
    }
    out = common;
    return true;
}

/// The vertices' extremes, all inclusive.
inline Box polygonBox(const std::vector<CPoint>& vertices) {
    Box box;
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const int x = static_cast<int>(vertices[i].x);
        const int y = static_cast<int>(vertices[i].y);
        if (i == 0 || x < box.left) box.left = x;
        if (i == 0 || x > box.right) box.right = x;
        if (i == 0 || y < box.top) box.top = y;
        if (i == 0 || y > box.bottom) box.bottom = y;
    }
    return box;
}

// ---------------------------------------------------------------------------------------------------------------
// Is a point visible

struct Circle {
    int centreX = 0, centreY = 0;
    float radius = 0;
};

/// The circle of a box; one without extent gets the image's width as its measure, and its centre with it.
inline Circle circleOfBox(const Box& box, int width) {
    const float w = std::fabs(static_cast<float>(box.left - box.right));
    const float h = std::fabs(static_cast<float>(box.top - box.bottom));
    Circle circle;
    if (w == h) {
        circle.radius = w * 0.5F;
    } else {
        circle.radius = (w < h ? w : h) * 0.5F;
    }
    if (circle.radius == 0) circle.radius = static_cast<float>(width - 1);
    circle.centreX = box.left + static_cast<int>(circle.radius);
    circle.centreY = box.top + static_cast<int>(circle.radius);
    return circle;
}

/// Even-odd rule; one end of every edge counts.
inline bool insidePolygon(const std::vector<CPoint>& vertices, double x, double y) {
    if (vertices.size() < 2) return false;
    bool inside = false;
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const std::size_t j = i + 1 == vertices.size() ? 0 : i + 1;
        const double xi = static_cast<double>(vertices[i].x);
        const double yi = static_cast<double>(vertices[i].y);
        const double xj = static_cast<double>(vertices[j].x);
        const double yj = static_cast<double>(vertices[j].y);
        const bool counts = (y > yi && yj >= y) || (y > yj && yi >= y);
        if (!counts) continue;
        const double crossing = (y - yi) / (yj - yi) * (xj - xi) + xi;
        if (x > crossing) inside = !inside;
    }
    return inside;
}

inline bool insideRectangle(const RECT& rect, int x, int y) {
    return !(x < rect.left || x > rect.right || y < rect.top || y > rect.bottom);
}

inline bool insideDisplayShutter(const CCsDisplayShutterInfo& shutter, int x, int y) {
    if (shutter.rectangular.present != 0 && !insideRectangle(shutter.rectangular.rect, x, y)) return false;
    if (shutter.circular.present != 0) {
        const int dx = shutter.circular.center.x - x;
        const int dy = shutter.circular.center.y - y;
        const double distance = std::sqrt(static_cast<double>(dx * dx + dy * dy));
        if (!(static_cast<double>(shutter.circular.radius) >= distance)) return false;
    }
    if (shutter.polygonPresent != 0) return insidePolygon(shutter.polygon, x, y);
    return true;
}

/// Bit k of a plane: byte k / 8, lowest bit first.
inline bool bitOf(const unsigned char* bits, std::int64_t k) { return ((bits[k / 8] >> (k % 8)) & 1) != 0; }

/// A bit of a plane of rows x columns whose first bit lies at the 1-based image position (originX, originY).
inline bool planeBit(int originX, int originY, int rows, int columns, const unsigned char* data, int x, int y) {
    if (data == nullptr) return false;
    const std::int64_t column = static_cast<std::int64_t>(x) + 1 - originX;
    const std::int64_t row = static_cast<std::int64_t>(y) + 1 - originY;
    if (column < 0 || row < 0 || row >= rows || column >= columns) return false;
    return bitOf(data, row * columns + column);
}

inline bool bitmapShutterHides(const CCsBitmapShutterInfo& shutter, int x, int y) {
    return planeBit(shutter.originX, shutter.originY, shutter.rows, shutter.columns, shutter.data, x, y);
}

/// The position of the first plane with a bit here, or -1.
inline int firstPlaneAt(const CCs60XXOverlayInfo& overlays, int x, int y) {
    for (std::size_t i = 0; i < overlays.planes.size(); ++i) {
        const CCs60XXOverlay& plane = overlays.planes[i];
        if (planeBit(plane.originX, plane.originY, plane.rows, plane.columns, plane.data, x, y)) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

// ---------------------------------------------------------------------------------------------------------------
// Runs of a line

inline bool narrowToRectangle(const Box& rect, int line, int& start, int& end) {
    if (line < rect.top || line > rect.bottom) return false;
    if (rect.left >= end || rect.right <= start) return false;
    if (rect.left > start) start = rect.left;
    if (rect.right < end) end = rect.right;
    return true;
}

inline bool narrowToCircle(int centreX, int centreY, float radius, int line, int& start, int& end) {
    const auto cx = static_cast<float>(centreX);
    const auto cy = static_cast<float>(centreY);
    const auto y = static_cast<float>(line);
    if (!(cy - radius <= y && y <= cy + radius)) return false;
    const float half = std::sqrt(radius * radius - (cy - y) * (cy - y));
    const int from = static_cast<int>(cx - half);
    const int to = static_cast<int>(cx + half);
    if (from >= end || to <= start) return false;
    if (from > start) start = from;
    if (to < end) end = to;
    return true;
}

inline void clampRun(const RECT& limits, int& start, int& end) {
    const int left = static_cast<int>(limits.left);
    const int right = static_cast<int>(limits.right);
    if (left > start) start = left;
    if (right < end) end = right;
}

/// The run of a line that no rectangle, circle or polygon box excludes. Once false, always false; the run then means
/// nothing.
inline bool boundRun(const CCsDisplayShutterInfo& shutter, int line, const RECT& limits, int& start, int& end) {
    bool result = true;
    if (shutter.rectangular.present != 0) {
        if (narrowToRectangle(boxOf(shutter.rectangular.rect), line, start, end)) {
            clampRun(limits, start, end);
        } else {
            result = false;
        }
    }
    if (shutter.circular.present != 0 && result) {
        const CCsCircularShutterInfo& circle = shutter.circular;
        if (narrowToCircle(circle.center.x, circle.center.y, circle.radius, line, start, end)) {
            clampRun(limits, start, end);
        } else {
            result = false;
        }
    }
    if (shutter.polygonPresent != 0) {
        if (shutter.polygon.size() < 3) return false;
        const Box box = polygonBox(shutter.polygon);
        if (line < box.top || line > box.bottom) return result;
        if (narrowToRectangle(box, line, start, end)) {
            clampRun(limits, start, end);
        } else {
            result = false;
        }
    }
    return result;
}

// ---------------------------------------------------------------------------------------------------------------
// A raster's shutters

/// What a raster carries besides its pixels.
struct RasterShutters {
    bool rectOn = false, circOn = false, polygonOn = false, bitmapOn = false;
    RECT rect = {0, 0, 0, 0};
    RECT circle = {0, 0, 0, 0};
    std::vector<CPoint> polygon;
    CCsBitmapShutterInfo bitmap;
    unsigned short presentationValue = 0;
    CCs60XXOverlayInfo planes;
    bool embedded = false;
};

inline unsigned short presentationValueOf(const RasterShutters& raster) {
    return raster.bitmapOn ? raster.bitmap.presentationValue : raster.presentationValue;
}

inline bool setBitmap(RasterShutters& raster, const CCsBitmapShutterInfo& info) {
    if (info.tag == 0 && info.data == nullptr) return true;
    raster.bitmap.tag = info.tag;
    raster.bitmap.rows = info.rows;
    raster.bitmap.columns = info.columns;
    raster.bitmap.originX = info.originX;
    raster.bitmap.originY = info.originY;
    raster.bitmap.data = info.data;
    raster.bitmap.reserved16 = info.reserved16;
    raster.bitmap.presentationValue = info.presentationValue;
    raster.bitmapOn = true;
    return true;
}

inline void switchAllOff(RasterShutters& raster) {
    raster.rectOn = false;
    raster.circOn = false;
    raster.polygonOn = false;
    raster.bitmapOn = false;
}

/// Nothing happens without a kind that is present; the record's own presentation value is not taken over.
inline void setDisplayShutter(RasterShutters& raster, const CCsDisplayShutterInfo& info) {
    if (info.rectangular.present == 0 && info.circular.present == 0 && info.polygonPresent == 0) return;
    switchAllOff(raster);
    raster.bitmap.shutterValueAux = 0;
    raster.bitmap.presentationValue = 0;
    if (info.rectangular.present != 0) {
        raster.rectOn = true;
        raster.rect = info.rectangular.rect;
    }
    if (info.circular.present != 0) {
        raster.circOn = true;
        raster.circle = info.circular.bounds;
    }
    if (info.polygonPresent != 0) {
        raster.polygonOn = true;
        raster.polygon = info.polygon;
    }
}

/// Kind 1 circle, 2 rectangle, 3 polygon with its vertices, 4 bitmap, anything else all four, vertices kept.
inline void resetShutters(RasterShutters& raster, int kind) {
    if (kind == 1) {
        raster.circOn = false;
    } else if (kind == 2) {
        raster.rectOn = false;
    } else if (kind == 3) {
        raster.polygonOn = false;
        raster.polygon.clear();
    } else if (kind == 4) {
        raster.bitmapOn = false;
    } else {
        switchAllOff(raster);
    }
    raster.bitmap.shutterValueAux = 0;
    if (kind == -1) raster.bitmap.presentationValue = 0;
}

inline RECT rectOf(const Box& box) {
    RECT rect;
    rect.left = box.left;
    rect.top = box.top;
    rect.right = box.right;
    rect.bottom = box.bottom;
    return rect;
}

/// Transfers a source's shutters; `toDisplay` is null where geometry stays as it is.
inline void takeShuttersOf(RasterShutters& target, const RasterShutters& source, const double* toDisplay) {
    if (!source.planes.planes.empty()) target.planes = source.planes;
    target.embedded = source.embedded;
    switchAllOff(target);
    target.bitmap.shutterValueAux = 0;
    target.bitmap.presentationValue = 0;
    if (!source.rectOn && !source.circOn && !source.polygonOn && !source.bitmapOn) return;
    if (source.bitmapOn) {
        if (source.bitmap.tag != 0) setBitmap(target, source.bitmap);
        target.presentationValue = presentationValueOf(source);
        return;
    }
    if (source.circOn) {
        target.circle = toDisplay != nullptr ? rectOf(mapBoxRounded(toDisplay, boxOf(source.circle))) : source.circle;
        target.circOn = true;
    }
    if (source.rectOn) {
        target.rect = toDisplay != nullptr ? rectOf(mapBoxRounded(toDisplay, boxOf(source.rect))) : source.rect;
        target.rectOn = true;
    }
    if (source.polygonOn) {
        std::vector<CPoint> moved;
        for (const CPoint& vertex : source.polygon) {
            int x = static_cast<int>(vertex.x);
            int y = static_cast<int>(vertex.y);
            if (toDisplay != nullptr) {
                int displayX = 0;
                int displayY = 0;
                mapRounded(toDisplay, x, y, displayX, displayY);
                x = displayX;
                y = displayY;
            }
            moved.emplace_back(x, y);
        }
        target.polygon = moved;
        target.polygonOn = true;
    }
    target.presentationValue = presentationValueOf(source);
}

/// The display shutter record of a raster.
inline CCsDisplayShutterInfo displayShutterOf(const RasterShutters& raster, int width) {
    CCsDisplayShutterInfo info;
    if (raster.rectOn) {
        info.rectangular.present = 1;
        info.rectangular.rect = raster.rect;
    }
    if (raster.circOn) {
        const Circle circle = circleOfBox(boxOf(raster.circle), width);
        info.circular.present = 1;
        info.circular.center = CCsPoint(circle.centreX, circle.centreY);
        info.circular.radius = circle.radius;
        info.circular.bounds = raster.circle;
    }
    if (raster.polygonOn) {
        info.polygonPresent = 1;
        info.polygon = raster.polygon;
    }
    info.presentationValue = presentationValueOf(raster);
    return info;
}

/// Whether any shutter of a raster hides a point, as whole-raster mapping sees it.
inline bool hiddenInMapping(const RasterShutters& raster, int width, int x, int y) {
    if (raster.bitmapOn && bitmapShutterHides(raster.bitmap, x, y)) return true;
    return !insideDisplayShutter(displayShutterOf(raster, width), x, y);
}

/// Bounds left by the shutters that are on, in image coordinates; false when nothing is left.
inline bool shutterBounds(const RasterShutters& raster, Box& bounds) {
    bool result = true;
    if (raster.rectOn) {
        const Box r = boxOf(raster.rect);
        if (!intersectBoxes(bounds, normalised(r.left, r.top, r.right, r.bottom), bounds)) result = false;
    }
    if (raster.circOn) {
        const Box r = boxOf(raster.circle);
        if (!intersectBoxes(bounds, normalised(r.left, r.top, r.right, r.bottom), bounds)) result = false;
    }
    if (raster.polygonOn && raster.polygon.size() >= 3) {
        if (!intersectBoxes(bounds, polygonBox(raster.polygon), bounds)) result = false;
    }
    return result;
}

// ---------------------------------------------------------------------------------------------------------------
// The fill of a displayed raster

/// `pixels` holds pitch * height pixels of four bytes. `toDisplay` is null without a transformation.
inline void shutterFill(const RasterShutters& source, unsigned char* pixels, int width, int height, int pitch,
                        const double* toDisplay, int sourceWidth, int sourceHeight) {
    int p = presentationValueOf(source);
    if (p != 0) p = p >> 8;
    const auto level = static_cast<unsigned char>(p);
    const std::size_t all = static_cast<std::size_t>(pitch) * static_cast<std::size_t>(height) * 4;
    if (source.bitmapOn || p == 0) {
        for (std::size_t i = 0; i < all; ++i) pixels[i] = 0;
        return;
    }
    Box area;
    area.right = width;
    area.bottom = height;
    if (toDisplay != nullptr) {
        for (std::size_t i = 0; i < all; ++i) pixels[i] = 0;
        Box corners;
        corners.right = sourceWidth - 1;
        corners.bottom = sourceHeight - 1;
        Box display;
        display.right = width - 1;
        display.bottom = height - 1;
        intersectBoxes(mapBoxRounded(toDisplay, corners), display, area);
    }
    for (int y = area.top; y < area.bottom; ++y) {
        for (int x = area.left; x < area.right; ++x) {
            unsigned char* pixel = pixels + (static_cast<std::ptrdiff_t>(y) * pitch + x) * 4;
            pixel[0] = level;
            pixel[1] = level;
            pixel[2] = level;
        }
    }
}

// ---------------------------------------------------------------------------------------------------------------
// Small rules

inline int bitShiftForGrey(int maximum) {
    int shift = 0;
    while (shift < 8 && (maximum >> shift) > 255) ++shift;
    return shift;
}

/// The crossing of the axes is deliberate.
inline bool segmentFilled(const RECT& segment, int width, int height) {
    return segment.top <= 0 && segment.bottom >= width && segment.left <= 0 && segment.right >= height;
}

/// Height for a rectangle of w x h against a reference extent.
inline int fontHeight(int w, int h, int base, int imageSize, bool exact) {
    double reference = 512;
    if (exact && base > imageSize) reference = std::trunc(static_cast<double>(base) / imageSize * 512);
    const double s = std::sqrt((w / reference * base) * (h / reference * base));
    int n = static_cast<int>(s);
    if (s - n > 0.5) n += 1;
    if (exact) return n;
    const int lowest = base < 11 ? base : 11;
    if (n < lowest) n = lowest;
    if (n > 44) n = 44;
    return n;
}

}  // namespace zolref
