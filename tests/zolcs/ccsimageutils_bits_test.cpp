// Filling what shutters hide, bits of planes and shutters, font heights.
#include "zolcs/ccsimageutils.h"

#include "zolcs/ccsimageutils_fixture.h"

namespace {

using namespace zoltest::imageutils;
using namespace CCsImageUtils;

// ------------------------------------------------------------------------------------------------ shutter fill

/// A display with a pitch wider than its width, every byte 0xEE.
struct Display {
    Display(int width, int height) : image(width, height, CCS_RGB8, 1.0, false, false) {
        unsigned char* const data = image.getOrigin();
        std::fill(data - guard(), data + image.GetMemBuffer()->getSize() + guard(), static_cast<unsigned char>(0xEE));
    }
    ~Display() { image.unlock(); }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    [[nodiscard]] std::size_t guard() const { return static_cast<std::size_t>(image.getPitch()) * 4 + 4; }
    [[nodiscard]] std::size_t pixels() const {
        return static_cast<std::size_t>(image.getPitch()) * static_cast<std::size_t>(image.getHeight());
    }
    unsigned char* data() { return image.GetMemBuffer()->lock(); }

    void fill(const CCsRaster& source, CCs2dTrafo* trafo) {
        fillDisplayedRasterWithShutterPresentationValue(source, image, data(), trafo, rect(1, 1, 2, 2));
        // Nothing beyond the lines is touched.
        EXPECT_EQ(std::count(data() - guard(), data(), 0xEE), static_cast<std::ptrdiff_t>(guard()));
        const unsigned char* const end = data() + pixels() * 4;
        EXPECT_EQ(std::count(end, end + guard(), 0xEE), static_cast<std::ptrdiff_t>(guard()));
    }

