// Annotations of every kind on their way through frames and rasters: painted, printed, taken along into bitmaps and
// burnt into the pixels.
#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsellipse.h"
#include "zolcs/ccsframe.h"
#include "zolcs/ccsgroup.h"
#include "zolcs/ccsline.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsraster.h"
#include "zolcs/ccstext.h"

#include "support/gdi_canvas.h"
#include "support/report_capture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace {

using zoltest::Canvas;

constexpr int side = 100;
constexpr std::uint32_t grey = 0x00404040;

/// A hundred display pixels a side for as many image pixels.
CCs2dTrafo identity() {
    CCs2dTrafo trafo;
    trafo.setSizes(side, side, side, side, 1.0, 1.0, 0, 0);
    return trafo;
}

/// A font whose letters have hard edges on every system.
class HardFont {
public:
    HardFont()
        : handle_(CreateFontW(-16, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                              CLIP_DEFAULT_PRECIS, NONANTIALIASED_QUALITY, DEFAULT_PITCH, L"DejaVu Sans")) {}
    ~HardFont() { DeleteObject(handle_); }
    HardFont(const HardFont&) = delete;
    HardFont& operator=(const HardFont&) = delete;

    [[nodiscard]] HFONT get() const { return handle_; }

private:
    HFONT handle_;
};

class OverlaysOnImages : public ::testing::Test {
protected:
    OverlaysOnImages() : objects_(zoltest::gdiObjectCount()) {
        // A line from 10 to 50 in row 20, a rectangle from 10 to 50 in rows 30 to 40, an ellipse in rows 50 to 70, a
        // text below row 75.
        group.append(*new CCsLine(&view, 10, 20, 50, 20, PS_SOLID));
        auto* const rectangle = new CCsLine(&view, 10, 30, 50, 30, 50, 40, 10, 40, PS_SOLID);
        rectangle->close();
        group.append(*rectangle);
        group.append(*new CCsEllipse(&view, CCsPoint(10, 50), CCsPoint(50, 70)));
        group.append(*new CCsText(&view, 10.0, 75.0, L"HI", 0, false));
    }
    ~OverlaysOnImages() override {
        EXPECT_EQ(zoltest::ReportCapture::take(), std::vector<zoltest::Report>());
        EXPECT_EQ(zoltest::gdiObjectCount(), objects_);
    }

    static std::unique_ptr<CCsFrame> greyFrame() {
        auto frame = std::make_unique<CCsFrame>(side, side);
        EXPECT_EQ(frame->init(), 255);
        auto* const pixels = reinterpret_cast<std::uint32_t*>(frame->getOrigin());
        std::fill_n(pixels, side * side, grey);
        return frame;
    }

    /// Places on the outlines of the first three figures, and places beside all of them.
    static constexpr POINT onFigures[] = {{10, 20}, {30, 20}, {49, 20}, {10, 35}, {30, 30}, {50, 35}};
    static constexpr POINT beside[] = {{5, 20}, {53, 20}, {30, 26}, {30, 35}, {30, 60}, {80, 80}, {5, 5}};

    zoltest::ReportCapture reports_;
    unsigned int objects_;
    CCs2dTrafo view = identity();
    CCsGroup group;
};

TEST_F(OverlaysOnImages, PaintedOverTheFrame) {
    const HardFont font;
    const Canvas canvas(side, side);
    const auto frame = greyFrame();
    // The first overlay is drawn only when it does not follow the image, the others always.
    EXPECT_EQ(frame->paint(canvas.dc(), &group, &view, 0x0000FF, -1, -1, -1, -1, nullptr, 0, font.get(), nullptr), 255);
    for (const POINT p : onFigures) EXPECT_EQ(canvas.pixel(p.x, p.y), grey) << p.x << ' ' << p.y;
    EXPECT_EQ(frame->paint(canvas.dc(), nullptr, &view, 0, -1, -1, -1, -1, &group, 0x00FF00, font.get(), nullptr), 255);
    for (const POINT p : onFigures) EXPECT_EQ(canvas.pixel(p.x, p.y), 0x0000FF00U) << p.x << ' ' << p.y;
    for (const POINT p : beside) EXPECT_EQ(canvas.pixel(p.x, p.y), grey) << p.x << ' ' << p.y;
    EXPECT_EQ(canvas.pixel(30, 21), 0U);  // the line's shadow
    EXPECT_EQ(canvas.pixel(10, 60), 0x0000FF00U);
    int ink = 0;
    for (int y = 75; y < 99; ++y)
        for (int x = 8; x < 50; ++x) ink += canvas.pixel(x, y) == 0x0000FF00U ? 1 : 0;
    EXPECT_GT(ink, 20);

    // The third one lies on top.
    CCsLine cross(&view, 30, 10, 30, 90, PS_SOLID);
    EXPECT_EQ(frame->paint(canvas.dc(), nullptr, &view, 0, -1, -1, -1, -1, &group, 0x00FF00, font.get(), &cross), 255);
    EXPECT_EQ(canvas.pixel(30, 20), 0x0000FF00U);
    EXPECT_EQ(canvas.pixel(31, 20), 0U);  // its shadow, over the line
}

TEST_F(OverlaysOnImages, PaintedWhereTheyDoNotFollowTheImage) {
    const HardFont font;
    const Canvas canvas(side, side);
    const auto frame = greyFrame();
    group.setTransformable_(0);
    group.setTransformable(0);
    EXPECT_EQ(frame->paint(canvas.dc(), &group, &view, 0x0000FF, -1, -1, -1, -1, nullptr, 0, nullptr, nullptr), 255);
    for (const POINT p : onFigures) EXPECT_EQ(canvas.pixel(p.x, p.y), 0x00FF0000U) << p.x << ' ' << p.y;
}

