// The transfer of a source's shutters to a display raster against its plain restatement.
#include "reference/guarded_image.h"
#include "reference/random_shutters.h"
#include "reference/random_views.h"
#include "support/test_data.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <sstream>
#include <vector>

namespace {

using zoltest::GuardedRaster;
using zoltest::Matrix;
using zoltest::Random;

bool equal(const RECT& one, const RECT& two) {
    return one.left == two.left && one.top == two.top && one.right == two.right && one.bottom == two.bottom;
}

bool equal(const std::vector<CPoint>& one, const std::vector<CPoint>& two) {
    if (one.size() != two.size()) return false;
    for (std::size_t i = 0; i < one.size(); ++i) {
        if (one[i].x != two[i].x || one[i].y != two[i].y) return false;
    }
    return true;
}

bool equal(const CCs60XXOverlay& one, const CCs60XXOverlay& two) {
    return one.leading == two.leading && one.originX == two.originX && one.originY == two.originY &&
           one.rows == two.rows && one.columns == two.columns && one.data == two.data &&
           std::memcmp(one.trailing, two.trailing, sizeof one.trailing) == 0;
}

bool equal(const CCs60XXOverlayInfo& one, const CCs60XXOverlayInfo& two) {
    if (one.planes.size() != two.planes.size()) return false;
    for (std::size_t i = 0; i < one.planes.size(); ++i) {
        if (!equal(one.planes[i], two.planes[i])) return false;
    }
    return true;
}

/// A source that is a little out of the ordinary: a record without a tag, values that are not copied.
zoltest::ShutterCase anySource(Random& random, int width, int height) {
    zoltest::ShutterCase made = zoltest::anyShutters(random, width, height);
    made.shutters.bitmap.shutterValueAux = 0;
    return made;
}

void expectShutters(CCsRaster& raster, const zolref::RasterShutters& want) {
    EXPECT_EQ(raster.isRectShutter(), want.rectOn);
    EXPECT_EQ(raster.isCircShutter(), want.circOn);
    EXPECT_EQ(raster.isPolygonalShutter(), want.polygonOn);
    EXPECT_EQ(raster.isBitmapShutter(), want.bitmapOn);
    EXPECT_EQ(raster.isDisplayShutter(), want.rectOn || want.circOn || want.polygonOn);
    EXPECT_EQ(raster.isShutter(), want.rectOn || want.circOn || want.polygonOn || want.bitmapOn);
    EXPECT_TRUE(equal(raster.getRectShutterRect(), want.rect)) << zoltest::textOf(raster.getRectShutterRect());
    EXPECT_TRUE(equal(raster.getCircShutterRect(), want.circle)) << zoltest::textOf(raster.getCircShutterRect());
    EXPECT_TRUE(equal(raster.getPolygonalShutterCoordinates(), want.polygon));
    EXPECT_EQ(raster.getPresentationShutterValue(), zolref::presentationValueOf(want));
    EXPECT_TRUE(equal(raster.get60XXOverlayGroup(), want.planes));
    EXPECT_EQ(raster.isEmbeddedOverlayPresent(), want.embedded);
    const CCsBitmapShutterInfo& bitmap = raster.getBitmapShutterInfo();
    EXPECT_EQ(bitmap.tag, want.bitmap.tag);
    EXPECT_EQ(bitmap.originX, want.bitmap.originX);
    EXPECT_EQ(bitmap.originY, want.bitmap.originY);
    EXPECT_EQ(bitmap.rows, want.bitmap.rows);
    EXPECT_EQ(bitmap.columns, want.bitmap.columns);
    EXPECT_EQ(bitmap.data, want.bitmap.data);
    EXPECT_EQ(bitmap.group, 0x6000U);
    EXPECT_EQ(bitmap.reserved16, want.bitmap.reserved16);
    EXPECT_EQ(bitmap.shutterValueAux, want.bitmap.shutterValueAux);
    EXPECT_EQ(bitmap.presentationValue, want.bitmap.presentationValue);
}

}  // namespace