    CCsRaster image;
};

CCsRaster grey(int value) {
    CCsRaster source(100, 100, CCS_GREY12, 1.0, false, true);
    source.setRectShutter(rect(10, 10, 20, 20));
    source.setPresentationShutterValue(static_cast<unsigned short>(value));
    return source;
}

TEST(CCsImageUtils, ShutterFillOfValue0IsAllZero) {
    for (const int value : {0, 1, 255}) {  // below 256 nothing is left of a 16-bit value in 8 bits
        for (const bool withTrafo : {false, true}) {
            CCs2dTrafo trafo = fit(51, 40);
            Display display(51, 40);
            display.fill(grey(value), withTrafo ? &trafo : nullptr);
            EXPECT_EQ(std::count(display.data(), display.data() + display.pixels() * 4, 0),
                      static_cast<std::ptrdiff_t>(display.pixels() * 4));
        }
    }
}

TEST(CCsImageUtils, ShutterFillWithABitmapShutterIsAllZero) {
    CCsRaster source = grey(0x8000);
    CCsBitmapShutterInfo info;
    info.tag = 1;
    info.presentationValue = 0x7000;
    source.setBitmapShutterInfo(info);
    Display display(51, 40);
    display.fill(source, nullptr);
    EXPECT_EQ(std::count(display.data(), display.data() + display.pixels() * 4, 0),
              static_cast<std::ptrdiff_t>(display.pixels() * 4));
}

TEST(CCsImageUtils, ShutterFillWithoutTransformationKeepsTheFourthByte) {
    for (const int value : {0x0100, 0x80FF, 0xFFFF}) {
        Display display(51, 40);
        display.fill(grey(value), nullptr);
        for (std::size_t i = 0; i < display.pixels(); ++i) {
            const unsigned char* const pixel = display.data() + i * 4;
            ASSERT_EQ(pixel[0], value >> 8);
            ASSERT_EQ(pixel[1], value >> 8);
            ASSERT_EQ(pixel[2], value >> 8);
            ASSERT_EQ(pixel[3], 0xEE);
        }
    }
}

void expectFilled(Display& display, const RECT& area, unsigned char value) {
    for (int y = 0; y < display.image.getHeight(); ++y) {
        for (int x = 0; x < display.image.getPitch(); ++x) {
            const unsigned char* const pixel = display.data() + (y * display.image.getPitch() + x) * 4;
            const bool inside = x >= area.left && x < area.right && y >= area.top && y < area.bottom;
            ASSERT_EQ(pixel[0], inside ? value : 0) << x << ' ' << y;
            ASSERT_EQ(pixel[1], inside ? value : 0) << x << ' ' << y;
            ASSERT_EQ(pixel[2], inside ? value : 0) << x << ' ' << y;
            ASSERT_EQ(pixel[3], 0) << x << ' ' << y;
        }
    }
}

TEST(CCsImageUtils, ShutterFillCoversTheImageButItsLastColumnAndRow) {
    {
        // 100 x 100 at scale 0.5 in the middle of 151 x 50: columns 50.5 .. 100.5.
        CCs2dTrafo trafo = fit(151, 50);
        Display display(151, 50);
        display.fill(grey(0x8000), &trafo);
        // (0, 0) goes to 50.5, rounded 51; (99, 99) to (100, 49.5), rounded (100, 50), cut at the last row, 49.
        expectFilled(display, rect(51, 0, 100, 49), 0x80);
    }
    {
        CCs2dTrafo trafo = fit(151, 50);
        trafo.mirror(CCS_HORIZONTAL);
        Display display(151, 50);
        display.fill(grey(0x8000), &trafo);
        // (0, 0) goes to 100.5, rounded 101; column 99 to 51.
        expectFilled(display, rect(51, 0, 101, 49), 0x80);
    }
    {
        // Much larger than the display: the display's own last column and row stay black.
        CCs2dTrafo trafo = fit(60, 60);
        trafo.scale(4.0);
        Display display(60, 60);
        display.fill(grey(0x8000), &trafo);
        expectFilled(display, rect(0, 0, 59, 59), 0x80);
    }
    {
        // Beside the display.
        CCs2dTrafo trafo = fit(60, 60);
        trafo.translate(5.0, 0.0);
        Display display(60, 60);
        display.fill(grey(0x8000), &trafo);
        expectFilled(display, rect(0, 0, 0, 0), 0x80);
    }
}

TEST(CCsImageUtils, ShutterFillStaysInsideTheDisplaysMemory) {
    // The display claims more than its buffer holds: nothing behind the buffer is written.
    ZolMemMappedBuffer* const buffer = ZolMemMappedManager::getIntance()->allocateMapMemory(40, 400, false, false);
    std::fill_n(buffer->lock(), 440, static_cast<unsigned char>(0xEE));
    const CCsRaster display(buffer, 10, 10, CCS_RGB8, 1.0);
    CCs2dTrafo trafo = fit(10, 10);
    for (const int value : {0, 0x8000}) {
        for (CCs2dTrafo* const used : {static_cast<CCs2dTrafo*>(nullptr), &trafo}) {
            fillDisplayedRasterWithShutterPresentationValue(grey(value), display, buffer->lock(), used, RECT{});
            EXPECT_EQ(std::count(buffer->lock() + 40, buffer->lock() + 440, 0xEE), 400);
        }
    }
    fillDisplayedRasterWithShutterPresentationValue(grey(0x8000), display, nullptr, nullptr, RECT{});
    fillDisplayedRasterWithShutterPresentationValue(grey(0x8000), display, nullptr, &trafo, RECT{});
    fillDisplayedRasterWithShutterPresentationValue(grey(0), display, nullptr, nullptr, RECT{});
}

TEST(CCsImageUtils, ShutterFillOfAnImageWithoutGeometryDoesNothing) {
    const CCsImage display;
    unsigned char pixels[4] = {1, 2, 3, 4};
    CCs2dTrafo trafo = fit(10, 10);
    fillDisplayedRasterWithShutterPresentationValue(grey(0x8000), display, pixels, &trafo, RECT{});
    fillDisplayedRasterWithShutterPresentationValue(grey(0x8000), display, pixels, nullptr, RECT{});
    fillDisplayedRasterWithShutterPresentationValue(grey(0), display, pixels, nullptr, RECT{});
    EXPECT_EQ(pixels[0], 1);
    EXPECT_EQ(pixels[3], 4);
}

// ------------------------------------------------------------------------------------------------ bits

TEST(CCsImageUtils, BitmapShutterBitsRunLowestFirstWithoutRowPadding) {
    // 5 columns x 3 rows = 15 bits from (10, 20) on.
    std::vector<unsigned char> bits(2, 0);
    CCsBitmapShutterInfo shutter;
    shutter.originX = 11;
    shutter.originY = 21;
    shutter.rows = 3;
    shutter.columns = 5;
    shutter.data = bits.data();
    for (int k = 0; k < 15; ++k) {
        bits = {0, 0};
        bits[static_cast<std::size_t>(k / 8)] = static_cast<unsigned char>(1U << (k % 8));
        for (int y = 17; y < 27; ++y) {
            for (int x = 7; x < 19; ++x) {
                EXPECT_EQ(isBitmapShutterSet(shutter, x, y), x - 10 == k % 5 && y - 20 == k / 5) << k;
            }
        }
    }
}

TEST(CCsImageUtils, BitmapShutterBitsOutsideAreNotSet) {
    std::vector<unsigned char> bits(2, 0xFF);
    CCsBitmapShutterInfo shutter;
    shutter.originX = 1;
    shutter.originY = 1;
    shutter.rows = 3;
    shutter.columns = 5;
    EXPECT_FALSE(isBitmapShutterSet(shutter, 0, 0));
    shutter.data = bits.data();
    EXPECT_TRUE(isBitmapShutterSet(shutter, 0, 0));
    EXPECT_TRUE(isBitmapShutterSet(shutter, 4, 2));
    EXPECT_FALSE(isBitmapShutterSet(shutter, -1, 0));
    EXPECT_FALSE(isBitmapShutterSet(shutter, 0, -1));
    EXPECT_FALSE(isBitmapShutterSet(shutter, 5, 0));
    EXPECT_FALSE(isBitmapShutterSet(shutter, 0, 3));
    for (const int extreme : {least, most}) {
        EXPECT_FALSE(isBitmapShutterSet(shutter, extreme, 0));
        EXPECT_FALSE(isBitmapShutterSet(shutter, 0, extreme));
        shutter.originX = extreme;
        EXPECT_FALSE(isBitmapShutterSet(shutter, -extreme / 2, 0));
        shutter.originX = 1;
        shutter.originY = extreme;
        EXPECT_FALSE(isBitmapShutterSet(shutter, 0, -extreme / 2));
        shutter.originY = 1;
    }
    shutter.rows = 0;
    EXPECT_FALSE(isBitmapShutterSet(shutter, 0, 0));
}

TEST(CCsImageUtils, TheFirstPlaneThatHasItsBitSetIsReported) {
    std::vector<unsigned char> none(2, 0);
    std::vector<unsigned char> all(2, 0xFF);
    CCs60XXOverlay plane;
    plane.originX = 1;
    plane.originY = 1;
    plane.rows = 3;
    plane.columns = 5;
    CCs60XXOverlayInfo overlays;
    unsigned short index = 77;
    EXPECT_FALSE(is60XXOverlayBitset(overlays, index, 0, 0));
    EXPECT_EQ(index, 77);

    overlays.planes.push_back(plane);  // without data: never set, but keeps its position
    plane.data = none.data();
    overlays.planes.push_back(plane);
    EXPECT_FALSE(is60XXOverlayBitset(overlays, index, 0, 0));
    EXPECT_EQ(index, 77);
    plane.data = all.data();
    plane.originX = 3;
    overlays.planes.push_back(plane);
    plane.originX = 1;
    overlays.planes.push_back(plane);
    EXPECT_TRUE(is60XXOverlayBitset(overlays, index, 0, 0));
    EXPECT_EQ(index, 3);
    EXPECT_TRUE(is60XXOverlayBitset(overlays, index, 2, 0));
    EXPECT_EQ(index, 2);
    EXPECT_TRUE(is60XXOverlayBitset(overlays, index, 6, 2));
    EXPECT_EQ(index, 2);
    EXPECT_FALSE(is60XXOverlayBitset(overlays, index, 7, 2));
    EXPECT_EQ(index, 2);
}

TEST(CCsImageUtils, PlanesOfTheLargestSizeUse64BitPositions) {
    // 65535 x 65535 bits, of which only a few bytes are ever touched.
    constexpr std::uint64_t bits = 65535ULL * 65535ULL;
    const std::unique_ptr<ZolMemMappedBuffer> memory(
        ZolMemMappedManager::getIntance()->allocateMapMemory(static_cast<unsigned int>(bits / 8 + 1), 0, true, false));
    if (memory == nullptr) GTEST_SKIP() << "no room for a plane of 512 MiB";
    CCs60XXOverlay plane;
    plane.originX = 1;
    plane.originY = 1;
    plane.rows = 65535;
    plane.columns = 65535;
    plane.data = memory->lock();
    plane.data[(bits - 1) / 8] = static_cast<unsigned char>(1U << ((bits - 1) % 8));
    const CCs60XXOverlayInfo overlays{{plane}};
    unsigned short index = 7;
    EXPECT_TRUE(is60XXOverlayBitset(overlays, index, 65534, 65534));
    EXPECT_EQ(index, 0);
    EXPECT_FALSE(is60XXOverlayBitset(overlays, index, 65533, 65534));
    EXPECT_FALSE(is60XXOverlayBitset(overlays, index, 65535, 65534));
    EXPECT_FALSE(is60XXOverlayBitset(overlays, index, 65534, 65535));
    EXPECT_FALSE(is60XXOverlayBitset(overlays, index, 0, 0));
}

TEST(CCsImageUtils, PixelPadBits) {
    std::vector<unsigned char> bits(3, 0);
    for (int k = 0; k < 24; ++k) EXPECT_FALSE(isPixePadBitSet(bits.data(), k));
    setPixelPadBitSet(bits.data(), 12345, 8, 5);
    EXPECT_EQ(bits, (std::vector<unsigned char>{0, 0x20, 0}));
    for (int k = 0; k < 24; ++k) EXPECT_EQ(isPixePadBitSet(bits.data(), k), k == 13);
    setPixelPadBitSet(bits.data(), 0, 8, -8);
    EXPECT_EQ(bits, (std::vector<unsigned char>{1, 0x20, 0}));
    setPixelPadBitSet(bits.data(), 0, 8, -9);
    setPixelPadBitSet(nullptr, 0, 8, 5);
    EXPECT_EQ(bits, (std::vector<unsigned char>{1, 0x20, 0}));
    EXPECT_FALSE(isPixePadBitSet(nullptr, 0));
    EXPECT_FALSE(isPixePadBitSet(bits.data(), -1));
}

TEST(CCsImageUtils, ResetPixelPadBitDeliberatelySetsTheBit) {
    std::vector<unsigned char> bits(3, 0);
    resetPixelPadBitSet(bits.data(), 1, 10, 3);
    EXPECT_EQ(bits, (std::vector<unsigned char>{0, 0x20, 0}));
    resetPixelPadBitSet(bits.data(), 1, 10, 3);
    EXPECT_EQ(bits, (std::vector<unsigned char>{0, 0x20, 0}));
    std::fill(bits.begin(), bits.end(), static_cast<unsigned char>(0xFF));
    resetPixelPadBitSet(bits.data(), 0, 10, 0);
    EXPECT_EQ(bits, (std::vector<unsigned char>{0xFF, 0xFF, 0xFF}));
    resetPixelPadBitSet(nullptr, 0, 10, 0);
    resetPixelPadBitSet(bits.data(), -1, 10, 0);
    resetPixelPadBitSet(bits.data(), least, most, 0);
}

// ------------------------------------------------------------------------------------------------ numbers

TEST(CCsImageUtils, AcceleratedPathsRefuseNullEmbeddedOverlaysAndRgb24) {
    EXPECT_FALSE(isIPPCompatible(nullptr));
    for (int type = 1; type <= 7; ++type) {
        CCsRaster raster(4, 4, type, 1.0, false, true);
        EXPECT_EQ(isIPPCompatible(&raster), type != 6);
        raster.setEmbeddedOverlayStatus(true);
        EXPECT_FALSE(isIPPCompatible(&raster));
    }
}

TEST(CCsImageUtils, ASegmentIsComparedWithTheAxesDeliberatelyCrossed) {
    const RECT segment = rect(0, 0, 100, 50);
    const CCsRaster high(50, 100, CCS_GREY12, 1.0, false, true);
    EXPECT_TRUE(isEntireSegmentFilledWithImage(segment, high));
    const CCsRaster wide(100, 50, CCS_GREY12, 1.0, false, true);
    EXPECT_FALSE(isEntireSegmentFilledWithImage(segment, wide));
    EXPECT_TRUE(isEntireSegmentFilledWithImage(rect(-1, -1, 101, 51), high));
    EXPECT_FALSE(isEntireSegmentFilledWithImage(rect(1, 0, 100, 50), high));
    EXPECT_FALSE(isEntireSegmentFilledWithImage(rect(0, 1, 100, 50), high));
    EXPECT_FALSE(isEntireSegmentFilledWithImage(rect(0, 0, 99, 50), high));
    EXPECT_FALSE(isEntireSegmentFilledWithImage(rect(0, 0, 100, 49), high));
}

TEST(CCsImageUtils, BitShiftForGreyConversion) {
    const std::vector<std::pair<int, int>> expected = {{0, 0},     {1, 0},     {255, 0},   {256, 1},  {511, 1},
                                                       {512, 2},   {1023, 2},  {1024, 3},  {2047, 3}, {2048, 4},
                                                       {4095, 4},  {4096, 5},  {8191, 5},  {8192, 6}, {16383, 6},
                                                       {16384, 7}, {32767, 7}, {32768, 8}, {65535, 8}};
    for (const auto& [value, shift] : expected) {
        EXPECT_EQ(calculateBitShiftValueForGreyConversion(static_cast<unsigned short>(value)), shift) << value;
    }
    for (unsigned int value = 0; value <= 65535; ++value) {
        const int shift = calculateBitShiftValueForGreyConversion(static_cast<unsigned short>(value));
        ASSERT_LE(value >> shift, 255U);
        ASSERT_TRUE(shift == 0 || (value >> (shift - 1)) > 255U);
    }
}

TEST(CCsImageUtils, FontHeightOfARectangle) {
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 512, 512), 20, 512, false), 20);
    EXPECT_EQ(calculateFontHeight(rect(100, 200, 612, 712), 20, 512, false), 20);
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 1024, 512), 20, 512, false), 28);  // 28.28
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 1024, 1024), 20, 512, false), 40);
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 2048, 2048), 20, 512, false), 44);  // 80
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 128, 128), 20, 512, false), 11);    // 5
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 128, 128), 8, 512, false), 8);      // 2
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 0, 0), 20, 512, false), 11);
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 512, 512), 100, 512, false), 44);
}

