// The shutter and coordinate utilities against their plain restatement.
#include "reference/guarded_image.h"
#include "reference/random_shutters.h"
#include "reference/random_views.h"
#include "support/test_data.h"
#include "zolcs/ccsimageutils.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <vector>

namespace {

using zoltest::GuardedImage;
using zoltest::GuardedRaster;
using zoltest::Matrix;
using zoltest::Random;

bool equal(const RECT& one, const RECT& two) {
    return one.left == two.left && one.top == two.top && one.right == two.right && one.bottom == two.bottom;
}

/// A view whose results stay far inside an int.
CCs2dTrafo tameView(Random& random) {
    CCs2dTrafo trafo;
    trafo.setSizes(random.integer(1, 600), random.integer(1, 600), random.integer(1, 600), random.integer(1, 600),
                   random.chance(0.6) ? 1.0 : random.real(0.3, 3.0), random.chance(0.6) ? 1.0 : random.real(0.3, 3.0),
                   random.integer(-50, 50), random.integer(-50, 50));
    trafo.rotate(random.chance(0.6) ? 90.0 * random.integer(0, 3) : random.real(0.0, 360.0));
    if (random.chance(0.4)) trafo.mirror(random.integer(1, 2));
    // Half display pixels are common: they are where rounding can go wrong.
    if (random.chance(0.5)) {
        trafo.setDspScaleFactor(0.5 * random.integer(1, 6));
    } else {
        trafo.scale(random.real(0.1, 5.0));
    }
    if (random.chance(0.5)) trafo.setDspPanFactor(random.real(-1, 1), random.real(-1, 1));
    return trafo;
}

Matrix toImageOf(const CCs2dTrafo& trafo) {
    CCs2dTrafo copy(trafo);
    Matrix out;
    copy.getTransformation(out.m[0], out.m[1], out.m[2], out.m[3], out.m[4], out.m[5]);
    return out;
}

}  // namespace

TEST(ImageUtilsProperty, PointsAndRectanglesMapAsRestated) {
    Random random(20240301);
    for (int round = 0; round < 5000; ++round) {
        CCs2dTrafo trafo = tameView(random);
        const Matrix forth = zoltest::toDisplayOf(trafo);
        const Matrix back = toImageOf(trafo);
        const CCsPoint point(random.integer(-700, 700), random.integer(-700, 700));
        SCOPED_TRACE(textOf(forth));
        int x = 0, y = 0;
        zolref::mapRounded(forth.m, point.x, point.y, x, y);
        const CCsPoint displayed = CCsImageUtils::imgToDsp(trafo, point);
        ASSERT_EQ(displayed.x, x);
        ASSERT_EQ(displayed.y, y);
        zolref::mapTruncated(back.m, point.x, point.y, x, y);
        const CCsPoint imaged = CCsImageUtils::dspToImg(trafo, point);
        ASSERT_EQ(imaged.x, x);
        ASSERT_EQ(imaged.y, y);

        const CCsPointDouble exact(random.real(-700, 700), random.real(-700, 700));
        double realX = 0, realY = 0;
        zolref::mapPoint(forth.m, exact.x, exact.y, realX, realY);
        const CCsPointDouble displayedExact = CCsImageUtils::imgToDspD(trafo, exact);
        ASSERT_EQ(displayedExact.x, realX);
        ASSERT_EQ(displayedExact.y, realY);
        zolref::mapPoint(back.m, exact.x, exact.y, realX, realY);
        const CCsPointDouble imagedExact = CCsImageUtils::dspToImgD(trafo, exact);
        ASSERT_EQ(imagedExact.x, realX);
        ASSERT_EQ(imagedExact.y, realY);

        const RECT rect = zoltest::anyRect(random, 600, 600, true);
        const RECT shown = CCsImageUtils::imgToDsp(trafo, rect);
        ASSERT_TRUE(equal(shown, zolref::rectOf(zolref::mapBoxRounded(forth.m, zolref::boxOf(rect)))))
            << zoltest::textOf(rect) << " to " << zoltest::textOf(shown);
        const RECT found = CCsImageUtils::dspToImg(trafo, rect);
        ASSERT_TRUE(equal(found, zolref::rectOf(zolref::mapBoxTruncated(back.m, zolref::boxOf(rect)))))
            << zoltest::textOf(rect) << " to " << zoltest::textOf(found);
    }
}

