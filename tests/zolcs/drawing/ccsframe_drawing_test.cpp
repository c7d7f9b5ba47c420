// What frames ask of GDI when they are painted and printed, and what becomes of them where it refuses.
#include "support/drawing.h"
#include "support/overlay_double.h"
#include "support/report_capture.h"

#include "zolcs/ccsframe.h"
#include "zolcs/ccsgroup.h"
#include "zolcs/ccstext.h"

#include <memory>

namespace {

using zoltest::calls;
using zoltest::drawn;
using zoltest::errorReport;
using zoltest::GdiRecorder;
using zoltest::OverlayDouble;
using zoltest::Rendering;
using zoltest::Report;
using zoltest::ReportCapture;

constexpr const wchar_t* module = L"source\\zolcs\\ccsframe";
constexpr const wchar_t* paintModule = L"source\\zolcs\\ccsframe_safety";

class FrameDrawing : public zoltest::DrawingTest {
protected:
    FrameDrawing() : frame(20, 10) {
        EXPECT_EQ(frame.init(), 255);
        EXPECT_EQ(frame.setSize(-1, -1, 3, 4), 255);
        frame.unmapBitmap();
        main.setTransformable_(0);
        for (OverlayDouble* each : {&main, &text, &extra}) {
            each->onRender = [this](const zoltest::RenderCall& call) {
                ++rendered;
                CCsBox::render(5, 5, call.dc);  // the library's own calls are recorded
            };
        }
    }

    /// What painting the whole frame with all three overlays does.
    std::string painted(int expected, const std::string& failing = {}) {
        Rendering rendering;
        rendering.prepare = [&](GdiRecorder& recorder) { recorder.failing = failing; };
        return drawn(rendering, [&](HDC dc) {
            EXPECT_EQ(frame.paint(dc, &main, &view, 7, -1, -1, -1, -1, &text, 8, font.get(), &extra), expected);
        });
    }

    /// What printing on the page of 40 by 20 at (5, 6) does.
    std::string printed(int expected, bool inColour, const Rendering& rendering) {
        return drawn(rendering, [&](HDC dc) {
            const int result =
                inColour ? frame.printColor(dc, &main, &text, &view, 7, 40, 20, 5, 6, font.get(), 2)
                         : frame.print(dc, {1, 2, 3, 4}, &main, &text, &view, 7, 8, 40, 20, 5, 6, font.get(), 2);
            EXPECT_EQ(result, expected);
            if (!inColour) frame.unlock();
        });
    }
    std::string printed(int expected, bool inColour, const std::string& failing = {}) {
        Rendering rendering;
        rendering.prepare = [&](GdiRecorder& recorder) { recorder.failing = failing; };
        return printed(expected, inColour, rendering);
    }

    static void expectReport(const wchar_t* message, long number, const wchar_t* file, int line) {
        EXPECT_EQ(ReportCapture::take(), (std::vector<Report>{errorReport(message, number, file, line)}));
    }
    static void expectNoReport() { EXPECT_EQ(ReportCapture::take(), std::vector<Report>()); }

