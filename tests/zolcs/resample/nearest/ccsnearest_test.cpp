#include "zolcs/ccsnearest.h"

#include "reference/guarded_image.h"
#include "reference/nearest_reference.h"
#include "reference/random_views.h"
#include "support/nearest_members.h"
#include "support/variants.h"
#include "zolcs/ccs2dtrafo.h"
#include "zolcs/simd/variant.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

namespace {

namespace simd = zolcs::simd;
using zoltest::fieldsOf;
using zoltest::forEachVariant;
using zoltest::GuardedImage;
using zoltest::GuardedRaster;
using zoltest::nearestMembers;
using zoltest::pixelsOf;
using zoltest::ReportCapture;
using zoltest::RuleChoice;
using zoltest::RuledRaster;
using zoltest::TableMap;

static_assert(std::is_polymorphic_v<CCsNearest>);
class CCsNearestTest : public ::testing::Test {
protected:
    ~CCsNearestTest() override { simd::choose(""); }

    ReportCapture reports_;
    CCsNearest nearest_;
};

TEST_F(CCsNearestTest, EveryFieldIsMinusOneAfterConstruction) {
    for (const std::int32_t field : fieldsOf<12>(CCsNearest())) EXPECT_EQ(field, -1);
}

TEST_F(CCsNearestTest, TheFieldsHoldThePreparedCallAndAreCopied) {
    GuardedRaster src(10, 20, CCS_GREY12, 13, 1.0);
    GuardedImage dst(40, 40, CCS_GREY12, 47, 1.0);
    CCs2dTrafo trafo;
    trafo.setDspPanFactor(0.25, -0.5);
    EXPECT_EQ(nearest_.nearestGrey12Grey12(src, dst, trafo, 0, false), 255);
    // Two display pixels per source pixel; the image's centre (5, 10) lies at (20 + 10, 20 - 20).
    const std::array<std::int32_t, 12> expected{32768,      0,          0,  32768, -10 * 65536, 10 * 65536,
                                                10 * 65536, 20 * 65536, 13, 40,    40,          47};
    EXPECT_EQ(fieldsOf<12>(nearest_), expected);
    const CCsNearest copy(nearest_);
    EXPECT_EQ(fieldsOf<12>(copy), expected);
    CCsNearest assigned;
    assigned = copy;
    EXPECT_EQ(fieldsOf<12>(assigned), expected);
}

TEST_F(CCsNearestTest, FieldsSaturateWhereThirtyTwoBitsAreTooFew) {
    GuardedRaster src(40000, 1, CCS_GREY12, 40000, 1.0);
    GuardedImage dst(4, 4, CCS_GREY12, 4, 1.0);
    CCs2dTrafo trafo;
    trafo.scale(0.2);
    trafo.setDspPanFactor(1e6, -1e6);
    EXPECT_EQ(nearest_.nearestGrey12Grey12(src, dst, trafo, 0, false), 255);
    const auto fields = fieldsOf<12>(nearest_);
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    EXPECT_EQ(fields[0], most);
    EXPECT_EQ(fields[3], most);
    EXPECT_EQ(fields[4], least);
    EXPECT_EQ(fields[5], most);
    EXPECT_EQ(fields[6], most);
    EXPECT_EQ(fields[7], 65536);
}

TEST_F(CCsNearestTest, ACallSetsTheTransformationsSizes) {
    GuardedRaster src(10, 20, CCS_GREY12, 10, 2.0);
    GuardedImage dst(40, 30, CCS_GREY12, 40, 1.0);
    CCs2dTrafo trafo;
    trafo.setSizes(1, 2, 3, 4, 1.0, 1.0, 50, 60);
    nearest_.nearestGrey12Grey12(src, dst, trafo, 0, false);
    EXPECT_EQ(trafo.getSrcSize().cx, 10);
    EXPECT_EQ(trafo.getSrcSize().cy, 20);
    EXPECT_EQ(trafo.getDstSize().cx, 40);
    EXPECT_EQ(trafo.getDstSize().cy, 30);
    CCs2dTrafo same;
    same.setSizes(src, dst);
    double a[6];
    double b[6];
    trafo.getImgToDsp(a[0], a[1], a[2], a[3], a[4], a[5]);
    same.getImgToDsp(b[0], b[1], b[2], b[3], b[4], b[5]);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(a[i], b[i]);  // the offsets (50, 60) are gone
}

TEST_F(CCsNearestTest, AnIdentityViewCopiesExactly) {
    forEachVariant([&](const std::string& /*variant*/) {
        GuardedImage src(4, 4, CCS_GREY8, 5, 1.0);
        GuardedImage dst(4, 4, CCS_GREY8, 7, 1.0);
        for (int i = 0; i < 20; ++i) src.memory.pixels()[i] = static_cast<unsigned char>(i + 1);
        CCs2dTrafo trafo;
        nearest_.nearestGrey8Grey8(src, dst, trafo, 99);
        for (int y = 0; y < 4; ++y) {
            for (int x = 0; x < 4; ++x) {
                ASSERT_EQ(dst.memory.pixels()[y * 7 + x], src.memory.pixels()[y * 5 + x]);
            }
        }
    });
}

TEST_F(CCsNearestTest, ASmallSourceAtScaleOneLeavesBackgroundAroundIt) {
    GuardedImage src(4, 2, CCS_GREY8, 4, 1.0);
    for (int i = 0; i < 8; ++i) src.memory.pixels()[i] = static_cast<unsigned char>(i + 1);
    GuardedImage dst(8, 4, CCS_GREY8, 8, 1.0);
    CCs2dTrafo trafo;
    trafo.setSizes(src, dst);
    trafo.setDspScaleFactor(1.0);
    nearest_.nearestGrey8Grey8(src, dst, trafo, 99);
    const std::vector<int> expected{99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 1,  2,  3,  4,  99, 99,
                                    99, 99, 5,  6,  7,  8,  99, 99, 99, 99, 99, 99, 99, 99, 99, 99};
    EXPECT_EQ(std::vector<int>(dst.memory.pixels(), dst.memory.pixels() + 32), expected);
}

TEST_F(CCsNearestTest, EveryMemberDrawsWhatItsRulesSay) {
    const auto all = nearestMembers();
    zoltest::Random random(41);
    int compared = 0;
    for (int i = 0; i < 2600; ++i) {
        const auto& member = all[static_cast<std::size_t>(i) % all.size()];
        const int largest = random.chance(0.1) ? 300 : 45;
        const auto size = [&] { return random.integer(1, largest); };
        const int srcWidth = size();
        const int dstWidth = size();
        const double ratio = random.chance(0.7) ? 1.0 : random.real(0.3, 3.0);
        GuardedRaster src(srcWidth, size(), member.sourceType, srcWidth + random.integer(0, 5), ratio);
        GuardedImage dst(dstWidth, size(), member.destinationType, dstWidth + random.integer(0, 5), 1.0);
        src.memory.randomise(random);
        dst.memory.randomise(random);
        const std::vector<unsigned char> before = dst.memory.all();
        const CCs2dTrafo view = zoltest::anyView(random, src, dst);
        const zoltest::Matrix matrix = zoltest::toImageOf(view, src, dst);

        const bool comparable = zoltest::withinReach(matrix);
        if (comparable) member.draw(matrix.m, pixelsOf(src), pixelsOf(dst));
        const std::vector<unsigned char> expected = dst.memory.all();
        const std::vector<unsigned char> source = src.memory.all();
        forEachVariant([&](const std::string& /*variant*/) {
            dst.memory.all() = before;
            CCs2dTrafo trafo(view);
            ASSERT_EQ(member.call(nearest_, src, dst, trafo), 255);
            if (comparable) {
                ++compared;
                ASSERT_TRUE(dst.memory.all() == expected)
                    << zoltest::narrow(member.name) << " case " << i << ' ' << src.getWidth() << 'x' << src.getHeight()
                    << " to " << dst.getWidth() << 'x' << dst.getHeight() << ' ' << zoltest::textOf(matrix) << " seed "
                    << random.seed();
            } else {
                const auto guard = static_cast<std::ptrdiff_t>(dst.memory.guard());
                ASSERT_TRUE(std::equal(before.begin(), before.begin() + guard, dst.memory.all().begin()));
                ASSERT_TRUE(std::equal(before.end() - guard, before.end(), dst.memory.all().end() - guard));
            }
            ASSERT_TRUE(src.memory.all() == source);
        });
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(compared, 5000);
    EXPECT_TRUE(zoltest::reportsOf(zoltest::nearestModule).empty());
}

TEST_F(CCsNearestTest, OverlaysGoBeforeShuttersAndShuttersBeforePadding) {
    zoltest::Random random(42);
    using Kind = bool RuleChoice::*;
    const std::vector<std::vector<Kind>> shutters{{},
                                                  {&RuleChoice::bitmapShutter},
                                                  {&RuleChoice::rectangle},
                                                  {&RuleChoice::circle},
                                                  {&RuleChoice::polygon},
                                                  {&RuleChoice::rectangle, &RuleChoice::circle, &RuleChoice::polygon},
                                                  {&RuleChoice::rectangle, &RuleChoice::bitmapShutter}};
    int overlaysOverShutters = 0;
    for (int combination = 0; combination < 16; ++combination) {
        for (const std::vector<Kind>& kinds : shutters) {
            if (((combination & 2) != 0) == kinds.empty()) continue;
            for (int repeat = 0; repeat < 6; ++repeat) {
                RuleChoice choice;
                choice.planes = (combination & 1) != 0;
                for (const Kind kind : kinds) choice.*kind = true;
                choice.embedded = (combination & 4) != 0;
                choice.padding = (combination & 8) != 0;
                const int type = random.chance(0.7) ? CCS_GREY12 : CCS_GREY16;
                const bool large = repeat == 0;
                RuledRaster source = zoltest::makeRuledRaster(random, random.integer(1, large ? 400 : 50),
                                                              random.integer(1, large ? 90 : 50), type,
                                                              random.chance(0.7) ? 1.0 : 1.7, choice);
                CCsRaster& src = *source.raster;
                auto* stored = reinterpret_cast<std::uint16_t*>(src.getOrigin());
                for (int k = 0; k < src.getPitch() * src.getHeight(); ++k) {
                    stored[k] = static_cast<std::uint16_t>(random.bits() & (random.chance(0.5) ? 0xFFFU : 0xFFFFU));
                }
                const int dstWidth = random.integer(1, large ? 300 : 60);
                GuardedImage dst(dstWidth, random.integer(1, 60), CCS_RGB8, dstWidth + random.integer(0, 3), 1.0);
                const CCs2dTrafo view = zoltest::anyView(random, src, dst);
                const zoltest::Matrix matrix = zoltest::toImageOf(view, src, dst);
                if (!zoltest::withinReach(matrix)) continue;
                TableMap map;

                dst.memory.randomise(random);
                const std::vector<unsigned char> before = dst.memory.all();
                const zolref::Pixels pixels{reinterpret_cast<unsigned char*>(stored), src.getWidth(), src.getHeight(),
                                            src.getPitch(), 2};
                const zolref::Stepping st = zolref::steppingOf(matrix.m, pixels, pixelsOf(dst));
                const unsigned mask = type == CCS_GREY12 ? 0xFFFU : 0xFFFFU;
                for (int y = 0; y < dst.getHeight(); ++y) {
                    for (int x = 0; x < dst.getWidth(); ++x) {
                        std::int64_t u = 0;
                        std::int64_t v = 0;
                        std::uint32_t value = 0xA5;
                        if (zolref::sourcePosition(st, x, y, u, v)) {
                            const unsigned s = zolref::load16(zolref::pixelAt(pixels, u >> 16, v >> 16));
                            const auto other =
                                zoltest::shownInstead(src, &map, source.paddingData(), 0xA5, dst.getWidth(), u, v, s);
                            value = other.value_or(map.entry(s & mask));
                            overlaysOverShutters += choice.planes && !kinds.empty() && value >> 24U == 2 ? 1 : 0;
                        }
                        zolref::store32(zolref::pixelAt(pixelsOf(dst), x, y), value);
                    }
                }
                const std::vector<unsigned char> expected = dst.memory.all();
                forEachVariant([&](const std::string& /*variant*/) {
                    dst.memory.all() = before;
                    CCs2dTrafo trafo(view);
                    nearest_.nearestGrey12IndexMap(src, dst, trafo, &map, source.paddingData(), 0xA5);
                    ASSERT_TRUE(dst.memory.all() == expected)
                        << "combination " << combination << " repeat " << repeat << ' ' << zoltest::textOf(matrix);
                });
                if (HasFatalFailure()) return;
            }
        }
    }
    EXPECT_GT(overlaysOverShutters, 100);
    EXPECT_TRUE(zoltest::reportsOf(zoltest::nearestModule).empty());
}

/// A 12-bit raster of one value, drawn 1:1 into a display of the same size.
struct SmallView {
    explicit SmallView(int size, std::uint16_t value = 100)
        : src(size, size, CCS_GREY12, 1.0, false, false), dst(size, size, CCS_RGB8, size, 1.0) {
        auto* stored = reinterpret_cast<std::uint16_t*>(src.getOrigin());
        std::fill_n(stored, src.getPitch() * size, value);
    }

    std::uint32_t draw(CCsNearest& nearest, IMap* map, unsigned char* padding, int x, int y) {
        CCs2dTrafo trafo;
        nearest.nearestGrey12IndexMap(src, dst, trafo, map, padding, 0x77);
        std::uint32_t value = 0;
        std::memcpy(&value, zolref::pixelAt(pixelsOf(dst), x, y), 4);
        return value;
    }

    CCsRaster src;
    GuardedImage dst;
};

CCs60XXOverlay planeOver(int size, unsigned char* data) {
    CCs60XXOverlay plane;
    plane.originX = 1;
    plane.originY = 1;
    plane.rows = static_cast<std::uint16_t>(size);
    plane.columns = static_cast<std::uint16_t>(size);
    plane.data = data;
    return plane;
}

TEST_F(CCsNearestTest, AnOverlayPixelInsideAShutteredAreaShowsTheOverlay) {
    SmallView view(8);
    TableMap map;
    std::vector<unsigned char> bits(8);
    bits[3] = 1 << 2;  // column 2, row 3
    view.src.add60XXOverlayInfo(planeOver(8, bits.data()));
    view.src.setRectShutter({5, 5, 6, 6});
    view.src.setPresentationShutterValue(0x8000);
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 2, 3), map.groupColours[0]);
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 3, 3), 0x808080U);
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 5, 5), map.entry(100));
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 6, 6), map.entry(100));  // right and bottom are inside
    map.enabled = false;
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 2, 3), 0x808080U);
    map.enabled = true;
    map.hasGroupColours = false;
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 2, 3), 0x808080U);
}