TEST(ImageUtilsProperty, RoundingIsAsRestated) {
    Random random(20240302);
    for (int round = 0; round < 20000; ++round) {
        double v = random.real(-1000, 1000);
        if (random.chance(0.4)) v = 0.5 * random.integer(-2000, 2000);
        if (random.chance(0.2)) v = std::nextafter(v, random.chance(0.5) ? 1e9 : -1e9);
        ASSERT_EQ(CCsImageUtils::roundOff(v), zolref::roundOff(v)) << v;
    }
}

TEST(ImageUtilsProperty, SmallRulesAreAsRestated) {
    for (int maximum = 0; maximum <= 65535; ++maximum) {
        ASSERT_EQ(CCsImageUtils::calculateBitShiftValueForGreyConversion(static_cast<unsigned short>(maximum)),
                  zolref::bitShiftForGrey(maximum))
            << maximum;
    }
    Random random(20240303);
    for (int round = 0; round < 5000; ++round) {
        const RECT rect = zoltest::anyRect(random, 90, 60, true);
        RECT arranged = {0, 0, 0, 0};
        CCsImageUtils::rearrangeRectBounds(arranged, rect);
        const zolref::Box box = zolref::boxOf(rect);
        ASSERT_TRUE(equal(arranged, zolref::rectOf(zolref::normalised(box.left, box.top, box.right, box.bottom))));

        GuardedImage image(random.integer(1, 90), random.integer(1, 90), CCS_RGB8, 100, 1.0);
        ASSERT_EQ(CCsImageUtils::isEntireSegmentFilledWithImage(rect, image),
                  zolref::segmentFilled(rect, image.getWidth(), image.getHeight()))
            << zoltest::textOf(rect) << ' ' << image.getWidth() << 'x' << image.getHeight();

        std::vector<CPoint> vertices = zoltest::anyPolygon(random, 90, 60);
        if (!vertices.empty()) {
            ASSERT_TRUE(
                equal(CCsImageUtils::getROIBoundingRect(vertices), zolref::rectOf(zolref::polygonBox(vertices))));
        }
    }
}

TEST(ImageUtilsProperty, FontHeightsAreAsRestated) {
    Random random(20240304);
    for (int round = 0; round < 10000; ++round) {
        RECT rect = {0, 0, 0, 0};
        rect.left = random.integer(-100, 100);
        rect.top = random.integer(-100, 100);
        rect.right = rect.left + static_cast<LONG>(random.chance(0.05) ? 0 : random.integer(1, 3000));
        rect.bottom = rect.top + static_cast<LONG>(random.integer(0, 3000));
        if (random.chance(0.2)) rect.right = rect.left + 512;
        if (random.chance(0.2)) rect.bottom = rect.top + 512;
        const int base = random.integer(1, 40);
        const int imageSize = random.integer(1, 60);
        const bool exact = random.chance(0.5);
        const int width = rect.right == rect.left ? 1 : static_cast<int>(rect.right - rect.left);
        const int height = static_cast<int>(rect.bottom - rect.top);
        ASSERT_EQ(CCsImageUtils::calculateFontHeight(rect, base, imageSize, exact),
                  zolref::fontHeight(width, height, base, imageSize, exact))
            << zoltest::textOf(rect) << " base " << base << " image " << imageSize << " exact " << exact;
    }
}

