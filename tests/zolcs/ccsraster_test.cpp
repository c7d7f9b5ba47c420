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
#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsimageutils.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsoverlay.h"

namespace {

using zoltest::errorReport;
using zoltest::ReportCapture;
using Reports = std::vector<zoltest::Report>;

const wchar_t* const module = L"source\\zolcs\\ccsraster";

ZolMemMappedManager& manager() { return *ZolMemMappedManager::getIntance(); }

/// What a type makes of a width and a height.
struct TypeRow {
    int type;
    int elemSize;
    int multiple;
    int failureLine;
};

constexpr TypeRow typeRows[] = {{1, 1, 8, 298}, {2, 2, 4, 315}, {7, 2, 4, 331}, {3, 1, 8, 344},
                                {4, 8, 1, 357}, {5, 4, 2, 372}, {6, 3, 1, 388}};

std::int64_t pitchOf(const TypeRow& row, int width) { return (width + row.multiple - 1) / row.multiple * row.multiple; }
std::int64_t totalOf(const TypeRow& row, int width, int height) {
    if (row.type == 6) return std::int64_t{width} * height * 3;
    return (height + 1) * pitchOf(row, width) * row.elemSize + row.elemSize;
}
std::int64_t guardOf(const TypeRow& row, int width) {
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

int resultThrownBy(int width, int height, int type, bool defer = false) {
    try {
        const CCsRaster raster(width, height, type, 1.0, false, defer);
    } catch (int result) {
        return result;
    }
    return 255;
}

std::vector<unsigned char> contents(const CCsImage& image) {
    const unsigned char* const data = image.GetMemBuffer()->lock();
    image.GetMemBuffer()->unlock(0, 1);
    return {data, data + image.GetMemBuffer()->getSize()};
}

void fillRandomly(const CCsImage& image, std::uint64_t seed) {
    zoltest::Random random(seed);
    unsigned char* const data = image.GetMemBuffer()->lock();
    for (std::size_t i = 0; i < image.GetMemBuffer()->getSize(); ++i)
        data[i] = static_cast<unsigned char>(random.bits());
    image.GetMemBuffer()->unlock(0, 1);
}

bool same(const RECT& a, const RECT& b) {
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

// ------------------------------------------------------------------------------------------------ sizes

TEST_F(CCsRasterTest, PitchBytesAndGuardsOfEveryType) {
    const ReportCapture capture;
    for (const TypeRow& row : typeRows) {
        for (const int width : {0, 1, 2, 3, 4, 5, 7, 8, 9, 16, 513}) {
            for (const int height : {0, 1, 3, 64}) {
                const Raster raster(width, height, row.type, 1.25, false, false);
                EXPECT_EQ(raster.getWidth(), width);
                EXPECT_EQ(raster.getHeight(), height);
                EXPECT_EQ(raster.getType(), row.type);
                EXPECT_EQ(raster.getRatioYx(), 1.25);
                EXPECT_EQ(raster.getPitch(), pitchOf(row, width));
                ASSERT_NE(raster.GetMemBuffer(), nullptr);
                EXPECT_EQ(raster.GetMemBuffer()->getSize(), static_cast<std::size_t>(totalOf(row, width, height)));
                EXPECT_EQ(inUse(), static_cast<std::size_t>(totalOf(row, width, height) + 2 * guardOf(row, width)));
                EXPECT_TRUE(raster.isValid());
                EXPECT_NE(raster.lastOrigin(), nullptr);
                EXPECT_EQ(raster.GetMemBuffer()->getLockCount(), 1);
            }
        }
    }
    EXPECT_EQ(ReportCapture::take(), Reports{});
}

TEST_F(CCsRasterTest, KnownSizes) {
    const CCsRaster grey(5, 3, CCS_GREY12, 1.0, false, false);
    EXPECT_EQ(grey.getPitch(), 8);
    EXPECT_EQ(grey.GetMemBuffer()->getSize(), 66U);
    const CCsRaster colour(5, 3, CCS_RGB8, 1.0, false, false);
    EXPECT_EQ(colour.getPitch(), 6);
}

TEST_F(CCsRasterTest, NewPixelsAreZero) {
    for (const TypeRow& row : typeRows) {
        const CCsRaster raster(5, 3, row.type, 1.0, false, false);
        const std::vector<unsigned char> bytes = contents(raster);
        EXPECT_EQ(bytes, std::vector<unsigned char>(bytes.size(), 0));
    }
}

TEST_F(CCsRasterTest, TheFlagChoosesMappedMemory) {
    for (const TypeRow& row : typeRows) {
        const Raster heap(5, 3, row.type, 1.0, false, false);
        EXPECT_EQ(heap.GetMemBuffer()->getMapHandle(), nullptr);
        Raster mapped(5, 3, row.type, 1.0, true, false);
        EXPECT_NE(mapped.GetMemBuffer()->getMapHandle(), nullptr);
        EXPECT_TRUE(mapped.isMapped());
        EXPECT_EQ(mapped.setSize(4, 4, -1, 0.0, false), 255);
        EXPECT_EQ(mapped.GetMemBuffer()->getMapHandle(), nullptr);
        EXPECT_FALSE(mapped.isMapped());
    }
}

TEST_F(CCsRasterTest, ExhaustedMemoryIsReportedWithTheTypesLine) {
    const ReportCapture capture;
    for (const TypeRow& row : typeRows) {
        for (const bool mapped : {false, true}) {
            Raster raster(1, 1, CCS_GREY8, 1.0, false, false);
            const auto needed = static_cast<std::size_t>(totalOf(row, 9, 5) + 2 * guardOf(row, 9));
            allow(needed - 1);
            EXPECT_EQ(raster.setSize(9, 5, row.type, 2.0, mapped), 1);
            EXPECT_EQ(ReportCapture::take(),
                      Reports{errorReport(L"Memory allocation failed", 0, module, row.failureLine)});
            EXPECT_EQ(raster.GetMemBuffer(), nullptr);
            EXPECT_EQ(raster.lastOrigin(), nullptr);
            EXPECT_EQ(inUse(), 0U);
            EXPECT_FALSE(raster.isValid());
            EXPECT_EQ(raster.getWidth(), 9);
            EXPECT_EQ(raster.getHeight(), 5);
            EXPECT_EQ(raster.getType(), row.type);
            EXPECT_EQ(raster.getRatioYx(), 2.0);

            EXPECT_EQ(resultThrownBy(9, 5, row.type), 1);
            EXPECT_EQ(ReportCapture::take(),
                      Reports{errorReport(L"Memory allocation failed", 0, module, row.failureLine)});

            allow(needed);
            EXPECT_EQ(raster.setSize(9, 5, row.type, 2.0, mapped), 255);
            EXPECT_TRUE(raster.isValid());
            EXPECT_EQ(inUse(), needed);
            EXPECT_EQ(ReportCapture::take(), Reports{});
            allowAll();
        }
    }
}

TEST_F(CCsRasterTest, UnknownTypesAreRefused) {
    const ReportCapture capture;
    Raster raster(5, 3, CCS_GREY12, 1.0, false, false);
    for (const int type : {0, 8, -2, 1000}) {
        EXPECT_EQ(raster.setSize(4, 4, type, 1.0, false), 0);
        EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Unknown raster type", type, module, 394)});
        EXPECT_EQ(raster.GetMemBuffer(), nullptr);
        EXPECT_FALSE(raster.isValid());
        EXPECT_EQ(inUse(), 0U);
        EXPECT_EQ(resultThrownBy(4, 4, type), 0);
        EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Unknown raster type", type, module, 394)});
        EXPECT_EQ(resultThrownBy(4, 4, type, true), 0);
        EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Unknown raster type", type, module, 394)});
    }
    EXPECT_EQ(resultThrownBy(4, 4, -1), 0);
    EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Unknown raster type", -1, module, 394)});
    EXPECT_EQ(raster.setSize(4, 4, CCS_GREY8, 0.0, false), 255);
    EXPECT_TRUE(raster.isValid());
}

TEST_F(CCsRasterTest, ARasterWhoseConstructorFailedIsNeverSized) {
    const ReportCapture capture;
    Raster raster(5, 3, CCS_GREY12, 1.5, false, false);
    raster.failConstruction();
    EXPECT_FALSE(raster.isValid());
    const ZolMemMappedBuffer* const buffer = raster.GetMemBuffer();
    EXPECT_EQ(raster.setSize(9, 9, CCS_GREY8, 2.0, true), 0);
    EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Constructor is invalid", 0, module, 401)});
    EXPECT_EQ(raster.getWidth(), 5);
    EXPECT_EQ(raster.getHeight(), 3);
    EXPECT_EQ(raster.getType(), CCS_GREY12);
    EXPECT_EQ(raster.getRatioYx(), 1.5);
    EXPECT_EQ(raster.GetMemBuffer(), buffer);
}

TEST_F(CCsRasterTest, MinusOneAndZeroKeepTypeAndRatio) {
    CCsRaster raster(5, 3, CCS_RGB8, 1.5, false, false);
    EXPECT_EQ(raster.setSize(7, 2, -1, 0.0, false), 255);
    EXPECT_EQ(raster.getType(), CCS_RGB8);
    EXPECT_EQ(raster.getRatioYx(), 1.5);
    EXPECT_EQ(raster.getPitch(), 8);
    EXPECT_EQ(raster.setSize(7, 2, CCS_GREY8, 0.5, false), 255);
    EXPECT_EQ(raster.getType(), CCS_GREY8);
    EXPECT_EQ(raster.getRatioYx(), 0.5);
    raster.setAspectRatio(0.0);
    EXPECT_EQ(raster.getRatioYx(), 0.5);
    raster.setAspectRatio(0.75);
    EXPECT_EQ(raster.getRatioYx(), 0.75);
}

TEST_F(CCsRasterTest, SetSizeReplacesTheMemory) {
    Raster raster(100, 100, CCS_RGB12, 1.0, true, false);
    EXPECT_EQ(raster.setSize(8, 1, CCS_GREY8, 1.0, false), 255);
    EXPECT_EQ(inUse(), 17U + 2 * 9);
    EXPECT_EQ(raster.lastOrigin(), raster.getOrigin());
    raster.unlock();
}

TEST_F(CCsRasterTest, SizesBeyond32BitsAreExhaustedMemory) {
    const ReportCapture capture;
    constexpr int most = std::numeric_limits<int>::max();
    for (const TypeRow& row : typeRows) {
        for (const auto& [width, height] :
             {std::pair(65536, 65536), std::pair(65536, 65535), std::pair(most, most), std::pair(most, 1),
              std::pair(1, most), std::pair(most, 0), std::pair(most - 7, 2), std::pair(0x8000, 0x7FFFFFFF / 4)}) {
            if (row.type == 6 && height == 0) continue;  // no pixels, no spare line: nothing to allocate
            if (totalOf(row, 1, 1) != 0 && row.elemSize <= 2 && width == 1) continue;  // fits 32 bits
            EXPECT_EQ(resultThrownBy(width, height, row.type), 1) << row.type << ' ' << width << ' ' << height;
            EXPECT_EQ(ReportCapture::take(),
                      Reports{errorReport(L"Memory allocation failed", 0, module, row.failureLine)});
        }
    }
    EXPECT_EQ(inUse(), 0U);
}

TEST_F(CCsRasterTest, TheLargestByteCountIsAskedForAndOneMoreIsNot) {
    // The limit shows what was asked for without any of it being allocated: total and guards, or nothing.
    const ReportCapture capture;
    allow(1000);
    // 4294967295 = 3 * 5 * 17 * 257 * 65537, so one row of that many third pixels is exactly the most.
    EXPECT_EQ(resultThrownBy(1431655765, 1, CCS_RGB24), 1);
    EXPECT_EQ(resultThrownBy(1431655766, 1, CCS_RGB24), 1);
    EXPECT_EQ(ReportCapture::take().size(), 2U);
}

TEST_F(CCsRasterTest, NegativeSizesAreExhaustedMemory) {
    const ReportCapture capture;
    constexpr int least = std::numeric_limits<int>::min();
    for (const TypeRow& row : typeRows) {
        for (const auto& [width, height] : {std::pair(-1, 4), std::pair(4, -1), std::pair(-4, -4), std::pair(-9, -9),
                                            std::pair(least, least), std::pair(least, 1), std::pair(1, least)}) {
            EXPECT_EQ(resultThrownBy(width, height, row.type), 1) << row.type << ' ' << width << ' ' << height;
            EXPECT_EQ(ReportCapture::take(),
                      Reports{errorReport(L"Memory allocation failed", 0, module, row.failureLine)});
        }
    }
}

TEST_F(CCsRasterTest, SidesOf32768AndMoreAreAllocated) {
    const CCsRaster wide(40000, 2, CCS_GREY12, 1.0, false, false);
    EXPECT_EQ(wide.getPitch(), 40000);
    const CCsRaster high(2, 40000, CCS_GREY12, 1.0, false, false);
    EXPECT_EQ(high.GetMemBuffer()->getSize(), (40001U * 4U) * 2U + 2U);
}

TEST_F(CCsRasterTest, TheSpareLineAndPixelAndTheGuardsCanBeUsed) {
    for (const TypeRow& row : typeRows) {
        CCsRaster raster(5, 3, row.type, 1.0, false, false);
        unsigned char* const origin = raster.getOrigin();
        const std::int64_t guard = guardOf(row, 5);
        for (std::int64_t i = -guard; i < totalOf(row, 5, 3) + guard; ++i) origin[i] = static_cast<unsigned char>(i);
        for (std::int64_t i = -guard; i < totalOf(row, 5, 3) + guard; ++i) {
            ASSERT_EQ(origin[i], static_cast<unsigned char>(i));
        }
        raster.unlock();
    }
}

// ------------------------------------------------------------------------------------------------ deferred allocation

TEST_F(CCsRasterTest, DeferredAllocationHappensAtTheFirstGetOrigin) {
    for (const TypeRow& row : typeRows) {
        Raster raster(9, 5, row.type, 1.0, true, true);
        EXPECT_TRUE(raster.isValid());
        EXPECT_TRUE(raster.isDeferred());
        EXPECT_EQ(raster.getPitch(), pitchOf(row, 9));
        EXPECT_EQ(raster.GetMemBuffer(), nullptr);
        EXPECT_EQ(inUse(), 0U);
        unsigned char* const origin = raster.getOrigin();
        ASSERT_NE(origin, nullptr);
        EXPECT_FALSE(raster.isDeferred());
        EXPECT_NE(raster.GetMemBuffer()->getMapHandle(), nullptr);
        EXPECT_EQ(inUse(), static_cast<std::size_t>(totalOf(row, 9, 5) + 2 * guardOf(row, 9)));
        raster.unlock();
        EXPECT_EQ(raster.getOrigin(), origin);
        raster.unlock();
    }
}

TEST_F(CCsRasterTest, ADeferredSetSizeDropsTheMemoryAndKeepsTheFlagOfTheLastCall) {
    Raster raster(9, 5, CCS_GREY8, 1.0, true, true);
    EXPECT_EQ(raster.setSize(4, 4, CCS_RGB8, 2.0, false), 255);
    EXPECT_EQ(raster.GetMemBuffer(), nullptr);
    EXPECT_EQ(raster.getPitch(), 4);
    ASSERT_NE(raster.getOrigin(), nullptr);
    EXPECT_EQ(raster.GetMemBuffer()->getMapHandle(), nullptr);
    EXPECT_EQ(raster.GetMemBuffer()->getSize(), 5U * 4 * 4 + 4);
    raster.unlock();
}

TEST_F(CCsRasterTest, ALateAllocationThatFailsGivesANullOriginAndIsTriedAgain) {
    const ReportCapture capture;
    for (const TypeRow& row : typeRows) {
        Raster raster(9, 5, row.type, 1.0, false, true);
        allow(0);
        EXPECT_EQ(raster.getOrigin(), nullptr);
        raster.unlock();
        EXPECT_FALSE(raster.isValid());
        EXPECT_FALSE(raster.isDeferred());
        EXPECT_EQ(raster.getOrigin(), nullptr);
        const auto report = errorReport(L"Memory allocation failed", 0, module, row.failureLine);
        EXPECT_EQ(ReportCapture::take(), (Reports{report, report}));
        allowAll();
        EXPECT_NE(raster.getOrigin(), nullptr);
        EXPECT_TRUE(raster.isValid());
        raster.unlock();
    }
}

TEST_F(CCsRasterTest, WholeBufferOperationsDoNotAllocateADeferredRaster) {
    CCsRaster raster(9, 5, CCS_GREY8, 1.0, false, true);
    EXPECT_EQ(raster.clear(), 0);
    EXPECT_EQ(raster.fill(1), 0);
    EXPECT_EQ(raster.GetMemBuffer(), nullptr);
}

TEST_F(CCsRasterTest, LocksAndUnlocksAreBalanced) {
    CCsRaster raster(9, 5, CCS_GREY8, 1.0, false, false);
    const int locks = raster.GetMemBuffer()->getLockCount();
    raster.getOrigin();
    EXPECT_EQ(raster.GetMemBuffer()->getLockCount(), locks + 1);
    raster.unlock();
    raster.fill(3);
    raster.shiftRight(1);
    raster.clear();
    EXPECT_EQ(raster.GetMemBuffer()->getLockCount(), locks);
}

// ------------------------------------------------------------------------------------------------ adopted buffers

ZolMemMappedBuffer* newBuffer(std::size_t bytes) {
    return manager().allocateMapMemory(static_cast<unsigned int>(bytes), 0, false, false);
}

TEST_F(CCsRasterTest, AnAdoptedBufferHasNoPadding) {
    const ReportCapture capture;
    ZolMemMappedBuffer* const buffer = newBuffer(5 * 3 * 2);
    {
        Raster raster(buffer, 5, 3, CCS_GREY12, 1.5);
        EXPECT_EQ(raster.GetMemBuffer(), buffer);
        EXPECT_EQ(raster.getWidth(), 5);
        EXPECT_EQ(raster.getHeight(), 3);
        EXPECT_EQ(raster.getPitch(), 5);
        EXPECT_EQ(raster.getType(), CCS_GREY12);
        EXPECT_EQ(raster.getRatioYx(), 1.5);
        EXPECT_TRUE(raster.isValid());
        EXPECT_TRUE(raster.isExternal());
        EXPECT_TRUE(raster.isMapped());
        EXPECT_FALSE(raster.isDeferred());
        EXPECT_EQ(buffer->getLockCount(), 0);
        EXPECT_EQ(raster.getOrigin(), buffer->lock());
        raster.unlock();
        raster.unlock();
    }
    EXPECT_EQ(inUse(), 0U);
    EXPECT_EQ(ReportCapture::take(), Reports{});
}

TEST_F(CCsRasterTest, AnAdoptedBufferMayLeaveTypeAndRatioUnset) {
    const Raster raster(newBuffer(15), 5, 3, -1, 0.0);
    EXPECT_EQ(raster.getType(), -1);
    EXPECT_EQ(raster.getRatioYx(), 0.0);
}

TEST_F(CCsRasterTest, SetSizeOfAnAdoptedRasterAllocatesItsOwn) {
    Raster raster(newBuffer(15), 5, 3, CCS_GREY8, 1.0);
    EXPECT_EQ(raster.setSize(5, 3, -1, 0.0, false), 255);
    EXPECT_FALSE(raster.isExternal());
    EXPECT_EQ(raster.getPitch(), 8);
    EXPECT_EQ(inUse(), 4U * 8 + 1 + 2 * 9);
}

TEST_F(CCsRasterTest, ANullBufferIsAllocatedAtTheFirstGetOrigin) {
    Raster raster(nullptr, 5, 3, CCS_GREY8, 1.0);
    EXPECT_TRUE(raster.isValid());
    EXPECT_EQ(raster.GetMemBuffer(), nullptr);
    const Raster copy(raster);
    EXPECT_NE(copy.GetMemBuffer(), nullptr);
    EXPECT_EQ(copy.getPitch(), 8);
    EXPECT_NE(raster.getOrigin(), nullptr);
    EXPECT_EQ(raster.getPitch(), 8);
    EXPECT_FALSE(raster.isExternal());
    raster.unlock();
}

// ------------------------------------------------------------------------------------------------ copies

CCsBitmapShutterInfo bitmapRecord(unsigned char* bits) {
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

void decorate(CCsRaster& raster, unsigned char* bits) {
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

void expectDecorated(CCsRaster& raster, const unsigned char* bits) {
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

TEST_F(CCsRasterTest, CopiesHaveTheirOwnPixelsAndAllState) {
    const ReportCapture capture;
    unsigned char bits[8] = {};
    for (const TypeRow& row : typeRows) {
        for (const bool mapped : {false, true}) {
            Raster source(5, 3, row.type, 1.5, mapped, false);
            fillRandomly(source, 31);
            decorate(source, bits);
            Raster copy(source);
            EXPECT_EQ(copy.getWidth(), 5);
            EXPECT_EQ(copy.getHeight(), 3);
            EXPECT_EQ(copy.getType(), row.type);
            EXPECT_EQ(copy.getPitch(), source.getPitch());
            EXPECT_EQ(copy.getRatioYx(), 1.5);
            EXPECT_EQ(copy.isMapped(), mapped);
            EXPECT_FALSE(copy.isExternal());
            EXPECT_TRUE(copy.isValid());
            ASSERT_NE(copy.GetMemBuffer(), source.GetMemBuffer());
            EXPECT_EQ(copy.GetMemBuffer()->getMapHandle() != nullptr, mapped);
            // The spare line and the spare pixel come along.
            EXPECT_EQ(contents(copy), contents(source));
            expectDecorated(copy, bits);
            const std::vector<unsigned char> before = contents(source);
            fillRandomly(copy, 32);
            EXPECT_EQ(contents(source), before);
        }
    }
    EXPECT_EQ(ReportCapture::take(), Reports{});
}

TEST_F(CCsRasterTest, CopiesOfAdoptedBuffersKeepTheLayoutAndGetASpareLine) {
    const ReportCapture capture;
    unsigned char bits[8] = {};
    for (const TypeRow& row : typeRows) {
        const auto elem = static_cast<std::size_t>(row.elemSize);
        const std::size_t bytes = 5 * 3 * elem;
        Raster source(newBuffer(bytes), 5, 3, row.type, 1.5);
        fillRandomly(source, 33);
        decorate(source, bits);
        const std::size_t before = inUse();
        Raster copy(source);
        EXPECT_EQ(copy.getPitch(), 5);
        EXPECT_TRUE(copy.isExternal());
        EXPECT_EQ(copy.GetMemBuffer()->getSize(), bytes + 6 * elem);
        EXPECT_EQ(copy.GetMemBuffer()->getMapHandle(), nullptr);
        EXPECT_EQ(inUse() - before, bytes + 6 * elem + 2 * 6 * elem);
        EXPECT_EQ(copy.GetMemBuffer()->getLockCount(), row.type == 1 ? 1 : 0);
        EXPECT_EQ(copy.lastOrigin() != nullptr, row.type == 1);
        std::vector<unsigned char> expected = contents(source);
        expected.resize(bytes + 6 * elem, 0);
        EXPECT_EQ(contents(copy), expected);
        const Raster second(copy);
        EXPECT_EQ(second.getPitch(), 5);
        expected.resize(bytes + 12 * elem, 0);
        EXPECT_EQ(contents(second), expected);
        expectDecorated(copy, bits);
    }
    EXPECT_EQ(ReportCapture::take(), Reports{});
}

TEST_F(CCsRasterTest, ACopyThatFindsNoMemoryThrows1) {
    const ReportCapture capture;
    for (const TypeRow& row : typeRows) {
        const Raster own(9, 5, row.type, 1.0, false, false);
        const auto total = static_cast<std::size_t>(totalOf(row, 9, 5) + 2 * guardOf(row, 9));
        allow(2 * total - 1);
        const auto copy = [](const Raster& source) {
            try {
                const Raster other(source);
            } catch (int result) {
                return result;
            }
            return 255;
        };
        EXPECT_EQ(copy(own), 1);
        EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Memory allocation failed", 0, module, row.failureLine)});
        EXPECT_EQ(inUse(), total);
        allow(2 * total);
        EXPECT_EQ(copy(own), 255);
        allowAll();

        const auto elem = static_cast<std::size_t>(row.elemSize);
        const Raster external(newBuffer(9 * 5 * elem), 9, 5, row.type, 1.0);
        allow(total + 9 * 5 * elem + (9 * 5 + 10) * elem + 20 * elem - 1);
        EXPECT_EQ(copy(external), 1);
        // An adopted buffer's copy fails silently.
        EXPECT_EQ(ReportCapture::take(), Reports{});
        EXPECT_EQ(inUse(), total + 9 * 5 * elem);
        allowAll();
        EXPECT_EQ(copy(external), 255);
    }
}

TEST_F(CCsRasterTest, ACopyOfAnUnknownTypeIsReportedAndHasNoPixels) {
    const ReportCapture capture;
    for (const int type : {-1, 0, 8}) {
        const Raster source(newBuffer(15), 5, 3, type, 1.0);
        fillRandomly(source, 34);
        const Raster copy(source);
        EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Unknown raster type", type, module, 221)});
        EXPECT_EQ(contents(copy), std::vector<unsigned char>(15, 0));
        EXPECT_TRUE(copy.isValid());
    }
}

TEST_F(CCsRasterTest, ACopyOfARasterWhoseConstructorFailedThrows0) {
    const ReportCapture capture;
    Raster source(5, 3, CCS_GREY8, 1.0, false, false);
    source.failConstruction();
    EXPECT_THROW(
        {
            try {
                const Raster copy(source);
            } catch (int result) {
                EXPECT_EQ(result, 0);
                throw;
            }
        },
        int);
    EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Constructor is invalid", 0, module, 401)});
}

TEST_F(CCsRasterTest, ADeferredCopyIsDeferred) {
    const Raster source(5, 3, CCS_GREY12, 1.0, false, true);
    Raster copy(source);
    EXPECT_EQ(copy.GetMemBuffer(), nullptr);
    EXPECT_TRUE(copy.isDeferred());
    EXPECT_EQ(copy.getPitch(), 8);
    EXPECT_NE(copy.getOrigin(), nullptr);
    copy.unlock();
    EXPECT_EQ(source.GetMemBuffer(), nullptr);
}

TEST_F(CCsRasterTest, ACopyOfATooSmallAdoptedBufferStaysInside) {
    for (const TypeRow& row : typeRows) {
        const Raster source(newBuffer(4), 50, 30, row.type, 1.0);
        fillRandomly(source, 35);
        const Raster copy(source);
        std::vector<unsigned char> expected = contents(source);
        expected.resize(4 + static_cast<std::size_t>(51 * row.elemSize), 0);
        EXPECT_EQ(contents(copy), expected);
    }
}

TEST_F(CCsRasterTest, CopiesOfAdoptedBuffersWithImpossibleGeometry) {
    constexpr int most = std::numeric_limits<int>::max();
    constexpr int least = std::numeric_limits<int>::min();
    for (const auto& [width, height, type] :
         {std::tuple(most, 1, 2), std::tuple(most, most, 4), std::tuple(-2, 3, 1), std::tuple(least, least, 5)}) {
        const Raster source(newBuffer(15), width, height, type, 1.0);
        try {
            const Raster copy(source);
            ADD_FAILURE() << width << ' ' << height;
        } catch (int result) {
            EXPECT_EQ(result, 1);
        }
    }
}

TEST_F(CCsRasterTest, NewInstanceIsACopy) {
    Raster source(5, 3, CCS_GREY12, 1.0, false, false);
    fillRandomly(source, 36);
    source.setRectShutter({1, 2, 3, 4});
    CCsImage& image = source;
    const std::unique_ptr<CCsImage> copy(image.NewInstance());
    auto* const raster = dynamic_cast<CCsRaster*>(copy.get());
    ASSERT_NE(raster, nullptr);
    EXPECT_EQ(contents(*raster), contents(source));
    EXPECT_TRUE(raster->isRectShutter());
}

TEST_F(CCsRasterTest, AssignmentDeliberatelySharesThePixels) {
    unsigned char bits[8] = {};
    Raster source(5, 3, CCS_GREY12, 1.5, true, false);
    decorate(source, bits);
    // The copy's destructor would destroy the shared buffer, so it never runs with it.
    alignas(Raster) unsigned char storage[sizeof(Raster)];
    auto* const copy = new (storage) Raster(1, 1, CCS_GREY8, 1.0, false, false);
    delete copy->GetMemBuffer();
    *copy = source;
    EXPECT_EQ(copy->GetMemBuffer(), source.GetMemBuffer());
    EXPECT_EQ(copy->getPitch(), 8);
    EXPECT_EQ(copy->lastOrigin(), source.lastOrigin());
    EXPECT_TRUE(copy->isMapped());
    expectDecorated(*copy, bits);
    // What the copy owns besides the pixels is released by hand.
    copy->setPolygonalShutter({});
    *copy = Raster(nullptr, 0, 0, CCS_GREY8, 1.0);
    copy->~Raster();
}

// ------------------------------------------------------------------------------------------------ shutters

TEST_F(CCsRasterTest, StartsWithoutShuttersAndPlanes) {
    CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, true);
    EXPECT_FALSE(raster.isRectShutter());
    EXPECT_FALSE(raster.isCircShutter());
    EXPECT_FALSE(raster.isPolygonalShutter());
    EXPECT_FALSE(raster.isBitmapShutter());
    EXPECT_FALSE(raster.isDisplayShutter());
    EXPECT_FALSE(raster.isShutter());
    EXPECT_FALSE(raster.isNonEmbeddedOverlayPresent());
    EXPECT_FALSE(raster.isEmbeddedOverlayPresent());
    EXPECT_EQ(raster.getPresentationShutterValue(), 0);
    EXPECT_EQ(raster.getBitmapShutterInfo().group, 0x6000U);
    EXPECT_TRUE(same(raster.getRectShutterRect(), {0, 0, 0, 0}));
    EXPECT_TRUE(same(raster.getCircShutterRect(), {0, 0, 0, 0}));
    EXPECT_TRUE(raster.getPolygonalShutterCoordinates().empty());
}

TEST_F(CCsRasterTest, EachKindIsSwitchedOnByItsSetter) {
    unsigned char bits[1] = {};
    CCsRaster rect(5, 3, CCS_GREY12, 1.0, false, true);
    rect.setRectShutter({4, 3, 2, 1});
    EXPECT_TRUE(rect.isRectShutter() && rect.isDisplayShutter() && rect.isShutter());
    EXPECT_FALSE(rect.isCircShutter() || rect.isPolygonalShutter() || rect.isBitmapShutter());
    EXPECT_TRUE(same(rect.getRectShutterRect(), {4, 3, 2, 1}));

    CCsRaster circ(5, 3, CCS_GREY12, 1.0, false, true);
    circ.setCircShutter({4, 3, 2, 1});
    EXPECT_TRUE(circ.isCircShutter() && circ.isDisplayShutter() && circ.isShutter());
    EXPECT_FALSE(circ.isRectShutter() || circ.isPolygonalShutter() || circ.isBitmapShutter());
    EXPECT_TRUE(same(circ.getCircShutterRect(), {4, 3, 2, 1}));

    CCsRaster poly(5, 3, CCS_GREY12, 1.0, false, true);
    std::vector<CPoint> vertices = {CPoint(1, 2)};
    poly.setPolygonalShutter(vertices);
    vertices[0].x = 9;
    EXPECT_TRUE(poly.isPolygonalShutter() && poly.isDisplayShutter() && poly.isShutter());
    EXPECT_FALSE(poly.isRectShutter() || poly.isCircShutter() || poly.isBitmapShutter());
    EXPECT_EQ(poly.getPolygonalShutterCoordinates(), std::vector<CPoint>{CPoint(1, 2)});
    poly.getPolygonalShutterCoordinates().clear();
    EXPECT_EQ(poly.getPolygonalShutterCoordinates().size(), 1U);

    CCsRaster bitmap(5, 3, CCS_GREY12, 1.0, false, true);
    EXPECT_TRUE(bitmap.setBitmapShutterInfo(bitmapRecord(bits)));
    EXPECT_TRUE(bitmap.isBitmapShutter() && bitmap.isShutter());
    EXPECT_FALSE(bitmap.isDisplayShutter());
}

TEST_F(CCsRasterTest, SetBitmapShutterInfoCopiesAllButGroupAndAuxiliaryValue) {
    unsigned char bits[1] = {};
    CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, true);
    EXPECT_TRUE(raster.setBitmapShutterInfo(bitmapRecord(bits)));
    const CCsBitmapShutterInfo& info = raster.getBitmapShutterInfo();
    EXPECT_EQ(info.tag, 3U);
    EXPECT_EQ(info.originX, -4);
    EXPECT_EQ(info.originY, 5);
    EXPECT_EQ(info.rows, 6);
    EXPECT_EQ(info.columns, 7);
    EXPECT_EQ(info.data, bits);
    EXPECT_EQ(info.reserved16, 11);
    EXPECT_EQ(info.presentationValue, 13);
    EXPECT_EQ(info.group, 0x6000U);
    EXPECT_EQ(info.unused32, 0U);
    EXPECT_EQ(info.unused8a, 0);
    EXPECT_EQ(info.unused8b, 0);
    EXPECT_EQ(info.shutterValueAux, 0);
}

TEST_F(CCsRasterTest, ABitmapRecordWithoutTagAndDataIsIgnored) {
    unsigned char bits[1] = {};
    CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, true);
    CCsBitmapShutterInfo info = bitmapRecord(nullptr);
    info.tag = 0;
    EXPECT_TRUE(raster.setBitmapShutterInfo(info));
    EXPECT_FALSE(raster.isBitmapShutter());
    EXPECT_EQ(raster.getBitmapShutterInfo().rows, 0);

    info.data = bits;
    EXPECT_TRUE(raster.setBitmapShutterInfo(info));
    EXPECT_TRUE(raster.isBitmapShutter());

    CCsRaster other(5, 3, CCS_GREY12, 1.0, false, true);
    info.data = nullptr;
    info.tag = 1;
    EXPECT_TRUE(other.setBitmapShutterInfo(info));
    EXPECT_TRUE(other.isBitmapShutter());
}

TEST_F(CCsRasterTest, ThePresentationValueIsTheBitmapsWhileThatIsOn) {
    unsigned char bits[1] = {};
    CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, true);
    raster.setPresentationShutterValue(77);
    EXPECT_EQ(raster.getPresentationShutterValue(), 77);
    raster.setRectShutter({0, 0, 1, 1});
    EXPECT_EQ(raster.getPresentationShutterValue(), 77);
    raster.setBitmapShutterInfo(bitmapRecord(bits));
    EXPECT_EQ(raster.getPresentationShutterValue(), 13);
    raster.setPresentationShutterValue(78);
    EXPECT_EQ(raster.getPresentationShutterValue(), 13);
    raster.resetImage(4);
    EXPECT_EQ(raster.getPresentationShutterValue(), 78);
}

TEST_F(CCsRasterTest, ADisplayShutterRecordWithoutKindsChangesNothing) {
    unsigned char bits[8] = {};
    CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, true);
    decorate(raster, bits);
    CCsDisplayShutterInfo info;
    info.rectangular.rect = {9, 9, 9, 9};
    info.presentationValue = 99;
    EXPECT_TRUE(raster.setDisplayShutterInfo(info));
    expectDecorated(raster, bits);
}

TEST_F(CCsRasterTest, ADisplayShutterRecordReplacesAllShutters) {
    unsigned char bits[8] = {};
    for (int kinds = 1; kinds < 8; ++kinds) {
        CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, true);
        decorate(raster, bits);
        CCsDisplayShutterInfo info;
        info.rectangular.present = kinds & 1;
        info.rectangular.rect = {10, 11, 12, 13};
        info.circular.present = (kinds >> 1) & 1;
        info.circular.center = CCsPoint(500, 500);
        info.circular.radius = 3.0F;
        info.circular.bounds = {14, 15, 16, 17};
        info.polygonPresent = kinds >> 2;
        info.polygon = {CPoint(18, 19), CPoint(20, 21)};
        info.presentationValue = 99;
        EXPECT_TRUE(raster.setDisplayShutterInfo(info));
        EXPECT_FALSE(raster.isBitmapShutter());
        EXPECT_EQ(raster.isRectShutter(), (kinds & 1) != 0);
        EXPECT_EQ(raster.isCircShutter(), (kinds & 2) != 0);
        EXPECT_EQ(raster.isPolygonalShutter(), (kinds & 4) != 0);
        EXPECT_TRUE(same(raster.getRectShutterRect(), (kinds & 1) != 0 ? RECT{10, 11, 12, 13} : RECT{1, 2, 3, 4}));
        EXPECT_TRUE(same(raster.getCircShutterRect(), (kinds & 2) != 0 ? RECT{14, 15, 16, 17} : RECT{5, 6, 7, 8}));
        EXPECT_EQ(raster.getPolygonalShutterCoordinates().size(), (kinds & 4) != 0 ? 2U : 3U);
        EXPECT_EQ(raster.getBitmapShutterInfo().shutterValueAux, 0);
        EXPECT_EQ(raster.getBitmapShutterInfo().presentationValue, 0);
        EXPECT_EQ(raster.getBitmapShutterInfo().tag, 3U);
        EXPECT_EQ(raster.getPresentationShutterValue(), 0x4567);
    }
}

