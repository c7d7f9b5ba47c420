// Fields, initialisation and sizes of frames.
#include "zolcs/ccsframe.h"

#include "zolcs/ccsframe_fixture.h"

namespace {

using namespace zoltest::frame;
using zoltest::CallLog;
using zoltest::Canvas;
using zoltest::errorReport;
using zoltest::OverlayDouble;
using zoltest::RenderCall;
using zoltest::Report;
using zoltest::ReportCapture;
using zoltest::TestFont;

INSTANTIATE_TEST_SUITE_P(Memory, CCsFrameMemoryTest, ::testing::Values(true, false),
                         [](const auto& each) { return each.param ? "Mapped" : "Plain"; });

// ---------------------------------------------------------------------------------------- data model

TEST_F(CCsFrameTest, StartsEmpty) {
    const OpenFrame frame;
    EXPECT_EQ(frame.getWidth(), 0);
    EXPECT_EQ(frame.getHeight(), 0);
    EXPECT_EQ(frame.getPitch(), 0);
    EXPECT_EQ(frame.getType(), CCS_RGB8);
    EXPECT_EQ(frame.getRatioYx(), 0.0);
    EXPECT_EQ(frame.x, 0);
    EXPECT_EQ(frame.y, 0);
    EXPECT_EQ(frame.hwnd, nullptr);
    EXPECT_EQ(frame.wbitmapinfoPtr_, nullptr);
    EXPECT_EQ(frame.hBitmap, nullptr);
    EXPECT_EQ(frame.GetMemBuffer(), nullptr);
    EXPECT_EQ(frame.valid(), 0);

    const OpenFrame sized(30, 20);
    EXPECT_EQ(sized.getWidth(), 30);
    EXPECT_EQ(sized.getHeight(), 20);
    EXPECT_EQ(sized.valid(), 0);
    EXPECT_EQ(sized.GetMemBuffer(), nullptr);
}

TEST_F(CCsFrameTest, FieldsLieWhereTheyAlwaysDid) {
    const OpenFrame frame;
    constexpr std::size_t pointer = sizeof(void*);
    // On 32 bits the image ends with 4 bytes that only align it; what derives from it begins there.
    constexpr std::size_t start = pointer == 4 ? sizeof(CCsImage) - 4 : sizeof(CCsImage);
    EXPECT_EQ(offsetIn(frame, frame.x), start);
    EXPECT_EQ(offsetIn(frame, frame.y), start + 4);
    EXPECT_EQ(offsetIn(frame, frame.hwnd), start + 8);
    EXPECT_EQ(offsetIn(frame, frame.wbitmapinfoPtr_), start + 8 + pointer);
    EXPECT_EQ(offsetIn(frame, frame.hBitmap), start + 8 + 2 * pointer);
    EXPECT_EQ(offsetIn(frame, frame.valid_), start + 8 + 3 * pointer);
}

TEST_F(CCsFrameTest, VirtualOperationsStandInTheirOrder) {
    using zoltest::tableEntry;
    EXPECT_EQ(tableEntry(&CCsFrame::NewInstance), 0U);
    EXPECT_EQ(tableEntry(&CCsFrame::getOrigin), 3U);  // behind the destructor's two
    EXPECT_EQ(tableEntry(&CCsFrame::unlock), 4U);
    EXPECT_EQ(tableEntry(&CCsFrame::getHBitmap), 5U);
    EXPECT_EQ(tableEntry(&CCsFrame::invalidate), 6U);
    EXPECT_EQ(tableEntry(&CCsFrame::paint), 7U);
    EXPECT_EQ(tableEntry(&CCsFrame::setSize), 8U);
    EXPECT_EQ(tableEntry(&CCsFrame::print), 9U);
    EXPECT_EQ(tableEntry(&CCsFrame::printColor), 10U);
}

// ---------------------------------------------------------------------------------------- before initialisation

TEST_F(CCsFrameTest, RefusesToWorkBeforeInitialisation) {
    CCsFrame frame(10, 10);
    Canvas canvas(10, 10);
    OverlayDouble overlay("o", &log);
    CCs2dTrafo trafo;
    EXPECT_EQ(frame.setSize(5, 3, 0, 0), 2);
    expectReport(notInitialised, 0, module, 377);
    EXPECT_EQ(frame.paint(canvas.dc(), &overlay, &trafo, 0, -1, -1, -1, -1, nullptr, 0, nullptr, &overlay), 2);
    expectReport(notInitialised, 0, paintModule, 73);
    EXPECT_EQ(frame.print(canvas.dc(), RECT{0, 0, 9, 9}, &overlay, &overlay, &trafo, 0, 0, 9, 9, 0, 0, nullptr, 1), 2);
    expectReport(notInitialised, 0, module, 581);
    EXPECT_EQ(frame.print(canvas.dc(), RECT{}, nullptr, nullptr, nullptr, 0, 0, 0, 0, 0, 0, nullptr, 1), 2);
    expectReport(notInitialised, 0, module, 581);
    EXPECT_EQ(frame.printColor(canvas.dc(), &overlay, &overlay, &trafo, 0, 9, 9, 0, 0, nullptr, 1), 2);
    expectReport(notInitialised, 0, module, 680);
    EXPECT_EQ(frame.getHBitmap(), nullptr);
    frame.unmapBitmap();
    EXPECT_EQ(frame.getOrigin(), nullptr);
    frame.unlock();
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(canvas.pixel(0, 0), 0xCDCDCDCDU);
    EXPECT_EQ(frame.getWidth(), 10);
}

// ---------------------------------------------------------------------------------------- initialisation

TEST_P(CCsFrameMemoryTest, InitWithoutADevice) {
    OpenFrame frame(30, 20);
    EXPECT_EQ(frame.init(), 255);
    EXPECT_EQ(frame.valid(), 1);
    EXPECT_EQ(frame.getRatioYx(), 1.0);
    EXPECT_EQ(frame.hwnd, nullptr);
    EXPECT_EQ(frame.getPitch(), 32);
    EXPECT_EQ(frame.GetMemBuffer()->getSize(), 32U * 20U * 4U);
    EXPECT_EQ(frame.GetMemBuffer()->getMapHandle() != nullptr, GetParam());
    EXPECT_NE(frame.hBitmap, nullptr);
    EXPECT_EQ(pixelOf(frame, 29, 19), 0U);
    expectNoReport();
}

TEST_P(CCsFrameMemoryTest, InitForADeviceContext) {
    Canvas canvas(4, 4);
    OpenFrame frame(30, 20);
    frame.hwnd = reinterpret_cast<HWND>(&frame);  // init forgets it
    EXPECT_EQ(frame.init(canvas.dc()), 255);
    EXPECT_EQ(frame.hwnd, nullptr);
    EXPECT_EQ(frame.getRatioYx(), static_cast<double>(GetDeviceCaps(canvas.dc(), ASPECTX)) /
                                      static_cast<double>(GetDeviceCaps(canvas.dc(), ASPECTY)));
    EXPECT_EQ(frame.valid(), 1);
    EXPECT_EQ(frame.getWidth(), 30);
    expectNoReport();
}

TEST_F(CCsFrameTest, HeaderIsOfATopDownBitmap) {
    OpenFrame frame(5, 3);
    EXPECT_EQ(frame.init(), 255);
    ASSERT_NE(frame.wbitmapinfoPtr_, nullptr);
    const BITMAPINFOHEADER& header = frame.wbitmapinfoPtr_->bmiHeader;
    EXPECT_EQ(header.biSize, 40U);
    EXPECT_EQ(header.biWidth, 8);
    EXPECT_EQ(header.biHeight, -3);
    EXPECT_EQ(header.biPlanes, 1);
    EXPECT_EQ(header.biBitCount, 32);
    EXPECT_EQ(header.biCompression, 0U);
    EXPECT_EQ(header.biSizeImage, 96U);
    EXPECT_EQ(header.biXPelsPerMeter, 3000);
    EXPECT_EQ(header.biYPelsPerMeter, 3000);
    EXPECT_EQ(header.biClrUsed, 0U);
    EXPECT_EQ(header.biClrImportant, 0U);
}

TEST_F(CCsFrameTest, InitWithoutADeviceContextFails) {
    OpenFrame frame(30, 20);
    EXPECT_EQ(frame.init(), 255);
    EXPECT_EQ(frame.init(static_cast<HDC>(nullptr)), 0);
    expectReport(noDc, 0, module, 275);
    EXPECT_EQ(frame.valid(), 0);
    EXPECT_EQ(frame.hBitmap, nullptr);
    EXPECT_EQ(frame.setSize(1, 1, 0, 0), 2);
    expectReport(notInitialised, 0, module, 377);
    EXPECT_EQ(frame.init(), 255);  // and it recovers
    EXPECT_EQ(frame.valid(), 1);
}

TEST_F(CCsFrameTest, InitWithoutPixelMemoryFails) {
    Canvas canvas(4, 4);
    OpenFrame frame(30, 20);
    const NoPixelMemory none;
    EXPECT_EQ(frame.init(canvas.dc()), 0);
    expectReport(noDc, 0, module, 289);
    EXPECT_EQ(frame.valid(), 0);
    EXPECT_EQ(frame.init(), 0);
    expectReport(noDc, 0, module, 323);
    EXPECT_EQ(frame.valid(), 0);
    EXPECT_EQ(frame.getHBitmap(), nullptr);
}

TEST_P(CCsFrameMemoryTest, RepeatedInitLeaksNothing) {
    Canvas canvas(4, 4);
    OpenFrame frame(30, 20);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(frame.init(), 255);
        EXPECT_EQ(frame.init(canvas.dc()), 255);
        EXPECT_EQ(frame.init(static_cast<HDC>(nullptr)), 0);
        // The pixels of a plain frame were the bitmap's; those of a mapped one live in its buffer.
        EXPECT_EQ(frame.getOrigin() != nullptr, GetParam());
        frame.unlock();
    }
    ReportCapture::take();
}

