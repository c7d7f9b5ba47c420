// Frames on paper and as free-standing bitmaps.
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

// ---------------------------------------------------------------------------------------- printing

namespace {

/// Where a printed frame lies: the larger extent of the frame (its height counted with its ratio) takes the larger
/// extent of the page, about the page's centre.
struct PagePlace {
    int x, y, width, height;
};

PagePlace placeOf(const CCsImage& frame, double width, double height, double aspect, double x, double y) {
    const double down = frame.getHeight() * frame.getRatioYx();
    const double s = frame.getWidth() > down ? frame.getWidth() : down;
    const double d = width > height * aspect ? width : height * aspect;
    const double xScale = d / s;
    const double yScale = frame.getRatioYx() * (d / aspect) / s;
    return {
        static_cast<int>((0.0 - 0.5 * frame.getWidth() / s) * d + 0.5 * width + x),
        static_cast<int>((0.0 - 0.5 * (frame.getRatioYx() * frame.getHeight()) / s) * (d / aspect) + 0.5 * height + y),
        static_cast<int>(frame.getWidth() * xScale), static_cast<int>(frame.getHeight() * yScale)};
}

double aspectOf(HDC dc) {
    return static_cast<double>(GetDeviceCaps(dc, ASPECTX)) / static_cast<double>(GetDeviceCaps(dc, ASPECTY));
}

}  // namespace

TEST_P(CCsFrameMemoryTest, PrintStretchesTheFrameOverThePage) {
    struct Page {
        int frameWidth, frameHeight;
        double ratio;
        int width, height, x, y;
        PagePlace place;
    };
    for (const Page& page : {
             Page{4, 4, 1.0, 8, 8, 0, 0, {0, 0, 8, 8}},
             Page{6, 3, 1.0, 12, 6, 2, 3, {2, 3, 12, 6}},
             Page{6, 3, 1.0, 12, 12, 0, 0, {0, 3, 12, 6}},
             Page{3, 6, 1.0, 12, 12, 1, 1, {4, 1, 6, 12}},
             Page{6, 3, 2.0, 12, 12, 0, 0, {0, 0, 12, 12}},
             Page{4, 4, 2.0, 16, 16, 0, 0, {4, 0, 8, 16}},
             Page{4, 4, 1.0, 8, 16, 4, 0, {0, 0, 16, 16}},  // the larger extents count: it hangs over
             Page{5, 3, 1.0, 10, 6, 0, 0, {0, 0, 10, 6}},
         }) {
        OpenFrame frame(page.frameWidth, page.frameHeight);
        EXPECT_EQ(frame.init(), 255);
        frame.ratioYx = page.ratio;
        fillPattern(frame);
        Canvas canvas(24, 24);
        ASSERT_EQ(aspectOf(canvas.dc()), 1.0);
        const PagePlace place = placeOf(frame, page.width, page.height, 1.0, page.x, page.y);
        EXPECT_EQ(place.x, page.place.x);
        EXPECT_EQ(place.y, page.place.y);
        EXPECT_EQ(place.width, page.place.width);
        EXPECT_EQ(place.height, page.place.height);
        EXPECT_EQ(frame.print(canvas.dc(), RECT{0, 0, 99, 99}, nullptr, nullptr, nullptr, 0, 0, page.width, page.height,
                              page.x, page.y, nullptr, 2),
                  255);
        for (int y = 0; y < 24; ++y) {
            for (int x = 0; x < 24; ++x) {
                const int u = x - place.x;
                const int v = y - place.y;
                const bool inside = u >= 0 && v >= 0 && u < place.width && v < place.height;
                const std::uint32_t expected =
                    inside ? pattern(u * page.frameWidth / place.width, v * page.frameHeight / place.height)
                           : 0xCDCDCDCDU;
                ASSERT_EQ(canvas.pixel(x, y) & 0xFFFFFFU, expected & 0xFFFFFFU)
                    << x << ' ' << y << ' ' << page.width << ' ' << page.height;
            }
        }
        frame.unlock();
    }
    expectNoReport();
}