TEST_F(CCsRasterTest, GetDisplayShutterInfoBuildsTheRecord) {
    CCsRaster raster(50, 30, CCS_GREY12, 1.0, false, true);
    raster.setPresentationShutterValue(77);
    CCsDisplayShutterInfo info = raster.getDisplayShutterInfo();
    EXPECT_EQ(info.rectangular.present, 0);
    EXPECT_EQ(info.circular.present, 0);
    EXPECT_EQ(info.polygonPresent, 0);
    EXPECT_TRUE(info.polygon.empty());
    EXPECT_EQ(info.presentationValue, 77);

    raster.setRectShutter({1, 2, 3, 4});
    raster.setCircShutter({10, 12, 20, 18});
    raster.setPolygonalShutter({CPoint(1, 2), CPoint(3, 4)});
    info = raster.getDisplayShutterInfo();
    EXPECT_EQ(info.rectangular.present, 1);
    EXPECT_TRUE(same(info.rectangular.rect, {1, 2, 3, 4}));
    EXPECT_EQ(info.circular.present, 1);
    EXPECT_TRUE(same(info.circular.bounds, {10, 12, 20, 18}));
    EXPECT_EQ(info.circular.radius, 3.0F);
    EXPECT_EQ(info.circular.center.x, 13);
    EXPECT_EQ(info.circular.center.y, 15);
    EXPECT_EQ(info.polygonPresent, 1);
    EXPECT_EQ(info.polygon, (std::vector<CPoint>{CPoint(1, 2), CPoint(3, 4)}));
    for (const std::uint32_t unused : info.unused) EXPECT_EQ(unused, 0U);

    // The record makes the same shutters again.
    CCsRaster other(50, 30, CCS_GREY12, 1.0, false, true);
    other.setDisplayShutterInfo(info);
    EXPECT_TRUE(same(other.getRectShutterRect(), {1, 2, 3, 4}));
    EXPECT_TRUE(same(other.getCircShutterRect(), {10, 12, 20, 18}));
    EXPECT_EQ(other.getPolygonalShutterCoordinates(), info.polygon);
    EXPECT_EQ(other.getPresentationShutterValue(), 0);

    unsigned char bits[1] = {};
    raster.setBitmapShutterInfo(bitmapRecord(bits));
    EXPECT_EQ(raster.getDisplayShutterInfo().presentationValue, 13);
}