TEST(CCsImageUtils, FontHeightRoundsAnExactHalfDown) {
    // A square of n pixels with base 256 has height n / 2.
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 41, 41), 256, 512, true), 20);
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 42, 42), 256, 512, true), 21);
    // With base 128, a quarter: 20.25, 20.5, 20.75.
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 81, 81), 128, 512, true), 20);
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 82, 82), 128, 512, true), 20);
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 83, 83), 128, 512, true), 21);
}

TEST(CCsImageUtils, ExactFontHeightIsNotLimitedAndScalesTheReferenceSize) {
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 128, 128), 20, 512, true), 5);
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 2048, 2048), 20, 512, true), 80);
    // Base 20 above size 10: the reference is 1024.
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 1024, 1024), 20, 10, true), 20);
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 1024, 1024), 20, 20, true), 40);
    // 20 / 15 * 512 = 682.67, cut to 682.
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 682, 682), 20, 15, true), 20);
    // Without exact the image size does not matter.
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 1024, 1024), 20, 10, false), 40);
    EXPECT_EQ(calculateFontHeight(rect(0, 0, 512, 512), 20, 0, true), 0);
}

TEST(CCsImageUtils, FontHeightIsDefinedForEveryRectangle) {
    zoltest::Random random(45);
    const auto any = [&] {
        return random.chance(0.5) ? random.integer(-2000, 2000)
                                  : static_cast<int>(static_cast<std::int32_t>(random.bits()));
    };
    for (int i = 0; i < 3000; ++i) {
        const RECT r = rect(any(), any(), any(), any());
        const int base = any();
        const int height = calculateFontHeight(r, base, any(), false);
        EXPECT_LE(height, 44);
        EXPECT_GE(height, std::min({base, 11, 44}));
        calculateFontHeight(r, base, any(), true);
    }
    EXPECT_EQ(calculateFontHeight(rect(least, least, most, most), most, 1, false), 44);
}

