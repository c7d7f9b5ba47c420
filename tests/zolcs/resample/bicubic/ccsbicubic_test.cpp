#include "zolcs/ccsbicubic.h"

#include "support/bicubic_members.h"
#include "support/new_failure.h"
#include "support/variants.h"
#include "zolcs/resample/bicubic/cubicweights.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>

namespace {

using zoltest::bicubicMembers;
using zoltest::bicubicModule;
using zoltest::fieldsOf;
using zoltest::GuardedImage;
using zoltest::GuardedRaster;
using zoltest::pixelsOf;
using zoltest::ReportCapture;

static_assert(std::is_polymorphic_v<CCsBicubic>);
static_assert(sizeof(zolcs::CubicWeights) == 16);

using Fields = std::array<std::int32_t, 15>;

unsigned grey(GuardedImage& image, int x, int y) { return zolref::load16(zolref::pixelAt(pixelsOf(image), x, y)); }

/// Sets all pixels, those of the padding included.
template <typename Image>
void fillGrey(Image& image, unsigned value) {
    for (std::size_t i = 0; i < image.memory.bytes(); i += 2) zolref::store16(image.memory.pixels() + i, value);
}

void setGrey(GuardedRaster& image, int x, int y, unsigned value) {
    zolref::store16(zolref::pixelAt(pixelsOf(image), x, y), value);
}

class CCsBicubicTest : public ::testing::Test {
protected:
    ReportCapture reports_;
    CCsBicubic bicubic_;
};

TEST_F(CCsBicubicTest, EveryFieldIsZeroAfterConstruction) { EXPECT_EQ(fieldsOf<15>(CCsBicubic()), Fields{}); }

TEST_F(CCsBicubicTest, TheFieldsHoldThePreparedCallAndAreCopied) {
    GuardedRaster src(10, 20, CCS_GREY12, 13, 1.0);
    GuardedImage dst(40, 40, CCS_GREY12, 47, 1.0);
    CCs2dTrafo trafo;
    trafo.setDspPanFactor(0.25, -0.5);
    bicubic_.setAbortFlag(7);
    EXPECT_EQ(bicubic_.bicubicGrey12Grey12(src, dst, trafo, 0, true, false), 255);
    const Fields expected{32768, 0,  0,  32768, -10 * 65536, 10 * 65536, 10 * 65536, 20 * 65536,
                          13,    40, 40, 47,    7,           10,         20};
    EXPECT_EQ(fieldsOf<15>(bicubic_), expected);
    const CCsBicubic copy(bicubic_);
    EXPECT_EQ(fieldsOf<15>(copy), expected);
    CCsBicubic assigned;
    assigned = copy;
    EXPECT_EQ(fieldsOf<15>(assigned), expected);
}

TEST_F(CCsBicubicTest, TheWeightsAreThoseOfCubicConvolution) {
    const zolcs::CubicWeights* deep = zolcs::fineCubicWeights();
    const zolcs::CubicWeights* coarse = zolcs::coarseCubicWeights();
    const auto asRestated = [](const zolcs::CubicWeights& got, std::int64_t i) {
        const zolref::FourWeights expected = zolref::weightsAt(i);
        for (std::size_t k = 0; k < 4; ++k) {
            if (got[k] != expected.w[k]) return false;
        }
        return got[0] + got[1] + got[2] + got[3] == 65536;
    };
    for (int i = 0; i < 4096; ++i) ASSERT_TRUE(asRestated(deep[i], i)) << i;
    for (int i = 0; i < 256; ++i) ASSERT_TRUE(asRestated(coarse[i], i * 16)) << i;
    EXPECT_EQ(deep[0], (zolcs::CubicWeights{0, 65536, 0, 0}));
    EXPECT_EQ(coarse[0], (zolcs::CubicWeights{0, 65536, 0, 0}));
    // -0.75 (3.375 - 11.25 + 12 - 4) = -0.09375 and 1.25 / 8 - 2.25 / 4 + 1 = 0.59375
    EXPECT_EQ(deep[2048], (zolcs::CubicWeights{-6144, 38912, 38912, -6144}));
    EXPECT_EQ(coarse[128], deep[2048]);
}

TEST_F(CCsBicubicTest, AllObjectsShareTheirWeights) {
    const zolcs::CubicWeights* deep = zolcs::fineCubicWeights();
    const zolcs::CubicWeights* coarse = zolcs::coarseCubicWeights();
    const CCsBicubic another;
    const CCsBicubic copy(another);
    EXPECT_EQ(zolcs::fineCubicWeights(), deep);
    EXPECT_EQ(zolcs::coarseCubicWeights(), coarse);
}

TEST_F(CCsBicubicTest, WeightedColoursAreAdded) {
    unsigned char pixel[3] = {10, 20, 30};
    long r = 1;
    long g = 2;
    long b = 3;
    long weight = -100;
    CCsBicubic::Get_RgbL(r, g, b, pixel, weight);
    EXPECT_EQ(r, -999);
    EXPECT_EQ(g, -1998);
    EXPECT_EQ(b, -2997);
    EXPECT_EQ(weight, -100);
    weight = std::numeric_limits<long>::max();
    pixel[0] = 2;
    r = 3;
    CCsBicubic::Get_RgbL(r, g, b, pixel, weight);
    EXPECT_EQ(r, 1);  // wraps
}

TEST_F(CCsBicubicTest, AConstantImageStaysConstant) {
    zoltest::Random random(51);
    for (int i = 0; i < 150; ++i) {
        const bool twelveBit = random.chance(0.5);
        const int type = twelveBit ? CCS_GREY12 : CCS_GREY16;
        const auto value = static_cast<unsigned>(random.integer(0, twelveBit ? 4095 : 0xFFFE));
        const unsigned background = 0xFFFF;
        GuardedRaster src(random.integer(1, 20), random.integer(1, 20), type, 23, 1.0);
        fillGrey(src, value);
        GuardedImage dst(30, 30, type, 30, 1.0);
        CCs2dTrafo trafo;
        trafo.rotate(random.real(0.0, 360.0));
        trafo.scale(random.real(0.5, 3.0));
        ASSERT_EQ(bicubic_.bicubicGrey12Grey12(src, dst, trafo, background, false, false), 255);
        int shown = 0;
        for (int k = 0; k < 900; ++k) {
            const unsigned got = grey(dst, k % 30, k / 30);
            if (got == background) continue;
            ASSERT_EQ(got, value);
            ++shown;
        }
        ASSERT_GT(shown, 0);
    }
}

TEST_F(CCsBicubicTest, AnIdentityViewCopiesExactly) {
    zoltest::Random random(52);
    GuardedRaster src(9, 6, CCS_GREY16, 11, 1.0);
    GuardedImage dst(9, 6, CCS_GREY16, 10, 1.0);
    src.memory.randomise(random);
    CCs2dTrafo trafo;
    ASSERT_EQ(bicubic_.bicubicGrey12Grey12(src, dst, trafo, 0, false, false), 255);
    for (int y = 0; y < 6; ++y) {
        for (int x = 0; x < 9; ++x) {
            ASSERT_EQ(grey(dst, x, y), zolref::load16(zolref::pixelAt(pixelsOf(src), x, y)));
        }
    }
}

TEST_F(CCsBicubicTest, OvershootsAreLimited) {
    for (const bool twelveBit : {true, false}) {
        const int type = twelveBit ? CCS_GREY12 : CCS_GREY16;
        const unsigned most = twelveBit ? 4095 : 65535;
        GuardedRaster src(8, 8, type, 8, 1.0);
        fillGrey(src, 0);
        for (int y = 0; y < 8; ++y) {
            for (int x = 4; x < 8; ++x) setGrey(src, x, y, most);
        }
        GuardedImage dst(64, 64, type, 64, 1.0);
        CCs2dTrafo trafo;
        ASSERT_EQ(bicubic_.bicubicGrey12Grey12(src, dst, trafo, 1, false, false), 255);
        // Between the third and fourth column the kernel goes below 0, between the fifth and sixth above the most.
        EXPECT_EQ(grey(dst, 24, 32), 0U);
        EXPECT_EQ(grey(dst, 40, 32), most);
        EXPECT_GT(grey(dst, 32, 32), most / 4);
        EXPECT_LT(grey(dst, 32, 32), most);
    }
}

TEST_F(CCsBicubicTest, OverlayBitsOfTheNearestPixelAreKept) {
    GuardedRaster src(5, 5, CCS_GREY12, 5, 1.0);
    fillGrey(src, 0x0800);
    setGrey(src, 2, 2, 0x1800);
    GuardedImage dst(5, 5, CCS_GREY12, 5, 1.0);
    for (const bool keep : {true, false}) {
        CCs2dTrafo trafo;
        ASSERT_EQ(bicubic_.bicubicGrey12Grey12(src, dst, trafo, 1, false, keep), 255);
        EXPECT_EQ(grey(dst, 2, 2), keep ? 0x1800U : 0x0800U);
        EXPECT_EQ(grey(dst, 1, 2), 0x0800U);
        EXPECT_EQ(grey(dst, 3, 3), 0x0800U);
    }
}

TEST_F(CCsBicubicTest, TheAbortFlagCountsUnlessItIsIgnored) {
    GuardedRaster src(4, 4, CCS_GREY12, 4, 1.0);
    fillGrey(src, 100);
    GuardedImage dst(4, 4, CCS_GREY12, 4, 1.0);
    const std::vector<unsigned char> before = dst.memory.all();
    CCs2dTrafo trafo;
    bicubic_.setAbortFlag(1);
    EXPECT_EQ(bicubic_.bicubicGrey12Grey12(src, dst, trafo, 1, false, false), 0);
    EXPECT_EQ(dst.memory.all(), before);
    EXPECT_EQ(trafo.getSrcSize().cx, 1);  // not even the transformation is touched
    EXPECT_EQ(bicubic_.bicubicGrey12Grey12(src, dst, trafo, 1, true, false), 255);
    EXPECT_EQ(grey(dst, 0, 0), 100U);
    GuardedImage wrong(4, 4, CCS_RGB24, 4, 1.0);
    EXPECT_TRUE(ReportCapture::take().empty());
    EXPECT_EQ(bicubic_.bicubicGrey12Grey12(src, wrong, trafo, 1, false, false), 0);
    EXPECT_EQ(ReportCapture::take(),
              std::vector{zoltest::statedReport(L"bicubicGrey12Grey12", zoltest::Problem::Type)});
}

TEST_F(CCsBicubicTest, NothingBesideThePixelsIsRead) {
    // The raster's memory ends with its pixels; the address sanitizer watches.
    for (const auto& [width, height] : {std::pair{1, 1}, std::pair{1, 3}, std::pair{3, 1}, std::pair{2, 2}}) {
        CCsRaster src(zoltest::plainBuffer(static_cast<std::size_t>(width * height) * 2), width, height, CCS_GREY12,
                      1.0);
        std::vector<unsigned char> exact(static_cast<std::size_t>(width * height) * 2, 1);
        src.GetMemBuffer()->setHeapBuffer(exact.data());
        GuardedImage dst(20, 20, CCS_GREY12, 20, 1.0);
        CCs2dTrafo trafo;
        EXPECT_EQ(bicubic_.bicubicGrey12Grey12(src, dst, trafo, 7, false, false), 255);
        EXPECT_EQ(grey(dst, 10, 10), 0x101U);
    }
}

// In a process of its own, in which nobody has built the weights.
TEST(CCsBicubicDeathTest, WithoutMemoryForTheWeightsTheFirstConstructorThrows1) {
    if (!zoltest::canFailNothrowNew()) GTEST_SKIP() << "the library's operator new[] cannot be reached here";
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const zoltest::NothrowNewLimit limit(1);
            try {
                const CCsBicubic bicubic;
            } catch (int thrown) {
                std::exit(thrown);
            }
            std::exit(0);
        },
        ::testing::ExitedWithCode(1), "");
}