TEST_F(CCsRasterTest, ResetImageSwitchesKindsOff) {
    unsigned char bits[8] = {};
    for (const int kind : {1, 2, 3, 4, 0, 5, -1, -2, 1000}) {
        CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, true);
        decorate(raster, bits);
        raster.resetImage(kind);
        const bool all = kind < 1 || kind > 4;
        EXPECT_EQ(raster.isCircShutter(), !all && kind != 1) << kind;
        EXPECT_EQ(raster.isRectShutter(), !all && kind != 2) << kind;
        EXPECT_EQ(raster.isPolygonalShutter(), !all && kind != 3) << kind;
        EXPECT_EQ(raster.isBitmapShutter(), !all && kind != 4) << kind;
        EXPECT_EQ(raster.getPolygonalShutterCoordinates().size(), kind == 3 ? 0U : 3U) << kind;
        EXPECT_EQ(raster.getBitmapShutterInfo().shutterValueAux, 0) << kind;
        EXPECT_EQ(raster.getBitmapShutterInfo().presentationValue, kind == -1 ? 0 : 13) << kind;
        EXPECT_EQ(raster.getBitmapShutterInfo().tag, 3U) << kind;
        EXPECT_TRUE(same(raster.getRectShutterRect(), {1, 2, 3, 4})) << kind;
        EXPECT_EQ(raster.get60XXOverlayGroup().planes.size(), 2U) << kind;
    }
}

