#include "zolcs/ccsbilinear.h"

#include "support/bilinear_members.h"
#include "support/capability_guard.h"
#include "support/variants.h"

#include <cstring>
#include <limits>
#include <type_traits>

namespace {

using zoltest::bilinearMembers;
using zoltest::bilinearModule;
using zoltest::CapabilityGuard;
using zoltest::fieldsOf;
using zoltest::GuardedImage;
using zoltest::GuardedRaster;
using zoltest::pixelsOf;
using zoltest::ReportCapture;

static_assert(std::is_polymorphic_v<CCsBilinear>);

unsigned grey(GuardedImage& image, int x, int y) { return zolref::load16(zolref::pixelAt(pixelsOf(image), x, y)); }

void setGrey(GuardedRaster& image, const std::vector<unsigned>& values) {
    for (int i = 0; i < static_cast<int>(values.size()); ++i) {
        zolref::store16(zolref::pixelAt(pixelsOf(image), i % image.getWidth(), i / image.getWidth()),
                        values[static_cast<std::size_t>(i)]);
    }
}

/// A view at one display pixel for a source pixel that moves the source positions by (u, v); square displays only.
CCs2dTrafo shifted(CCsImage& src, CCsImage& dst, double u, double v) {
    CCs2dTrafo trafo;
    trafo.setSizes(src, dst);
    trafo.setDspScaleFactor(1.0);
    trafo.setDspPanFactor(-u / dst.getWidth(), -v / dst.getHeight());
    return trafo;
}

class CCsBilinearTest : public ::testing::Test {
protected:
    ReportCapture reports_;
    CapabilityGuard plain_{0};
    CCsBilinear bilinear_;
};

TEST_F(CCsBilinearTest, AFreshObjectIsNotAskedToStop) { EXPECT_EQ(fieldsOf<13>(CCsBilinear())[12], 0); }

TEST_F(CCsBilinearTest, TheFieldsHoldThePreparedCallAndAreCopied) {
    GuardedRaster src(10, 20, CCS_GREY12, 13, 1.0);
    GuardedImage dst(40, 40, CCS_GREY12, 47, 1.0);
    CCs2dTrafo trafo;
    trafo.setDspPanFactor(0.25, -0.5);
    bilinear_.setAbortFlag(7);
    EXPECT_EQ(bilinear_.bilinearGrey12Grey12(src, dst, trafo, 0, false), 255);
    const std::array<std::int32_t, 13> expected{32768,      0,  0,  32768, -10 * 65536, 10 * 65536, 10 * 65536,
                                                20 * 65536, 13, 40, 40,    47,          7};
    EXPECT_EQ(fieldsOf<13>(bilinear_), expected);
    const CCsBilinear copy(bilinear_);
    EXPECT_EQ(fieldsOf<13>(copy), expected);
    CCsBilinear assigned;
    assigned = copy;
    EXPECT_EQ(fieldsOf<13>(assigned), expected);
}

TEST_F(CCsBilinearTest, AnIdentityViewCopiesExactlyOnThePlainPath) {
    zoltest::Random random(31);
    for (const int type : {CCS_GREY12, CCS_GREY16}) {
        GuardedRaster src(9, 6, type, 11, 1.0);
        GuardedImage dst(9, 6, type, 10, 1.0);
        src.memory.randomise(random);
        CCs2dTrafo trafo;
        ASSERT_EQ(bilinear_.bilinearGrey12Grey12(src, dst, trafo, 0, false), 255);
        for (int y = 0; y < 6; ++y) {
            for (int x = 0; x < 9; ++x) {
                const unsigned stored = zolref::load16(zolref::pixelAt(pixelsOf(src), x, y));
                ASSERT_EQ(grey(dst, x, y), type == CCS_GREY12 ? stored & 0xFFFU : stored) << x << ' ' << y;
            }
        }
    }
}

TEST_F(CCsBilinearTest, FlatStaysFlatOnThePlainPathAndLosesTwoOnThePackedOne) {
    zoltest::Random random(32);
    for (int i = 0; i < 200; ++i) {
        const unsigned value = static_cast<unsigned>(random.integer(2, 4095));
        GuardedRaster src(random.integer(1, 20), random.integer(1, 20), CCS_GREY12, 25, 1.0);
        GuardedImage dst(30, 30, CCS_GREY12, 30, 1.0);
        for (int k = 0; k < 25 * src.getHeight(); ++k) zolref::store16(src.memory.pixels() + 2 * k, value);
        CCs2dTrafo trafo;
        trafo.rotate(random.real(0.0, 360.0));
        for (const int capability : {0, 1}) {
            const CapabilityGuard guard(capability);
            const unsigned kept = 0xABCD;
            for (int k = 0; k < 900; ++k) zolref::store16(dst.memory.pixels() + 2 * k, kept);
            ASSERT_EQ(bilinear_.bilinearGrey12Grey12(src, dst, trafo, 0xFFFF, false), 255);
            int shown = 0;
            for (int y = 0; y < 30; ++y) {
                for (int x = 0; x < 30; ++x) {
                    const unsigned result = grey(dst, x, y);
                    if (result == 0xFFFF || (capability != 0 && result == kept)) continue;
                    ASSERT_EQ(result, capability == 0 ? value : value - 2);
                    ++shown;
                }
            }
            ASSERT_GT(shown, 0);
        }
    }
}

TEST_F(CCsBilinearTest, AFlatThousandIsNineHundredAndNinetyEightOnThePackedPath) {
    const CapabilityGuard packed(1);
    GuardedRaster src(4, 4, CCS_GREY12, 4, 1.0);
    setGrey(src, std::vector<unsigned>(16, 1000));
    GuardedImage dst(4, 4, CCS_GREY12, 4, 1.0);
    std::fill(dst.memory.all().begin(), dst.memory.all().end(), static_cast<unsigned char>(0x11));
    CCs2dTrafo trafo;
    ASSERT_EQ(bilinear_.bilinearGrey12Grey12(src, dst, trafo, 7, false), 255);
    for (int y = 0; y < 4; ++y) {
        EXPECT_EQ(grey(dst, 0, y), 998U);
        for (int x = 1; x < 4; ++x) EXPECT_EQ(grey(dst, x, y), 0x1111U);  // what was there
    }
}

TEST_F(CCsBilinearTest, ThePackedPathsBackgroundFollowsTheOnePixelThatIsLeft) {
    const CapabilityGuard packed(1);
    GuardedRaster src(4, 1, CCS_GREY12, 4, 1.0);
    setGrey(src, {100, 200, 300, 400});
    GuardedImage dst(8, 1, CCS_GREY12, 8, 1.0);
    std::fill(dst.memory.all().begin(), dst.memory.all().end(), static_cast<unsigned char>(0x11));
    CCs2dTrafo trafo = shifted(src, dst, 0, 0);
    ASSERT_EQ(bilinear_.bilinearGrey12Grey12(src, dst, trafo, 7, false), 255);
    std::vector<unsigned> row;
    for (int x = 0; x < 8; ++x) row.push_back(grey(dst, x, 0));
    // Two of background, the last of four image pixels, two of background, three untouched.
    EXPECT_EQ(row, (std::vector<unsigned>{7, 7, 398, 7, 7, 0x1111, 0x1111, 0x1111}));
}

TEST_F(CCsBilinearTest, ThePackedPathTakesStoredWordsAsSignedAndUnmasked) {
    const CapabilityGuard packed(1);
    GuardedRaster src(1, 1, CCS_GREY12, 1, 1.0);
    GuardedImage dst(1, 1, CCS_GREY12, 1, 1.0);
    for (const auto& [stored, shown] :
         {std::pair{0x7FFFU, 0x7FFDU}, std::pair{0x8000U, 0x8001U}, std::pair{0xFFFFU, 0xFFFFU},
          std::pair{0x1005U, 0x1003U}, std::pair{0U, 0U}, std::pair{1U, 0U}}) {
        setGrey(src, {stored});
        CCs2dTrafo trafo;
        ASSERT_EQ(bilinear_.bilinearGrey12Grey12(src, dst, trafo, 7, false), 255);
        EXPECT_EQ(grey(dst, 0, 0), shown) << stored;
    }
}

TEST_F(CCsBilinearTest, HalfAPixelAcrossIsTheMeanAndHalfAPixelDownIsNothingForTwelveBits) {
    for (const int type : {CCS_GREY12, CCS_GREY16}) {
        GuardedRaster src(2, 2, type, 2, 1.0);
        GuardedImage dst(2, 2, type, 2, 1.0);
        setGrey(src, {0, 1000, 2000, 3000});
        CCs2dTrafo across = shifted(src, dst, -0.5, 0);
        ASSERT_EQ(bilinear_.bilinearGrey12Grey12(src, dst, across, 7, false), 255);
        EXPECT_EQ(grey(dst, 1, 0), 500U);
        CCs2dTrafo down = shifted(src, dst, 0, -0.5);
        ASSERT_EQ(bilinear_.bilinearGrey12Grey12(src, dst, down, 7, false), 255);
        // The half is above the twelve bits that count.
        EXPECT_EQ(grey(dst, 0, 1), type == CCS_GREY12 ? 0U : 1000U);
    }
}

TEST_F(CCsBilinearTest, OverlayBitsAreKeptWhereTheRasterHasThem) {
    GuardedRaster src(2, 1, CCS_GREY12, 2, 1.0);
    GuardedImage dst(2, 1, CCS_GREY12, 2, 1.0);
    setGrey(src, {0x5123, 0x0456});
    const auto drawn = [&](bool keep, bool embedded) {
        src.setEmbeddedOverlayStatus(embedded);
        CCs2dTrafo trafo;
        EXPECT_EQ(bilinear_.bilinearGrey12Grey12(src, dst, trafo, 7, keep), 255);
        return grey(dst, 0, 0);
    };
    EXPECT_EQ(drawn(true, true), 0x5123U);
    EXPECT_EQ(drawn(true, false), 0x0123U);
    EXPECT_EQ(drawn(false, true), 0x0123U);
    const CapabilityGuard packed(1);
    EXPECT_EQ(drawn(true, true), 0x5123U);  // kept bits are the plain path's
    EXPECT_EQ(drawn(true, false), 0x0454U);
}

TEST_F(CCsBilinearTest, SixteenBitProductsWrap) {
    GuardedRaster src(2, 2, CCS_GREY16, 2, 1.0);
    GuardedImage dst(2, 2, CCS_GREY16, 2, 1.0);
    setGrey(src, {0, 0xFFFF, 0, 0});
    CCs2dTrafo trafo = shifted(src, dst, -0.25, -0.5);
    ASSERT_EQ(bilinear_.bilinearGrey12Grey12(src, dst, trafo, 7, false), 255);
    // 0xFFFF * 0xC000 is 0xBFFF4000, in 32 bits negative: the upper row gives -16385 there, and half way down to 0 lies
    // -8193. Without the wrap it would be 0x5FFF.
    EXPECT_EQ(grey(dst, 1, 1), 0xDFFFU);
}

TEST_F(CCsBilinearTest, TheFourthByteOfAColourIsZero) {
    GuardedRaster src(2, 2, CCS_RGB8, 2, 1.0);
    GuardedImage dst(2, 2, CCS_RGB8, 2, 1.0);
    std::fill(src.memory.all().begin(), src.memory.all().end(), static_cast<unsigned char>(0xFF));
    CCs2dTrafo trafo;
    ASSERT_EQ(bilinear_.bilinearRgb8Rgb8(src, dst, trafo, 0xFFFFFFFFUL, false), 255);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(dst.memory.pixels()[i], i % 4 == 3 ? 0 : 0xFF);
}

TEST_F(CCsBilinearTest, TheFlagsOfTwoMembersHaveNoEffect) {
    zoltest::Random random(68);
    for (const int capability : {0, 1}) {
        const CapabilityGuard path(capability);
        for (const double angle : {0.0, 30.0, 90.0}) {
            CCs2dTrafo trafo;
            trafo.rotate(angle);
            GuardedRaster colours(9, 7, CCS_RGB8, 9, 1.0);
            GuardedRaster greys(9, 7, CCS_GREY12, 9, 1.0);
            colours.memory.randomise(random);
            greys.memory.randomise(random);
            const auto drawn = [&](const auto& call) {
                GuardedImage dst(20, 20, CCS_RGB8, 20, 1.0);
                EXPECT_EQ(call(dst), 255);
                return dst.memory.all();
            };
            const auto colour = [&](bool flag) {
                return drawn(
                    [&](GuardedImage& dst) { return bilinear_.bilinearRgb8Rgb8(colours, dst, trafo, 7, flag); });
            };
            const auto mapped = [&](bool flag) {
                return drawn([&](GuardedImage& dst) {
                    return bilinear_.bilinearGrey12IndexMap(greys, dst, trafo, &zoltest::sharedMap(), flag, nullptr, 7);
                });
            };
            EXPECT_TRUE(colour(false) == colour(true)) << angle;
            EXPECT_TRUE(mapped(false) == mapped(true)) << angle;
        }
    }
}

TEST_F(CCsBilinearTest, NothingBehindTheLastPixelIsRead) {
    // The raster's memory ends with its pixels; the address sanitizer watches.
    for (const auto& [width, height] : {std::pair{1, 1}, std::pair{1, 3}, std::pair{3, 1}, std::pair{2, 2}}) {
        CCsRaster src(zoltest::plainBuffer(static_cast<std::size_t>(width * height) * 2), width, height, CCS_GREY12,
                      1.0);
        std::vector<unsigned char> exact(static_cast<std::size_t>(width * height) * 2, 1);
        src.GetMemBuffer()->setHeapBuffer(exact.data());
        GuardedImage dst(20, 20, CCS_GREY12, 20, 1.0);
        CCs2dTrafo trafo;
        for (const int capability : {0, 1}) {
            const CapabilityGuard guard(capability);
            EXPECT_EQ(bilinear_.bilinearGrey12Grey12(src, dst, trafo, 7, false), 255);
            const unsigned shown = capability == 0 ? 0x101U : 0xFFU;
            int pixels = 0;
            for (int i = 0; i < 400; ++i) pixels += grey(dst, i % 20, i / 20) == shown ? 1 : 0;
            EXPECT_GT(pixels, 0);
        }
    }
}

TEST(CCsBilinearMembers, ShowBackgroundAloneWithoutPixelsOrAFiniteView) {
    for (const int capability : {0, 1}) {
        const CapabilityGuard guard(capability);
        zoltest::expectBackgroundOnly(bilinearMembers(), bilinearModule);
    }
}

TEST(CCsBilinearMembers, TakeTheStatedTypesOnly) { zoltest::expectStatedTypes(bilinearMembers()); }

TEST(CCsBilinearMembers, ReportFailuresAndUnlockBothImages) { zoltest::expectStatedFailures(bilinearMembers()); }

/// The member that draws through a map.
int drawMapped(CCsBilinear& b, CCsRaster& s, CCsImage& d, CCs2dTrafo& t, IMap* map, unsigned char* padding,
               unsigned char background) {
    return b.bilinearGrey12IndexMap(s, d, t, map, false, padding, background);
}

TEST(CCsBilinearMembers, ReportAMapThatThrows) {
    zoltest::expectThrowingMapReported<CCsBilinear>(drawMapped, L"bilinearGrey12IndexMap");
}

TEST(CCsBilinearMembers, StopWhenTheMapAsks) { zoltest::expectStoppedByTheMap<CCsBilinear>(drawMapped); }

TEST(CCsBilinearMembers, RefuseToBeginWhenStopped) { zoltest::expectRefusedWhenStopped(bilinearMembers()); }

TEST(CCsBilinearMembers, StopOnceTheyHaveBegun) { zoltest::expectStoppedOnceBegun(bilinearMembers()); }

TEST(CCsBilinearMembers, StopWhenAnotherThreadAsks) {
    for (const double angle : {0.0, 11.0, 90.0}) {
        SCOPED_TRACE(angle);
        zoltest::expectStoppedByAnotherThread(bilinearMembers(), angle);
    }
    const zoltest::VariantGuard guard;
    zolcs::simd::choose("plain");
    zoltest::expectStoppedByAnotherThread(bilinearMembers(), 11.0);
}

}  // namespace
