// What the tests of rasters share.
#pragma once

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsimageutils.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsoverlay.h"
#include "zolcs/ccsraster.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

#include "support/gdi_count.h"
#include "support/new_failure.h"
#include "support/report_capture.h"
#include "support/test_data.h"

namespace zoltest::raster {

using zoltest::errorReport;
using zoltest::ReportCapture;
using Reports = std::vector<zoltest::Report>;

inline const wchar_t* const module = L"source\\zolcs\\ccsraster";

inline ZolMemMappedManager& manager() { return *ZolMemMappedManager::getIntance(); }

/// What a type makes of a width and a height.
struct TypeRow {
    int type;
    int elemSize;
    int multiple;
    int failureLine;
};

inline constexpr TypeRow typeRows[] = {{1, 1, 8, 298}, {2, 2, 4, 315}, {7, 2, 4, 331}, {3, 1, 8, 344},
                                       {4, 8, 1, 357}, {5, 4, 2, 372}, {6, 3, 1, 388}};

inline std::int64_t pitchOf(const TypeRow& row, int width) {
    return (width + row.multiple - 1) / row.multiple * row.multiple;
}
inline std::int64_t totalOf(const TypeRow& row, int width, int height) {
    if (row.type == 6) return std::int64_t{width} * height * 3;
    return (height + 1) * pitchOf(row, width) * row.elemSize + row.elemSize;
}
inline std::int64_t guardOf(const TypeRow& row, int width) {
    return row.type == 6 ? 0 : pitchOf(row, width) * row.elemSize + row.elemSize;
}

/// A raster whose protected state a test can see and change.
class Raster : public CCsRaster {
public:
    using CCsRaster::CCsRaster;
    Raster(const Raster&) = default;
    Raster& operator=(const Raster&) = default;