// ------------------------------------------------------------------------------------------------ transfer

CCs2dTrafo doubling() {
    // 100 x 100 onto 200 x 200: every coordinate doubles.
    CCs2dTrafo trafo;
    trafo.setSizes(100, 100, 200, 200, 1.0, 1.0, 0, 0);
    return trafo;
}

TEST_F(CCsRasterTest, SetShutterInfoTransfersTheKindsThatAreOn) {
    CCs2dTrafo trafo = doubling();
    for (int kinds = 0; kinds < 8; ++kinds) {
        CCsRaster source(100, 100, CCS_GREY12, 1.0, false, true);
        source.setPresentationShutterValue(77);
        if ((kinds & 1) != 0) source.setRectShutter({30, 40, 10, 20});
        if ((kinds & 2) != 0) source.setCircShutter({1, 2, 3, 4});
        if ((kinds & 4) != 0) source.setPolygonalShutter({CPoint(1, 2), CPoint(5, 3), CPoint(2, 9)});
        CCsRaster target(200, 200, CCS_GREY12, 1.0, false, true);
        unsigned char bits[8] = {};
        decorate(target, bits);
        target.setShutterInfo(source, &trafo);
        EXPECT_EQ(target.isRectShutter(), (kinds & 1) != 0);
        EXPECT_EQ(target.isCircShutter(), (kinds & 2) != 0);
        EXPECT_EQ(target.isPolygonalShutter(), (kinds & 4) != 0);
        EXPECT_FALSE(target.isBitmapShutter());
        EXPECT_TRUE(same(target.getRectShutterRect(), (kinds & 1) != 0 ? RECT{20, 40, 60, 80} : RECT{1, 2, 3, 4}));
        EXPECT_TRUE(same(target.getCircShutterRect(), (kinds & 2) != 0 ? RECT{2, 4, 6, 8} : RECT{5, 6, 7, 8}));
        if ((kinds & 4) != 0) {
            EXPECT_EQ(target.getPolygonalShutterCoordinates(),
                      (std::vector<CPoint>{CPoint(2, 4), CPoint(10, 6), CPoint(4, 18)}));
        }
        EXPECT_EQ(target.getBitmapShutterInfo().shutterValueAux, 0);
        EXPECT_EQ(target.getBitmapShutterInfo().presentationValue, 0);
        // Without any shutter in the source the value stays.
        EXPECT_EQ(target.getPresentationShutterValue(), kinds != 0 ? 77 : 0x4567);
    }
}