TEST_F(CCsFrameTest, PrintOfNothingIsASuccess) {
    CCsFrame frame(4, 4);
    EXPECT_EQ(frame.init(), 255);
    OverlayDouble overlay("o", &log);
    CCs2dTrafo trafo;
    for (const int extent : {0, -1, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(frame.print(nullptr, RECT{}, &overlay, &overlay, &trafo, 0, 0, extent, 5, 0, 0, nullptr, 2), 255);
        EXPECT_EQ(frame.print(nullptr, RECT{}, &overlay, &overlay, &trafo, 0, 0, 5, extent, 0, 0, nullptr, 2), 255);
        EXPECT_EQ(frame.printColor(nullptr, &overlay, &overlay, &trafo, 0, extent, 5, 0, 0, nullptr, 2), 255);
        EXPECT_EQ(frame.printColor(nullptr, &overlay, &overlay, &trafo, 0, 5, extent, 0, 0, nullptr, 2), 255);
    }
    EXPECT_TRUE(log.empty());
    expectNoReport();
}

TEST_F(CCsFrameTest, PrintDrawsTheOverlaysOnThePage) {
    OpenFrame frame(6, 3);
    EXPECT_EQ(frame.init(), 255);
    Canvas canvas(40, 40);
    const TestFont fontOfDc(-20);
    const TestFont textFont(-30);
    HGDIOBJ systemFont = SelectObject(canvas.dc(), fontOfDc.get());
    CCs2dTrafo trafo;
    trafo.setSizes(6, 3, 100, 50, 1.0, 1.0, 7, 8);
    trafo.setDspPanFactor(0.5, 0.25);
    OverlayDouble overlay("main", &log);
    OverlayDouble text("text", &log);
    std::vector<HGDIOBJ> fonts;
    for (OverlayDouble* each : {&overlay, &text}) {
        each->onRender = [&](const RenderCall& call) {
            fonts.push_back(GetCurrentObject(call.dc, OBJ_FONT));
            // A copy of the caller's transformation onto the printed frame, whose limiting extent stays.
            ASSERT_NE(call.imageTrafo, &trafo);
            EXPECT_EQ(call.imageTrafo->getDstSize().cx, 12);
            EXPECT_EQ(call.imageTrafo->getDstSize().cy, 6);
            EXPECT_EQ(call.imageTrafo->getDstMax(), trafo.getDstMax());
            CCs2dTrafo expected(trafo);
            expected.setDestSizes(12, 6, aspectOf(call.dc), 2, 6);
            double m[6];
            double e[6];
            call.imageTrafo->getImgToDsp(m[0], m[1], m[2], m[3], m[4], m[5]);
            expected.getImgToDsp(e[0], e[1], e[2], e[3], e[4], e[5]);
            EXPECT_EQ(std::vector<double>(m, m + 6), std::vector<double>(e, e + 6));
            // The frame's own way onto the page.
            call.outputTrafo->getImgToDsp(m[0], m[1], m[2], m[3], m[4], m[5]);
            EXPECT_EQ(std::vector<double>(m, m + 6), (std::vector<double>{2, 0, 0, 2, 2, 6}));
        };
    }
    const auto expectCall = [&](const OverlayDouble& drawn, unsigned long color, int mode) {
        const RenderCall& call = drawn.renders.back();
        EXPECT_EQ(call.color, color);
        EXPECT_EQ(call.dc, canvas.dc());
        EXPECT_EQ(call.mode, mode);
        EXPECT_EQ(call.width, 30);
        EXPECT_EQ(call.height, 20);
        EXPECT_EQ(call.offsetX, 5);
        EXPECT_EQ(call.offsetY, -7);
    };
    const RECT area{5, -7, 35, 13};
    const auto print = [&](CCsOverlay* drawn, CCsOverlay* drawnText, CCs2dTrafo* given, HFONT font, int mode) {
        log.clear();
        fonts.clear();
        EXPECT_EQ(frame.print(canvas.dc(), area, drawn, drawnText, given, 0x112233, 0x445566, 12, 12, 2, 3, font, mode),
                  255);
        frame.unlock();
        EXPECT_EQ(GetCurrentObject(canvas.dc(), OBJ_FONT), fontOfDc.get());
        return log;
    };
    EXPECT_EQ(print(&overlay, &text, &trafo, textFont.get(), 3), (CallLog{"main.render", "text.render"}));
    EXPECT_EQ(fonts, (std::vector<HGDIOBJ>{fontOfDc.get(), textFont.get()}));
    expectCall(overlay, 0x112233, 3);
    expectCall(text, 0x445566, 3);
    // A printer gets white text.
    EXPECT_EQ(print(&overlay, &text, &trafo, nullptr, 2), (CallLog{"main.render", "text.render"}));
    EXPECT_EQ(fonts, (std::vector<HGDIOBJ>{fontOfDc.get(), fontOfDc.get()}));
    expectCall(overlay, 0x112233, 2);
    expectCall(text, 0xFFFFFF, 2);
    EXPECT_EQ(print(nullptr, &text, &trafo, nullptr, 1), (CallLog{"text.render"}));
    expectCall(text, 0x445566, 1);
    EXPECT_EQ(print(&overlay, nullptr, &trafo, nullptr, 1), (CallLog{"main.render"}));
    EXPECT_EQ(print(&overlay, &text, nullptr, textFont.get(), 1), (CallLog{}));
    EXPECT_EQ(print(nullptr, nullptr, &trafo, textFont.get(), 1), (CallLog{}));
    EXPECT_EQ(trafo.getDstSize().cx, 100);
    SelectObject(canvas.dc(), systemFont);
    expectNoReport();
}

TEST_F(CCsFrameTest, PrintLimitsAHugeArea) {
    CCsFrame frame(4, 4);
    EXPECT_EQ(frame.init(), 255);
    Canvas canvas(8, 8);
    CCs2dTrafo trafo;
    OverlayDouble overlay;
    constexpr int highest = std::numeric_limits<int>::max();
    constexpr int lowest = std::numeric_limits<int>::min();
    EXPECT_EQ(frame.print(canvas.dc(), RECT{lowest, highest, highest, lowest}, &overlay, nullptr, &trafo, 0, 0, 8, 8, 0,
                          0, nullptr, 2),
              255);
    frame.unlock();
    ASSERT_EQ(overlay.renders.size(), 1U);
    EXPECT_EQ(overlay.renders[0].width, highest);
    EXPECT_EQ(overlay.renders[0].height, lowest);
    EXPECT_EQ(overlay.renders[0].offsetX, lowest);
    EXPECT_EQ(overlay.renders[0].offsetY, highest);
}

TEST_F(CCsFrameTest, PrintDeliberatelyLeavesThePixelsLockedOnceMore) {
    CCsFrame frame(4, 4);
    EXPECT_EQ(frame.init(), 255);
    Canvas canvas(8, 8);
    const int before = frame.GetMemBuffer()->getLockCount();
    EXPECT_EQ(frame.print(canvas.dc(), RECT{}, nullptr, nullptr, nullptr, 0, 0, 8, 8, 0, 0, nullptr, 2), 255);
    EXPECT_EQ(frame.GetMemBuffer()->getLockCount(), before + 1);
    EXPECT_EQ(frame.printColor(canvas.dc(), nullptr, nullptr, nullptr, 0, 8, 8, 0, 0, nullptr, 2), 255);
    EXPECT_EQ(frame.GetMemBuffer()->getLockCount(), before + 1);
    frame.unlock();
}

TEST_F(CCsFrameTest, PrintReportsItsFailures) {
    OpenFrame frame(4, 4);
    EXPECT_EQ(frame.init(), 255);
    Canvas canvas(8, 8);
    OverlayDouble overlay("o", &log);
    CCs2dTrafo trafo;
    const auto print = [&](HDC dc) {
        return frame.print(dc, RECT{}, &overlay, &overlay, &trafo, 0, 0, 8, 8, 0, 0, nullptr, 2);
    };
    const auto printColor = [&](HDC dc) {
        return frame.printColor(dc, &overlay, &overlay, &trafo, 0, 8, 8, 0, 0, nullptr, 2);
    };
    EXPECT_EQ(print(nullptr), 0);
    expectReport(L"SetStretchBltMode function failed", 0, module, 606);
    EXPECT_EQ(printColor(nullptr), 0);
    expectReport(L"SetStretchBltMode function failed", 0, module, 705);

    // No header after a refused size.
    EXPECT_EQ(frame.setSize(0, 4, -1, -1), 0);
    ReportCapture::take();
    EXPECT_EQ(print(canvas.dc()), 0);
    expectReport(L"StretchDIBits didn't set all scanlines", -1, module, 615);
    EXPECT_EQ(printColor(canvas.dc()), 0);
    expectReport(L"Bitmap info variable wbitmapinfoPtr_ is NULL", 0, module, 724);

    // No pixels without memory.
    {
        const NoPixelMemory none;
        EXPECT_EQ(frame.setSize(4, 4, -1, -1), 0);
    }
    EXPECT_EQ(print(canvas.dc()), 0);
    expectReport(L"StretchDIBits didn't set all scanlines", -1, module, 615);
    EXPECT_EQ(printColor(canvas.dc()), 0);
    expectReport(L"StretchDIBits didn't set all scanlines", -1, module, 734);
    EXPECT_EQ(frame.wbitmapinfoPtr_->bmiHeader.biBitCount, 32);
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(canvas.pixel(0, 0), 0xCDCDCDCDU);
}

TEST_F(CCsFrameTest, PrintColorWithoutMemoryForTheCopyFails) {
    if (!zoltest::canFailNothrowNew()) GTEST_SKIP() << "the library has an operator new of its own";
    OpenFrame frame(64, 64);
    EXPECT_EQ(frame.init(), 255);
    Canvas canvas(8, 8);
    const zoltest::NothrowNewLimit limit(64 * 64 * 3);
    EXPECT_EQ(frame.printColor(canvas.dc(), nullptr, nullptr, nullptr, 0, 8, 8, 0, 0, nullptr, 2), 0);
    expectReport(L"StretchDIBits didn't set all scanlines", -1, module, 734);
    EXPECT_EQ(frame.wbitmapinfoPtr_->bmiHeader.biBitCount, 32);
}

TEST_F(CCsFrameTest, PrintSurvivesHostilePages) {
    constexpr int highest = std::numeric_limits<int>::max();
    constexpr int lowest = std::numeric_limits<int>::min();
    Canvas canvas(8, 8);
    for (const double ratio : {0.0, 1.0, -1.0, 1e300, 1e-300, std::numeric_limits<double>::quiet_NaN(),
                               std::numeric_limits<double>::infinity()}) {
        for (const int extent : {1, 7, highest}) {
            for (const int place : {0, highest, lowest}) {
                OpenFrame frame(5, 3);
                EXPECT_EQ(frame.init(), 255);
                frame.ratioYx = ratio;
                // Whatever becomes of it: neither undefined arithmetic nor pixels elsewhere.
                frame.print(canvas.dc(), RECT{}, nullptr, nullptr, nullptr, 0, 0, extent, extent, place, place, nullptr,
                            2);
                frame.printColor(canvas.dc(), nullptr, nullptr, nullptr, 0, extent, 1, place, 0, nullptr, 2);
                ReportCapture::take();
            }
        }
    }
}

TEST_P(CCsFrameMemoryTest, PrintColorRotatesTheChannels) {
    OpenFrame frame(5, 3);
    EXPECT_EQ(frame.init(), 255);
    fillPattern(frame);
    setPixel(frame, 0, 0, 0x000000FF);  // pure blue: bytes 255, 0, 0, 0
    Canvas canvas(5, 3);
    EXPECT_EQ(frame.printColor(canvas.dc(), nullptr, nullptr, nullptr, 0, 5, 3, 0, 0, nullptr, 2), 255);
    EXPECT_EQ(canvas.pixel(0, 0) & 0xFFFFFFU, 0xFF0000U);  // red
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 5; ++x) {
            if (x == 0 && y == 0) continue;
            const std::uint32_t source = pattern(x, y);
            const std::uint32_t blue = source & 0xFFU;
            const std::uint32_t green = (source >> 8U) & 0xFFU;
            const std::uint32_t red = (source >> 16U) & 0xFFU;
            ASSERT_EQ(canvas.pixel(x, y) & 0xFFFFFFU, green | (red << 8U) | (blue << 16U)) << x << ' ' << y;
        }
    }
    EXPECT_EQ(frame.wbitmapinfoPtr_->bmiHeader.biBitCount, 32);
    EXPECT_EQ(pixelOf(frame, 1, 1), pattern(1, 1));
    expectNoReport();
}

