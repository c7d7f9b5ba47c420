// What rasters ask of GDI when annotations are drawn to be burnt in, and what becomes of them where it refuses.
#include "support/drawing.h"
#include "support/report_capture.h"

#include "zolcs/ccsmap.h"
#include "zolcs/ccsraster.h"
#include "zolcs/ccstext.h"

#include <memory>

namespace {

using zoltest::calls;
using zoltest::drawn;
using zoltest::errorReport;
using zoltest::GdiRecorder;
using zoltest::Rendering;
using zoltest::Report;
using zoltest::ReportCapture;

constexpr const wchar_t* module = L"source\\zolcs\\ccsraster";

class RasterDrawing : public zoltest::DrawingTest {
protected:
    std::string made(int expected, bool inColour, CCsOverlay* overlay, HFONT font, const std::string& failing = {}) {
        Rendering rendering;
        rendering.prepare = [&](GdiRecorder& recorder) { recorder.failing = failing; };
        BITMAPINFO* result = nullptr;
        const std::string all = drawn(rendering, [&](HDC /*dc*/) {
            EXPECT_EQ(inColour ? raster.MakeDIBRgb8_(result, overlay, &view, font, 0x123456)
                               : raster.MakeDIBGrey12_(result, overlay, &view, font),
                      expected);
        });
        const std::unique_ptr<unsigned char[]> block(reinterpret_cast<unsigned char*>(result));
        EXPECT_EQ(block != nullptr, expected == 255);
        return all;
    }

    ReportCapture capture;
    const zoltest::TestFont font{-30};
    CCsRaster raster{5, 3, CCS_GREY12, 1.0, false, false};
};

TEST_F(RasterDrawing, TheWholePitchIsClearedBeforeTheOverlayIsDrawn) {
    CCsText text(&view, 1, 2, L"x", 0, false);
    const auto expected = [](const char* color) {
        std::string all = calls({
            "create bitmap 8 -3 32",
            "create device context",
            "select bitmap 8 -3 32",
            "select unknown object",
            "pattern 0 0 8 3 black",
            "background transparent",
            "text colour 0x000000",
            "text 2 1 \"x\"",
            "text 0 3 \"x\"",
            "text 0 1 \"x\"",
            "text 2 3 \"x\"",
            "text 1 1 \"x\"",
            "text 1 3 \"x\"",
            "text 0 2 \"x\"",
            "text 2 2 \"x\"",
        });
        all += color;
        return all + calls({
                         "text 1 2 \"x\"",
                         "select caller's font",
                         "select first bitmap",
                         "delete device context",
                         "delete bitmap 8 -3 32",
                     });
    };
    EXPECT_EQ(made(255, false, &text, font.get()), expected("text colour 0x00ffff\n"));
    EXPECT_EQ(made(255, true, &text, font.get()), expected("text colour 0x123456\n"));
    EXPECT_EQ(made(255, false, nullptr, nullptr), calls({
                                                      "create bitmap 8 -3 32",
                                                      "create device context",
                                                      "select bitmap 8 -3 32",
                                                      "pattern 0 0 8 3 black",
                                                      "select first bitmap",
                                                      "delete device context",
                                                      "delete bitmap 8 -3 32",
                                                  }));
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>());
}

TEST_F(RasterDrawing, WhatGdiRefusesIsReported) {
    CCsText text(&view, 1, 2, L"x", 0, false);
    const auto expectReport = [](const wchar_t* message, int line) {
        EXPECT_EQ(ReportCapture::take(), (std::vector<Report>{errorReport(message, 0, module, line)}));
    };
    EXPECT_EQ(made(0, false, &text, nullptr, "create bitmap"), "fail to create bitmap 8 -3 32\n");
    expectReport(L"CreateDIBSection failed", 515);
    EXPECT_EQ(made(0, true, &text, nullptr, "create bitmap"), "fail to create bitmap 8 -3 32\n");
    expectReport(L"CreateDIBSection failed", 596);
    for (const char* failing : {"create device context", "select bitmap"}) {
        EXPECT_EQ(made(0, false, &text, nullptr, failing).find("pattern"), std::string::npos);
        expectReport(L"CreateCompatibleDC failed", 521);
        EXPECT_EQ(made(0, true, &text, nullptr, failing).find("pattern"), std::string::npos);
        expectReport(L"CreateCompatibleDC failed", 602);
    }
}

TEST_F(RasterDrawing, PixelsStayWhereGdiRefuses) {
    const std::unique_ptr<IMap> map(MapFactory::CreateMap(MapFactory::Grey12));
    auto* const pixels = reinterpret_cast<std::uint16_t*>(raster.getOrigin());
    for (int i = 0; i < 8 * 3; ++i) pixels[i] = static_cast<std::uint16_t>(100 + i);
    for (const char* failing : {"create bitmap", "create device context"}) {
        Rendering rendering;
        rendering.prepare = [&](GdiRecorder& recorder) { recorder.failing = failing; };
        CCsText text(&view, 1, 2, L"x", 0, false);
        drawn(rendering, [&](HDC /*dc*/) {
            EXPECT_EQ(raster.burnInOverlay(*map, &text, 12, &view, nullptr, 11, false), 0);
            EXPECT_EQ(raster.burnInOverlay(*map, &text, &view, nullptr, 0xFFFFFFUL), 0);
        });
        EXPECT_EQ(ReportCapture::take().size(), 2U);
    }
    for (int i = 0; i < 8 * 3; ++i) EXPECT_EQ(pixels[i], 100 + i);
    raster.unlock();
}

}  // namespace