TEST_F(CCsRasterTest, SetShutterInfoWithoutTransformationKeepsImageCoordinates) {
    CCsRaster source(100, 100, CCS_GREY12, 1.0, false, true);
    source.setRectShutter({30, 40, 10, 20});
    source.setCircShutter({3, 4, 1, 2});
    source.setPolygonalShutter({CPoint(1, 2), CPoint(5, 3), CPoint(2, 9)});
    CCsRaster target(200, 200, CCS_GREY12, 1.0, false, true);
    target.setShutterInfo(source, nullptr);
    EXPECT_TRUE(same(target.getRectShutterRect(), {30, 40, 10, 20}));
    EXPECT_TRUE(same(target.getCircShutterRect(), {3, 4, 1, 2}));
    EXPECT_EQ(target.getPolygonalShutterCoordinates(), (std::vector<CPoint>{CPoint(1, 2), CPoint(5, 3), CPoint(2, 9)}));
}

TEST_F(CCsRasterTest, ABitmapShutterIsTransferredAloneAndUntransformed) {
    CCs2dTrafo trafo = doubling();
    unsigned char bits[8] = {};
    Raster source(100, 100, CCS_GREY12, 1.0, false, true);
    decorate(source, bits);
    Raster target(200, 200, CCS_GREY12, 1.0, false, true);
    target.setRectShutter({1, 1, 1, 1});
    target.setShutterInfo(source, &trafo);
    EXPECT_TRUE(target.isBitmapShutter());
    EXPECT_FALSE(target.isDisplayShutter());
    EXPECT_EQ(target.getBitmapShutterInfo().originX, -4);
    EXPECT_EQ(target.getBitmapShutterInfo().columns, 7);
    EXPECT_EQ(target.getBitmapShutterInfo().data, bits);
    EXPECT_EQ(target.getBitmapShutterInfo().group, 0x6000U);
    EXPECT_EQ(target.getPresentationShutterValue(), 13);
    EXPECT_EQ(target.plainPresentationValue(), 13);
    EXPECT_TRUE(target.getPolygonalShutterCoordinates().empty());
}