TEST_F(CCsFrameTest, PrintColorDrawsTheOverlaysOnThePage) {
    OpenFrame frame(6, 3);
    EXPECT_EQ(frame.init(), 255);
    Canvas canvas(40, 40);
    const TestFont font(-30);
    HGDIOBJ before = GetCurrentObject(canvas.dc(), OBJ_FONT);
    CCs2dTrafo trafo;
    trafo.setSizes(6, 3, 100, 50, 1.0, 1.0, 7, 8);
    OverlayDouble overlay("main", &log);
    OverlayDouble text("text", &log);
    std::vector<HGDIOBJ> fonts;
    for (OverlayDouble* each : {&overlay, &text}) {
        each->onRender = [&](const RenderCall& call) {
            fonts.push_back(GetCurrentObject(call.dc, OBJ_FONT));
            CCs2dTrafo expected(trafo);
            expected.setDestSizes(12, 6, aspectOf(call.dc), 2, 6);
            double m[6];
            double e[6];
            call.imageTrafo->getImgToDsp(m[0], m[1], m[2], m[3], m[4], m[5]);
            expected.getImgToDsp(e[0], e[1], e[2], e[3], e[4], e[5]);
            EXPECT_EQ(std::vector<double>(m, m + 6), std::vector<double>(e, e + 6));
            call.outputTrafo->getImgToDsp(m[0], m[1], m[2], m[3], m[4], m[5]);
            EXPECT_EQ(std::vector<double>(m, m + 6), (std::vector<double>{2, 0, 0, 2, 2, 6}));
            EXPECT_EQ(call.width, 12);
            EXPECT_EQ(call.height, 6);
            EXPECT_EQ(call.offsetX, 0);
            EXPECT_EQ(call.offsetY, 0);
            EXPECT_EQ(call.dc, canvas.dc());
        };
    }
    const auto print = [&](CCsOverlay* drawn, CCsOverlay* drawnText, CCs2dTrafo* given, HFONT givenFont, int mode) {
        log.clear();
        fonts.clear();
        EXPECT_EQ(frame.printColor(canvas.dc(), drawn, drawnText, given, 0x112233, 12, 12, 2, 3, givenFont, mode), 255);
        EXPECT_EQ(GetCurrentObject(canvas.dc(), OBJ_FONT), before);
        return log;
    };
    EXPECT_EQ(print(&overlay, &text, &trafo, font.get(), 2), (CallLog{"main.render", "text.render"}));
    EXPECT_EQ(fonts, (std::vector<HGDIOBJ>{before, font.get()}));
    EXPECT_EQ(overlay.renders.back().color, 0x112233U);
    EXPECT_EQ(overlay.renders.back().mode, 2);
    EXPECT_EQ(text.renders.back().color, 0xFFFFFFU);
    EXPECT_EQ(text.renders.back().mode, 2);
    EXPECT_EQ(print(&overlay, &text, &trafo, font.get(), 3), (CallLog{"main.render", "text.render"}));
    EXPECT_EQ(text.renders.back().color, 0x00FFFFU);
    EXPECT_EQ(text.renders.back().mode, 3);
    EXPECT_EQ(print(&overlay, &text, &trafo, nullptr, 3), (CallLog{"main.render"}));
    EXPECT_EQ(print(nullptr, &text, &trafo, font.get(), 3), (CallLog{"text.render"}));
    EXPECT_EQ(print(&overlay, &text, nullptr, font.get(), 3), (CallLog{}));
    EXPECT_EQ(print(nullptr, nullptr, &trafo, font.get(), 3), (CallLog{}));
    expectNoReport();
}