TEST_F(CCsNearestTest, TheFirstPlaneThatIsSetGivesTheColourOfItsPosition) {
    SmallView view(8);
    TableMap map;
    std::vector<unsigned char> set(8, 0xFF);
    std::vector<unsigned char> clear(8, 0);
    view.src.add60XXOverlayInfo(planeOver(8, clear.data()));
    view.src.add60XXOverlayInfo(planeOver(8, nullptr));  // without data: not set, but it keeps its position
    view.src.add60XXOverlayInfo(planeOver(8, set.data()));
    view.src.add60XXOverlayInfo(planeOver(8, set.data()));
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 4, 4), map.groupColours[2]);
}

TEST_F(CCsNearestTest, PlanesBeyondTheSixteenthTakeTheLastColour) {
    SmallView view(8);
    TableMap map;
    std::vector<unsigned char> set(8, 0xFF);
    std::vector<unsigned char> clear(8, 0);
    for (int i = 0; i < 19; ++i) view.src.add60XXOverlayInfo(planeOver(8, i == 18 ? set.data() : clear.data()));
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 4, 4), map.groupColours[15]);
}

TEST_F(CCsNearestTest, EmbeddedBitsShowTheirColourAndAreMaskedWhereTheyAreOff) {
    SmallView view(4, 0x5123);
    TableMap map;
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 1, 1), map.entry(0x123));
    view.src.setEmbeddedOverlayStatus(true);
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 1, 1), map.planeColours[5]);
    view.src.setRectShutter({0, 0, 0, 0});
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 1, 1), map.planeColours[5]);
    map.hasPlaneColours = false;
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 1, 1), 0U);  // the shutter
    view.src.resetImage(-1);
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 1, 1), map.entry(0x123));
}