TEST_F(CCsRasterTest, ABitmapShutterWithoutTagIsNotTransferredButItsValueIs) {
    unsigned char bits[8] = {};
    Raster source(100, 100, CCS_GREY12, 1.0, false, true);
    decorate(source, bits);
    source.getBitmapShutterInfo().tag = 0;
    Raster target(200, 200, CCS_GREY12, 1.0, false, true);
    target.setShutterInfo(source, nullptr);
    EXPECT_FALSE(target.isShutter());
    EXPECT_EQ(target.getBitmapShutterInfo().data, nullptr);
    EXPECT_EQ(target.getPresentationShutterValue(), 13);
}

TEST_F(CCsRasterTest, SetShutterInfoReplacesPlanesOnlyWhenTheSourceHasSome) {
    unsigned char bits[8] = {};
    CCsRaster with(100, 100, CCS_GREY12, 1.0, false, true);
    decorate(with, bits);
    CCsRaster without(100, 100, CCS_GREY12, 1.0, false, true);
    CCsRaster target(200, 200, CCS_GREY12, 1.0, false, true);
    target.add60XXOverlayInfo({});
    target.setShutterInfo(without, nullptr);
    EXPECT_EQ(target.get60XXOverlayGroup().planes.size(), 1U);
    EXPECT_FALSE(target.isEmbeddedOverlayPresent());
    target.setShutterInfo(with, nullptr);
    ASSERT_EQ(target.get60XXOverlayGroup().planes.size(), 2U);
    EXPECT_EQ(target.get60XXOverlayGroup().planes[1].leading, 31U);
    EXPECT_TRUE(target.isEmbeddedOverlayPresent());
    target.setShutterInfo(without, nullptr);
    EXPECT_EQ(target.get60XXOverlayGroup().planes.size(), 2U);
    EXPECT_FALSE(target.isEmbeddedOverlayPresent());
}

TEST_F(CCsRasterTest, SetShutterInfoFromItselfSwitchesTheShuttersOff) {
    unsigned char bits[8] = {};
    CCsRaster raster(100, 100, CCS_GREY12, 1.0, false, true);
    decorate(raster, bits);
    raster.setShutterInfo(raster, nullptr);
    EXPECT_FALSE(raster.isShutter());
    EXPECT_EQ(raster.get60XXOverlayGroup().planes.size(), 2U);
}

// ------------------------------------------------------------------------------------------------ planes

TEST_F(CCsRasterTest, OverlayPlanesAreASequence) {
    CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, true);
    CCs60XXOverlay plane;
    plane.leading = 1;
    raster.add60XXOverlayInfo(plane);
    plane.leading = 2;
    raster.add60XXOverlayInfo(plane);
    EXPECT_TRUE(raster.isNonEmbeddedOverlayPresent());
    EXPECT_EQ(raster.get60XXOverlayGroup().planes[0].leading, 1U);
    EXPECT_EQ(raster.get60XXOverlayGroup().planes[1].leading, 2U);
    CCs60XXOverlayInfo group;
    plane.leading = 3;
    group.planes.push_back(plane);
    raster.set60XXOverlayGroup(group);
    group.planes.clear();
    ASSERT_EQ(raster.get60XXOverlayGroup().planes.size(), 1U);
    EXPECT_EQ(raster.get60XXOverlayGroup().planes[0].leading, 3U);
    raster.get60XXOverlayGroup().planes[0].leading = 4;
    EXPECT_EQ(raster.get60XXOverlayGroup().planes[0].leading, 4U);
    raster.reset60XXOverlayGroup();
    EXPECT_FALSE(raster.isNonEmbeddedOverlayPresent());
    raster.setEmbeddedOverlayStatus(true);
    EXPECT_TRUE(raster.isEmbeddedOverlayPresent());
    EXPECT_FALSE(raster.isNonEmbeddedOverlayPresent());
}

