// Bitmaps of overlays for rasters, and burning in.
#include "zolcs/ccsraster.h"

#include "zolcs/ccsraster_fixture.h"

namespace {

using namespace zoltest::raster;
using zoltest::errorReport;
using zoltest::ReportCapture;

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
