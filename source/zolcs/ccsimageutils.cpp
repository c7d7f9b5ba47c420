#include "zolcs/ccsimageutils.h"

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsraster.h"
#include "zolcs/rules/bitplane.h"
#include "zolcs/support/conversion.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

// x' = a x + c y + e, y' = b x + d y + f.
struct Affine {
    double a = 0.0;
    double b = 0.0;
    double c = 0.0;
    double d = 0.0;
    double e = 0.0;
    double f = 0.0;

    [[nodiscard]] CCsPointDouble apply(double x, double y) const { return {a * x + c * y + e, b * x + d * y + f}; }
};

Affine imageToDisplay(CCs2dTrafo& trafo) {
    Affine m;
    trafo.getImgToDsp(m.a, m.b, m.c, m.d, m.e, m.f);
    return m;
}

Affine displayToImage(CCs2dTrafo& trafo) {
    Affine m;
    trafo.getTransformation(m.a, m.b, m.c, m.d, m.e, m.f);
    return m;
}

CRect normalised(const CCsPoint& one, const CCsPoint& other) {
    CRect rect(one.x, one.y, other.x, other.y);
    rect.NormalizeRect();
    return rect;
}

RECT normalised(const RECT& rect) {
    RECT out{};
    CCsImageUtils::rearrangeRectBounds(out, rect);
    return out;
}

// What `run` and first..last have in common; false, with `run` unchanged, where one ends at or before the other's
// start.
bool narrowRun(int first, int last, int& start, int& end) {
    if (first >= end || last <= start) return false;
    start = std::max(start, first);
    end = std::min(end, last);
    return true;
}

void setBit(unsigned char* bits, std::uint64_t index) {
    unsigned char& byte = bits[index / 8];
    byte = static_cast<unsigned char>(byte | (1U << (index % 8)));
}

// The display's 32-bit pixels, cut at the end of its memory.
struct DisplayPixels {
    unsigned char* bytes;
    std::int64_t pitch;
    std::int64_t count;
};

DisplayPixels displayPixels(const CCsImage& display, unsigned char* pixels) {
    const std::int64_t pitch = std::max(display.getPitch(), 0);
    std::int64_t count = pixels != nullptr ? pitch * std::max(display.getHeight(), 0) : 0;
    if (const ZolMemMappedBuffer* const buffer = display.GetMemBuffer()) {
        count = std::min(count, static_cast<std::int64_t>(buffer->getSize() / 4));
    }
    return {pixels, pitch, count};
}

void clearPixels(const DisplayPixels& display) {
    if (display.count > 0) std::memset(display.bytes, 0, static_cast<std::size_t>(display.count) * 4);
}

// Sets blue, green and red of pixels [first, last) and leaves the fourth byte.
void greyPixels(const DisplayPixels& display, std::int64_t first, std::int64_t last, unsigned char value) {
    const std::int64_t end = std::min(last, display.count);
    for (std::int64_t i = first; i < end; ++i) std::memset(display.bytes + i * 4, value, 3);
}

constexpr double fontReferenceSize = 512.0;
constexpr int smallestFont = 11;
constexpr int largestFont = 44;

// The geometric mean of the height for the window's width and that for its height; an exact half rounds down.
int scaledFontHeight(const RECT& window, int baseHeight, double referenceSize) {
    const std::int64_t span = std::int64_t{window.right} - window.left;
    const auto width = static_cast<double>(span == 0 ? 1 : span);
    const auto height = static_cast<double>(std::int64_t{window.bottom} - window.top);
    const double size = std::sqrt((width / referenceSize * baseHeight) * (height / referenceSize * baseHeight));
    const bool up = size - std::trunc(size) > 0.5;
    return zolcs::truncated(std::trunc(size) + (up ? 1.0 : 0.0));
}

int clampedFontHeight(int height, int baseHeight) {
    return std::min(std::max(height, std::min(baseHeight, smallestFont)), largestFont);
}

}  // namespace

