// Shutters and overlay planes that a raster carries, and their transfer.
#include "zolcs/ccsraster.h"

#include "zolcs/ccsraster_fixture.h"

namespace {

using namespace zoltest::raster;
using zoltest::errorReport;
using zoltest::ReportCapture;

// ------------------------------------------------------------------------------------------------ shutters

TEST_F(CCsRasterTest, StartsWithoutShuttersAndPlanes) {
    CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, true);
    EXPECT_FALSE(raster.isRectShutter());
    EXPECT_FALSE(raster.isCircShutter());
    EXPECT_FALSE(raster.isPolygonalShutter());
    EXPECT_FALSE(raster.isBitmapShutter());
    EXPECT_FALSE(raster.isDisplayShutter());
    EXPECT_FALSE(raster.isShutter());
    EXPECT_FALSE(raster.isNonEmbeddedOverlayPresent());
    EXPECT_FALSE(raster.isEmbeddedOverlayPresent());
    EXPECT_EQ(raster.getPresentationShutterValue(), 0);
    EXPECT_EQ(raster.getBitmapShutterInfo().group, 0x6000U);
    EXPECT_TRUE(same(raster.getRectShutterRect(), {0, 0, 0, 0}));
    EXPECT_TRUE(same(raster.getCircShutterRect(), {0, 0, 0, 0}));
    EXPECT_TRUE(raster.getPolygonalShutterCoordinates().empty());
}

TEST_F(CCsRasterTest, EachKindIsSwitchedOnByItsSetter) {
    unsigned char bits[1] = {};
    CCsRaster rect(5, 3, CCS_GREY12, 1.0, false, true);
    rect.setRectShutter({4, 3, 2, 1});
    EXPECT_TRUE(rect.isRectShutter() && rect.isDisplayShutter() && rect.isShutter());
    EXPECT_FALSE(rect.isCircShutter() || rect.isPolygonalShutter() || rect.isBitmapShutter());
    EXPECT_TRUE(same(rect.getRectShutterRect(), {4, 3, 2, 1}));

    CCsRaster circ(5, 3, CCS_GREY12, 1.0, false, true);
    circ.setCircShutter({4, 3, 2, 1});
    EXPECT_TRUE(circ.isCircShutter() && circ.isDisplayShutter() && circ.isShutter());
    EXPECT_FALSE(circ.isRectShutter() || circ.isPolygonalShutter() || circ.isBitmapShutter());
    EXPECT_TRUE(same(circ.getCircShutterRect(), {4, 3, 2, 1}));

    CCsRaster poly(5, 3, CCS_GREY12, 1.0, false, true);
    std::vector<CPoint> vertices = {CPoint(1, 2)};
    poly.setPolygonalShutter(vertices);
    vertices[0].x = 9;
    EXPECT_TRUE(poly.isPolygonalShutter() && poly.isDisplayShutter() && poly.isShutter());
    EXPECT_FALSE(poly.isRectShutter() || poly.isCircShutter() || poly.isBitmapShutter());
    EXPECT_EQ(poly.getPolygonalShutterCoordinates(), std::vector<CPoint>{CPoint(1, 2)});
    poly.getPolygonalShutterCoordinates().clear();
    EXPECT_EQ(poly.getPolygonalShutterCoordinates().size(), 1U);

    CCsRaster bitmap(5, 3, CCS_GREY12, 1.0, false, true);
    EXPECT_TRUE(bitmap.setBitmapShutterInfo(bitmapRecord(bits)));
    EXPECT_TRUE(bitmap.isBitmapShutter() && bitmap.isShutter());
    EXPECT_FALSE(bitmap.isDisplayShutter());
}

TEST_F(CCsRasterTest, SetBitmapShutterInfoCopiesAllButGroupAndAuxiliaryValue) {
    unsigned char bits[1] = {};
    CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, true);
    EXPECT_TRUE(raster.setBitmapShutterInfo(bitmapRecord(bits)));
    const CCsBitmapShutterInfo& info = raster.getBitmapShutterInfo();
    EXPECT_EQ(info.tag, 3U);
    EXPECT_EQ(info.originX, -4);
    EXPECT_EQ(info.originY, 5);
    EXPECT_EQ(info.rows, 6);
    EXPECT_EQ(info.columns, 7);
    EXPECT_EQ(info.data, bits);
    EXPECT_EQ(info.reserved16, 11);
    EXPECT_EQ(info.presentationValue, 13);
    EXPECT_EQ(info.group, 0x6000U);
    EXPECT_EQ(info.unused32, 0U);
    EXPECT_EQ(info.unused8a, 0);
    EXPECT_EQ(info.unused8b, 0);
    EXPECT_EQ(info.shutterValueAux, 0);
}