TEST(ImageUtilsProperty, ShutterRecordsAndPointsAreAsRestated) {
    Random random(20240305);
    for (int round = 0; round < 3000; ++round) {
        const int width = random.integer(1, 70), height = random.integer(1, 50);
        const zoltest::ShutterCase made = zoltest::anyShutters(random, width, height);
        const int type = random.integer(CCS_INDEX8, CCS_GREY16);
        GuardedRaster raster(width, height, type, width, 1.0);
        zoltest::applyShutters(made.shutters, raster);
        std::ostringstream what;
        what << width << 'x' << height << " type " << type << ' ' << made;
        SCOPED_TRACE(what.str());
        ASSERT_EQ(CCsImageUtils::isIPPCompatible(&raster), !made.shutters.embedded && type != CCS_RGB24);

        const CCsDisplayShutterInfo want = zolref::displayShutterOf(made.shutters, width);
        const CCsDisplayShutterInfo got = raster.getDisplayShutterInfo();
        ASSERT_EQ(got.rectangular.present != 0, want.rectangular.present != 0);
        ASSERT_EQ(got.circular.present != 0, want.circular.present != 0);
        ASSERT_EQ(got.polygonPresent != 0, want.polygonPresent != 0);
        ASSERT_EQ(got.presentationValue, want.presentationValue);
        if (want.rectangular.present != 0) {
            ASSERT_TRUE(equal(got.rectangular.rect, want.rectangular.rect));
        }
        if (want.circular.present != 0) {
            ASSERT_EQ(got.circular.center.x, want.circular.center.x);
            ASSERT_EQ(got.circular.center.y, want.circular.center.y);
            ASSERT_EQ(got.circular.radius, want.circular.radius);
            CCsCircularShutterInfo found;
            CCsImageUtils::findCircShutterInfo(found, raster);
            ASSERT_EQ(found.present, 1);
            ASSERT_EQ(found.center.x, want.circular.center.x);
            ASSERT_EQ(found.center.y, want.circular.center.y);
            ASSERT_EQ(found.radius, want.circular.radius);
            ASSERT_TRUE(equal(found.bounds, made.shutters.circle));
        }
        for (int i = 0; i < 60; ++i) {
            const int x = random.integer(-width, 2 * width), y = random.integer(-height, 2 * height);
            ASSERT_EQ(CCsImageUtils::isPointInsideDisplayShutter(want, x, y), zolref::insideDisplayShutter(want, x, y))
                << x << ", " << y;
            ASSERT_EQ(CCsImageUtils::isBitmapShutterSet(made.shutters.bitmap, x, y),
                      zolref::bitmapShutterHides(made.shutters.bitmap, x, y))
                << x << ", " << y;
            const int plane = zolref::firstPlaneAt(made.shutters.planes, x, y);
            unsigned short index = 777;
            ASSERT_EQ(CCsImageUtils::is60XXOverlayBitset(made.shutters.planes, index, x, y), plane >= 0)
                << x << ", " << y;
            if (plane >= 0) {
                ASSERT_EQ(index, plane);
            }
            const double px = random.chance(0.5) ? x : random.real(-width, 2 * width);
            const double py = random.chance(0.5) ? y : random.real(-height, 2 * height);
            ASSERT_EQ(CCsImageUtils::isPointInsidePolygon(made.shutters.polygon, px, py),
                      zolref::insidePolygon(made.shutters.polygon, px, py))
                << px << ", " << py;
        }
    }
}

TEST(ImageUtilsProperty, RunsOfALineAreAsRestated) {
    Random random(20240306);
    for (int round = 0; round < 6000; ++round) {
        const int width = random.integer(1, 70), height = random.integer(1, 50);
        const zoltest::ShutterCase made = zoltest::anyShutters(random, width, height);
        const CCsDisplayShutterInfo shutter = zolref::displayShutterOf(made.shutters, width);
        const int line = random.integer(-3, height + 3);
        const int from = random.integer(-5, width), to = random.integer(from, width + 5);
        const RECT limits = zoltest::anyRect(random, width, height, false);
        std::ostringstream what;
        what << "line " << line << " run " << from << ".." << to << " limits " << zoltest::textOf(limits) << ' '
             << made;
        SCOPED_TRACE(what.str());

        int start = from, end = to, wantStart = from, wantEnd = to;
        if (shutter.rectangular.present != 0) {
            const bool want =
                zolref::narrowToRectangle(zolref::boxOf(shutter.rectangular.rect), line, wantStart, wantEnd);
            ASSERT_EQ(CCsImageUtils::findRectangleIntersectionPoints(shutter.rectangular, line, start, end), want);
            ASSERT_EQ(start, wantStart);
            ASSERT_EQ(end, wantEnd);
        }
        start = wantStart = from;
        end = wantEnd = to;
        if (shutter.circular.present != 0) {
            const CCsCircularShutterInfo& circle = shutter.circular;
            const bool want =
                zolref::narrowToCircle(circle.center.x, circle.center.y, circle.radius, line, wantStart, wantEnd);
            ASSERT_EQ(CCsImageUtils::findCircleScanLineIntersectionPoints(circle, line, start, end), want);
            ASSERT_EQ(start, wantStart);
            ASSERT_EQ(end, wantEnd);
        }
        int run[2] = {from, to};
        wantStart = from;
        wantEnd = to;
        const bool want = zolref::boundRun(shutter, line, limits, wantStart, wantEnd);
        ASSERT_EQ(
            CCsImageUtils::calculateDisplayShutterBoundIntersection(run, line, shutter, limits, random.chance(0.5)),
            want);
        if (want) {
            ASSERT_EQ(run[0], wantStart);
            ASSERT_EQ(run[1], wantEnd);
        }
    }
}