TEST_P(CCsFrameMemoryTest, InitForAWindow) {
    TestWindow window;
    OpenFrame frame(window.handle, 30, 20, 5, 6);
    EXPECT_EQ(frame.valid(), 1);
    EXPECT_EQ(frame.hwnd, window.handle);
    EXPECT_EQ(frame.getWidth(), 30);
    EXPECT_EQ(frame.getHeight(), 20);
    EXPECT_EQ(frame.x, 5);
    EXPECT_EQ(frame.y, 6);
    EXPECT_EQ(frame.getRatioYx(), 1.0);
    EXPECT_EQ(frame.init(window.handle, -1, 9, 7, -1), 255);  // -1 keeps here too
    EXPECT_EQ(frame.getWidth(), 30);
    EXPECT_EQ(frame.getHeight(), 9);
    EXPECT_EQ(frame.x, 7);
    EXPECT_EQ(frame.y, 6);
    expectNoReport();
}

TEST_F(CCsFrameTest, InitForAWindowFailsWithoutDeviceContextOrPixels) {
    HWND gone = nullptr;
    {
        TestWindow window;
        gone = window.handle;
        OpenFrame frame;
        const NoPixelMemory none;
        EXPECT_EQ(frame.init(window.handle, 30, 20, 0, 0), 0);
        expectReport(noDc, 0, module, 242);
        EXPECT_EQ(frame.valid(), 0);
    }
    OpenFrame frame;
    EXPECT_EQ(frame.init(gone, 30, 20, 0, 0), 0);
    expectReport(noDc, 0, module, 227);
    EXPECT_EQ(frame.valid(), 0);
    EXPECT_EQ(frame.getWidth(), 0);
}