namespace CCsImageUtils {

CCsPoint imgToDsp(CCs2dTrafo& trafo, const CCsPoint& point) {
    const CCsPointDouble shown = imageToDisplay(trafo).apply(point.x, point.y);
    return {roundOff(shown.x), roundOff(shown.y)};
}

CCsPoint dspToImg(CCs2dTrafo& trafo, const CCsPoint& point) {
    const CCsPointDouble image = displayToImage(trafo).apply(point.x, point.y);
    return {zolcs::truncated(image.x), zolcs::truncated(image.y)};
}

CCsPointDouble imgToDspD(CCs2dTrafo& trafo, const CCsPointDouble& point) {
    return imageToDisplay(trafo).apply(point.x, point.y);
}

CCsPointDouble dspToImgD(CCs2dTrafo& trafo, const CCsPointDouble& point) {
    return displayToImage(trafo).apply(point.x, point.y);
}

CRect imgToDsp(CCs2dTrafo& trafo, const RECT& rect) {
    return normalised(imgToDsp(trafo, CCsPoint(rect.left, rect.top)),
                      imgToDsp(trafo, CCsPoint(rect.right, rect.bottom)));
}

CRect dspToImg(CCs2dTrafo& trafo, const RECT& rect) {
    return normalised(dspToImg(trafo, CCsPoint(rect.left, rect.top)),
                      dspToImg(trafo, CCsPoint(rect.right, rect.bottom)));
}

int roundOff(double value) {
    const double fraction = value - std::trunc(value);
    if (value >= 0.0) return zolcs::truncated(fraction >= 0.5 ? std::ceil(value) : std::floor(value));
    return zolcs::truncated(fraction <= -0.5 ? std::floor(value) : std::ceil(value));
}

double getEuclidianDistance(const CCsPointDouble& a, const CCsPointDouble& b) {
    const double dx = a.x - b.x;
    const double dy = a.y - b.y;
    return std::sqrt(dx * dx + dy * dy);
}

RECT getROIBoundingRect(const std::vector<CPoint>& vertices) {
    if (vertices.empty()) return {0, 0, 0, 0};
    RECT bounds{vertices[0].x, vertices[0].y, vertices[0].x, vertices[0].y};
    for (const CPoint& vertex : vertices) {
        bounds.left = std::min(bounds.left, vertex.x);
        bounds.top = std::min(bounds.top, vertex.y);
        bounds.right = std::max(bounds.right, vertex.x);
        bounds.bottom = std::max(bounds.bottom, vertex.y);
    }
    return bounds;
}

void rearrangeRectBounds(RECT& out, RECT in) {
    out = {std::min(in.left, in.right), std::min(in.top, in.bottom), std::max(in.left, in.right),
           std::max(in.top, in.bottom)};
}

void findCircShutterInfo(CCsCircularShutterInfo& info, const CCsRaster& raster) {
    if (!raster.isCircShutter()) return;
    info.bounds = raster.getCircShutterRect();
    findCircShutterInfo(info, info.bounds, raster.getWidth());
}

void findCircShutterInfo(CCsCircularShutterInfo& info, RECT box, int width) {
    const auto w = static_cast<float>(std::abs(std::int64_t{box.left} - box.right));
    const auto h = static_cast<float>(std::abs(std::int64_t{box.top} - box.bottom));
    float radius = std::min(w, h) * 0.5F;
    // Deliberate: a degenerate box makes a circle as large as the image.
    if (radius == 0.0F) radius = static_cast<float>(std::int64_t{width} - 1);
    const std::int64_t whole = zolcs::truncated(radius);
    info.present = 1;
    info.radius = radius;
    info.center = CCsPoint(zolcs::saturated(box.left + whole), zolcs::saturated(box.top + whole));
}

bool isPointInsideDisplayShutter(const CCsDisplayShutterInfo& shutter, int x, int y) {
    if (shutter.rectangular.present != 0) {
        const RECT& rect = shutter.rectangular.rect;
        if (x < rect.left || x > rect.right || y < rect.top || y > rect.bottom) return false;
    }
    if (shutter.circular.present != 0) {
        // In double the squares cannot overflow, and their sum is exact wherever it fits 32 bits.
        const double dx = static_cast<double>(shutter.circular.center.x) - x;
        const double dy = static_cast<double>(shutter.circular.center.y) - y;
        const bool inside = static_cast<double>(shutter.circular.radius) >= std::sqrt(dx * dx + dy * dy);
        if (!inside) return false;
    }
    return shutter.polygonPresent == 0 || isPointInsidePolygon(shutter.polygon, x, y);
}

bool isPointInsidePolygon(const std::vector<CPoint>& vertices, double x, double y) {
    if (vertices.size() < 2) return false;
    bool inside = false;
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const CPoint& one = vertices[i];
        const CPoint& other = vertices[i + 1 < vertices.size() ? i + 1 : 0];
        const double yi = one.y;
        const double yj = other.y;
        const bool counts = (y > yi && yj >= y) || (y > yj && yi >= y);
        if (!counts) continue;
        const double xi = one.x;
        const double crossing = (y - yi) / (yj - yi) * (other.x - xi) + xi;
        if (x > crossing) inside = !inside;
    }
    return inside;
}