// ---------------------------------------------------------------------------------------- free-standing bitmaps

namespace {

struct FreeBlock {
    void operator()(BITMAPINFO* block) const { delete[] reinterpret_cast<unsigned char*>(block); }
};
using Dib = std::unique_ptr<BITMAPINFO, FreeBlock>;

const unsigned char* pixelsOf(const Dib& dib) {
    return reinterpret_cast<const unsigned char*>(dib.get()) + sizeof(BITMAPINFO);
}

void expectHeader(const Dib& dib, int width, int height, int bits) {
    const BITMAPINFOHEADER& header = dib->bmiHeader;
    EXPECT_EQ(header.biSize, 40U);
    EXPECT_EQ(header.biWidth, width);
    EXPECT_EQ(header.biHeight, height);
    EXPECT_EQ(header.biPlanes, 1);
    EXPECT_EQ(header.biBitCount, bits);
    EXPECT_EQ(header.biCompression, 0U);
    EXPECT_EQ(header.biSizeImage, 0U);
    EXPECT_EQ(header.biXPelsPerMeter, 3000);
    EXPECT_EQ(header.biYPelsPerMeter, 3000);
    EXPECT_EQ(header.biClrUsed, 0U);
    EXPECT_EQ(header.biClrImportant, 0U);
}

}  // namespace