TEST(RasterShutterProperty, ShuttersAreTransferredAsRestated) {
    Random random(20240401);
    for (int round = 0; round < 4000 && !HasFailure(); ++round) {
        const int width = random.integer(1, 70), height = random.integer(1, 50);
        const zoltest::ShutterCase sourceCase = anySource(random, width, height);
        const zoltest::ShutterCase targetCase = anySource(random, 40, 40);
        GuardedRaster source(width, height, CCS_GREY12, width, 1.0);
        GuardedRaster target(40, 40, CCS_RGB8, 40, 1.0);
        zoltest::applyShutters(sourceCase.shutters, source);
        zoltest::applyShutters(targetCase.shutters, target);
        target.getBitmapShutterInfo().shutterValueAux = 99;

        CCs2dTrafo trafo = zoltest::anyView(random, source, target);
        const Matrix forth = zoltest::toDisplayOf(trafo);
        bool tame = true;
        for (const double entry : forth.m) tame = tame && std::fabs(entry) < 1e6;
        const bool withTrafo = tame && random.chance(0.8);

        zolref::RasterShutters want = targetCase.shutters;
        want.bitmap.shutterValueAux = 99;
        zolref::takeShuttersOf(want, sourceCase.shutters, withTrafo ? forth.m : nullptr);
        target.setShutterInfo(source, withTrafo ? &trafo : nullptr);
        expectShutters(target, want);
        expectShutters(source, sourceCase.shutters);
        ASSERT_FALSE(HasFailure()) << "round " << round << "\nsource: " << sourceCase << "\ntarget: " << targetCase
                                   << "\ntransformation " << withTrafo << ' ' << textOf(forth);
    }
}

TEST(RasterShutterProperty, RandomSequencesOfSettingsLeaveWhatIsRestated) {
    Random random(20240403);
    for (int round = 0; round < 1500 && !HasFailure(); ++round) {
        CCsRaster raster(30, 20, CCS_GREY12, 1.0, false, true);
        zolref::RasterShutters want;
        std::vector<zoltest::ShutterCase> given;  // the records' bits live here
        std::ostringstream log;
        for (int i = random.integer(1, 12); i > 0 && !HasFailure(); --i) {
            given.push_back(zoltest::anyShutters(random, 30, 20));
            zolref::RasterShutters& s = given.back().shutters;
            switch (random.integer(0, 8)) {
                case 0:
                    log << "setRectShutter\n";
                    raster.setRectShutter(s.rect);
                    want.rect = s.rect;
                    want.rectOn = true;
                    break;
                case 1:
                    log << "setCircShutter\n";
                    raster.setCircShutter(s.circle);
                    want.circle = s.circle;
                    want.circOn = true;
                    break;
                case 2:
                    log << "setPolygonalShutter\n";
                    raster.setPolygonalShutter(s.polygon);
                    want.polygon = s.polygon;
                    want.polygonOn = true;
                    break;
                case 3:
                    log << "setBitmapShutterInfo tag " << s.bitmap.tag << " data " << (s.bitmap.data != nullptr)
                        << '\n';
                    EXPECT_TRUE(raster.setBitmapShutterInfo(s.bitmap));
                    zolref::setBitmap(want, s.bitmap);
                    break;
                case 4:
                case 5: {
                    CCsDisplayShutterInfo info = zolref::displayShutterOf(s, 30);
                    info.presentationValue = static_cast<unsigned short>(random.bits() >> 48);
                    log << "setDisplayShutterInfo " << s.rectOn << s.circOn << s.polygonOn << '\n';
                    EXPECT_TRUE(raster.setDisplayShutterInfo(info));
                    zolref::setDisplayShutter(want, info);
                    break;
                }
                case 6:
                    raster.setPresentationShutterValue(s.presentationValue);
                    want.presentationValue = s.presentationValue;
                    break;
                case 7:
                    raster.getBitmapShutterInfo().shutterValueAux = 77;
                    want.bitmap.shutterValueAux = 77;
                    break;
                default: {
                    const int kind = random.integer(-2, 6);
                    log << "resetImage " << kind << '\n';
                    raster.resetImage(kind);
                    zolref::resetShutters(want, kind);
                    break;
                }
            }
            expectShutters(raster, want);
        }
        ASSERT_FALSE(HasFailure()) << "round " << round << " after\n" << log.str();
    }
}

TEST(RasterShutterProperty, CopiesCarryTheShutters) {
    Random random(20240402);
    for (int round = 0; round < 1000 && !HasFailure(); ++round) {
        const zoltest::ShutterCase made = anySource(random, 30, 20);
        GuardedRaster source(30, 20, CCS_GREY12, 30, 1.0);
        zoltest::applyShutters(made.shutters, source);
        CCsRaster copy(source);
        zolref::RasterShutters want = made.shutters;
        want.planes = copy.get60XXOverlayGroup();  // what becomes of the planes is the raster's own tests' business
        expectShutters(copy, want);
        ASSERT_FALSE(HasFailure()) << "round " << round << ": " << made;
    }
}