TEST_F(CCsNearestTest, AShutteredPixelNeverShowsPadding) {
    SmallView view(8);
    TableMap map;
    std::vector<unsigned char> padding(8, 0xFF);
    view.src.setRectShutter({2, 2, 5, 5});
    view.src.setPresentationShutterValue(0xFF00);
    EXPECT_EQ(view.draw(nearest_, &map, padding.data(), 0, 0), 0xFFFFFFU);
    EXPECT_EQ(view.draw(nearest_, &map, padding.data(), 3, 3), 0x77U);
}

TEST_F(CCsNearestTest, ASetBitOfABitmapShutterHidesUnlessADisplayShutterIsOn) {
    SmallView view(8);
    TableMap map;
    std::vector<unsigned char> bits(8);
    bits[2] = 1 << 4;
    CCsBitmapShutterInfo info;
    info.tag = 1;
    info.originX = 1;
    info.originY = 1;
    info.rows = 8;
    info.columns = 8;
    info.data = bits.data();
    info.presentationValue = 0x4321;
    view.src.setBitmapShutterInfo(info);
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 4, 2), 0x434343U);
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 3, 2), map.entry(100));
    view.src.setRectShutter({0, 0, 7, 7});
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 4, 2), map.entry(100));
}

TEST_F(CCsNearestTest, ThePresentationValueIsItsHighByteInThreeChannels) {
    SmallView view(4);
    TableMap map;
    view.src.setRectShutter({10, 10, 11, 11});
    for (const auto& [value, colour] : std::vector<std::pair<unsigned short, std::uint32_t>>{
             {0, 0}, {0x00FF, 0}, {0x0100, 0x010101}, {0xFFFF, 0xFFFFFF}}) {
        view.src.setPresentationShutterValue(value);
        EXPECT_EQ(view.draw(nearest_, &map, nullptr, 1, 1), colour);
    }
}