    void failConstruction() { valid = 0; }
    [[nodiscard]] bool isExternal() const { return externalBuffer == 1; }
    [[nodiscard]] bool isDeferred() const { return deferAllocation; }
    [[nodiscard]] bool isMapped() const { return mapMemory; }
    [[nodiscard]] int getValid() const { return valid; }
    [[nodiscard]] const unsigned char* lastOrigin() const { return origin; }
    [[nodiscard]] unsigned short plainPresentationValue() const { return presentationShutterValue; }
};

inline int resultThrownBy(int width, int height, int type, bool defer = false) {
    try {
        const CCsRaster raster(width, height, type, 1.0, false, defer);
    } catch (int result) {
        return result;
    }
    return 255;
}

inline std::vector<unsigned char> contents(const CCsImage& image) {
    const unsigned char* const data = image.GetMemBuffer()->lock();
    image.GetMemBuffer()->unlock(0, 1);
    return {data, data + image.GetMemBuffer()->getSize()};
}

inline void fillRandomly(const CCsImage& image, std::uint64_t seed) {
    zoltest::Random random(seed);
    unsigned char* const data = image.GetMemBuffer()->lock();
    for (std::size_t i = 0; i < image.GetMemBuffer()->getSize(); ++i)
        data[i] = static_cast<unsigned char>(random.bits());
    image.GetMemBuffer()->unlock(0, 1);
}

inline bool same(const RECT& a, const RECT& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

class CCsRasterTest : public testing::Test {
protected:
    void TearDown() override {
        manager().setLimit(std::numeric_limits<std::size_t>::max());
        manager().setUseMappings(true);
        EXPECT_EQ(manager().getBytesInUse(), before_);
    }
    [[nodiscard]] std::size_t inUse() const { return manager().getBytesInUse() - before_; }
    void allow(std::size_t bytes) const { manager().setLimit(before_ + bytes); }
    static void allowAll() { manager().setLimit(std::numeric_limits<std::size_t>::max()); }

private:
    std::size_t before_ = manager().getBytesInUse();
};

inline ZolMemMappedBuffer* newBuffer(std::size_t bytes) {
    return manager().allocateMapMemory(static_cast<unsigned int>(bytes), 0, false, false);
}

inline CCsBitmapShutterInfo bitmapRecord(unsigned char* bits) {
    CCsBitmapShutterInfo info;
    info.tag = 3;
    info.originX = -4;
    info.originY = 5;
    info.rows = 6;
    info.columns = 7;
    info.data = bits;
    info.group = 0x6002;
    info.unused32 = 8;
    info.unused8a = 9;
    info.unused8b = 10;
    info.reserved16 = 11;
    info.shutterValueAux = 12;
    info.presentationValue = 13;
    return info;
}

inline void decorate(CCsRaster& raster, unsigned char* bits) {
    raster.setRectShutter({1, 2, 3, 4});
    raster.setCircShutter({5, 6, 7, 8});
    raster.setPolygonalShutter({CPoint(1, 2), CPoint(3, 4), CPoint(5, 6)});
    raster.getBitmapShutterInfo() = bitmapRecord(bits);
    raster.setBitmapShutterInfo(raster.getBitmapShutterInfo());
    raster.setPresentationShutterValue(0x4567);
    raster.setEmbeddedOverlayStatus(true);
    CCs60XXOverlay plane;
    plane.leading = 21;
    plane.originX = 22;
    plane.originY = -23;
    plane.rows = 24;
    plane.columns = 25;
    plane.data = bits + 1;
    plane.trailing[11] = 26;
    raster.add60XXOverlayInfo(plane);
    plane.leading = 31;
    raster.add60XXOverlayInfo(plane);
}

inline void expectDecorated(CCsRaster& raster, const unsigned char* bits) {
    EXPECT_TRUE(raster.isRectShutter() && raster.isCircShutter() && raster.isPolygonalShutter() &&
                raster.isBitmapShutter());
    EXPECT_TRUE(same(raster.getRectShutterRect(), {1, 2, 3, 4}));
    EXPECT_TRUE(same(raster.getCircShutterRect(), {5, 6, 7, 8}));
    EXPECT_EQ(raster.getPolygonalShutterCoordinates(), (std::vector<CPoint>{CPoint(1, 2), CPoint(3, 4), CPoint(5, 6)}));
    const CCsBitmapShutterInfo& info = raster.getBitmapShutterInfo();
    EXPECT_EQ(info.tag, 3U);
    EXPECT_EQ(info.originX, -4);
    EXPECT_EQ(info.originY, 5);
    EXPECT_EQ(info.rows, 6);
    EXPECT_EQ(info.columns, 7);
    EXPECT_EQ(info.data, bits);
    EXPECT_EQ(info.group, 0x6002U);
    EXPECT_EQ(info.unused32, 8U);
    EXPECT_EQ(info.unused8a, 9);
    EXPECT_EQ(info.unused8b, 10);
    EXPECT_EQ(info.reserved16, 11);
    EXPECT_EQ(info.shutterValueAux, 12);
    EXPECT_EQ(info.presentationValue, 13);
    EXPECT_EQ(raster.getPresentationShutterValue(), 13);
    EXPECT_TRUE(raster.isEmbeddedOverlayPresent());
    const std::vector<CCs60XXOverlay>& planes = raster.get60XXOverlayGroup().planes;
    ASSERT_EQ(planes.size(), 2U);
    EXPECT_EQ(planes[0].leading, 21U);
    EXPECT_EQ(planes[1].leading, 31U);
    for (const CCs60XXOverlay& plane : planes) {
        EXPECT_EQ(plane.originX, 22);
        EXPECT_EQ(plane.originY, -23);
        EXPECT_EQ(plane.rows, 24);
        EXPECT_EQ(plane.columns, 25);
        EXPECT_EQ(plane.data, bits + 1);
        EXPECT_EQ(plane.trailing[11], 26);
    }
    raster.resetImage(4);
    EXPECT_EQ(raster.getPresentationShutterValue(), 0x4567);
}

}  // namespace zoltest::raster