    const std::string drawing = zoltest::square(2, 2);  // of each overlay
    ReportCapture capture;
    const zoltest::TestFont font{-30};
    CCsFrame frame;
    OverlayDouble main;
    OverlayDouble text;
    OverlayDouble extra;
    int rendered = 0;
};

TEST_F(FrameDrawing, PaintsInAContextOfItsOwn) {
    EXPECT_EQ(painted(255), calls({"create device context", "create bitmap 20 -10 32", "select bitmap 20 -10 32",
                                   "select caller's font"}) +
                                drawing + calls({"select caller's font", "select unknown object"}) + drawing +
                                calls({"select caller's font"}) + drawing +
                                calls({"copy 3 4 20 10 from 0 0", "select caller's font", "select first bitmap",
                                       "delete device context", "delete bitmap 20 -10 32"}));
    expectNoReport();
    EXPECT_EQ(rendered, 3);
}

TEST_F(FrameDrawing, CopiesTheAreaThatIsAskedFor) {
    const std::string all = drawn({}, [&](HDC dc) {
        EXPECT_EQ(frame.paint(dc, nullptr, nullptr, 0, 6, 3, 8, 11, nullptr, 0, nullptr, nullptr), 255);
    });
    EXPECT_NE(all.find("copy 8 11 6 3 from 5 7\n"), std::string::npos) << all;
}

TEST_F(FrameDrawing, ACopyThatFailsIsReported) {
    const std::string all = painted(0, "copy");
    EXPECT_NE(all.find("fail to copy 3 4 20 10 from 0 0\n"), std::string::npos) << all;
    expectReport(L"BitBlt failed", 0, paintModule, 129);
    EXPECT_EQ(rendered, 3);
    EXPECT_EQ(all.substr(all.find("delete device")), calls({"delete device context", "delete bitmap 20 -10 32"}));
}

TEST_F(FrameDrawing, WithoutContextOrBitmapNoOverlayIsPainted) {
    for (const char* failing : {"create device context", "create bitmap", "select bitmap"}) {
        const std::string all = painted(0, failing);
        EXPECT_NE(all.find(std::string("fail to ") + failing), std::string::npos) << all;
        EXPECT_EQ(all.find("copy"), std::string::npos) << all;
        expectReport(L"BitBlt failed", 0, paintModule, 129);
    }
    EXPECT_EQ(rendered, 0);
    EXPECT_NE(painted(255).find("copy"), std::string::npos);  // and it recovers
}

TEST_F(FrameDrawing, PrintsByOneStretch) {
    EXPECT_EQ(printed(255, false), calls({"stretch mode 3", "stretch 5 6 40 20 from 0 0 20 10 of 32 bits"}) + drawing +
                                       calls({"select unknown object"}) + drawing + calls({"select caller's font"}));
    EXPECT_EQ(printed(255, true), calls({"stretch mode 3", "stretch 5 6 40 20 from 0 0 20 10 of 24 bits"}) + drawing +
                                      calls({"select unknown object"}) + drawing + calls({"select caller's font"}));
    expectNoReport();
}

TEST_F(FrameDrawing, PrintingReportsWhatGdiRefuses) {
    EXPECT_EQ(printed(0, false, "stretch mode"), "fail to stretch mode 3\n");
    expectReport(L"SetStretchBltMode function failed", 0, module, 606);
    EXPECT_EQ(printed(0, true, "stretch mode"), "fail to stretch mode 3\n");
    expectReport(L"SetStretchBltMode function failed", 0, module, 705);
    EXPECT_EQ(printed(0, false, "stretch 5"),
              calls({"stretch mode 3", "fail to stretch 5 6 40 20 from 0 0 20 10 of 32 bits"}));
    expectReport(L"StretchDIBits didn't set all scanlines", -1, module, 615);
    EXPECT_EQ(printed(0, true, "stretch 5"),
              calls({"stretch mode 3", "fail to stretch 5 6 40 20 from 0 0 20 10 of 24 bits"}));
    expectReport(L"StretchDIBits didn't set all scanlines", -1, module, 734);
    EXPECT_EQ(rendered, 0);
    EXPECT_NE(printed(255, false).find("of 32 bits"), std::string::npos);  // the header has its bits back
}

TEST_F(FrameDrawing, AnyOtherNumberOfLinesIsASuccess) {
    for (const int lines : {0, 1, -2}) {
        Rendering rendering;
        rendering.prepare = [&](GdiRecorder& recorder) { recorder.linesDone = lines; };
        for (const bool inColour : {false, true}) {
            rendered = 0;
            printed(255, inColour, rendering);
            EXPECT_EQ(rendered, 2) << lines;
        }
    }
    expectNoReport();
}

TEST_F(FrameDrawing, ABitmapThatIsRefusedIsReported) {
    Rendering rendering;
    rendering.prepare = [](GdiRecorder& recorder) { recorder.failing = "create bitmap"; };
    const unsigned int before = zoltest::gdiObjectCount();
    BITMAPINFO* result = nullptr;
    EXPECT_EQ(drawn(rendering,
                    [&](HDC /*dc*/) {
                        EXPECT_EQ(frame.MakeDIB(result, &main, nullptr, &view, 12, 9, nullptr, nullptr, false, 0, 0),
                                  0);
                    }),
              "fail to create bitmap 12 9 24\n");
    const std::unique_ptr<unsigned char[]> block(reinterpret_cast<unsigned char*>(result));
    expectReport(L"CreateDIBSection failed", 0, module, 821);
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(result->bmiHeader.biHeight, 9);
    EXPECT_EQ(rendered, 0);
    EXPECT_EQ(zoltest::gdiObjectCount(), before);
}

TEST_F(FrameDrawing, ABitmapOfItsOwnWithoutAContextIsBlack) {
    Rendering rendering;
    rendering.prepare = [](GdiRecorder& recorder) { recorder.failing = "create device context"; };
    BITMAPINFO* result = nullptr;
    drawn(rendering, [&](HDC /*dc*/) {
        EXPECT_EQ(frame.MakeDIB(result, &main, nullptr, &view, 4, 2, font.get(), nullptr, true, 0, 0), 255);
    });
    const std::unique_ptr<unsigned char[]> block(reinterpret_cast<unsigned char*>(result));
    expectReport(L"SetStretchBltMode function failed", 0, module, 606);
    EXPECT_EQ(rendered, 0);
    for (int i = 0; i < 4 * 2 * 4; ++i) EXPECT_EQ(block[static_cast<std::size_t>(44 + i)], 0);
}

TEST_F(FrameDrawing, MakesABitmapWithBothFonts) {
    BITMAPINFO* result = nullptr;
    const std::string all = drawn({}, [&](HDC /*dc*/) {
        EXPECT_EQ(frame.MakeDIB(result, &main, &text, &view, 12, 9, font.get(), font.get(), true, 0, 0), 255);
    });
    const std::unique_ptr<unsigned char[]> block(reinterpret_cast<unsigned char*>(result));
    EXPECT_EQ(all, calls({"create bitmap 12 9 32", "create device context", "select unknown object",
                          "select bitmap 12 9 32", "stretch mode 3", "stretch 0 1 12 6 from 0 0 20 10 of 32 bits"}) +
                       drawing + calls({"select unknown object"}) + drawing +
                       calls({"select unknown object", "select first bitmap", "select caller's font",
                              "delete device context", "delete bitmap 12 9 32"}));
    expectNoReport();
}

/// Deliberately odd, and relied upon: a printed text lies lower by the top of the area, though its position counts the
/// printed frame's place already; to the side it does not.
TEST_F(FrameDrawing, PrintedTextsLieLowerByTheTopOfTheArea) {
    CCs2dTrafo page = zoltest::identityView();
    page.setSizes(20, 10, 20, 10, 1.0, 1.0, 0, 0);
    CCsText note(&page, 4, 3, L"x", 0, false);
    const auto positions = [&](const RECT& area) {
        const std::string all = drawn({}, [&](HDC dc) {
            EXPECT_EQ(frame.print(dc, area, nullptr, &note, &page, 0, 0, 40, 20, 5, 6, nullptr, 2), 255);
            frame.unlock();
        });
        return all.substr(all.rfind("text ", all.size() - 2));
    };
    EXPECT_EQ(positions({0, 0, 40, 20}), "text 14 13 \"x\"\n");  // (4.5, 3.5) doubled, from (5, 6)
    EXPECT_EQ(positions({5, 6, 45, 26}), "text 14 19 \"x\"\n");
}

}  // namespace