TEST_F(CCsRasterTest, ABitmapRecordWithoutTagAndDataIsIgnored) {
    unsigned char bits[1] = {};
    CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, true);
    CCsBitmapShutterInfo info = bitmapRecord(nullptr);
    info.tag = 0;
    EXPECT_TRUE(raster.setBitmapShutterInfo(info));
    EXPECT_FALSE(raster.isBitmapShutter());
    EXPECT_EQ(raster.getBitmapShutterInfo().rows, 0);

    info.data = bits;
    EXPECT_TRUE(raster.setBitmapShutterInfo(info));
    EXPECT_TRUE(raster.isBitmapShutter());

    CCsRaster other(5, 3, CCS_GREY12, 1.0, false, true);
    info.data = nullptr;
    info.tag = 1;
    EXPECT_TRUE(other.setBitmapShutterInfo(info));
    EXPECT_TRUE(other.isBitmapShutter());
}

TEST_F(CCsRasterTest, ThePresentationValueIsTheBitmapsWhileThatIsOn) {
    unsigned char bits[1] = {};
    CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, true);
    raster.setPresentationShutterValue(77);
    EXPECT_EQ(raster.getPresentationShutterValue(), 77);
    raster.setRectShutter({0, 0, 1, 1});
    EXPECT_EQ(raster.getPresentationShutterValue(), 77);
    raster.setBitmapShutterInfo(bitmapRecord(bits));
    EXPECT_EQ(raster.getPresentationShutterValue(), 13);
    raster.setPresentationShutterValue(78);
    EXPECT_EQ(raster.getPresentationShutterValue(), 13);
    raster.resetImage(4);
    EXPECT_EQ(raster.getPresentationShutterValue(), 78);
}

TEST_F(CCsRasterTest, ADisplayShutterRecordWithoutKindsChangesNothing) {
    unsigned char bits[8] = {};
    CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, true);
    decorate(raster, bits);
    CCsDisplayShutterInfo info;
    info.rectangular.rect = {9, 9, 9, 9};
    info.presentationValue = 99;
    EXPECT_TRUE(raster.setDisplayShutterInfo(info));
    expectDecorated(raster, bits);
}

TEST_F(CCsRasterTest, ADisplayShutterRecordReplacesAllShutters) {
    unsigned char bits[8] = {};
    for (int kinds = 1; kinds < 8; ++kinds) {
        CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, true);
        decorate(raster, bits);
        CCsDisplayShutterInfo info;
        info.rectangular.present = kinds & 1;
        info.rectangular.rect = {10, 11, 12, 13};
        info.circular.present = (kinds >> 1) & 1;
        info.circular.center = CCsPoint(500, 500);
        info.circular.radius = 3.0F;
        info.circular.bounds = {14, 15, 16, 17};
        info.polygonPresent = kinds >> 2;
        info.polygon = {CPoint(18, 19), CPoint(20, 21)};
        info.presentationValue = 99;
        EXPECT_TRUE(raster.setDisplayShutterInfo(info));
        EXPECT_FALSE(raster.isBitmapShutter());
        EXPECT_EQ(raster.isRectShutter(), (kinds & 1) != 0);
        EXPECT_EQ(raster.isCircShutter(), (kinds & 2) != 0);
        EXPECT_EQ(raster.isPolygonalShutter(), (kinds & 4) != 0);
        EXPECT_TRUE(same(raster.getRectShutterRect(), (kinds & 1) != 0 ? RECT{10, 11, 12, 13} : RECT{1, 2, 3, 4}));
        EXPECT_TRUE(same(raster.getCircShutterRect(), (kinds & 2) != 0 ? RECT{14, 15, 16, 17} : RECT{5, 6, 7, 8}));
        EXPECT_EQ(raster.getPolygonalShutterCoordinates().size(), (kinds & 4) != 0 ? 2U : 3U);
        EXPECT_EQ(raster.getBitmapShutterInfo().shutterValueAux, 0);
        EXPECT_EQ(raster.getBitmapShutterInfo().presentationValue, 0);
        EXPECT_EQ(raster.getBitmapShutterInfo().tag, 3U);
        EXPECT_EQ(raster.getPresentationShutterValue(), 0x4567);
    }
}