// ------------------------------------------------------------------------------------------------ graphics

/// Draws one filled rectangle in the colour it is given and remembers how it was called.
class RectangleOverlay : public CCsOverlay {
public:
    explicit RectangleOverlay(RECT area) : area_(area) {}

    using CCsOverlay::render;
    void render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode, int width,
                int height, int offsetX, int offsetY) override {
        ++calls;
        trafo = imageTrafo;
        hasOutputTrafo = outputTrafo != nullptr;
        lastColor = color;
        lastMode = mode;
        arguments = {width, height, offsetX, offsetY};
        font = GetCurrentObject(dc, OBJ_FONT);
        BITMAP record{};
        GetObjectW(GetCurrentObject(dc, OBJ_BITMAP), static_cast<int>(sizeof record), &record);
        bitmapWidth = record.bmWidth;
        bitmapHeight = record.bmHeight;
        const HBRUSH brush = CreateSolidBrush(static_cast<COLORREF>(color));
        FillRect(dc, &area_, brush);
        DeleteObject(brush);
    }
    void dspToImg(CCs2dTrafo* /*trafo*/) override {}
    void getSize(RECT& rect) override { rect = area_; }
    void setDicomPrintFlag(bool /*on*/) override {}

    int calls = 0;
    CCs2dTrafo* trafo = nullptr;
    bool hasOutputTrafo = false;
    unsigned long lastColor = 0;
    int lastMode = 0;
    std::vector<int> arguments;
    HGDIOBJ font = nullptr;
    int bitmapWidth = 0;
    int bitmapHeight = 0;

private:
    RECT area_;
};

/// Remembers the bitmap that it is given to merge.
class MergingMap : public IMap {
public:
    void setColorMapIndex(CCsColorMapT* /*colorMap*/) override {}
    int mapRaster(CCsRaster& /*src*/, CCsImage& /*dst*/, RECT /*segment*/, bool /*wholeImageAllowed*/,
                  unsigned char* /*pixelPadding*/, CCs2dTrafo* /*trafo*/) override {
        return 0;
    }
    void* getLut() override { return nullptr; }
    int setWindow(unsigned int /*centre*/, int /*width*/) override { return 0; }
    int mergeDIBtoData(CCsRaster& target, BITMAPINFO* dib, unsigned int givenDepth, int givenBits,
                       bool givenFlag) override {
        ++calls;
        raster = &target;
        depth = givenDepth;
        bits = givenBits;
        flag = givenFlag;
        const auto* const bytes = reinterpret_cast<const unsigned char*>(dib);
        const std::size_t size = 40 + static_cast<std::size_t>(target.getPitch() * target.getHeight() * 4);
        block.assign(bytes, bytes + size);
        if (throws) throw std::bad_alloc();
        return 0;
    }
    IMap* clone() override { return nullptr; }

    int calls = 0;
    CCsRaster* raster = nullptr;
    unsigned int depth = 0;
    int bits = 0;
    bool flag = false;
    bool throws = false;
    std::vector<unsigned char> block;
};

/// The words behind a bitmap's header.
std::uint32_t wordAt(const unsigned char* block, std::int64_t index) {
    std::uint32_t word = 0;
    std::memcpy(&word, block + 40 + index * 4, sizeof word);
    return word;
}

void expectHeader(const unsigned char* block, int width, int height) {
    BITMAPINFOHEADER header{};
    static_assert(sizeof header == 40);
    std::memcpy(&header, block, sizeof header);
    EXPECT_EQ(header.biSize, 40U);
    EXPECT_EQ(header.biWidth, width);
    EXPECT_EQ(header.biHeight, -height);
    EXPECT_EQ(header.biPlanes, 1);
    EXPECT_EQ(header.biBitCount, 32);
    EXPECT_EQ(header.biCompression, 0U);
    EXPECT_EQ(header.biSizeImage, 0U);
    EXPECT_EQ(header.biXPelsPerMeter, 3000);
    EXPECT_EQ(header.biYPelsPerMeter, 3000);
    EXPECT_EQ(header.biClrUsed, 0U);
    EXPECT_EQ(header.biClrImportant, 0U);
}

void expectRectangle(const unsigned char* block, int pitch, int height, const RECT& area, std::uint32_t pixel) {
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < pitch; ++x) {
            const bool inside = x >= area.left && x < area.right && y >= area.top && y < area.bottom;
            EXPECT_EQ(wordAt(block, y * pitch + x), inside ? pixel : 0U) << x << ' ' << y;
        }
    }
}

using Block = std::unique_ptr<unsigned char[]>;
Block adopt(BITMAPINFO* bitmap) { return Block(reinterpret_cast<unsigned char*>(bitmap)); }

class CCsRasterGraphics : public CCsRasterTest {
protected:
    void SetUp() override {
        // Whatever GDI makes once for good is made before the count.
        CCsRaster raster(2, 2, CCS_GREY12, 1.0, false, true);
        BITMAPINFO* bitmap = nullptr;
        raster.MakeDIBGrey12_(bitmap, nullptr, nullptr, nullptr);
        adopt(bitmap);
        objects_ = zoltest::gdiObjectCount();
    }
    void TearDown() override {
        EXPECT_EQ(zoltest::gdiObjectCount(), objects_);
        CCsRasterTest::TearDown();
    }

private:
    unsigned int objects_ = 0;
};

TEST_F(CCsRasterGraphics, TheBitmapHasTheRastersPitchAndStartsBlack) {
    const ReportCapture capture;
    for (const TypeRow& row : typeRows) {
        CCsRaster raster(5, 3, row.type, 1.0, false, true);
        const int pitch = raster.getPitch();
        for (const bool colour : {false, true}) {
            BITMAPINFO* bitmap = nullptr;
            EXPECT_EQ(colour ? raster.MakeDIBRgb8_(bitmap, nullptr, nullptr, nullptr, 0x123456)
                             : raster.MakeDIBGrey12_(bitmap, nullptr, nullptr, nullptr),
                      255);
            const Block block = adopt(bitmap);
            ASSERT_NE(block, nullptr);
            expectHeader(block.get(), pitch, 3);
            expectRectangle(block.get(), pitch, 3, {0, 0, 0, 0}, 0);
        }
        EXPECT_EQ(raster.GetMemBuffer(), nullptr);
    }
    EXPECT_EQ(ReportCapture::take(), Reports{});
}

TEST_F(CCsRasterGraphics, TheOverlayIsRenderedInMode4) {
    CCs2dTrafo trafo;
    CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, false);
    for (const bool colour : {false, true}) {
        RectangleOverlay overlay({1, 1, 7, 2});
        BITMAPINFO* bitmap = nullptr;
        EXPECT_EQ(colour ? raster.MakeDIBRgb8_(bitmap, &overlay, &trafo, nullptr, 0x123456)
                         : raster.MakeDIBGrey12_(bitmap, &overlay, &trafo, nullptr),
                  255);
        const Block block = adopt(bitmap);
        EXPECT_EQ(overlay.calls, 1);
        EXPECT_EQ(overlay.trafo, &trafo);
        EXPECT_FALSE(overlay.hasOutputTrafo);
        EXPECT_EQ(overlay.lastColor, colour ? 0x123456U : 0xFFFFU);
        EXPECT_EQ(overlay.lastMode, 4);
        EXPECT_EQ(overlay.arguments, (std::vector<int>{0, 0, 0, 0}));
        EXPECT_EQ(overlay.bitmapWidth, 8);
        EXPECT_EQ(overlay.bitmapHeight, 3);
        // Colour references are 0x00BBGGRR, pixels 0x00RRGGBB; the line's padding is drawn on too.
        expectRectangle(block.get(), 8, 3, {1, 1, 7, 2}, colour ? 0x00563412U : 0x00FFFF00U);
    }
}

TEST_F(CCsRasterGraphics, TheFontIsSelectedUnlessItIsNull) {
    CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, true);
    RectangleOverlay overlay({0, 0, 1, 1});
    BITMAPINFO* bitmap = nullptr;
    HFONT const font = static_cast<HFONT>(GetStockObject(ANSI_FIXED_FONT));
    EXPECT_EQ(raster.MakeDIBGrey12_(bitmap, &overlay, nullptr, font), 255);
    adopt(bitmap);
    EXPECT_EQ(overlay.font, static_cast<HGDIOBJ>(font));
    EXPECT_EQ(overlay.trafo, nullptr);
    EXPECT_EQ(raster.MakeDIBRgb8_(bitmap, &overlay, nullptr, font, 0), 255);
    adopt(bitmap);
    EXPECT_EQ(overlay.font, static_cast<HGDIOBJ>(font));
    EXPECT_EQ(raster.MakeDIBGrey12_(bitmap, &overlay, nullptr, nullptr), 255);
    adopt(bitmap);
    EXPECT_NE(overlay.font, static_cast<HGDIOBJ>(font));
    EXPECT_NE(overlay.font, nullptr);
}

