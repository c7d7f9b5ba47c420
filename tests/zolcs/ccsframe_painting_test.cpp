// Painting frames, and copies of them.
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

// ---------------------------------------------------------------------------------------- painting

TEST_P(CCsFrameMemoryTest, PaintCopiesTheAreaClippedToTheFrame) {
    OpenFrame frame(9, 7);
    EXPECT_EQ(frame.init(), 255);
    EXPECT_EQ(frame.setSize(9, 7, 10, 20), 255);
    fillPattern(frame);
    struct Area {
        int width, height, x, y;       // asked for
        int left, top, right, bottom;  // copied, in the client
    };
    constexpr int highest = std::numeric_limits<int>::max();
    constexpr int lowest = std::numeric_limits<int>::min();
    for (const Area area : {
             Area{-1, -1, -1, -1, 10, 20, 19, 27},
             Area{4, -1, -1, -1, 10, 20, 14, 27},
             Area{-1, 3, -1, -1, 10, 20, 19, 23},
             Area{-1, -1, 12, -1, 12, 20, 19, 27},
             Area{-1, -1, -1, 22, 10, 22, 19, 27},
             Area{3, 2, 12, 22, 12, 22, 15, 24},
             Area{100, 100, 0, 0, 10, 20, 19, 27},
             Area{12, 100, 0, 0, 10, 20, 12, 27},
             Area{100, 22, 0, 0, 10, 20, 19, 22},
             Area{100, 100, 18, 26, 18, 26, 19, 27},
             Area{highest, highest, 12, 22, 12, 22, 19, 27},
             Area{5, 5, 8, 18, 10, 20, 13, 23},
             Area{highest, highest, -50, -60, 10, 20, 19, 27},
         }) {
        Canvas canvas(40, 40);
        EXPECT_EQ(frame.paint(canvas.dc(), nullptr, nullptr, 0, area.width, area.height, area.x, area.y, nullptr, 0,
                              nullptr, nullptr),
                  255);
        for (int y = 0; y < 40; ++y) {
            for (int x = 0; x < 40; ++x) {
                const bool copied = x >= area.left && x < area.right && y >= area.top && y < area.bottom;
                ASSERT_EQ(canvas.pixel(x, y), copied ? pattern(x - 10, y - 20) : 0xCDCDCDCDU) << x << ' ' << y;
            }
        }
    }
    OverlayDouble overlay("o", &log);
    for (const Area area :
         {Area{0, 5, 12, 22, 0, 0, 0, 0}, Area{5, 0, 12, 22, 0, 0, 0, 0}, Area{-2, 5, 12, 22, 0, 0, 0, 0},
          Area{5, 5, 19, 22, 0, 0, 0, 0}, Area{5, 5, 12, 27, 0, 0, 0, 0}, Area{5, 5, 5, 22, 0, 0, 0, 0},
          Area{5, 5, 12, 15, 0, 0, 0, 0}, Area{highest, highest, highest, highest, 0, 0, 0, 0},
          Area{highest, highest, lowest, lowest, 0, 0, 0, 0}, Area{lowest, lowest, 5, 5, 0, 0, 0, 0}}) {
        // Nothing to draw is a success; even a device context is not needed.
        EXPECT_EQ(frame.paint(nullptr, &overlay, nullptr, 0, area.width, area.height, area.x, area.y, &overlay, 0,
                              nullptr, &overlay),
                  255);
    }
    EXPECT_TRUE(log.empty());
    expectNoReport();
}