TEST_F(CCsRasterTest, GetDisplayShutterInfoBuildsTheRecord) {
    CCsRaster raster(50, 30, CCS_GREY12, 1.0, false, true);
    raster.setPresentationShutterValue(77);
    CCsDisplayShutterInfo info = raster.getDisplayShutterInfo();
    EXPECT_EQ(info.rectangular.present, 0);
    EXPECT_EQ(info.circular.present, 0);
    EXPECT_EQ(info.polygonPresent, 0);
    EXPECT_TRUE(info.polygon.empty());
    EXPECT_EQ(info.presentationValue, 77);

    raster.setRectShutter({1, 2, 3, 4});
    raster.setCircShutter({10, 12, 20, 18});
    raster.setPolygonalShutter({CPoint(1, 2), CPoint(3, 4)});
    info = raster.getDisplayShutterInfo();
    EXPECT_EQ(info.rectangular.present, 1);
    EXPECT_TRUE(same(info.rectangular.rect, {1, 2, 3, 4}));
    EXPECT_EQ(info.circular.present, 1);
    EXPECT_TRUE(same(info.circular.bounds, {10, 12, 20, 18}));
    EXPECT_EQ(info.circular.radius, 3.0F);
    EXPECT_EQ(info.circular.center.x, 13);
    EXPECT_EQ(info.circular.center.y, 15);
    EXPECT_EQ(info.polygonPresent, 1);
    EXPECT_EQ(info.polygon, (std::vector<CPoint>{CPoint(1, 2), CPoint(3, 4)}));
    for (const std::uint32_t unused : info.unused) EXPECT_EQ(unused, 0U);

    // The record makes the same shutters again.
    CCsRaster other(50, 30, CCS_GREY12, 1.0, false, true);
    other.setDisplayShutterInfo(info);
    EXPECT_TRUE(same(other.getRectShutterRect(), {1, 2, 3, 4}));
    EXPECT_TRUE(same(other.getCircShutterRect(), {10, 12, 20, 18}));
    EXPECT_EQ(other.getPolygonalShutterCoordinates(), info.polygon);
    EXPECT_EQ(other.getPresentationShutterValue(), 0);

    unsigned char bits[1] = {};
    raster.setBitmapShutterInfo(bitmapRecord(bits));
    EXPECT_EQ(raster.getDisplayShutterInfo().presentationValue, 13);
}

TEST_F(CCsRasterTest, ResetImageSwitchesKindsOff) {
    unsigned char bits[8] = {};
    for (const int kind : {1, 2, 3, 4, 0, 5, -1, -2, 1000}) {
        CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, true);
        decorate(raster, bits);
        raster.resetImage(kind);
        const bool all = kind < 1 || kind > 4;
        EXPECT_EQ(raster.isCircShutter(), !all && kind != 1) << kind;
        EXPECT_EQ(raster.isRectShutter(), !all && kind != 2) << kind;
        EXPECT_EQ(raster.isPolygonalShutter(), !all && kind != 3) << kind;
        EXPECT_EQ(raster.isBitmapShutter(), !all && kind != 4) << kind;
        EXPECT_EQ(raster.getPolygonalShutterCoordinates().size(), kind == 3 ? 0U : 3U) << kind;
        EXPECT_EQ(raster.getBitmapShutterInfo().shutterValueAux, 0) << kind;
        EXPECT_EQ(raster.getBitmapShutterInfo().presentationValue, kind == -1 ? 0 : 13) << kind;
        EXPECT_EQ(raster.getBitmapShutterInfo().tag, 3U) << kind;
        EXPECT_TRUE(same(raster.getRectShutterRect(), {1, 2, 3, 4})) << kind;
        EXPECT_EQ(raster.get60XXOverlayGroup().planes.size(), 2U) << kind;
    }
}

