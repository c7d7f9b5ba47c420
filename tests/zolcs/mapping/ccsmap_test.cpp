#include "zolcs/ccsmap.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <type_traits>
#include <vector>

#include "support/map_support.h"
#include "support/report_capture.h"
#include "support/test_data.h"
#include "zolcs/ccsraster.h"

namespace {

using zoltest::errorReport;
using zoltest::Report;
using zoltest::ReportCapture;

constexpr const wchar_t* module = L"source\\zolcs\\ccsmap";

static_assert(std::has_virtual_destructor_v<IMap>);
static_assert(std::is_abstract_v<IMap> && std::is_abstract_v<IGreyMap> && std::is_abstract_v<IColorMap>);
static_assert(sizeof(IMap) == sizeof(void*), "an interface carries no data");
static_assert(sizeof(IGreyMap) == sizeof(void*));
static_assert(sizeof(IColorMap) == sizeof(void*));
static_assert(!std::is_default_constructible_v<MapFactory>, "the factory is never instantiated");
static_assert(MapFactory::Grey12 == 0 && MapFactory::Grey16 == 1 && MapFactory::Rgb12 == 2 && MapFactory::Rgb8 == 3);

std::unique_ptr<IMap> make(int type) {
    return std::unique_ptr<IMap>(MapFactory::CreateMap(static_cast<MapFactory::MapType>(type)));
}

// ---- factory ------------------------------------------------------------------------------------------------------

TEST(MapFactory, CreatesTheGreyMaps) {
    for (const int type : {0, 1}) {
        const auto map = make(type);
        ASSERT_NE(map, nullptr) << type;
        EXPECT_NE(dynamic_cast<IGreyMap*>(map.get()), nullptr) << type;
        EXPECT_EQ(dynamic_cast<IColorMap*>(map.get()), nullptr) << type;
    }
}

TEST(MapFactory, CreatesTheColourMaps) {
    for (const int type : {2, 3}) {
        const auto map = make(type);
        ASSERT_NE(map, nullptr) << type;
        EXPECT_NE(dynamic_cast<IColorMap*>(map.get()), nullptr) << type;
        EXPECT_EQ(dynamic_cast<IGreyMap*>(map.get()), nullptr) << type;
    }
}

TEST(MapFactory, UnknownTypesGiveNullAndReportNothing) {
    const ReportCapture capture;
    for (const int type : {4, 5, 100, std::numeric_limits<int>::max(), -1, -2, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(make(type), nullptr) << type;
    }
    EXPECT_TRUE(ReportCapture::take().empty());
}

// ---- order of the virtual operations ------------------------------------------------------------------------------

#if defined(__GNUC__)

/// Position in the table of virtual operations: a pointer to one holds one more than its offset there.
template <typename Member>
std::ptrdiff_t slotOf(Member member) {
    std::ptrdiff_t words[2] = {};
    static_assert(sizeof(member) == sizeof words);
    std::memcpy(words, &member, sizeof words);
    return (words[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

TEST(IMap, SlotOrder) {
    EXPECT_EQ(slotOf(&IMap::setColorMapIndex), 0);
    EXPECT_EQ(slotOf(&IMap::mapRaster), 1);
    EXPECT_EQ(slotOf(&IMap::getLut), 2);
    EXPECT_EQ(slotOf(&IMap::setWindow), 3);
    EXPECT_EQ(slotOf(&IMap::mergeDIBtoData), 4);
    EXPECT_EQ(slotOf(&IMap::clone), 5);
}

// This compiler's destructor takes two places (6 and 7), so that all that follow lie one further than their number.
TEST(IGreyMap, SlotOrder) {
    EXPECT_EQ(slotOf(&IGreyMap::mergeDIBtoData), 4);
    EXPECT_EQ(slotOf(&IGreyMap::allocateLut), 7 + 1);
    EXPECT_EQ(slotOf(&IGreyMap::setNonLinearLut), 8 + 1);
    EXPECT_EQ(slotOf(&IGreyMap::setIndexRemap), 9 + 1);
    EXPECT_EQ(slotOf(&IGreyMap::setPresentationLut), 10 + 1);
    EXPECT_EQ(slotOf(&IGreyMap::getWindowedNonLinearLut), 11 + 1);
    EXPECT_EQ(slotOf(&IGreyMap::setEnabled), 12 + 1);
    EXPECT_EQ(slotOf(&IGreyMap::isEnabled), 13 + 1);
    EXPECT_EQ(slotOf(&IGreyMap::clearNonLinearLut), 14 + 1);
    EXPECT_EQ(slotOf(&IGreyMap::copyLut), 15 + 1);
    EXPECT_EQ(slotOf(&IGreyMap::enableSigmoid), 16 + 1);
    EXPECT_EQ(slotOf(&IGreyMap::setSigmoidBits), 17 + 1);
    EXPECT_EQ(slotOf(&IGreyMap::setExactNonLinearWindow), 18 + 1);
    EXPECT_EQ(slotOf(&IGreyMap::getNonLinearShift), 19 + 1);
    EXPECT_EQ(slotOf(&IGreyMap::applyPresentationLut), 20 + 1);
    EXPECT_EQ(slotOf(&IGreyMap::hasPresentationLut), 21 + 1);
    EXPECT_EQ(slotOf(&IGreyMap::setOverlayColors), 22 + 1);
    EXPECT_EQ(slotOf(&IGreyMap::getOverlayColors), 23 + 1);
    EXPECT_EQ(slotOf(&IGreyMap::releaseLut), 24 + 1);
    EXPECT_EQ(slotOf(&IGreyMap::setMapFlags), 25 + 1);
    EXPECT_EQ(slotOf(&IGreyMap::getMapFlags), 26 + 1);
}

TEST(IColorMap, SlotOrder) {
    EXPECT_EQ(slotOf(&IColorMap::mapRasterSeparate), 7 + 1);
    EXPECT_EQ(slotOf(&IColorMap::reserved1), 8 + 1);
    EXPECT_EQ(slotOf(&IColorMap::reserved2), 9 + 1);
    EXPECT_EQ(slotOf(&IColorMap::reserved3), 10 + 1);
}

#endif

// ---- burning bitmaps in -------------------------------------------------------------------------------------------

/// A 32-bit bitmap as the raster renders it: a 40-byte header and the pixels.
class Bitmap {
public:
    Bitmap(int width, int height, const std::vector<std::uint32_t>& pixels) : words_(10 + pixels.size()) {
        BITMAPINFOHEADER header{};
        header.biSize = 40;
        header.biWidth = width;
        header.biHeight = height;
        header.biPlanes = 1;
        header.biBitCount = 32;
        static_assert(sizeof header == 40);
        std::memcpy(words_.data(), &header, sizeof header);
        std::copy(pixels.begin(), pixels.end(), words_.begin() + 10);
    }
    BITMAPINFO* get() { return reinterpret_cast<BITMAPINFO*>(words_.data()); }

private:
    std::vector<std::uint32_t> words_;
};

CCsRaster grey(int width, int height, const std::vector<std::uint16_t>& values, int type = CCS_GREY12) {
    CCsRaster raster(width, height, type, 1.0, false, false);
    auto* line = reinterpret_cast<std::uint16_t*>(raster.getOrigin());
    for (int y = 0; y < height; ++y, line += raster.getPitch()) {
        std::copy_n(values.begin() + y * width, width, line);
    }
    raster.unlock();
    return raster;
}

std::vector<std::uint16_t> valuesOf(CCsRaster& raster) {
    std::vector<std::uint16_t> values;
    const auto* line = reinterpret_cast<const std::uint16_t*>(raster.getOrigin());
    for (int y = 0; y < raster.getHeight(); ++y, line += raster.getPitch()) {
        values.insert(values.end(), line, line + raster.getWidth());
    }
    raster.unlock();
    return values;
}

class MergeDib : public ::testing::Test {
protected:
    /// Merges marks into one row of stored values.
    std::vector<std::uint16_t> merged(const std::vector<std::uint32_t>& marks, const std::vector<std::uint16_t>& stored,
                                      unsigned depth, int bits, bool blankToMax, int type = CCS_GREY12) {
        const auto width = static_cast<int>(stored.size());
        CCsRaster raster = grey(width, 1, stored, type);
        Bitmap bitmap(width, -1, marks);
        EXPECT_EQ(map_->mergeDIBtoData(raster, bitmap.get(), depth, bits, blankToMax), 255);
        EXPECT_EQ(raster.GetMemBuffer()->getLockCount(), lockCountOf(grey(1, 1, {0})));
        return valuesOf(raster);
    }
    static int lockCountOf(const CCsRaster& raster) { return raster.GetMemBuffer()->getLockCount(); }

    const ReportCapture capture_;
    std::unique_ptr<IMap> map_ = make(0);
};

// Marks, in the order in which they are tested: blank, (value beyond the mask), ink, anything else, nothing.
const std::vector<std::uint32_t> allMarks = {0x00010101, 0x00FFFF00, 0x00123456, 0x00000001, 0xFF000000, 0};

TEST_F(MergeDib, InkIsTheMaskAndBlankIsZero) {
    EXPECT_EQ(merged(allMarks, {7, 7, 7, 7, 7, 7}, 12, 11, false),
              (std::vector<std::uint16_t>{0, 4095, 2047, 2047, 2047, 7}));
}

TEST_F(MergeDib, BlankToMaximumExchangesThem) {
    EXPECT_EQ(merged(allMarks, {7, 7, 7, 7, 7, 7}, 12, 11, true), (std::vector<std::uint16_t>{4095, 0, 0, 0, 0, 7}));
}

TEST_F(MergeDib, DepthEightHasItsOwnMaximum) {
    EXPECT_EQ(merged(allMarks, {7, 7, 7, 7, 7, 7}, 8, 11, false),
              (std::vector<std::uint16_t>{0, 255, 127, 127, 127, 7}));
    EXPECT_EQ(merged(allMarks, {7, 7, 7, 7, 7, 7}, 8, 11, true), (std::vector<std::uint16_t>{255, 0, 0, 0, 0, 7}));
    EXPECT_EQ(merged(allMarks, {7, 7, 7, 7, 7, 7}, 8, 0, false),
              (std::vector<std::uint16_t>{0, 255, 127, 127, 127, 7}));
}

TEST_F(MergeDib, ValuesBeyondTheMaskBecomeInkUnlessBlanked) {
    const std::vector<std::uint16_t> stored(6, 0x1001);
    EXPECT_EQ(merged(allMarks, stored, 12, 11, false), (std::vector<std::uint16_t>{0, 4095, 4095, 4095, 4095, 4095}));
    EXPECT_EQ(merged(allMarks, stored, 12, 11, true), (std::vector<std::uint16_t>{4095, 0, 0, 0, 0, 0}));
}

TEST_F(MergeDib, WithoutBitsThereIsNoMaskAndNoMaximum) {
    EXPECT_EQ(merged(allMarks, {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF}, 12, 0, false),
              (std::vector<std::uint16_t>{0, 0, 0, 0, 0, 0xFFFF}));
}

TEST_F(MergeDib, MaskIsCutTo16Bits) {
    for (const int bits : {15, 16, 30, 31, 32, std::numeric_limits<int>::max()}) {
        EXPECT_EQ(merged({0x00FFFF00, 0, 1}, {1, 0xFFFF, 1}, 16, bits, false, CCS_GREY16),
                  (std::vector<std::uint16_t>{0xFFFF, 0xFFFF, 0x7FFF}))
            << bits;
    }
    EXPECT_EQ(merged({0x00FFFF00, 0}, {1, 0}, 16, 1, false), (std::vector<std::uint16_t>{3, 0}));
}

TEST_F(MergeDib, NegativeBitsMaskEverything) {
    for (const int bits : {-1, -40, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(merged({0, 0, 0x00FFFF00}, {5, 0, 0}, 12, bits, false), (std::vector<std::uint16_t>{0, 0, 0}))
            << bits;
    }
}

TEST_F(MergeDib, WalksRowsByTheBitmapsOwnLength) {
    CCsRaster raster = grey(5, 3, std::vector<std::uint16_t>(15, 9));
    ASSERT_EQ(raster.getPitch(), 8);
    std::vector<std::uint32_t> marks(8 * 3, 0);
    marks[0] = 0x00FFFF00;
    marks[8 + 4] = 0x00FFFF00;
    marks[8 + 5] = 0x00FFFF00;  // beyond the raster's width
    marks[16 + 1] = 0x00010101;
    Bitmap bitmap(8, -3, marks);
    EXPECT_EQ(map_->mergeDIBtoData(raster, bitmap.get(), 12, 11, false), 255);
    EXPECT_EQ(valuesOf(raster), (std::vector<std::uint16_t>{4095, 9, 9, 9, 9, 9, 9, 9, 9, 4095, 9, 0, 9, 9, 9}));
    const auto* origin = reinterpret_cast<const std::uint16_t*>(raster.getOrigin());
    EXPECT_EQ(origin[8 + 5], 0) << "the line's padding";
    raster.unlock();
}

TEST_F(MergeDib, NeverReadsBeyondTheBitmap) {
    CCsRaster raster = grey(4, 4, std::vector<std::uint16_t>(16, 9));
    Bitmap narrow(2, -3, std::vector<std::uint32_t>(6, 0x00FFFF00));
    EXPECT_EQ(map_->mergeDIBtoData(raster, narrow.get(), 8, 11, false), 255);
    EXPECT_EQ(valuesOf(raster),
              (std::vector<std::uint16_t>{255, 255, 9, 9, 255, 255, 9, 9, 255, 255, 9, 9, 9, 9, 9, 9}));
    for (const auto& [width, height] : {std::pair{0, -4}, {4, 0}, {-4, -4}, {std::numeric_limits<int>::min(), 4}}) {
        Bitmap none(width, height, {});
        CCsRaster untouched = grey(4, 4, std::vector<std::uint16_t>(16, 9));
        EXPECT_EQ(map_->mergeDIBtoData(untouched, none.get(), 8, 11, false), 255);
        EXPECT_EQ(valuesOf(untouched), std::vector<std::uint16_t>(16, 9));
    }
}

// A positive height is a row count all the same: rows are taken in the order in which they lie.
TEST_F(MergeDib, DoesNotFlip) {
    CCsRaster raster = grey(1, 2, {9, 9});
    Bitmap bitmap(1, 2, {0x00FFFF00, 0});
    EXPECT_EQ(map_->mergeDIBtoData(raster, bitmap.get(), 8, 11, false), 255);
    EXPECT_EQ(valuesOf(raster), (std::vector<std::uint16_t>{255, 9}));
}

TEST_F(MergeDib, RefusesRastersOfAnotherPixelSize) {
    for (const int type : {CCS_INDEX8, CCS_GREY8, CCS_RGB12, CCS_RGB8, CCS_RGB24}) {
        CCsRaster raster(2, 1, type, 1.0, false, false);
        const int bytes = 2 * raster.getElemSize();
        std::memset(raster.getOrigin(), 0x5A, static_cast<std::size_t>(bytes));
        raster.unlock();
        Bitmap bitmap(2, -1, {0x00FFFF00, 0x00FFFF00});
        EXPECT_EQ(map_->mergeDIBtoData(raster, bitmap.get(), 8, 11, false), 0);
        EXPECT_EQ(ReportCapture::take(), std::vector<Report>{errorReport(
                                             L"Raster type must be CCS_GREY12 or CCS_GREY16, is", type, module, 112)});
        const unsigned char* origin = raster.getOrigin();
        for (int i = 0; i < bytes; ++i) EXPECT_EQ(origin[i], 0x5A);
        raster.unlock();
    }
}

TEST_F(MergeDib, RefusesANullBitmap) {
    CCsRaster raster = grey(1, 1, {9});
    EXPECT_EQ(map_->mergeDIBtoData(raster, nullptr, 8, 11, false), 0);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{errorReport(L"No bitmap to merge", 0, module, 117)});
    EXPECT_EQ(valuesOf(raster), std::vector<std::uint16_t>{9});
}

TEST_F(MergeDib, RefusesARasterWithoutMemory) {
    CCsRaster raster(nullptr, 1, 1, CCS_GREY12, 1.0);
    ZolMemMappedManager::getIntance()->setLimit(0);
    Bitmap bitmap(1, -1, {0x00FFFF00});
    EXPECT_EQ(map_->mergeDIBtoData(raster, bitmap.get(), 8, 11, false), 0);
    ZolMemMappedManager::getIntance()->setLimit(static_cast<std::size_t>(-1));
    const auto reports = ReportCapture::take();
    ASSERT_FALSE(reports.empty());
    EXPECT_EQ(reports.back(), errorReport(L"Raster to merge into has no memory", 0, module, 122));
}

}  // namespace