TEST_P(CCsFrameMemoryTest, MakeDibGivesThreeBytesAPixelBottomLineFirst) {
    CCsFrame frame(8, 3);
    EXPECT_EQ(frame.init(), 255);
    fillPattern(frame);
    BITMAPINFO* result = nullptr;
    EXPECT_EQ(frame.MakeDIB(result, nullptr, nullptr, nullptr, 8, 3, nullptr, nullptr, false, 0, 0), 255);
    const Dib dib(result);
    expectHeader(dib, 8, 3, 24);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 8; ++x) {
            const unsigned char* pixel = pixelsOf(dib) + 3 * ((2 - y) * 8 + x);
            const std::uint32_t source = pattern(x, y);
            ASSERT_EQ(pixel[0], source & 0xFFU);
            ASSERT_EQ(pixel[1], (source >> 8U) & 0xFFU);
            ASSERT_EQ(pixel[2], (source >> 16U) & 0xFFU);
        }
    }
    expectNoReport();
}

TEST_F(CCsFrameTest, MakeDibCopiesThreeBytesAPixelAlsoOfRowsWithPadding) {
    CCsFrame frame(5, 3);
    EXPECT_EQ(frame.init(), 255);
    fillPattern(frame);
    BITMAPINFO* result = nullptr;
    EXPECT_EQ(frame.MakeDIB(result, nullptr, nullptr, nullptr, 5, 3, nullptr, nullptr, false, 0, 0), 255);
    const Dib dib(result);
    expectHeader(dib, 5, 3, 24);
    // The bitmap's rows are 16 bytes long; the block holds its first 45 bytes as they lie.
    for (int i = 0; i < 45; ++i) {
        const int row = i / 16;
        const int column = i % 16;
        const std::uint32_t source = column < 15 ? pattern(column / 3, 2 - row) : 0;
        const std::uint32_t expected =
            column < 15 ? (source >> (8U * static_cast<unsigned int>(column % 3))) & 0xFFU : 0;
        ASSERT_EQ(pixelsOf(dib)[i], expected) << i;
    }
}