// ------------------------------------------------------------------------------------------------ transfer

CCs2dTrafo doubling() {
    // 100 x 100 onto 200 x 200: every coordinate doubles.
    CCs2dTrafo trafo;
    trafo.setSizes(100, 100, 200, 200, 1.0, 1.0, 0, 0);
    return trafo;
}

TEST_F(CCsRasterTest, SetShutterInfoTransfersTheKindsThatAreOn) {
    CCs2dTrafo trafo = doubling();
    for (int kinds = 0; kinds < 8; ++kinds) {
        CCsRaster source(100, 100, CCS_GREY12, 1.0, false, true);
        source.setPresentationShutterValue(77);
        if ((kinds & 1) != 0) source.setRectShutter({30, 40, 10, 20});
        if ((kinds & 2) != 0) source.setCircShutter({1, 2, 3, 4});
        if ((kinds & 4) != 0) source.setPolygonalShutter({CPoint(1, 2), CPoint(5, 3), CPoint(2, 9)});
        CCsRaster target(200, 200, CCS_GREY12, 1.0, false, true);
        unsigned char bits[8] = {};
        decorate(target, bits);
        target.setShutterInfo(source, &trafo);
        EXPECT_EQ(target.isRectShutter(), (kinds & 1) != 0);
        EXPECT_EQ(target.isCircShutter(), (kinds & 2) != 0);
        EXPECT_EQ(target.isPolygonalShutter(), (kinds & 4) != 0);
        EXPECT_FALSE(target.isBitmapShutter());
        EXPECT_TRUE(same(target.getRectShutterRect(), (kinds & 1) != 0 ? RECT{20, 40, 60, 80} : RECT{1, 2, 3, 4}));
        EXPECT_TRUE(same(target.getCircShutterRect(), (kinds & 2) != 0 ? RECT{2, 4, 6, 8} : RECT{5, 6, 7, 8}));
        if ((kinds & 4) != 0) {
            EXPECT_EQ(target.getPolygonalShutterCoordinates(),
                      (std::vector<CPoint>{CPoint(2, 4), CPoint(10, 6), CPoint(4, 18)}));
        }
        EXPECT_EQ(target.getBitmapShutterInfo().shutterValueAux, 0);
        EXPECT_EQ(target.getBitmapShutterInfo().presentationValue, 0);
        // Without any shutter in the source the value stays.
        EXPECT_EQ(target.getPresentationShutterValue(), kinds != 0 ? 77 : 0x4567);
    }
}

TEST_F(CCsRasterTest, SetShutterInfoWithoutTransformationKeepsImageCoordinates) {
    CCsRaster source(100, 100, CCS_GREY12, 1.0, false, true);
    source.setRectShutter({30, 40, 10, 20});
    source.setCircShutter({3, 4, 1, 2});
    source.setPolygonalShutter({CPoint(1, 2), CPoint(5, 3), CPoint(2, 9)});
    CCsRaster target(200, 200, CCS_GREY12, 1.0, false, true);
    target.setShutterInfo(source, nullptr);
    EXPECT_TRUE(same(target.getRectShutterRect(), {30, 40, 10, 20}));
    EXPECT_TRUE(same(target.getCircShutterRect(), {3, 4, 1, 2}));
    EXPECT_EQ(target.getPolygonalShutterCoordinates(), (std::vector<CPoint>{CPoint(1, 2), CPoint(5, 3), CPoint(2, 9)}));
}

TEST_F(CCsRasterTest, ABitmapShutterIsTransferredAloneAndUntransformed) {
    CCs2dTrafo trafo = doubling();
    unsigned char bits[8] = {};
    Raster source(100, 100, CCS_GREY12, 1.0, false, true);
    decorate(source, bits);
    Raster target(200, 200, CCS_GREY12, 1.0, false, true);
    target.setRectShutter({1, 1, 1, 1});
    target.setShutterInfo(source, &trafo);
    EXPECT_TRUE(target.isBitmapShutter());
    EXPECT_FALSE(target.isDisplayShutter());
    EXPECT_EQ(target.getBitmapShutterInfo().originX, -4);
    EXPECT_EQ(target.getBitmapShutterInfo().columns, 7);
    EXPECT_EQ(target.getBitmapShutterInfo().data, bits);
    EXPECT_EQ(target.getBitmapShutterInfo().group, 0x6000U);
    EXPECT_EQ(target.getPresentationShutterValue(), 13);
    EXPECT_EQ(target.plainPresentationValue(), 13);
    EXPECT_TRUE(target.getPolygonalShutterCoordinates().empty());
}

