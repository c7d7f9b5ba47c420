// Random shutters, bit planes and the same settings on a raster.
#pragma once

#include "reference/shutter_reference.h"
#include "support/test_data.h"
#include "zolcs/ccsraster.h"

#include <cstddef>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace zoltest {

/// Shutters as plain data, with the bits that its records point to.
struct ShutterCase {
    zolref::RasterShutters shutters;
    std::vector<std::vector<unsigned char>> bits;
};

/// A coordinate in, at the edge of, or around an extent.
inline int anyCoordinate(Random& random, int extent) {
    switch (random.integer(0, 6)) {
        case 0:
            return 0;
        case 1:
            return extent - 1;
        case 2:
            return extent;
        case 3:
            return random.integer(-extent, 2 * extent);
        default:
            return random.integer(0, extent);
    }
}

inline RECT anyRect(Random& random, int width, int height, bool mayBeUnordered) {
    zolref::Box box;
    box.left = anyCoordinate(random, width);
    box.right = random.chance(0.1) ? box.left : anyCoordinate(random, width);
    box.top = anyCoordinate(random, height);
    box.bottom = random.chance(0.1) ? box.top : anyCoordinate(random, height);
    if (!mayBeUnordered) box = zolref::normalised(box.left, box.top, box.right, box.bottom);
    return zolref::rectOf(box);
}

inline std::vector<CPoint> anyPolygon(Random& random, int width, int height) {
    std::vector<CPoint> vertices;
    const int count = random.chance(0.15) ? random.integer(0, 2) : random.integer(3, 9);
    for (int i = 0; i < count; ++i) {
        int x = anyCoordinate(random, width);
        int y = anyCoordinate(random, height);
        // Upright and level edges, and vertices that coincide.
        if (i > 0 && random.chance(0.3)) x = static_cast<int>(vertices.back().x);
        if (i > 0 && random.chance(0.3)) y = static_cast<int>(vertices.back().y);
        vertices.emplace_back(x, y);
    }
    return vertices;
}

/// Bits for rows x columns, none, few, half or all of them set.
inline std::vector<unsigned char> anyBits(Random& random, std::size_t count) {
    std::vector<unsigned char> bits(count / 8 + 1);
    const int kind = random.integer(0, 3);
    for (unsigned char& byte : bits) {
        const std::uint64_t r = random.bits();
        if (kind == 0) byte = 255;
        if (kind == 1) byte = static_cast<unsigned char>(r >> 40);
        if (kind >= 2) byte = static_cast<unsigned char>((r >> 40) & (r >> 30) & (r >> 20));
    }
    return bits;
}

/// Size, origin and data of a plane that covers the image, a part of it, or lies partly or wholly beside it.
template <typename Plane>
void anyPlane(Random& random, int width, int height, ShutterCase& to, Plane& plane) {
    if (random.chance(0.3)) {
        plane.columns = static_cast<std::uint16_t>(width);
        plane.rows = static_cast<std::uint16_t>(height);
        plane.originX = 1;
        plane.originY = 1;
    } else {
        plane.columns = static_cast<std::uint16_t>(random.integer(0, width + 5));
        plane.rows = static_cast<std::uint16_t>(random.integer(0, height + 5));
        plane.originX = random.integer(-width - 2, width + 2);
        plane.originY = random.integer(-height - 2, height + 2);
    }
    to.bits.push_back(anyBits(random, std::size_t{plane.rows} * std::size_t{plane.columns}));
    plane.data = random.chance(0.1) ? nullptr : to.bits.back().data();
}

/// Any mixture of the four kinds, planes and embedded bits for a raster of width x height.
inline ShutterCase anyShutters(Random& random, int width, int height) {
    ShutterCase made;
    zolref::RasterShutters& s = made.shutters;
    s.presentationValue = static_cast<unsigned short>(random.bits() >> (random.chance(0.3) ? 55 : 48));
    if (random.chance(0.35)) {
        s.rectOn = true;
        s.rect = anyRect(random, width, height, random.chance(0.1));
    }
    if (random.chance(0.35)) {
        s.circOn = true;
        s.circle = anyRect(random, width, height, random.chance(0.1));
        if (random.chance(0.4)) {
            const long side = random.integer(0, width + 3);
            s.circle.right = s.circle.left + static_cast<LONG>(side);
            s.circle.bottom = s.circle.top + static_cast<LONG>(side);
        }
    }
    if (random.chance(0.3)) {
        s.polygonOn = true;
        s.polygon = anyPolygon(random, width, height);
    }
    if (random.chance(0.3)) {
        CCsBitmapShutterInfo info;
        anyPlane(random, width, height, made, info);
        info.tag = random.chance(0.8) || info.data == nullptr ? 1 : 0;
        info.reserved16 = static_cast<std::uint16_t>(random.bits());
        info.presentationValue = static_cast<std::uint16_t>(random.chance(0.3) ? 0 : random.bits());
        zolref::setBitmap(s, info);
    }
    if (random.chance(0.4)) {
        const int planes = random.chance(0.1) ? 18 : random.integer(1, 4);
        for (int i = 0; i < planes; ++i) {
            CCs60XXOverlay plane;
            anyPlane(random, width, height, made, plane);
            plane.leading = static_cast<std::uint32_t>(random.bits());
            for (std::uint8_t& byte : plane.trailing) byte = static_cast<std::uint8_t>(random.bits());
            s.planes.planes.push_back(plane);
        }
    }
    s.embedded = random.chance(0.3);
    return made;
}

/// Puts the settings on a raster through its own operations.
inline void applyShutters(const zolref::RasterShutters& s, CCsRaster& raster) {
    raster.setPresentationShutterValue(s.presentationValue);
    if (s.rectOn) raster.setRectShutter(s.rect);
    if (s.circOn) raster.setCircShutter(s.circle);
    if (s.polygonOn) raster.setPolygonalShutter(s.polygon);
    if (s.bitmapOn) raster.setBitmapShutterInfo(s.bitmap);
    if (!s.planes.planes.empty()) raster.set60XXOverlayGroup(s.planes);
    raster.setEmbeddedOverlayStatus(s.embedded);
}

inline std::string textOf(const RECT& r) {
    std::ostringstream out;
    out << '(' << r.left << ", " << r.top << ", " << r.right << ", " << r.bottom << ')';
    return out.str();
}

template <typename Plane>
std::string textOfPlane(const Plane& plane) {
    std::ostringstream out;
    out << plane.columns << 'x' << plane.rows << " at " << plane.originX << ", " << plane.originY
        << (plane.data == nullptr ? " without data" : "");
    return out.str();
}

inline std::ostream& operator<<(std::ostream& out, const ShutterCase& made) {
    const zolref::RasterShutters& s = made.shutters;
    out << "presentation " << s.presentationValue;
    if (s.rectOn) out << "; rectangle " << textOf(s.rect);
    if (s.circOn) out << "; circle " << textOf(s.circle);
    if (s.polygonOn) {
        out << "; polygon";
        for (const CPoint& vertex : s.polygon) out << " (" << vertex.x << ", " << vertex.y << ')';
    }
    if (s.bitmapOn) {
        out << "; bitmap " << textOfPlane(s.bitmap) << " tag " << s.bitmap.tag << " presentation "
            << s.bitmap.presentationValue;
    }
    for (const CCs60XXOverlay& plane : s.planes.planes) out << "; plane " << textOfPlane(plane);
    if (s.embedded) out << "; embedded bits";
    return out;
}

}  // namespace zoltest