TEST_F(OverlaysOnImages, Printed) {
    const HardFont font;
    for (const bool inColour : {false, true}) {
        for (const int mode : {1, 2, 3}) {
            const Canvas canvas(side, side);
            const auto frame = greyFrame();
            EXPECT_EQ(inColour ? frame->printColor(canvas.dc(), &group, nullptr, &view, 0x00FF00, side, side, 0, 0,
                                                   font.get(), mode)
                               : frame->print(canvas.dc(), {0, 0, side, side}, &group, nullptr, &view, 0x00FF00, 0,
                                              side, side, 0, 0, font.get(), mode),
                      255);
            const std::uint32_t expected = mode == 2 ? 0x00FFFFFFU : 0x0000FF00U;
            for (const POINT p : onFigures) EXPECT_EQ(canvas.pixel(p.x, p.y), expected) << mode << ": " << p.x;
            for (const POINT p : {POINT{5, 5}, POINT{80, 5}}) EXPECT_EQ(canvas.pixel(p.x, p.y), grey) << mode;
        }
    }
}

TEST_F(OverlaysOnImages, PrintedTwiceAsLarge) {
    const Canvas canvas(2 * side, 2 * side);
    const auto frame = greyFrame();
    EXPECT_EQ(frame->print(canvas.dc(), {0, 0, 2 * side, 2 * side}, &group, nullptr, &view, 0x00FF00, 0, 2 * side,
                           2 * side, 0, 0, nullptr, 3),
              255);
    for (const POINT p : onFigures) EXPECT_EQ(canvas.pixel(2 * p.x, 2 * p.y), 0x0000FF00U) << p.x << ' ' << p.y;
    for (const POINT p : beside) EXPECT_EQ(canvas.pixel(2 * p.x, 2 * p.y), grey) << p.x << ' ' << p.y;
}

TEST_F(OverlaysOnImages, TakenAlongIntoABitmap) {
    const HardFont font;
    const auto frame = greyFrame();
    BITMAPINFO* bitmap = nullptr;
    EXPECT_EQ(frame->MakeDIB(bitmap, &group, nullptr, &view, side, side, nullptr, font.get(), false, 0x00FF00, 0), 255);
    const std::unique_ptr<unsigned char[]> block(reinterpret_cast<unsigned char*>(bitmap));
    const auto pixel = [&](const POINT& p) {  // bottom row first
        const unsigned char* at = block.get() + 44 + 3 * ((side - 1 - p.y) * side + p.x);
        return at[0] | (at[1] << 8) | (at[2] << 16);
    };
    for (const POINT p : onFigures) EXPECT_EQ(pixel(p), 0x0000FF00) << p.x << ' ' << p.y;
    for (const POINT p : beside) EXPECT_EQ(pixel(p), static_cast<int>(grey)) << p.x << ' ' << p.y;
}

TEST_F(OverlaysOnImages, BurntIntoGreyPixels) {
    const HardFont font;
    const std::unique_ptr<IMap> map(MapFactory::CreateMap(MapFactory::Grey12));
    for (const bool forPrints : {false, true}) {
        CCsRaster raster(side, side, CCS_GREY12, 1.0, false, false);
        auto* const pixels = reinterpret_cast<std::uint16_t*>(raster.getOrigin());
        std::fill_n(pixels, side * side, std::uint16_t{700});
        group.setDicomPrintFlag(forPrints);
        EXPECT_EQ(raster.burnInOverlay(*map, &group, 12, &view, font.get(), 11, false), 255);
        const auto value = [&](int x, int y) { return pixels[y * side + x]; };
        // Lines are yellow, which is the most that 12 bits hold; a shadow is seen only where it is nearly black.
        for (const POINT p : onFigures) EXPECT_EQ(value(p.x, p.y), 4095) << p.x << ' ' << p.y;
        for (const POINT p : beside) EXPECT_EQ(value(p.x, p.y), 700) << p.x << ' ' << p.y;
        // The ellipse and the text have the grey bitmap's own colour, the same yellow.
        EXPECT_EQ(value(10, 60), 4095);
        int ink = 0;
        int shadows = 0;
        int others = 0;
        for (int i = 0; i < side * side; ++i) {
            if (i / side >= 75 && pixels[i] == 4095) ++ink;
            if (pixels[i] == 0) ++shadows;
            if (pixels[i] != 0 && pixels[i] != 700 && pixels[i] != 4095) ++others;
        }
        EXPECT_GT(ink, 20);
        EXPECT_EQ(shadows > 0, forPrints);
        EXPECT_EQ(others, 0);
    }
}

TEST_F(OverlaysOnImages, BurntIntoColourPixels) {
    const HardFont font;
    const std::unique_ptr<IMap> map(MapFactory::CreateMap(MapFactory::Rgb8));
    CCsRaster raster(side, side, CCS_RGB8, 1.0, false, false);
    auto* const pixels = reinterpret_cast<std::uint32_t*>(raster.getOrigin());
    std::fill_n(pixels, side * side, 0x00000040U);
    EXPECT_EQ(raster.burnInOverlay(*map, &group, &view, font.get(), 0x0000FFUL), 255);
    for (const POINT p : onFigures) EXPECT_EQ(pixels[p.y * side + p.x], 0x00FFFF40U) << p.x << ' ' << p.y;
    for (const POINT p : beside) EXPECT_EQ(pixels[p.y * side + p.x], 0x00000040U) << p.x << ' ' << p.y;
    EXPECT_EQ(pixels[60 * side + 10], 0x00FF0040U);  // ellipses and texts have the colour that is asked for
}

}  // namespace