TEST_F(CCsRasterTest, ABitmapShutterWithoutTagIsNotTransferredButItsValueIs) {
    unsigned char bits[8] = {};
    Raster source(100, 100, CCS_GREY12, 1.0, false, true);
    decorate(source, bits);
    source.getBitmapShutterInfo().tag = 0;
    Raster target(200, 200, CCS_GREY12, 1.0, false, true);
    target.setShutterInfo(source, nullptr);
    EXPECT_FALSE(target.isShutter());
    EXPECT_EQ(target.getBitmapShutterInfo().data, nullptr);
    EXPECT_EQ(target.getPresentationShutterValue(), 13);
}

TEST_F(CCsRasterTest, SetShutterInfoReplacesPlanesOnlyWhenTheSourceHasSome) {
    unsigned char bits[8] = {};
    CCsRaster with(100, 100, CCS_GREY12, 1.0, false, true);
    decorate(with, bits);
    CCsRaster without(100, 100, CCS_GREY12, 1.0, false, true);
    CCsRaster target(200, 200, CCS_GREY12, 1.0, false, true);
    target.add60XXOverlayInfo({});
    target.setShutterInfo(without, nullptr);
    EXPECT_EQ(target.get60XXOverlayGroup().planes.size(), 1U);
    EXPECT_FALSE(target.isEmbeddedOverlayPresent());
    target.setShutterInfo(with, nullptr);
    ASSERT_EQ(target.get60XXOverlayGroup().planes.size(), 2U);
    EXPECT_EQ(target.get60XXOverlayGroup().planes[1].leading, 31U);
    EXPECT_TRUE(target.isEmbeddedOverlayPresent());
    target.setShutterInfo(without, nullptr);
    EXPECT_EQ(target.get60XXOverlayGroup().planes.size(), 2U);
    EXPECT_FALSE(target.isEmbeddedOverlayPresent());
}

TEST_F(CCsRasterTest, SetShutterInfoFromItselfSwitchesTheShuttersOff) {
    unsigned char bits[8] = {};
    CCsRaster raster(100, 100, CCS_GREY12, 1.0, false, true);
    decorate(raster, bits);
    raster.setShutterInfo(raster, nullptr);
    EXPECT_FALSE(raster.isShutter());
    EXPECT_EQ(raster.get60XXOverlayGroup().planes.size(), 2U);
}

// ------------------------------------------------------------------------------------------------ planes

TEST_F(CCsRasterTest, OverlayPlanesAreASequence) {
    CCsRaster raster(5, 3, CCS_GREY12, 1.0, false, true);
    CCs60XXOverlay plane;
    plane.leading = 1;
    raster.add60XXOverlayInfo(plane);
    plane.leading = 2;
    raster.add60XXOverlayInfo(plane);
    EXPECT_TRUE(raster.isNonEmbeddedOverlayPresent());
    EXPECT_EQ(raster.get60XXOverlayGroup().planes[0].leading, 1U);
    EXPECT_EQ(raster.get60XXOverlayGroup().planes[1].leading, 2U);
    CCs60XXOverlayInfo group;
    plane.leading = 3;
    group.planes.push_back(plane);
    raster.set60XXOverlayGroup(group);
    group.planes.clear();
    ASSERT_EQ(raster.get60XXOverlayGroup().planes.size(), 1U);
    EXPECT_EQ(raster.get60XXOverlayGroup().planes[0].leading, 3U);
    raster.get60XXOverlayGroup().planes[0].leading = 4;
    EXPECT_EQ(raster.get60XXOverlayGroup().planes[0].leading, 4U);
    raster.reset60XXOverlayGroup();
    EXPECT_FALSE(raster.isNonEmbeddedOverlayPresent());
    raster.setEmbeddedOverlayStatus(true);
    EXPECT_TRUE(raster.isEmbeddedOverlayPresent());
    EXPECT_FALSE(raster.isNonEmbeddedOverlayPresent());
}

}  // namespace