TEST_F(CCsFrameTest, ConstructorForAWindowThrowsWhenInitFails) {
    TestWindow window;
    {
        const NoPixelMemory none;
        try {
            const CCsFrame frame(window.handle, 30, 20, 0, 0);
            FAIL();
        } catch (int value) {
            EXPECT_EQ(value, 0);
        }
    }
    expectReport(noDc, 0, module, 242);
    EXPECT_THROW(CCsFrame(window.handle, 0, 20, 0, 0), int);
    EXPECT_EQ(ReportCapture::take(), (std::vector<Report>{errorReport(L"CreateDIBSection failed", 0, module, 441),
                                                          errorReport(noDc, 0, module, 242)}));
}

TEST_F(CCsFrameTest, InvalidatesAnAreaOfTheWindow) {
    TestWindow window;
    OpenFrame frame(window.handle, 30, 20, 5, 6);
    using Areas = std::vector<std::vector<LONG>>;
    EXPECT_EQ(frame.invalidate(-1, -1, -1, -1), 255);
    EXPECT_EQ(frame.invalidate(3, -1, -1, -1), 255);
    EXPECT_EQ(frame.invalidate(-1, 4, -1, -1), 255);
    EXPECT_EQ(frame.invalidate(-1, -1, 10, -1), 255);
    EXPECT_EQ(frame.invalidate(-1, -1, -1, 11), 255);
    EXPECT_EQ(frame.invalidate(1, 2, 3, 4), 255);
    EXPECT_EQ(window.areas,
              (Areas{{5, 6, 35, 26}, {5, 6, 8, 26}, {5, 6, 35, 10}, {10, 6, 40, 26}, {5, 11, 35, 31}, {3, 4, 4, 6}}));
    constexpr int highest = std::numeric_limits<int>::max();
    EXPECT_EQ(frame.invalidate(highest, highest, 40, 40), 255);
    expectNoReport();
}