bool findRectangleIntersectionPoints(const CCsRectangularShutterInfo& shutter, int line, int& start, int& end) {
    const RECT& rect = shutter.rect;
    if (line < rect.top || line > rect.bottom) return false;
    return narrowRun(rect.left, rect.right, start, end);
}

bool findCircleScanLineIntersectionPoints(const CCsCircularShutterInfo& shutter, int line, int& start, int& end) {
    const auto cx = static_cast<float>(shutter.center.x);
    const auto cy = static_cast<float>(shutter.center.y);
    const auto at = static_cast<float>(line);
    const float radius = shutter.radius;
    const bool crosses = cy - radius <= at && at <= cy + radius;
    if (!crosses) return false;
    const auto distance = static_cast<float>(std::int64_t{shutter.center.y} - line);
    // Rounding of large centres can leave the line a little outside.
    const float half = std::sqrt(std::max(radius * radius - distance * distance, 0.0F));
    return narrowRun(zolcs::truncated(cx - half), zolcs::truncated(cx + half), start, end);
}

bool calculateDisplayShutterBoundIntersection(int* run, int line, const CCsDisplayShutterInfo& shutter, RECT limits,
                                              bool /*unused*/) {
    if (run == nullptr) return false;
    int& start = run[0];
    int& end = run[1];
    const auto clamped = [&](bool narrowed) {
        if (!narrowed) return false;
        start = std::max<int>(start, limits.left);
        end = std::min<int>(end, limits.right);
        return true;
    };
    bool result = true;
    if (shutter.rectangular.present != 0) {
        result = clamped(findRectangleIntersectionPoints(shutter.rectangular, line, start, end));
    }
    if (result && shutter.circular.present != 0) {
        result = clamped(findCircleScanLineIntersectionPoints(shutter.circular, line, start, end));
    }
    if (shutter.polygonPresent != 0) {
        if (shutter.polygon.size() < 3) return false;
        const CCsRectangularShutterInfo box{1, getROIBoundingRect(shutter.polygon)};
        const bool crosses = line >= box.rect.top && line <= box.rect.bottom;
        if (crosses && !clamped(findRectangleIntersectionPoints(box, line, start, end))) result = false;
    }
    return result;
}

bool getDisplayShutterBounds(RECT& bounds, const CCsRaster& raster, CCs2dTrafo& trafo, bool toDisplay) {
    CRect common(bounds);
    bool result = true;
    const auto intersect = [&](const RECT& other) {
        const CRect before = common;
        if (common.IntersectRect(&before, &other) == FALSE) result = false;
    };
    if (raster.isRectShutter()) intersect(normalised(raster.getRectShutterRect()));
    if (raster.isCircShutter()) intersect(normalised(raster.getCircShutterRect()));
    if (raster.isPolygonalShutter()) {
        const std::vector<CPoint> vertices = raster.getPolygonalShutterCoordinates();
        if (vertices.size() >= 3) intersect(getROIBoundingRect(vertices));
    }
    bounds = toDisplay && result ? imgToDsp(trafo, common) : common;
    return result;
}

bool getAffineBounds(const RECT& in, CCs2dTrafo& trafo, RECT& out, bool clip) {
    const Affine m = imageToDisplay(trafo);
    const CCsPointDouble corners[] = {m.apply(in.left, in.top), m.apply(in.right, in.top), m.apply(in.left, in.bottom),
                                      m.apply(in.right, in.bottom)};
    out = {0, 0, 0, 0};
    CCsPointDouble low = corners[0];
    CCsPointDouble high = corners[0];
    for (const CCsPointDouble& corner : corners) {
        if (!std::isfinite(corner.x) || !std::isfinite(corner.y)) return false;
        low = CCsPointDouble(std::min(low.x, corner.x), std::min(low.y, corner.y));
        high = CCsPointDouble(std::max(high.x, corner.x), std::max(high.y, corner.y));
    }
    CRect bounds(zolcs::truncated(std::floor(low.x)), zolcs::truncated(std::floor(low.y)),
                 zolcs::truncated(std::ceil(high.x)), zolcs::truncated(std::ceil(high.y)));
    if (clip) {
        const CSize size = trafo.getDstSize();
        bounds = bounds & CRect(0, 0, size.cx, size.cy);
    }
    if (bounds.IsRectEmpty() != FALSE) return false;
    out = bounds;
    return true;
}