TEST_F(CCsNearestTest, ADegenerateCircleKeepsItsCentreAndReachesAcrossTheDisplay) {
    SmallView view(16);
    TableMap map;
    view.src.setPresentationShutterValue(0xFF00);
    // The centre (12, 12) comes from the radius 0, which then becomes 15.
    view.src.setCircShutter({12, 12, 12, 12});
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 12, 12), map.entry(100));
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 0, 12), map.entry(100));
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 0, 0), 0xFFFFFFU);
}

TEST_F(CCsNearestTest, AMapThatIsNotForGreyValuesGivesATableOfZeroes) {
    SmallView view(4);
    const auto colourMap = std::unique_ptr<IMap>(MapFactory::CreateMap(MapFactory::Rgb8));
    std::vector<unsigned char> set(2, 0xFF);
    view.src.add60XXOverlayInfo(planeOver(4, set.data()));
    view.src.setEmbeddedOverlayStatus(true);
    EXPECT_EQ(view.draw(nearest_, nullptr, nullptr, 1, 1), 0U);
    if (colourMap != nullptr) {
        EXPECT_EQ(view.draw(nearest_, colourMap.get(), nullptr, 1, 1), 0U);
    }
    EXPECT_TRUE(ReportCapture::take().empty());
}

TEST_F(CCsNearestTest, SourcesOfOnePixelAndOfVeryLongLines) {
    zoltest::Random random(43);
    for (const auto& [width, height] :
         std::vector<std::pair<int, int>>{{1, 1}, {32767, 1}, {32768, 1}, {40000, 2}, {1, 32768}, {2, 70000}}) {
        GuardedRaster src(width, height, CCS_GREY12, width, 1.0);
        src.memory.randomise(random);
        GuardedImage dst(70, 50, CCS_GREY12, 70, 1.0);
        for (int i = 0; i < 30; ++i) {
            CCs2dTrafo view;
            view.setSizes(src, dst);
            view.rotate(random.chance(0.5) ? 90.0 * random.integer(0, 3) : random.real(0.0, 360.0));
            if (random.chance(0.6)) view.setDspScaleFactor(random.real(0.2, 5.0));
            if (random.chance(0.5)) view.setDspPanFactor(random.real(-100.0, 100.0), random.real(-100.0, 100.0));
            const zoltest::Matrix matrix = zoltest::toImageOf(view, src, dst);
            zolref::nearestCopy(matrix.m, pixelsOf(src), pixelsOf(dst), 0xBEEF);
            const std::vector<unsigned char> expected = dst.memory.all();
            forEachVariant([&](const std::string& /*variant*/) {
                CCs2dTrafo trafo(view);
                ASSERT_EQ(nearest_.nearestGrey12Grey12(src, dst, trafo, 0xBEEF, false), 255);
                ASSERT_TRUE(dst.memory.all() == expected) << src.getWidth() << 'x' << src.getHeight();
            });
            if (HasFatalFailure()) return;
        }
    }
}

