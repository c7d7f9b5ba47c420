// Lines on pixels.
#include "support/gdi_canvas.h"
#include "support/overlay_views.h"

#include "zolcs/ccsline.h"

#include <cstdint>
#include <limits>

namespace {

using zoltest::identityView;

constexpr int solid = 0;
constexpr int dotted = 2;

constexpr std::uint32_t background = 0x00808080;
constexpr std::uint32_t red = 0x00FF0000;  // as a pixel
constexpr std::uint32_t black = 0x00000000;

class CCsLinePicture : public testing::Test {
protected:
    void draw(CCsLine& line, int mode = 1) { line.render(&view, &view, 0x0000FF, canvas.dc(), mode, 64, 64, 0, 0); }

    /// The pixels that are not background, each as its colour.
    [[nodiscard]] std::vector<std::vector<std::uint32_t>> drawnPixels() const {
        std::vector<std::vector<std::uint32_t>> out;
        for (int y = 0; y < 64; ++y) {
            for (int x = 0; x < 64; ++x) {
                const std::uint32_t pixel = canvas.pixel(x, y) & 0xFFFFFFU;
                if (pixel != background) out.push_back({static_cast<unsigned>(x), static_cast<unsigned>(y), pixel});
            }
        }
        return out;
    }

    CCs2dTrafo view = identityView();
    zoltest::Canvas canvas{64, 64, background};
};

TEST_F(CCsLinePicture, AHorizontalLineAndItsShadowToThePixel) {
    CCsLine line(&view, 10, 20, 13, 20, solid);
    draw(line);
    // The last pixel of a line is left out.
    EXPECT_EQ(drawnPixels(),
              (std::vector<std::vector<std::uint32_t>>{
                  {10, 20, red}, {11, 20, red}, {12, 20, red}, {11, 21, black}, {12, 21, black}, {13, 21, black}}));
}

TEST_F(CCsLinePicture, AHandleIsFiveByFiveWithItsShadowDownAndRight) {
    CCsLine line(&view, 10, 20, solid);
    line.select();
    draw(line);
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            const auto within = [&](int left, int top) { return x >= left && x < left + 5 && y >= top && y < top + 5; };
            const std::uint32_t expected = within(7, 17) ? red : within(8, 18) ? black : background;
            ASSERT_EQ(canvas.pixel(x, y) & 0xFFFFFFU, expected) << x << ' ' << y;
        }
    }
}

TEST_F(CCsLinePicture, AnAreaHasNoShadow) {
    CCsLine line(&view, 10, 20, 40, 20, 40, 50, 10, 50, solid);
    line.setColorFilled(0x00FF00);
    draw(line);
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            const bool inside = x > 10 && x < 40 && y > 20 && y < 50;
            const bool outside = x < 10 || x > 40 || y < 20 || y > 50;
            const std::uint32_t expected = inside ? 0x808080U : outside ? background : red;
            ASSERT_EQ(canvas.pixel(x, y) & 0xFFFFFFU, expected) << x << ' ' << y;
        }
    }
}

TEST_F(CCsLinePicture, FarEndsDoNotMoveWhatIsVisible) {
    CCsLine line(&view, 0, 0, 1, 1, solid);
    line.setShadow(false);
    for (const double end : {100.0, 1e5, 1e7, 1e8, 1e10, 1e13}) {
        line.setImgPts(nullptr, -end, 20, end, 20);
        draw(line);
        line.setImgPts(nullptr, 30, -end, 30, end);
        draw(line);
        for (int i = 0; i < 64; ++i) {
            ASSERT_EQ(canvas.pixel(i, 20) & 0xFFFFFFU, red) << end;
            ASSERT_EQ(canvas.pixel(30, i) & 0xFFFFFFU, red) << end;
        }
        EXPECT_EQ(drawnPixels().size(), 127U) << end;
    }
}

TEST_F(CCsLinePicture, WhatHasNoPlaceLeavesNoPixelAndNoObject) {
    const unsigned int before = zoltest::gdiObjectCount();
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double nowhere : {infinity, -infinity, nan, 1e300, -1e300, 1e17}) {
        for (const bool flag : {false, true}) {
            CCsLine line(&view, {{nowhere, 5}, {5, nowhere}, {nowhere, nowhere}, {nowhere, 30}, {30, nowhere}}, dotted,
                         flag, false, false);
            line.close();
            line.select();
            CCsLine area(&view, {{10, 10}, {40, 10}, {nowhere, 40}, {10, nowhere}}, solid, flag, false, true);
            CCsLine ellipse(&view, nowhere, 10, 40, 10, 40, nowhere, 10, 40, solid, true, false);
            area.setShadow(flag);
            for (const int mode : {1, 2, 3, 4}) {
                draw(line, mode);
                draw(area, mode);
                draw(ellipse, mode);
            }
        }
    }
    CCsLine none;
    for (const int mode : {1, 2, 3, 4}) draw(none, mode);
    CCsLine shapeless(&view, 10, 10, 40, 40, solid);
    for (const int mode : {0, 5, -1}) draw(shapeless, mode);
    EXPECT_TRUE(drawnPixels().empty());
    EXPECT_EQ(zoltest::gdiObjectCount(), before);
}

}  // namespace