TEST_P(CCsFrameMemoryTest, PaintDrawsTheOverlaysInOrderWithTheirFonts) {
    OpenFrame frame(20, 10);
    EXPECT_EQ(frame.init(), 255);
    EXPECT_EQ(frame.setSize(20, 10, 3, 4), 255);
    Canvas canvas(40, 40);
    const TestFont fontOfDc(-20);
    const TestFont textFont(-30);
    HGDIOBJ systemFont = SelectObject(canvas.dc(), fontOfDc.get());
    CCs2dTrafo trafo;
    OverlayDouble overlay("main", &log);
    OverlayDouble text("text", &log);
    OverlayDouble extra("extra", &log);
    overlay.setTransformable_(0);
    std::vector<HGDIOBJ> fonts;
    std::vector<HDC> contexts;
    for (OverlayDouble* each : {&overlay, &text, &extra}) {
        each->onRender = [&](const RenderCall& call) {
            fonts.push_back(GetCurrentObject(call.dc, OBJ_FONT));
            contexts.push_back(call.dc);
            ASSERT_NE(call.outputTrafo, nullptr);
            double m[6];
            call.outputTrafo->getImgToDsp(m[0], m[1], m[2], m[3], m[4], m[5]);
            EXPECT_EQ(std::vector<double>(m, m + 6), (std::vector<double>{1, 0, 0, 1, 0, 0}));
            EXPECT_EQ(GetCurrentObject(call.dc, OBJ_BITMAP), frame.hBitmap);
        };
    }
    EXPECT_EQ(frame.paint(canvas.dc(), &overlay, &trafo, 0x112233, 8, 5, 5, 6, &text, 0x445566, textFont.get(), &extra),
              255);
    EXPECT_EQ(log, (CallLog{"main.isTransformable", "main.render", "text.render", "extra.render"}));
    ASSERT_EQ(fonts.size(), 3U);
    EXPECT_EQ(fonts[0], fontOfDc.get());
    EXPECT_EQ(fonts[1], textFont.get());
    EXPECT_NE(fonts[2], fontOfDc.get());  // what the memory device context had to begin with
    EXPECT_NE(fonts[2], textFont.get());
    EXPECT_NE(contexts[0], canvas.dc());
    EXPECT_EQ(contexts[1], contexts[0]);
    EXPECT_EQ(contexts[2], contexts[0]);
    const auto expectCall = [&](const OverlayDouble& drawn, unsigned long color) {
        ASSERT_EQ(drawn.renders.size(), 1U);
        const RenderCall& call = drawn.renders.front();
        EXPECT_EQ(call.imageTrafo, &trafo);
        EXPECT_EQ(call.color, color);
        EXPECT_EQ(call.mode, 1);
        EXPECT_EQ(call.width, 8);
        EXPECT_EQ(call.height, 5);
        EXPECT_EQ(call.offsetX, 0);
        EXPECT_EQ(call.offsetY, 0);
    };
    expectCall(overlay, 0x112233);
    expectCall(text, 0x445566);
    expectCall(extra, 0x445566);
    EXPECT_EQ(GetCurrentObject(canvas.dc(), OBJ_FONT), fontOfDc.get());

    // Without the others the extra overlay finds the device context's font.
    fonts.clear();
    EXPECT_EQ(frame.paint(canvas.dc(), nullptr, nullptr, 0, -1, -1, -1, -1, nullptr, 0, textFont.get(), &extra), 255);
    ASSERT_EQ(fonts.size(), 1U);
    EXPECT_EQ(fonts[0], fontOfDc.get());
    EXPECT_EQ(extra.renders.back().imageTrafo, nullptr);
    EXPECT_EQ(extra.renders.back().width, 20);
    EXPECT_EQ(extra.renders.back().height, 10);
    SelectObject(canvas.dc(), systemFont);
    expectNoReport();
}

TEST_F(CCsFrameTest, PaintLeavesOverlaysOut) {
    CCsFrame frame(20, 10);
    EXPECT_EQ(frame.init(), 255);
    Canvas canvas(20, 10);
    const TestFont font(-20);
    CCs2dTrafo trafo;
    OverlayDouble overlay("main", &log);
    OverlayDouble text("text", &log);
    const auto paint = [&](CCs2dTrafo* given, CCsOverlay* givenText, HFONT givenFont) {
        log.clear();
        EXPECT_EQ(frame.paint(canvas.dc(), &overlay, given, 0, -1, -1, -1, -1, givenText, 0, givenFont, nullptr), 255);
        return log;
    };
    EXPECT_EQ(paint(&trafo, nullptr, nullptr), (CallLog{"main.isTransformable"}));  // it is transformable
    overlay.setTransformable_(0);
    EXPECT_EQ(paint(&trafo, nullptr, nullptr), (CallLog{"main.isTransformable", "main.render"}));
    EXPECT_EQ(paint(nullptr, nullptr, nullptr), (CallLog{"main.isTransformable"}));
    EXPECT_EQ(paint(nullptr, &text, nullptr), (CallLog{"main.isTransformable"}));
    EXPECT_EQ(paint(nullptr, &text, font.get()), (CallLog{"main.isTransformable", "text.render"}));
    EXPECT_EQ(paint(nullptr, nullptr, font.get()), (CallLog{"main.isTransformable"}));
}

TEST_P(CCsFrameMemoryTest, PaintedOverlaysStayInTheFrame) {
    CCsFrame frame(8, 4);
    EXPECT_EQ(frame.init(), 255);
    fillPattern(frame);
    Canvas canvas(8, 4);
    OverlayDouble overlay;
    overlay.onRender = [](const RenderCall& call) {
        HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3));
        HRGN region = CreateRectRgn(2, 1, 5, 3);
        HGDIOBJ before = SelectObject(call.dc, brush);
        PaintRgn(call.dc, region);
        SelectObject(call.dc, before);
        DeleteObject(region);
        DeleteObject(brush);
    };
    EXPECT_EQ(frame.paint(canvas.dc(), nullptr, nullptr, 0, -1, -1, -1, -1, nullptr, 0, nullptr, &overlay), 255);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 8; ++x) {
            const bool drawn = x >= 2 && x < 5 && y >= 1 && y < 3;
            ASSERT_EQ(canvas.pixel(x, y), drawn ? 0x010203U : pattern(x, y));
            ASSERT_EQ(pixelOf(frame, x, y), drawn ? 0x010203U : pattern(x, y));
        }
    }
}