TEST_F(CCsFrameTest, InvalidateFailsForAWindowThatIsGone) {
    OpenFrame frame;
    {
        TestWindow window;
        EXPECT_EQ(frame.init(window.handle, 30, 20, 5, 6), 255);
    }
    EXPECT_EQ(frame.invalidate(-1, -1, -1, -1), 0);
    expectReport(L"InvalidateRect failed", 0, module, 541);
}

TEST_F(CCsFrameTest, InvalidateWithoutAWindowIsAFailure) {
    CCsFrame frame(30, 20);
    EXPECT_EQ(frame.init(), 255);
    EXPECT_EQ(frame.invalidate(-1, -1, -1, -1), 0);
    expectReport(L"InvalidateRect failed", 0, module, 541);
}

// ---------------------------------------------------------------------------------------- sizes

TEST_P(CCsFrameMemoryTest, SetSizeRoundsThePitchUpToFour) {
    OpenFrame frame(1, 1);
    EXPECT_EQ(frame.init(), 255);
    for (int width = 1; width <= 33; ++width) {
        EXPECT_EQ(frame.setSize(width, 3, -1, -1), 255);
        EXPECT_EQ(frame.getWidth(), width);
        EXPECT_EQ(frame.getPitch(), (width + 3) / 4 * 4);
        EXPECT_EQ(frame.wbitmapinfoPtr_->bmiHeader.biWidth, frame.getPitch());
        EXPECT_EQ(frame.wbitmapinfoPtr_->bmiHeader.biHeight, -3);
        EXPECT_EQ(frame.wbitmapinfoPtr_->bmiHeader.biSizeImage, static_cast<DWORD>(frame.getPitch()) * 12U);
        EXPECT_EQ(frame.GetMemBuffer()->getSize(), static_cast<std::size_t>(frame.getPitch()) * 12U);
        fillPattern(frame);
    }
    EXPECT_EQ(frame.setSize(5, 3, -1, -1), 255);
    EXPECT_EQ(frame.getPitch(), 8);
    EXPECT_EQ(pixelOf(frame, 0, 0), 0U);  // new pixels, not the old ones
}

TEST_F(CCsFrameTest, SetSizeKeepsWhatIsMinusOne) {
    OpenFrame frame(30, 20);
    EXPECT_EQ(frame.init(), 255);
    EXPECT_EQ(frame.setSize(-1, -1, 4, 5), 255);
    EXPECT_EQ(frame.getWidth(), 30);
    EXPECT_EQ(frame.getPitch(), 32);
    EXPECT_EQ(frame.getHeight(), 20);
    EXPECT_EQ(frame.x, 4);
    EXPECT_EQ(frame.y, 5);
    EXPECT_EQ(frame.setSize(7, 8, -1, -1), 255);
    EXPECT_EQ(frame.x, 4);
    EXPECT_EQ(frame.y, 5);
    EXPECT_EQ(frame.setSize(-1, -1, -1, -2), 255);
    EXPECT_EQ(frame.getWidth(), 7);
    EXPECT_EQ(frame.getHeight(), 8);
    EXPECT_EQ(frame.y, -2);
}

TEST_P(CCsFrameMemoryTest, SetSizeOfNothingIsRefusedByGdi) {
    for (const bool zeroWidth : {true, false}) {
        OpenFrame frame(30, 20);
        EXPECT_EQ(frame.init(), 255);
        EXPECT_EQ(frame.setSize(zeroWidth ? 0 : 30, zeroWidth ? 20 : 0, -1, -1), 0);
        expectReport(L"CreateDIBSection failed", 0, module, 441);
        EXPECT_EQ(frame.valid(), 1);
        EXPECT_EQ(frame.wbitmapinfoPtr_, nullptr);
        EXPECT_EQ(frame.hBitmap, nullptr);
        EXPECT_EQ(frame.getHBitmap(), nullptr);
        EXPECT_EQ(frame.setSize(30, 20, -1, -1), 255);
        EXPECT_NE(frame.wbitmapinfoPtr_, nullptr);
        EXPECT_NE(frame.hBitmap, nullptr);
    }
}