TEST_F(CCsNearestTest, TransformationsThatAreNotFiniteGiveBackgroundOnly) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const double most = std::numeric_limits<double>::max();
    for (const auto& member : nearestMembers()) {
        GuardedRaster src(5, 5, member.sourceType, 5, 1.0);
        GuardedImage dst(9, 7, member.destinationType, 10, 1.0);
        GuardedImage blank(9, 7, member.destinationType, 10, 1.0);
        const double beside[6] = {1, 0, 0, 1, 1000, 1000};
        member.draw(beside, pixelsOf(src), pixelsOf(blank));
        for (const double value : {nan, inf, -inf, most, -most, 1e100, 1e-200}) {
            for (const bool pan : {false, true}) {
                if (pan && value == 1e-200) continue;
                forEachVariant([&](const std::string& /*variant*/) {
                    std::fill(dst.memory.all().begin(), dst.memory.all().end(), static_cast<unsigned char>(0));
                    CCs2dTrafo trafo;
                    if (pan) {
                        trafo.setDspPanFactor(value, 0.0);
                    } else {
                        trafo.scale(value);
                    }
                    ASSERT_EQ(member.call(nearest_, src, dst, trafo), 255);
                    // An enormous zoom is a matrix of zeroes: the one source pixel everywhere, unless it overflows.
                    if (!pan && (std::fabs(value) > 1e90)) return;
                    ASSERT_TRUE(dst.memory.all() == blank.memory.all()) << zoltest::narrow(member.name) << ' ' << value;
                });
                if (HasFatalFailure()) return;
            }
        }
    }
    EXPECT_TRUE(zoltest::reportsOf(zoltest::nearestModule).empty());
}