// In a process of its own: afterwards nothing can be drawn. What unload does must not free the tables again.
TEST(CCsBicubicDeathTest, TheWeightsAreFreedOnce) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            { const CCsBicubic bicubic; }
            CCsBicubic::deleteWeightageArray();
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST(CCsBicubicMembers, ShowBackgroundAloneWithoutPixelsOrAFiniteView) {
    zoltest::expectBackgroundOnly(bicubicMembers(), bicubicModule);
}

TEST(CCsBicubicMembers, TakeTheStatedTypesOnly) { zoltest::expectStatedTypes(bicubicMembers()); }

TEST(CCsBicubicMembers, ReportFailuresAndUnlockBothImages) { zoltest::expectStatedFailures(bicubicMembers()); }

/// The member that draws through a map.
int drawMapped(CCsBicubic& b, CCsRaster& s, CCsImage& d, CCs2dTrafo& t, IMap* map, unsigned char* padding,
               unsigned char background) {
    return b.bicubicGrey12IndexMap(s, d, t, map, padding, background);
}

TEST(CCsBicubicMembers, ReportAMapThatThrows) {
    zoltest::expectThrowingMapReported<CCsBicubic>(drawMapped, L"bicubicGrey12IndexMap");
}

TEST(CCsBicubicMembers, StopWhenTheMapAsks) { zoltest::expectStoppedByTheMap<CCsBicubic>(drawMapped); }

TEST(CCsBicubicMembers, RefuseToBeginWhenStopped) { zoltest::expectRefusedWhenStopped(bicubicMembers()); }

TEST(CCsBicubicMembers, StopOnceTheyHaveBegun) { zoltest::expectStoppedOnceBegun(bicubicMembers()); }

TEST(CCsBicubicMembers, StopWhenAnotherThreadAsks) {
    for (const double angle : {0.0, 11.0, 90.0}) {
        SCOPED_TRACE(angle);
        zoltest::expectStoppedByAnotherThread(bicubicMembers(), angle);
    }
    const zoltest::VariantGuard guard;
    zolcs::simd::choose("plain");
    zoltest::expectStoppedByAnotherThread(bicubicMembers(), 11.0);
}

}  // namespace