void fillDisplayedRasterWithShutterPresentationValue(const CCsRaster& source, const CCsImage& display,
                                                     unsigned char* pixels, CCs2dTrafo* trafo, RECT /*area*/) {
    const DisplayPixels shown = displayPixels(display, pixels);
    const auto value = static_cast<unsigned char>(source.getPresentationShutterValue() >> 8U);
    if (source.isBitmapShutter() || value == 0) {
        clearPixels(shown);
        return;
    }
    if (trafo == nullptr) {
        greyPixels(shown, 0, shown.count, value);
        return;
    }
    clearPixels(shown);
    const CSize size = trafo->getSrcSize();
    const CRect image = imgToDsp(
        *trafo, RECT{0, 0, zolcs::saturated(std::int64_t{size.cx} - 1), zolcs::saturated(std::int64_t{size.cy} - 1)});
    // Deliberate: the rectangles' right and bottom are exclusive, so the last column and row of the area stay black.
    const CRect area = image & CRect(0, 0, zolcs::saturated(std::int64_t{display.getWidth()} - 1),
                                     zolcs::saturated(std::int64_t{display.getHeight()} - 1));
    for (std::int64_t y = area.top; y < area.bottom; ++y) {
        greyPixels(shown, y * shown.pitch + area.left, y * shown.pitch + area.right, value);
    }
}

bool isBitmapShutterSet(const CCsBitmapShutterInfo& shutter, int x, int y) {
    return zolcs::planeOf(shutter).isSet(x, y);
}

bool is60XXOverlayBitset(const CCs60XXOverlayInfo& overlays, unsigned short& index, int x, int y) {
    for (std::size_t i = 0; i < overlays.planes.size(); ++i) {
        if (!zolcs::planeOf(overlays.planes[i]).isSet(x, y)) continue;
        index = static_cast<unsigned short>(i);
        return true;
    }
    return false;
}

bool isPixePadBitSet(const unsigned char* bits, long index) {
    return bits != nullptr && index >= 0 && zolcs::bitAt(bits, index);
}

void setPixelPadBitSet(unsigned char* bits, int /*unused*/, unsigned long offset, int index) {
    const auto position =
        static_cast<std::int64_t>(static_cast<std::uint64_t>(offset) + static_cast<std::uint64_t>(index));
    if (bits != nullptr && position >= 0) setBit(bits, static_cast<std::uint64_t>(position));
}

void resetPixelPadBitSet(unsigned char* bits, int row, int width, int column) {
    const std::int64_t position = std::int64_t{row} * width + column;
    // Deliberate, whatever the name says: the bit ends up set.
    if (bits != nullptr && position >= 0) setBit(bits, static_cast<std::uint64_t>(position));
}

bool isIPPCompatible(const CCsRaster* raster) {
    return raster != nullptr && !raster->isEmbeddedOverlayPresent() && raster->getType() != CCS_RGB24;
}

bool isEntireSegmentFilledWithImage(const RECT& segment, const CCsImage& image) {
    // Deliberate: the bottom edge is compared with the width and the right edge with the height.
    return segment.top <= 0 && segment.bottom >= image.getWidth() && segment.left <= 0 &&
           segment.right >= image.getHeight();
}

unsigned short calculateBitShiftValueForGreyConversion(unsigned short maxValue) {
    constexpr int displayBits = 8;
    return static_cast<unsigned short>(std::max(static_cast<int>(std::bit_width(maxValue)) - displayBits, 0));
}

int calculateFontHeight(HWND window, int baseHeight) {
    RECT rect{0, 0, 0, 0};
    GetWindowRect(window, &rect);
    return clampedFontHeight(scaledFontHeight(rect, baseHeight, fontReferenceSize), baseHeight);
}

int calculateFontHeight(RECT rect, int baseHeight, int imageSize, bool exact) {
    const double referenceSize = exact && baseHeight > imageSize
                                     ? std::trunc(static_cast<double>(baseHeight) / imageSize * fontReferenceSize)
                                     : fontReferenceSize;
    const int height = scaledFontHeight(rect, baseHeight, referenceSize);
    return exact ? height : clampedFontHeight(height, baseHeight);
}

}  // namespace CCsImageUtils