TEST_F(CCsFrameTest, MakeDibDeliberatelyCopiesThreeQuartersOf32Bits) {
    CCsFrame frame(8, 4);
    EXPECT_EQ(frame.init(), 255);
    fillPattern(frame);
    BITMAPINFO* result = nullptr;
    EXPECT_EQ(frame.MakeDIB(result, nullptr, nullptr, nullptr, 8, 4, nullptr, nullptr, true, 0, 0), 255);
    const Dib dib(result);
    expectHeader(dib, 8, 4, 32);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 8; ++x) {
            std::uint32_t value = 0;
            std::memcpy(&value, pixelsOf(dib) + 4 * ((3 - y) * 8 + x), sizeof value);
            // The first three of the four rows in memory: the top one of the picture is missing.
            ASSERT_EQ(value & 0xFFFFFFU, y > 0 ? pattern(x, y) & 0xFFFFFFU : 0U) << x << ' ' << y;
        }
    }
}

TEST_F(CCsFrameTest, MakeDibPrintsWithTheOverlays) {
    CCsFrame frame(6, 3);
    EXPECT_EQ(frame.init(), 255);
    const TestFont selected(-20);
    const TestFont textFont(-30);
    CCs2dTrafo trafo;
    trafo.setSizes(6, 3, 100, 50, 1.0, 1.0, 7, 8);
    OverlayDouble overlay("main", &log);
    OverlayDouble text("text", &log);
    std::vector<HGDIOBJ> fonts;
    for (OverlayDouble* each : {&overlay, &text}) {
        each->onRender = [&](const RenderCall& call) {
            fonts.push_back(GetCurrentObject(call.dc, OBJ_FONT));
            EXPECT_EQ(call.mode, 3);
            EXPECT_EQ(call.width, 12);
            EXPECT_EQ(call.height, 8);
            EXPECT_EQ(call.offsetX, 0);
            EXPECT_EQ(call.offsetY, 0);
            HBRUSH brush = CreateSolidBrush(RGB(9, 8, 7));
            HRGN region = CreateRectRgn(0, 7, 2, 8);
            FillRgn(call.dc, region, brush);
            DeleteObject(region);
            DeleteObject(brush);
        };
    }
    BITMAPINFO* result = nullptr;
    EXPECT_EQ(frame.MakeDIB(result, &overlay, &text, &trafo, 12, 8, selected.get(), textFont.get(), false, 0x112233,
                            0x445566),
              255);
    const Dib dib(result);
    EXPECT_EQ(log, (CallLog{"main.render", "text.render"}));
    EXPECT_EQ(fonts, (std::vector<HGDIOBJ>{selected.get(), textFont.get()}));
    EXPECT_EQ(overlay.renders[0].color, 0x112233U);
    EXPECT_EQ(text.renders[0].color, 0x445566U);
    // The drawn bottom left corner comes first: blue, green, red.
    const std::vector<unsigned char> start(pixelsOf(dib), pixelsOf(dib) + 7);
    EXPECT_EQ(start, (std::vector<unsigned char>{7, 8, 9, 7, 8, 9, 0}));
    expectNoReport();
}