TEST_P(CCsFrameMemoryTest, PaintFailsWithoutDeviceContextOrPixels) {
    OpenFrame frame(20, 10);
    EXPECT_EQ(frame.init(), 255);
    EXPECT_EQ(frame.paint(nullptr, nullptr, nullptr, 0, -1, -1, -1, -1, nullptr, 0, nullptr, nullptr), 0);
    expectReport(L"BitBlt failed", 0, paintModule, 129);
    EXPECT_EQ(frame.hBitmap == nullptr, GetParam());

    Canvas canvas(20, 10);
    OverlayDouble overlay("o", &log);
    EXPECT_EQ(frame.setSize(0, 10, -1, -1), 0);
    ReportCapture::take();
    frame.width = 20;  // an area to paint, but no pixels
    EXPECT_EQ(frame.paint(canvas.dc(), nullptr, nullptr, 0, -1, -1, -1, -1, nullptr, 0, nullptr, &overlay), 0);
    expectReport(L"BitBlt failed", 0, paintModule, 129);
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(canvas.pixel(0, 0), 0xCDCDCDCDU);
}

// ---------------------------------------------------------------------------------------- copies

TEST_P(CCsFrameMemoryTest, CopyHasPixelsOfItsOwn) {
    OpenFrame frame(8, 3);
    EXPECT_EQ(frame.init(), 255);
    EXPECT_EQ(frame.setSize(8, 3, 5, 6), 255);
    fillPattern(frame);
    OpenFrame copy(frame);
    const std::unique_ptr<CCsFrame> clone(frame.NewInstance());
    EXPECT_EQ(copy.getWidth(), 8);
    EXPECT_EQ(copy.getHeight(), 3);
    EXPECT_EQ(copy.getPitch(), 8);
    EXPECT_EQ(copy.x, 5);
    EXPECT_EQ(copy.y, 6);
    EXPECT_EQ(copy.getType(), CCS_RGB8);
    EXPECT_EQ(copy.valid(), 1);
    EXPECT_EQ(copy.hwnd, frame.hwnd);
    EXPECT_EQ(copy.getRatioYx(), 0.0);  // deliberately not copied
    EXPECT_NE(copy.wbitmapinfoPtr_, frame.wbitmapinfoPtr_);
    EXPECT_EQ(std::memcmp(copy.wbitmapinfoPtr_, frame.wbitmapinfoPtr_, sizeof(BITMAPINFO)), 0);
    EXPECT_NE(copy.hBitmap, frame.hBitmap);
    EXPECT_NE(copy.GetMemBuffer(), frame.GetMemBuffer());
    setPixel(copy, 2, 1, 0x998877);
    EXPECT_EQ(pixelOf(frame, 2, 1), pattern(2, 1));
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(clone->getWidth(), 8);
    EXPECT_EQ(clone->valid(), 1);
    expectNoReport();
}

TEST_F(CCsFrameTest, CopyOfAFrameThatIsNotValidReportsThat) {
    const OpenFrame frame(8, 3);
    const OpenFrame copy(frame);
    expectReport(notInitialised, 0, module, 377);
    EXPECT_EQ(copy.getWidth(), 8);
    EXPECT_EQ(copy.valid(), 0);
    EXPECT_EQ(copy.wbitmapinfoPtr_, nullptr);
    EXPECT_EQ(copy.GetMemBuffer(), nullptr);
}

TEST_F(CCsFrameTest, CopyWithoutMemoryHasNoPixels) {
    OpenFrame frame(8, 3);
    EXPECT_EQ(frame.init(), 255);
    const NoPixelMemory none;
    const OpenFrame copy(frame);
    EXPECT_EQ(copy.valid(), 1);
    EXPECT_EQ(copy.GetMemBuffer(), nullptr);
    expectNoReport();
}

TEST_F(CCsFrameTest, AssignmentIsDeliberatelyShallow) {
    OpenFrame frame(8, 3);
    EXPECT_EQ(frame.init(), 255);
    alignas(OpenFrame) unsigned char storage[sizeof(OpenFrame)];
    auto& copy = *new (storage) OpenFrame;  // its destructor never runs: everything is the source's
    copy = frame;
    EXPECT_EQ(copy.getWidth(), 8);
    EXPECT_EQ(copy.getHeight(), 3);
    EXPECT_EQ(copy.getPitch(), 8);
    EXPECT_EQ(copy.getRatioYx(), 1.0);
    EXPECT_EQ(copy.valid(), 1);
    EXPECT_EQ(copy.hBitmap, frame.hBitmap);
    EXPECT_EQ(copy.wbitmapinfoPtr_, frame.wbitmapinfoPtr_);
    EXPECT_EQ(copy.GetMemBuffer(), frame.GetMemBuffer());
}

}  // namespace