TEST_F(CCsRasterGraphics, ExhaustedMemoryIsReported) {
    if (!zoltest::canFailNothrowNew()) GTEST_SKIP() << "the library's operator new[] cannot be reached here";
    const ReportCapture capture;
    CCsRaster raster(50, 30, CCS_GREY12, 1.0, false, true);
    RectangleOverlay overlay({0, 0, 1, 1});
    MergingMap map;
    const auto grey = errorReport(L"Memory allocation failed", 0, module, 496);
    const auto colour = errorReport(L"Memory allocation failed", 0, module, 577);
    BITMAPINFO* bitmap = nullptr;
    const auto bytes = static_cast<std::size_t>(raster.getPitch() * 30 * 4 + 40);
    {
        const zoltest::NothrowNewLimit limit(bytes);
        EXPECT_EQ(raster.MakeDIBGrey12_(bitmap, &overlay, nullptr, nullptr), 1);
        EXPECT_EQ(bitmap, nullptr);
        EXPECT_EQ(raster.MakeDIBRgb8_(bitmap, &overlay, nullptr, nullptr, 0), 1);
        EXPECT_EQ(bitmap, nullptr);
        EXPECT_EQ(raster.burnInOverlay(map, &overlay, 0, nullptr, nullptr, 0, false), 1);
        EXPECT_EQ(raster.burnInOverlay(map, &overlay, nullptr, nullptr, 0UL), 1);
    }
    EXPECT_EQ(ReportCapture::take(), (Reports{grey, colour, grey, colour}));
    EXPECT_EQ(overlay.calls, 0);
    EXPECT_EQ(map.calls, 0);
    {
        const zoltest::NothrowNewLimit limit(bytes + 1);
        EXPECT_EQ(raster.MakeDIBGrey12_(bitmap, &overlay, nullptr, nullptr), 255);
        adopt(bitmap);
    }
}

TEST_F(CCsRasterGraphics, BitmapsBeyond32BitsAreExhaustedMemory) {
    const ReportCapture capture;
    constexpr int most = std::numeric_limits<int>::max();
    MergingMap map;
    for (const auto& [width, height] :
         {std::pair(40000, 40000), std::pair(most, most), std::pair(8, -8), std::pair(32768, 32768)}) {
        CCsRaster raster(width, height, CCS_RGB12, 1.0, false, true);
        BITMAPINFO* bitmap = nullptr;
        EXPECT_EQ(raster.MakeDIBGrey12_(bitmap, nullptr, nullptr, nullptr), 1);
        EXPECT_EQ(raster.burnInOverlay(map, nullptr, nullptr, nullptr, 0UL), 1);
        EXPECT_EQ(bitmap, nullptr);
        EXPECT_EQ(ReportCapture::take(), (Reports{errorReport(L"Memory allocation failed", 0, module, 496),
                                                  errorReport(L"Memory allocation failed", 0, module, 577)}));
    }
    EXPECT_EQ(map.calls, 0);
}

TEST_F(CCsRasterGraphics, ABitmapThatGdiRefusesIsReported) {
    const ReportCapture capture;
    MergingMap map;
    const auto grey = errorReport(L"CreateDIBSection failed", 0, module, 515);
    const auto colour = errorReport(L"CreateDIBSection failed", 0, module, 596);
    for (const auto& [width, height] : {std::pair(0, 3), std::pair(5, 0), std::pair(0, 0), std::pair(-1, -1),
                                        std::pair(0, std::numeric_limits<int>::min())}) {
        CCsRaster raster(width, height, CCS_RGB12, 1.0, false, true);
        RectangleOverlay overlay({0, 0, 1, 1});
        BITMAPINFO* bitmap = nullptr;
        EXPECT_EQ(raster.MakeDIBGrey12_(bitmap, &overlay, nullptr, nullptr), 0);
        EXPECT_EQ(bitmap, nullptr);
        EXPECT_EQ(raster.MakeDIBRgb8_(bitmap, &overlay, nullptr, nullptr, 0), 0);
        EXPECT_EQ(bitmap, nullptr);
        EXPECT_EQ(raster.burnInOverlay(map, &overlay, 0, nullptr, nullptr, 0, false), 0);
        EXPECT_EQ(raster.burnInOverlay(map, &overlay, nullptr, nullptr, 0UL), 0);
        EXPECT_EQ(ReportCapture::take(), (Reports{grey, colour, grey, colour})) << width << ' ' << height;
        EXPECT_EQ(overlay.calls, 0);
    }
    EXPECT_EQ(map.calls, 0);
}

TEST_F(CCsRasterGraphics, BurningInHandsTheGreyBitmapToTheMap) {
    CCs2dTrafo trafo;
    for (const bool flag : {false, true}) {
        CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, false);
        RectangleOverlay overlay({1, 1, 4, 3});
        MergingMap map;
        EXPECT_EQ(raster.burnInOverlay(map, &overlay, 8, &trafo, nullptr, 11, flag), 255);
        EXPECT_EQ(map.calls, 1);
        EXPECT_EQ(map.raster, &raster);
        EXPECT_EQ(map.depth, 8U);
        EXPECT_EQ(map.bits, 11);
        EXPECT_EQ(map.flag, flag);
        EXPECT_EQ(overlay.trafo, &trafo);
        EXPECT_EQ(overlay.lastColor, 0xFFFFU);
        expectHeader(map.block.data(), 8, 3);
        expectRectangle(map.block.data(), 8, 3, {1, 1, 4, 3}, 0x00FFFF00U);
    }
}

TEST_F(CCsRasterGraphics, BurningInHandsTheColourBitmapToTheMap) {
    CCs2dTrafo trafo;
    CCsRaster raster(5, 3, CCS_RGB8, 1.0, false, false);
    RectangleOverlay overlay({1, 1, 4, 3});
    MergingMap map;
    map.depth = 77;
    map.bits = 77;
    map.flag = true;
    EXPECT_EQ(raster.burnInOverlay(map, &overlay, &trafo, nullptr, 0x332211UL), 255);
    EXPECT_EQ(map.calls, 1);
    EXPECT_EQ(map.depth, 0U);
    EXPECT_EQ(map.bits, 0);
    EXPECT_FALSE(map.flag);
    EXPECT_EQ(overlay.lastColor, 0x332211U);
    expectHeader(map.block.data(), 6, 3);
    expectRectangle(map.block.data(), 6, 3, {1, 1, 4, 3}, 0x00112233U);
}

TEST_F(CCsRasterGraphics, AMapThatThrowsLeaksNothing) {
    CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, false);
    MergingMap map;
    map.throws = true;
    EXPECT_THROW(raster.burnInOverlay(map, nullptr, 0, nullptr, nullptr, 0, false), std::bad_alloc);
    EXPECT_THROW(raster.burnInOverlay(map, nullptr, nullptr, nullptr, 0UL), std::bad_alloc);
}

TEST_F(CCsRasterGraphics, GraphicsBecomeStoredValues) {
    const std::unique_ptr<IMap> map(MapFactory::CreateMap(MapFactory::Grey12));
    CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, false);
    auto* const pixels = reinterpret_cast<std::uint16_t*>(raster.getOrigin());
    for (int i = 0; i < 8 * 3; ++i) pixels[i] = static_cast<std::uint16_t>(1000 + i);
    RectangleOverlay overlay({1, 1, 8, 3});
    EXPECT_EQ(raster.burnInOverlay(*map, &overlay, 12, nullptr, nullptr, 11, false), 255);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 8; ++x) {
            const bool inside = x >= 1 && x < 5 && y >= 1;  // what lies on the lines' padding is not taken over
            EXPECT_EQ(pixels[y * 8 + x], inside ? 4095 : 1000 + y * 8 + x) << x << ' ' << y;
        }
    }
    raster.unlock();
}

}  // namespace