#if defined(_WIN32)

/// A window of a size, never shown.
class TestWindow {
public:
    TestWindow(int width, int height)
        : handle_(CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 10, 20, width, height, nullptr, nullptr, nullptr,
                                  nullptr)) {}
    ~TestWindow() { DestroyWindow(handle_); }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    [[nodiscard]] HWND handle() const { return handle_; }

private:
    HWND handle_;
};

#else

/// A window of a size, never drawn on.
class TestWindow : private ZolHostWindow {
public:
    TestWindow(int width, int height) : width_(width), height_(height), handle_(ZolCreateHostWindow(this)) {}
    ~TestWindow() override { ZolDestroyHostWindow(handle_); }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    [[nodiscard]] HWND handle() const { return handle_; }

private:
    SIZE clientSize() override { return {width_, height_}; }
    ZolPixelSurface surface() override { return {}; }
    void present() override {}
    void invalidate(const RECT& /*area*/) override {}
    RECT windowRect() override { return {10, 20, 10 + width_, 20 + height_}; }

    int width_;
    int height_;
    HWND handle_;
};

#endif

TEST(CCsImageUtils, FontHeightOfAWindow) {
    EXPECT_EQ(calculateFontHeight(nullptr, 20), 11);
    EXPECT_EQ(calculateFontHeight(nullptr, -3), 0);
    if (TestWindow(512, 512).handle() == nullptr) GTEST_SKIP() << "no window can be made here";
    const auto height = [](int windowWidth, int windowHeight, int base) {
        const TestWindow window(windowWidth, windowHeight);
        return calculateFontHeight(window.handle(), base);
    };
    EXPECT_EQ(height(512, 512, 20), 20);
    EXPECT_EQ(height(1024, 512, 20), 28);
    EXPECT_EQ(height(512, 1024, 20), 28);
    EXPECT_EQ(height(1024, 1024, 20), 40);
    EXPECT_EQ(height(1024, 1024, 40), 44);
    EXPECT_EQ(height(128, 128, 20), 11);
    EXPECT_EQ(height(128, 128, 8), 8);
}

}  // namespace