TEST_P(CCsFrameMemoryTest, SetSizeWithoutMemoryLeavesAFrameWithoutPixels) {
    constexpr int highest = std::numeric_limits<int>::max();
    constexpr int lowest = std::numeric_limits<int>::min();
    struct Size {
        int width;
        int height;
    };
    for (const Size size : {Size{40, -2}, Size{-9, 20}, Size{lowest, 1}, Size{40, lowest}, Size{highest, highest},
                            Size{highest, 1}, Size{65536, 65536}, Size{lowest, highest}}) {
        OpenFrame frame(30, 20);
        EXPECT_EQ(frame.init(), 255);
        EXPECT_EQ(frame.setSize(size.width, size.height, -1, -1), 0);
        EXPECT_EQ(frame.valid(), 1);
        EXPECT_EQ(frame.getWidth(), size.width);
        EXPECT_EQ(frame.getHeight(), size.height);
        EXPECT_EQ(frame.hBitmap, nullptr);
        EXPECT_EQ(frame.getHBitmap(), nullptr);
        EXPECT_EQ(frame.GetMemBuffer(), nullptr);
        EXPECT_EQ(frame.getOrigin(), nullptr);
        expectNoReport();
        EXPECT_EQ(frame.setSize(30, 20, -1, -1), 255);
    }
}

TEST_F(CCsFrameTest, SetSizeWithExhaustedMemoryReportsNothing) {
    OpenFrame frame(30, 20);
    EXPECT_EQ(frame.init(), 255);
    {
        const NoPixelMemory none;
        EXPECT_EQ(frame.setSize(300, 200, -1, -1), 0);
    }
    expectNoReport();
    EXPECT_EQ(frame.valid(), 1);
    EXPECT_EQ(frame.GetMemBuffer(), nullptr);
    EXPECT_NE(frame.wbitmapinfoPtr_, nullptr);
    EXPECT_EQ(frame.setSize(300, 200, -1, -1), 255);
}

// ---------------------------------------------------------------------------------------- bitmaps

TEST_F(CCsFrameTest, MappedFrameHasABitmapOnlyWhileItIsDrawnOn) {
    OpenFrame frame(8, 2);
    EXPECT_EQ(frame.init(), 255);
    setPixel(frame, 3, 1, 0x123456);
    frame.unmapBitmap();
    EXPECT_EQ(frame.hBitmap, nullptr);
    EXPECT_EQ(frame.origin, nullptr);
    EXPECT_EQ(pixelOf(frame, 3, 1), 0x123456U);  // the pixels live in the mapping
    HBITMAP bitmap = frame.getHBitmap();
    ASSERT_NE(bitmap, nullptr);
    EXPECT_EQ(frame.getHBitmap(), bitmap);
    EXPECT_NE(frame.origin, nullptr);
    std::uint32_t seen = 0;
    std::memcpy(&seen, frame.origin + 4 * (8 + 3), sizeof seen);
    EXPECT_EQ(seen, 0x123456U);
    Canvas canvas(8, 2);
    EXPECT_EQ(frame.paint(canvas.dc(), nullptr, nullptr, 0, -1, -1, -1, -1, nullptr, 0, nullptr, nullptr), 255);
    EXPECT_EQ(frame.hBitmap, nullptr);
    EXPECT_EQ(canvas.pixel(3, 1), 0x123456U);
}

TEST_F(CCsFrameTest, PlainFrameKeepsItsBitmap) {
    manager.setUseMappings(false);
    OpenFrame frame(8, 2);
    EXPECT_EQ(frame.init(), 255);
    manager.setUseMappings(true);
    HBITMAP bitmap = frame.hBitmap;
    ASSERT_NE(bitmap, nullptr);
    setPixel(frame, 3, 1, 0x123456);
    frame.unmapBitmap();
    EXPECT_EQ(frame.getHBitmap(), bitmap);
    Canvas canvas(8, 2);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(frame.paint(canvas.dc(), nullptr, nullptr, 0, -1, -1, -1, -1, nullptr, 0, nullptr, nullptr), 255);
        EXPECT_EQ(frame.hBitmap, bitmap);
        EXPECT_EQ(canvas.pixel(3, 1), 0x123456U);
    }
}

}  // namespace