TEST(ImageUtilsProperty, ShutterBoundsAreAsRestated) {
    Random random(20240307);
    for (int round = 0; round < 4000; ++round) {
        const int width = random.integer(1, 70), height = random.integer(1, 50);
        const zoltest::ShutterCase made = zoltest::anyShutters(random, width, height);
        GuardedRaster raster(width, height, CCS_GREY12, width, 1.0);
        zoltest::applyShutters(made.shutters, raster);
        CCs2dTrafo trafo = tameView(random);
        const Matrix forth = zoltest::toDisplayOf(trafo);
        RECT bounds = zoltest::anyRect(random, width, height, false);
        const bool toDisplay = random.chance(0.5);
        std::ostringstream what;
        what << "bounds " << zoltest::textOf(bounds) << " to display " << toDisplay << ' ' << textOf(forth) << ' '
             << made;
        SCOPED_TRACE(what.str());

        zolref::Box want = zolref::boxOf(bounds);
        const bool result = zolref::shutterBounds(made.shutters, want);
        if (toDisplay && result) want = zolref::mapBoxRounded(forth.m, want);
        ASSERT_EQ(CCsImageUtils::getDisplayShutterBounds(bounds, raster, trafo, toDisplay), result);
        ASSERT_TRUE(equal(bounds, zolref::rectOf(want)))
            << zoltest::textOf(bounds) << ", restated " << zoltest::textOf(zolref::rectOf(want));
    }
}

TEST(ImageUtilsProperty, PaddingBitsAreAsRestated) {
    Random random(20240308);
    for (int round = 0; round < 2000; ++round) {
        const int width = random.integer(1, 40), height = random.integer(1, 40);
        std::vector<unsigned char> bits =
            zoltest::anyBits(random, static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        const int x = random.integer(0, width - 1), y = random.integer(0, height - 1);
        const int index = y * width + x;
        ASSERT_EQ(CCsImageUtils::isPixePadBitSet(bits.data(), index), zolref::bitOf(bits.data(), index));
        std::vector<unsigned char> want = bits;
        want[static_cast<std::size_t>(index) / 8] =
            static_cast<unsigned char>(want[static_cast<std::size_t>(index) / 8] | (1 << (index % 8)));
        std::vector<unsigned char> set = bits;
        const int split = random.integer(0, index);
        CCsImageUtils::setPixelPadBitSet(set.data(), random.integer(-9, 9), static_cast<unsigned long>(split),
                                         index - split);
        ASSERT_EQ(set, want);
        // Despite its name this sets the bit as well.
        std::vector<unsigned char> reset = bits;
        CCsImageUtils::resetPixelPadBitSet(reset.data(), y, width, x);
        ASSERT_EQ(reset, want);
    }
}

TEST(ImageUtilsProperty, TheShutterFillIsAsRestated) {
    Random random(20240309);
    for (int round = 0; round < 3000; ++round) {
        const int width = random.integer(1, 60), height = random.integer(1, 40);
        const zoltest::ShutterCase made = zoltest::anyShutters(random, width, height);
        GuardedRaster source(random.integer(1, 60), random.integer(1, 60), CCS_GREY12, 64, 1.0);
        zoltest::applyShutters(made.shutters, source);
        // Without a transformation the padding of the lines is nobody's business: no padding there.
        const bool withTrafo = random.chance(0.6);
        GuardedImage display(width, height, CCS_RGB8, width + (withTrafo ? random.integer(0, 5) : 0), 1.0);
        display.memory.randomise(random);
        CCs2dTrafo trafo = tameView(random);
        if (random.chance(0.7)) trafo.setSizes(source, display);
        const Matrix forth = zoltest::toDisplayOf(trafo);

        std::vector<unsigned char> want = display.memory.all();
        zolref::shutterFill(made.shutters, want.data() + display.memory.guard(), width, height, display.getPitch(),
                            withTrafo ? forth.m : nullptr, static_cast<int>(trafo.getSrcSize().cx),
                            static_cast<int>(trafo.getSrcSize().cy));
        const RECT area = zoltest::anyRect(random, width, height, true);
        CCsImageUtils::fillDisplayedRasterWithShutterPresentationValue(source, display, display.memory.pixels(),
                                                                       withTrafo ? &trafo : nullptr, area);
        ASSERT_TRUE(want == display.memory.all())
            << width << 'x' << height << " pitch " << display.getPitch() << " transformation " << withTrafo << ' '
            << textOf(forth) << ' ' << made;
    }
}