TEST_F(CCsNearestTest, ImagesWithoutLinesAreOnlyUnlocked) {
    for (const auto& member : nearestMembers()) {
        if (member.destinationType == CCS_RGB24) continue;  // has no guard line to look at
        GuardedRaster src(5, 5, member.sourceType, 5, 1.0);
        CCsRaster flat(9, 0, member.destinationType, 1.0, false, false);
        const int bytes = zoltest::bytesOfType(member.destinationType);
        const int spare = (flat.getPitch() + 1) * bytes;
        std::vector<unsigned char> before(static_cast<std::size_t>(spare), 0x5A);
        std::copy(before.begin(), before.end(), flat.getOrigin());
        CCs2dTrafo trafo;
        EXPECT_EQ(member.call(nearest_, src, flat, trafo), 255);
        EXPECT_TRUE(std::equal(before.begin(), before.end(), flat.getOrigin()));
    }
    EXPECT_TRUE(ReportCapture::take().empty());
}

TEST_F(CCsNearestTest, SourcesWithoutPixelsGiveBackgroundOnly) {
    CCsRaster src(0, 0, CCS_GREY12, 1.0, false, false);
    GuardedImage dst(6, 3, CCS_GREY12, 6, 1.0);
    CCs2dTrafo trafo;
    EXPECT_EQ(nearest_.nearestGrey12Grey12(src, dst, trafo, 0x1234, false), 255);
    const auto* pixels = reinterpret_cast<const std::uint16_t*>(dst.memory.pixels());
    for (int i = 0; i < 18; ++i) EXPECT_EQ(pixels[i], 0x1234);
}

}  // namespace

TEST(CCsNearestMembers, TakeTheStatedTypesOnly) { zoltest::expectStatedTypes(nearestMembers()); }

TEST(CCsNearestMembers, ReportFailuresAndUnlockBothImages) { zoltest::expectStatedFailures(nearestMembers()); }

TEST(CCsNearestMembers, ReportAMapThatThrows) {
    zoltest::expectThrowingMapReported<CCsNearest>(
        [](CCsNearest& n, CCsRaster& s, CCsImage& d, CCs2dTrafo& t, IMap* map, unsigned char* padding,
           unsigned char background) {
            n.nearestGrey12IndexMap(s, d, t, map, padding, background);
            return 0;
        },
        L"nearestGrey12IndexMap");
}