TEST_F(CCsFrameTest, MakeDibOfAFrameThatIsNotValidIsBlack) {
    CCsFrame frame(8, 3);
    BITMAPINFO* result = nullptr;
    EXPECT_EQ(frame.MakeDIB(result, nullptr, nullptr, nullptr, 8, 3, nullptr, nullptr, false, 0, 0), 255);
    const Dib dib(result);
    expectReport(notInitialised, 0, module, 581);
    expectHeader(dib, 8, 3, 24);
    for (int i = 0; i < 72; ++i) ASSERT_EQ(pixelsOf(dib)[i], 0);
}

TEST_F(CCsFrameTest, MakeDibRefusesSizesThatCannotBe) {
    constexpr int highest = std::numeric_limits<int>::max();
    constexpr int lowest = std::numeric_limits<int>::min();
    CCsFrame frame(8, 3);
    EXPECT_EQ(frame.init(), 255);
    struct Size {
        int width, height;
    };
    for (const Size size : {Size{0, 3}, Size{8, 0}, Size{-8, 3}, Size{8, -3}, Size{-8, -3}, Size{lowest, lowest},
                            Size{8, lowest}, Size{highest, -1}}) {
        BITMAPINFO* result = nullptr;
        EXPECT_EQ(
            frame.MakeDIB(result, nullptr, nullptr, nullptr, size.width, size.height, nullptr, nullptr, true, 0, 0), 0);
        const Dib dib(result);
        expectReport(L"CreateDIBSection failed", 0, module, 821);
        ASSERT_NE(dib, nullptr);
        expectHeader(dib, size.width, size.height, 32);
    }
    if (!zoltest::canFailNothrowNew()) return;
    const zoltest::NothrowNewLimit limit(1U << 30U);
    for (const Size size : {Size{highest, highest}, Size{65536, 65536}}) {
        BITMAPINFO* result = reinterpret_cast<BITMAPINFO*>(&frame);
        EXPECT_EQ(
            frame.MakeDIB(result, nullptr, nullptr, nullptr, size.width, size.height, nullptr, nullptr, true, 0, 0), 0);
        expectReport(L"CreateDIBSection failed", 0, module, 821);
        EXPECT_EQ(result, nullptr);
    }
}

}  // namespace
