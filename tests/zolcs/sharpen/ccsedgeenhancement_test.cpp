#include "zolcs/ccsedgeenhancement.h"

#include "reference/edge_reference.h"
#include "reference/guarded_image.h"
#include "support/map_support.h"
#include "support/new_failure.h"
#include "support/report_capture.h"
#include "zolcs/sharpen/unsharprows.h"
#include "zolcs/simd/variant.h"

#include <cstring>
#include <limits>
#include <stdexcept>
#include <type_traits>

namespace {

namespace simd = zolcs::simd;
using zolcs::UnsharpSettings;
using zoltest::errorReport;
using zoltest::GuardedRaster;
using zoltest::Random;
using zoltest::Report;
using zoltest::ReportCapture;

static_assert(std::is_polymorphic_v<CCsEdgeEnhancement>);
static_assert(sizeof(CCsEdgeEnhancement) == sizeof(void*));

constexpr const wchar_t* module = L"source\\zolcs\\ccsedgeenhancement";

unsigned char* pixelAt(GuardedRaster& image, int x, int y) {
    const int index = y * image.getPitch() + x;
    return image.memory.pixels() + static_cast<std::ptrdiff_t>(index) * zoltest::bytesOfType(image.getType());
}

unsigned grey(GuardedRaster& image, int x, int y) {
    std::uint16_t value = 0;
    std::memcpy(&value, pixelAt(image, x, y), sizeof value);
    return value;
}

void setGrey(GuardedRaster& image, int x, int y, unsigned value) {
    const auto stored = static_cast<std::uint16_t>(value);
    std::memcpy(pixelAt(image, x, y), &stored, sizeof stored);
}

void fillGrey(GuardedRaster& image, unsigned value) {
    for (int y = 0; y < image.getHeight(); ++y) {
        for (int x = 0; x < image.getWidth(); ++x) setGrey(image, x, y, value);
    }
}

long clampedTo32Bits(long value) {
    return static_cast<long>(std::clamp<std::int64_t>(value, std::numeric_limits<std::int32_t>::min(),
                                                      std::numeric_limits<std::int32_t>::max()));
}

/// Writes into dst what the grey member should.
void restateGrey(GuardedRaster& src, GuardedRaster& dst, long size, long strength, int bits) {
    std::int64_t mask = 2;
    for (int i = 0; i < bits; ++i) mask *= 2;
    mask -= 1;
    zolref::EdgePlane plane{src.getWidth(), src.getHeight(), {}};
    for (int y = 0; y < plane.height; ++y) {
        for (int x = 0; x < plane.width; ++x) plane.values.push_back(grey(src, x, y) & mask);
    }
    const auto out = zolref::sharpened(plane, size, clampedTo32Bits(strength), src.getType() == CCS_GREY12 ? 10 : 6,
                                       mask, std::int64_t{1} << 32U);
    for (int y = 0; y < plane.height; ++y) {
        for (int x = 0; x < plane.width; ++x) {
            const bool inside = zolref::isEdgeInterior(plane, size, x, y);
            const std::int64_t kept = inside ? grey(src, x, y) & ~mask : 0;
            setGrey(dst, x, y, static_cast<unsigned>(out[static_cast<std::size_t>(y * plane.width + x)] | kept));
        }
    }
}

/// Writes into dst what the colour member should.
void restateColour(GuardedRaster& src, GuardedRaster& dst, long size, long strength) {
    for (int channel = 0; channel < 3; ++channel) {
        const int target = src.getType() == CCS_RGB24 ? 2 - channel : channel;
        zolref::EdgePlane plane{src.getWidth(), src.getHeight(), {}};
        for (int y = 0; y < plane.height; ++y) {
            for (int x = 0; x < plane.width; ++x) plane.values.push_back(pixelAt(src, x, y)[channel]);
        }
        const auto out = zolref::sharpened(plane, size, clampedTo32Bits(strength), 10, 255, 65536);
        for (int y = 0; y < plane.height; ++y) {
            for (int x = 0; x < plane.width; ++x) {
                pixelAt(dst, x, y)[target] =
                    static_cast<unsigned char>(out[static_cast<std::size_t>(y * plane.width + x)]);
            }
        }
    }
}

long anyStrength(Random& random) {
    switch (random.integer(0, 9)) {
        case 0:
            return 0;
        case 1:
            return random.integer(-20, -1);
        case 2:
            return std::numeric_limits<std::int32_t>::max() - random.integer(0, 3);
        case 3:
            return std::numeric_limits<std::int32_t>::min() + random.integer(0, 3);
        case 4:
            return random.chance(0.5) ? std::numeric_limits<long>::max() : std::numeric_limits<long>::min();
        case 5:
            return random.integer(1, 1 << 30);
        case 6:
            return random.integer(100, 100000);
        default:
            return random.integer(1, 12);
    }
}

class CCsEdgeEnhancementTest : public ::testing::Test {
protected:
    ~CCsEdgeEnhancementTest() override { simd::choose(""); }

    /// Calls `call` with every variant of the fast loops; each must leave the destination's whole memory as `restate`
    /// does, and the source as it was.
    template <typename Call, typename Restate>
    static void expectRestated(GuardedRaster& src, GuardedRaster& dst, const Call& call, const Restate& restate) {
        const std::vector<unsigned char> before = dst.memory.all();
        const std::vector<unsigned char> source = src.memory.all();
        restate();
        const std::vector<unsigned char> expected = dst.memory.all();
        for (const std::string& variant : simd::variants()) {
            ASSERT_TRUE(simd::choose(variant));
            dst.memory.all() = before;
            ASSERT_EQ(call(), 255);
            ASSERT_TRUE(dst.memory.all() == expected) << variant;
            ASSERT_TRUE(src.memory.all() == source) << variant;
            ASSERT_EQ(src.GetMemBuffer()->getLockCount(), 0);
            ASSERT_EQ(dst.GetMemBuffer()->getLockCount(), 0);
        }
    }

    void expectGrey(GuardedRaster& src, GuardedRaster& dst, long size, long strength, int bits) {
        SCOPED_TRACE("box " + std::to_string(size) + " strength " + std::to_string(strength) + " bits " +
                     std::to_string(bits) + " of " + std::to_string(src.getWidth()) + 'x' +
                     std::to_string(src.getHeight()) + " type " + std::to_string(src.getType()));
        expectRestated(
            src, dst, [&] { return enhancement_.edgeEnhancementGrey12(src, dst, size, strength, bits); },
            [&] { restateGrey(src, dst, size, strength, bits); });
    }

    void expectColour(GuardedRaster& src, GuardedRaster& dst, long size, long strength) {
        SCOPED_TRACE("box " + std::to_string(size) + " strength " + std::to_string(strength) + " of " +
                     std::to_string(src.getWidth()) + 'x' + std::to_string(src.getHeight()) + " type " +
                     std::to_string(src.getType()));
        expectRestated(
            src, dst, [&] { return enhancement_.edgeEnhancementRGB8(src, dst, size, strength); },
            [&] { restateColour(src, dst, size, strength); });
    }

    ReportCapture reports_;
    zoltest::LogCapture log_;
    CCsEdgeEnhancement enhancement_;
};

TEST_F(CCsEdgeEnhancementTest, GreyImagesAreSharpenedAsRestated) {
    Random random(41);
    for (int round = 0; round < 400; ++round) {
        const int width = random.integer(1, random.chance(0.3) ? 4 : 70);
        const int height = random.integer(1, random.chance(0.3) ? 4 : 30);
        const int largest = std::min(width, height) + 3;
        GuardedRaster src(width, height, random.chance(0.5) ? CCS_GREY12 : CCS_GREY16, width + random.integer(0, 5), 1);
        GuardedRaster dst(width, height, random.chance(0.5) ? CCS_GREY12 : CCS_GREY16, width + random.integer(0, 5), 1);
        src.memory.randomise(random);
        dst.memory.randomise(random);
        if (random.chance(0.2)) {  // only extremes
            for (unsigned char& byte : src.memory.all()) byte = random.chance(0.5) ? 255 : 0;
        }
        const int bits = random.chance(0.4) ? 11 : random.integer(0, 15);
        expectGrey(src, dst, random.integer(1, random.chance(0.5) ? std::min(largest, 5) : largest),
                   anyStrength(random), bits);
        if (HasFatalFailure()) FAIL() << "round " << round << " seed " << random.seed();
    }
    EXPECT_TRUE(ReportCapture::take().empty());
}

TEST_F(CCsEdgeEnhancementTest, ColourImagesAreSharpenedAsRestated) {
    Random random(42);
    for (int round = 0; round < 250; ++round) {
        const int width = random.integer(1, random.chance(0.3) ? 4 : 50);
        const int height = random.integer(1, random.chance(0.3) ? 4 : 30);
        const int largest = std::min(width, height) + 3;
        GuardedRaster src(width, height, random.chance(0.5) ? CCS_RGB8 : CCS_RGB24, width + random.integer(0, 5), 1);
        GuardedRaster dst(width, height, CCS_RGB8, width + random.integer(0, 5), 1);
        src.memory.randomise(random);
        dst.memory.randomise(random);
        if (random.chance(0.2)) {
            for (unsigned char& byte : src.memory.all()) byte = random.chance(0.5) ? 255 : 0;
        }
        expectColour(src, dst, random.integer(1, random.chance(0.5) ? std::min(largest, 5) : largest),
                     anyStrength(random));
        if (HasFatalFailure()) FAIL() << "round " << round << " seed " << random.seed();
    }
    EXPECT_TRUE(ReportCapture::take().empty());
}

TEST_F(CCsEdgeEnhancementTest, EveryBoxFromOnePixelToBeyondTheImage) {
    Random random(43);
    for (const auto& [width, height] : {std::pair{19, 13}, std::pair{12, 12}, std::pair{1, 1}, std::pair{2, 5}}) {
        GuardedRaster greySource(width, height, CCS_GREY12, width + 3, 1);
        GuardedRaster greyResult(width, height, CCS_GREY12, width + 1, 1);
        GuardedRaster colourSource(width, height, CCS_RGB24, width, 1);
        GuardedRaster colourResult(width, height, CCS_RGB8, width + 1, 1);
        for (GuardedRaster* image : {&greySource, &greyResult, &colourSource, &colourResult}) {
            image->memory.randomise(random);
        }
        for (long size = 1; size <= std::max(width, height) + 4; ++size) {
            for (const long strength : {0L, 1L, 3L, -2L}) {
                expectGrey(greySource, greyResult, size, strength, 11);
                expectColour(colourSource, colourResult, size, strength);
                ASSERT_FALSE(HasFatalFailure());
            }
        }
    }
}

TEST_F(CCsEdgeEnhancementTest, BoxesFarBeyondAnyImageCopy) {
    GuardedRaster src(9, 7, CCS_GREY12, 10, 1);
    GuardedRaster dst(9, 7, CCS_GREY16, 9, 1);
    Random random(44);
    for (const long size : {10L, 1000L, 1L << 30U, static_cast<long>(std::numeric_limits<std::int32_t>::max()),
                            std::numeric_limits<long>::max()}) {
        src.memory.randomise(random);
        expectRestated(
            src, dst, [&] { return enhancement_.edgeEnhancementGrey12(src, dst, size, 1000000, 11); },
            [&] {
                for (int i = 0; i < 63; ++i) setGrey(dst, i % 9, i / 9, grey(src, i % 9, i / 9) & 0xFFFU);
            });
    }
}

TEST_F(CCsEdgeEnhancementTest, TheSourcesTypeSaysHowFinelyTheMeanIsScaled) {
    // A mean of 1/81 with strength -1: -(1024 / 81) is less than 0 and rounds down to -1, -(64 / 81) is nothing.
    for (const std::string& variant : simd::variants()) {
        simd::choose(variant);
        for (const int type : {CCS_GREY12, CCS_GREY16}) {
            for (const int resultType : {CCS_GREY12, CCS_GREY16}) {
                GuardedRaster src(9, 9, type, 9, 1);
                GuardedRaster dst(9, 9, resultType, 9, 1);
                fillGrey(src, 0);
                setGrey(src, 4, 4, 1);
                ASSERT_EQ(enhancement_.edgeEnhancementGrey12(src, dst, 9, -1, 11), 255);
                EXPECT_EQ(grey(dst, 4, 4), type == CCS_GREY12 ? 1U : 0U) << variant << ' ' << type << ' ' << resultType;
            }
        }
    }
}

TEST_F(CCsEdgeEnhancementTest, BoxOneWithoutStrengthCopies) {
    Random random(45);
    GuardedRaster src(40, 9, CCS_GREY12, 44, 1);
    GuardedRaster dst(40, 9, CCS_GREY12, 41, 1);
    src.memory.randomise(random);
    ASSERT_EQ(enhancement_.edgeEnhancementGrey12(src, dst, 1, 0, 11), 255);
    for (int y = 0; y < 9; ++y) {
        for (int x = 0; x < 40; ++x) ASSERT_EQ(grey(dst, x, y), grey(src, x, y)) << x << ' ' << y;
    }
}

TEST_F(CCsEdgeEnhancementTest, FlatImagesStayAsTheyAreForAnyStrength) {
    for (const std::string& variant : simd::variants()) {
        simd::choose(variant);
        for (const unsigned value : {0U, 1U, 2047U, 4095U, 40000U, 65535U}) {
            GuardedRaster src(37, 30, CCS_GREY16, 40, 1);
            GuardedRaster dst(37, 30, CCS_GREY16, 37, 1);
            fillGrey(src, value);
            for (const long strength : {0L, 1L, 7L, -1L, -9L, 1000L, 2147483647L, -2147483647L - 1L,
                                        std::numeric_limits<long>::max(), std::numeric_limits<long>::min()}) {
                for (const long size : {1L, 2L, 3L, 8L, 15L, 29L}) {
                    fillGrey(dst, 0x5A5A);
                    ASSERT_EQ(enhancement_.edgeEnhancementGrey12(src, dst, size, strength, 15), 255);
                    for (int i = 0; i < 37 * 30; ++i) {
                        ASSERT_EQ(grey(dst, i % 37, i / 37), value)
                            << variant << " box " << size << " strength " << strength << " at " << i;
                    }
                }
            }
        }
    }
}

TEST_F(CCsEdgeEnhancementTest, LargeBoxesDoNotOverflow) {
    // Sums of a box beyond 32 bits, of a line of boxes beyond 2^31: still flat.
    for (const auto& [size, strength] : {std::pair{300L, 1L}, std::pair{257L, 5L}, std::pair{200L, 1L << 20U}}) {
        for (const std::string& variant : simd::variants()) {
            simd::choose(variant);
            GuardedRaster src(330, 310, CCS_GREY16, 330, 1);
            GuardedRaster dst(330, 310, CCS_GREY16, 331, 1);
            fillGrey(src, 65535);
            ASSERT_EQ(enhancement_.edgeEnhancementGrey12(src, dst, size, strength, 15), 255);
            for (int i = 0; i < 330 * 310; ++i) ASSERT_EQ(grey(dst, i % 330, i / 330), 65535U) << i;
        }
    }
}

TEST_F(CCsEdgeEnhancementTest, ColumnSumsOfColourWrapUnderLargeBoxes) {
    GuardedRaster src(264, 262, CCS_RGB8, 264, 1);
    GuardedRaster dst(264, 262, CCS_RGB8, 264, 1);
    std::fill(src.memory.all().begin(), src.memory.all().end(), static_cast<unsigned char>(255));
    // 257 * 255 still fits 16 bits; 258 * 255 leaves 254 of 65790.
    ASSERT_EQ(enhancement_.edgeEnhancementRGB8(src, dst, 257, 1), 255);
    EXPECT_EQ(pixelAt(dst, 130, 130)[0], 255);
    for (const std::string& variant : simd::variants()) {
        simd::choose(variant);
        ASSERT_EQ(enhancement_.edgeEnhancementRGB8(src, dst, 258, -1), 255);
        // 255 * 0 - ((258 * 254 * -1024) / (258 * 258) >> 10) = 1, with the border as it was.
        EXPECT_EQ(pixelAt(dst, 130, 130)[1], 1);
        EXPECT_EQ(pixelAt(dst, 128, 130)[1], 255);
    }
}

TEST_F(CCsEdgeEnhancementTest, BitsAboveTheMaskSurviveInsideAndNotOnTheBorder) {
    GuardedRaster src(5, 5, CCS_GREY12, 5, 1);
    GuardedRaster dst(5, 5, CCS_GREY12, 5, 1);
    fillGrey(src, 0xA123);
    ASSERT_EQ(enhancement_.edgeEnhancementGrey12(src, dst, 3, 4, 11), 255);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 5; ++x) {
            const bool border = x == 0 || y == 0 || x == 4 || y == 4;
            EXPECT_EQ(grey(dst, x, y), border ? 0x123U : 0xA123U) << x << ' ' << y;
        }
    }
}

TEST_F(CCsEdgeEnhancementTest, ResultsAreLimitedToTheMask) {
    GuardedRaster src(3, 3, CCS_GREY12, 3, 1);
    GuardedRaster dst(3, 3, CCS_GREY12, 3, 1);
    fillGrey(src, 1000);
    setGrey(src, 1, 1, 3000);
    ASSERT_EQ(enhancement_.edgeEnhancementGrey12(src, dst, 3, 1, 11), 255);
    EXPECT_EQ(grey(dst, 1, 1), 4095U);  // 6000 - 1222
    ASSERT_EQ(enhancement_.edgeEnhancementGrey12(src, dst, 3, 1, 12), 255);
    EXPECT_EQ(grey(dst, 1, 1), 4778U);
    setGrey(src, 1, 1, 100);
    ASSERT_EQ(enhancement_.edgeEnhancementGrey12(src, dst, 3, 1, 11), 255);
    EXPECT_EQ(grey(dst, 1, 1), 0U);  // 200 - 900
}

TEST_F(CCsEdgeEnhancementTest, EvenBoxesReachFurtherToTheLeftAndUp) {
    GuardedRaster src(4, 4, CCS_GREY12, 4, 1);
    GuardedRaster dst(4, 4, CCS_GREY12, 4, 1);
    fillGrey(src, 400);
    setGrey(src, 0, 0, 800);
    setGrey(src, 3, 3, 0);
    ASSERT_EQ(enhancement_.edgeEnhancementGrey12(src, dst, 2, 1, 11), 255);
    EXPECT_EQ(grey(dst, 1, 1), 300U);  // the box holds (0, 0)
    EXPECT_EQ(grey(dst, 2, 2), 400U);  // the box does not hold (3, 3)
}

TEST_F(CCsEdgeEnhancementTest, NegativeStrengthsRoundAsStated) {
    // The mean is cut towards zero with the fraction bits and then rounded down: the bits matter.
    GuardedRaster src(3, 3, CCS_GREY12, 3, 1);
    GuardedRaster dst(3, 3, CCS_GREY12, 3, 1);
    fillGrey(src, 0);
    setGrey(src, 0, 0, 1);
    ASSERT_EQ(enhancement_.edgeEnhancementGrey12(src, dst, 3, -1, 11), 255);
    EXPECT_EQ(grey(dst, 1, 1), 1U);  // (-1024 / 9) >> 10 is -1
    for (const int type : {CCS_GREY12, CCS_GREY16}) {
        GuardedRaster sparse(33, 32, type, 33, 1);
        GuardedRaster out(33, 32, type, 33, 1);
        setGrey(sparse, 16, 16, 1);
        expectGrey(sparse, out, 31, -1, 11);  // 1024 / 961 is 1, 64 / 961 is 0
    }
}

TEST_F(CCsEdgeEnhancementTest, MasksBeyondSixteenBitsStoreTheLowOnes) {
    zoltest::Random random(47);
    for (const int bits : {16, 17, 25, 29, 30}) {
        GuardedRaster src(20, 9, CCS_GREY16, 20, 1);
        GuardedRaster dst(20, 9, CCS_GREY16, 20, 1);
        src.memory.randomise(random);
        expectGrey(src, dst, 3, 2, bits);
    }
    GuardedRaster src(20, 9, CCS_GREY16, 20, 1);
    GuardedRaster dst(20, 9, CCS_GREY16, 20, 1);
    src.memory.randomise(random);
    restateGrey(src, dst, 3, 2, 30);
    const std::vector<unsigned char> expected = dst.memory.all();
    for (const int bits : {31, 32, 64, std::numeric_limits<int>::max()}) {
        ASSERT_EQ(enhancement_.edgeEnhancementGrey12(src, dst, 3, 2, bits), 255);
        EXPECT_EQ(dst.memory.all(), expected) << bits;
    }
}

TEST_F(CCsEdgeEnhancementTest, TheFourthByteIsNeverWrittenAndThreeBytesAreTurnedRound) {
    GuardedRaster src(4, 4, CCS_RGB24, 4, 1);
    GuardedRaster dst(4, 4, CCS_RGB8, 4, 1);
    std::fill(dst.memory.all().begin(), dst.memory.all().end(), static_cast<unsigned char>(0xEE));
    for (int i = 0; i < 16; ++i) {
        unsigned char* pixel = pixelAt(src, i % 4, i / 4);
        pixel[0] = 10;
        pixel[1] = 20;
        pixel[2] = 30;
    }
    ASSERT_EQ(enhancement_.edgeEnhancementRGB8(src, dst, 3, 5), 255);
    for (int i = 0; i < 16; ++i) {
        const unsigned char* pixel = pixelAt(dst, i % 4, i / 4);
        EXPECT_EQ(pixel[0], 30);
        EXPECT_EQ(pixel[1], 20);
        EXPECT_EQ(pixel[2], 10);
        EXPECT_EQ(pixel[3], 0xEE);
    }
}

TEST_F(CCsEdgeEnhancementTest, EveryPairOfTypes) {
    for (int from = CCS_INDEX8; from <= CCS_GREY16; ++from) {
        for (int to = CCS_INDEX8; to <= CCS_GREY16; ++to) {
            SCOPED_TRACE(std::to_string(from) + " to " + std::to_string(to));
            GuardedRaster src(5, 4, from, 6, 1);
            GuardedRaster dst(5, 4, to, 6, 1);
            std::fill(dst.memory.all().begin(), dst.memory.all().end(), static_cast<unsigned char>(0x69));
            const std::vector<unsigned char> before = dst.memory.all();
            const auto isGrey = [](int type) { return type == CCS_GREY12 || type == CCS_GREY16; };
            const auto expectOutcome = [&](int result, bool sourceFits, bool destinationFits, const Report& wrongSource,
                                           const Report& wrongDestination) {
                const std::vector<Report> reports = ReportCapture::take();
                if (sourceFits && destinationFits) {
                    EXPECT_EQ(result, 255);
                    EXPECT_TRUE(reports.empty());
                    dst.memory.all() = before;
                } else {
                    EXPECT_EQ(result, 0);
                    EXPECT_EQ(reports, std::vector<Report>{sourceFits ? wrongDestination : wrongSource});
                    EXPECT_EQ(dst.memory.all(), before);
                }
            };
            expectOutcome(enhancement_.edgeEnhancementGrey12(src, dst, 3, 1, 11), isGrey(from), isGrey(to),
                          errorReport(L"Source type must be CCS_GREY12, is", from, module, 61),
                          errorReport(L"Destination type must be CCS_GREY12, is", to, module, 67));
            expectOutcome(enhancement_.edgeEnhancementRGB8(src, dst, 3, 1), from == CCS_RGB8 || from == CCS_RGB24,
                          to == CCS_RGB8, errorReport(L"Source type must be CCS_RGB8, is", from, module, 203),
                          errorReport(L"Destination type must be CCS_RGB8, is", to, module, 209));
        }
    }
}

TEST_F(CCsEdgeEnhancementTest, RefusedCallsAreReportedAndLeaveTheDestination) {
    for (const bool colour : {false, true}) {
        const int type = colour ? CCS_RGB8 : CCS_GREY12;
        GuardedRaster src(5, 4, type, 6, 1);
        const auto call = [&](CCsRaster& dst, long size) {
            return colour ? enhancement_.edgeEnhancementRGB8(src, dst, size, 1)
                          : enhancement_.edgeEnhancementGrey12(src, dst, size, 1, 11);
        };
        for (const auto& [width, height] : {std::pair{4, 4}, std::pair{5, 5}, std::pair{6, 3}}) {
            GuardedRaster dst(width, height, type, 7, 1);
            const std::vector<unsigned char> before = dst.memory.all();
            EXPECT_EQ(call(dst, 3), 0);
            EXPECT_EQ(ReportCapture::take(),
                      std::vector<Report>{
                          errorReport(L"Destination raster must have the same size", 0, module, colour ? 216 : 74)});
            EXPECT_EQ(dst.memory.all(), before);
        }
        GuardedRaster dst(5, 4, type, 7, 1);
        const std::vector<unsigned char> before = dst.memory.all();
        for (const long size : {0L, -1L, -1000000L}) {
            EXPECT_EQ(call(dst, size), 0);
            EXPECT_EQ(ReportCapture::take(), std::vector<Report>{errorReport(L"Size of the box must be at least 1, is",
                                                                             size, module, colour ? 222 : 80)});
            EXPECT_EQ(dst.memory.all(), before);
        }
    }
    GuardedRaster src(5, 4, CCS_GREY12, 6, 1);
    GuardedRaster dst(5, 4, CCS_GREY12, 6, 1);
    const std::vector<unsigned char> before = dst.memory.all();
    EXPECT_EQ(enhancement_.edgeEnhancementGrey12(src, dst, 3, 1, -1), 0);
    EXPECT_EQ(ReportCapture::take(),
              std::vector<Report>{errorReport(L"Highest bit must be at least 0, is", -1, module, 86)});
    EXPECT_EQ(dst.memory.all(), before);
}

TEST_F(CCsEdgeEnhancementTest, ExhaustedMemoryIsReported) {
    if (!zoltest::canFailNothrowNew()) GTEST_SKIP() << "the library has its own operator new here";
    const std::vector<Report> greyReport{errorReport(L"Out of memory", 0, module, 94)};
    const std::vector<Report> colourReport{errorReport(L"Out of memory", 0, module, 236)};
    for (const std::size_t limit : {std::size_t{1000} * 4, std::size_t{1000} * 4 + 5}) {
        GuardedRaster greySource(1000, 2, CCS_GREY12, 1000, 1);
        GuardedRaster greyResult(1000, 2, CCS_GREY12, 1000, 1);
        GuardedRaster colourSource(1000, 2, CCS_RGB24, 1000, 1);
        GuardedRaster colourResult(1000, 2, CCS_RGB8, 1000, 1);
        greySource.memory.all().back() = 3;
        const std::vector<unsigned char> greyBefore = greyResult.memory.all();
        const std::vector<unsigned char> colourBefore = colourResult.memory.all();
        {
            const zoltest::NothrowNewLimit none(limit);
            EXPECT_EQ(enhancement_.edgeEnhancementGrey12(greySource, greyResult, 1, 1, 11), 0);
            EXPECT_EQ(enhancement_.edgeEnhancementRGB8(colourSource, colourResult, 1, 1), 0);
            EXPECT_GT(zoltest::NothrowNewLimit::refusals(), 0);
        }
        std::vector<Report> both = greyReport;
        both.push_back(colourReport.front());
        EXPECT_EQ(ReportCapture::take(), both);
        EXPECT_EQ(greyResult.memory.all(), greyBefore);
        EXPECT_EQ(colourResult.memory.all(), colourBefore);
    }
}

TEST_F(CCsEdgeEnhancementTest, FilteringInPlaceStaysInsideTheMemory) {
    zoltest::Random random(49);
    for (const std::string& variant : simd::variants()) {
        simd::choose(variant);
        for (const bool colour : {false, true}) {
            for (const long size : {1L, 3L, 8L, 41L, 100L}) {
                GuardedRaster image(50, 41, colour ? CCS_RGB8 : CCS_GREY12, 53, 1);
                image.memory.randomise(random);
                const std::vector<unsigned char> before = image.memory.all();
                EXPECT_EQ(colour ? enhancement_.edgeEnhancementRGB8(image, image, size, 2)
                                 : enhancement_.edgeEnhancementGrey12(image, image, size, 2, 11),
                          255);
                const auto guard = static_cast<std::ptrdiff_t>(image.memory.guard());
                const std::vector<unsigned char>& after = image.memory.all();
                EXPECT_TRUE(std::equal(after.begin(), after.begin() + guard, before.begin())) << variant << size;
                EXPECT_TRUE(std::equal(after.end() - guard, after.end(), before.end() - guard)) << variant << size;
                EXPECT_EQ(image.GetMemBuffer()->getLockCount(), 0);
            }
        }
    }
}

TEST_F(CCsEdgeEnhancementTest, RastersWithoutMemoryAreReported) {
    auto* manager = ZolMemMappedManager::getIntance();
    for (const bool sourceFails : {true, false}) {
        for (const bool colour : {true, false}) {
            const int type = colour ? CCS_RGB8 : CCS_GREY12;
            GuardedRaster good(50, 40, type, 50, 1);
            const std::vector<unsigned char> before = good.memory.all();
            CCsRaster deferred(50, 40, type, 1.0, false, true);
            CCsRaster& src = sourceFails ? deferred : static_cast<CCsRaster&>(good);
            CCsRaster& dst = sourceFails ? static_cast<CCsRaster&>(good) : deferred;
            manager->setLimit(0);
            EXPECT_EQ(colour ? enhancement_.edgeEnhancementRGB8(src, dst, 3, 1)
                             : enhancement_.edgeEnhancementGrey12(src, dst, 3, 1, 11),
                      0);
            manager->setLimit(static_cast<std::size_t>(-1));
            const std::vector<Report> reports = ReportCapture::take();
            ASSERT_FALSE(reports.empty());  // after the raster's own
            EXPECT_EQ(reports.back(), errorReport(L"Out of memory", 0, module, colour ? 236 : 94));
            EXPECT_EQ(good.memory.all(), before);
            EXPECT_EQ(good.GetMemBuffer()->getLockCount(), 0);
        }
    }
}

/// A raster of which locking throws.
class ThrowingRaster : public GuardedRaster {
public:
    using GuardedRaster::GuardedRaster;
    unsigned char* getOrigin() override { throw std::runtime_error("no pixels today"); }
};

TEST_F(CCsEdgeEnhancementTest, AnExceptionIsLoggedAndCountsAsDone) {
    for (const bool colour : {false, true}) {
        const int type = colour ? CCS_RGB8 : CCS_GREY12;
        GuardedRaster good(6, 5, type, 6, 1);
        ThrowingRaster bad(6, 5, type, 6, 1);
        const std::vector<unsigned char> before = good.memory.all();
        const auto call = [&](CCsRaster& src, CCsRaster& dst) {
            return colour ? enhancement_.edgeEnhancementRGB8(src, dst, 3, 1)
                          : enhancement_.edgeEnhancementGrey12(src, dst, 3, 1, 11);
        };
        EXPECT_EQ(call(good, bad), 255);
        EXPECT_EQ(call(bad, good), 255);
        EXPECT_EQ(good.memory.all(), before);
        EXPECT_EQ(good.GetMemBuffer()->getLockCount(), 0);
        EXPECT_TRUE(ReportCapture::take().empty());
        const std::vector<std::pair<std::wstring, std::wstring>> twice(2, {L"zolcs - E", L"Exception: unknown"});
        EXPECT_EQ(zoltest::LogCapture::lines(), twice);
        zoltest::LogCapture::lines().clear();
    }
}

TEST_F(CCsEdgeEnhancementTest, ImagesWithoutPixelsAreDone) {
    for (const auto& [width, height] : {std::pair{0, 0}, std::pair{0, 3}, std::pair{3, 0}}) {
        CCsRaster greySource(width, height, CCS_GREY12, 1.0, false, false);
        CCsRaster greyResult(width, height, CCS_GREY12, 1.0, false, false);
        EXPECT_EQ(enhancement_.edgeEnhancementGrey12(greySource, greyResult, 1, 1, 11), 255);
        CCsRaster colourSource(width, height, CCS_RGB8, 1.0, false, false);
        CCsRaster colourResult(width, height, CCS_RGB8, 1.0, false, false);
        EXPECT_EQ(enhancement_.edgeEnhancementRGB8(colourSource, colourResult, 1, 1), 255);
    }
    EXPECT_TRUE(ReportCapture::take().empty());
}

TEST_F(CCsEdgeEnhancementTest, CopiesAndAssignmentsCarryNothing) {
    const CCsEdgeEnhancement copy(enhancement_);
    enhancement_ = copy;
    GuardedRaster src(3, 3, CCS_GREY12, 3, 1);
    GuardedRaster dst(3, 3, CCS_GREY12, 3, 1);
    EXPECT_EQ(enhancement_.edgeEnhancementGrey12(src, dst, 3, 1, 11), 255);
}

UnsharpSettings settingsOf(std::int64_t box, std::int32_t strength, std::int32_t limit) {
    return {box, strength, limit > 4095 ? 6 : 10, limit, std::numeric_limits<std::uint32_t>::max()};
}

TEST(UnsharpShares, TheExactShareIsALongDivision) {
    Random random(48);
    for (int i = 0; i < 20000; ++i) {
        const auto box = random.integer(1, random.chance(0.5) ? 20 : 20000);
        const auto strength = static_cast<std::int32_t>(random.bits()) >> random.integer(0, 31);
        UnsharpSettings settings = settingsOf(box, strength, random.chance(0.5) ? 4095 : 65535);
        const std::uint64_t sum = random.bits() % (settings.largestSum() + 1);
        ASSERT_EQ(zolcs::ExactShare(settings)(sum), zolref::edgeShare(static_cast<std::int64_t>(sum), strength,
                                                                      std::int64_t{box} * box, settings.fractionBits))
            << sum << ' ' << box << ' ' << strength;
    }
}

/// Compares a fast share with the exact one on the largest sums, around many quotients and at random.
template <typename Share>
void expectSameShares(const UnsharpSettings& settings, const Share& share, Random& random) {
    const zolcs::ExactShare exact(settings);
    const std::uint64_t largest = settings.largestSum();
    const auto expectSame = [&](std::uint64_t sum) {
        if (sum > largest) return;
        using Sum = std::conditional_t<std::is_same_v<Share, zolcs::IntegerShare>, std::uint32_t, std::uint64_t>;
        ASSERT_EQ(static_cast<std::int64_t>(share(static_cast<Sum>(sum))), exact(sum))
            << "sum " << sum << " box " << settings.box << " strength " << settings.strength;
    };
    for (std::uint64_t i = 0; i <= 3; ++i) {
        expectSame(i);
        expectSame(largest - std::min(largest, i));
    }
    const auto area = static_cast<std::uint64_t>(settings.box * settings.box);
    for (int i = 0; i < 40; ++i) {
        expectSame(random.bits() % (largest + 1));
        // Sums at which sum * strength passes a multiple of the area: where a wrong last bit would show.
        const std::uint64_t multiple = random.chance(0.3) ? largest / area - random.bits() % 3 : random.bits() % 70000;
        const std::uint64_t strength = std::max<std::uint64_t>(1, static_cast<std::uint64_t>(settings.strength));
        const std::uint64_t close = multiple * area / strength;
        for (std::uint64_t k = 0; k < 5; ++k) expectSame(close + k - 2);
    }
}

TEST(UnsharpShares, ReciprocalsEqualTheDivision) {
    Random random(49);
    int integers = 0;
    int doubles = 0;
    for (int i = 0; i < 40000 && !::testing::Test::HasFatalFailure(); ++i) {
        const std::int64_t box = i < 2048 ? i + 1 : random.integer(1, random.chance(0.9) ? 600 : 30000);
        const std::int32_t strength = random.chance(0.8) ? random.integer(0, 20) : random.integer(0, 1 << 30);
        const UnsharpSettings settings = settingsOf(box, strength, (2 << random.integer(0, 15)) - 1);
        if (const auto share = zolcs::IntegerShare::of(settings)) {
            expectSameShares(settings, *share, random);
            ++integers;
        }
        if (const auto share = zolcs::DoubleShare::of(settings)) {
            expectSameShares(settings, *share, random);
            ++doubles;
        }
    }
    EXPECT_GT(integers, 3000);
    EXPECT_GT(doubles, 10000);
}

TEST(UnsharpShares, EverySumOfSmallBoxes) {
    for (std::int64_t box = 1; box <= 12; ++box) {
        for (const std::int32_t strength : {1, 2, 3, 7, 10}) {
            const UnsharpSettings settings = settingsOf(box, strength, 1023);
            const zolcs::ExactShare exact(settings);
            const auto integer = zolcs::IntegerShare::of(settings);
            const auto real = zolcs::DoubleShare::of(settings);
            ASSERT_TRUE(integer && real);
            for (std::uint32_t sum = 0; sum <= settings.largestSum(); ++sum) {
                ASSERT_EQ(std::int64_t{(*integer)(sum)}, exact(sum)) << sum << ' ' << box << ' ' << strength;
                ASSERT_EQ((*real)(sum), exact(sum)) << sum << ' ' << box << ' ' << strength;
            }
        }
    }
}

TEST(UnsharpShares, ReciprocalsAreRefusedWhereTheyWouldNotBeExact) {
    EXPECT_FALSE(zolcs::IntegerShare::of(settingsOf(3, -1, 4095)));
    EXPECT_FALSE(zolcs::DoubleShare::of(settingsOf(3, -1, 4095)));
    EXPECT_FALSE(zolcs::IntegerShare::of(settingsOf(200, 1, 65535)));
    EXPECT_TRUE(zolcs::DoubleShare::of(settingsOf(200, 1, 65535)));
    EXPECT_FALSE(zolcs::DoubleShare::of(settingsOf(1000, 1 << 20, 65535)));
    EXPECT_FALSE(zolcs::IntegerShare::of(settingsOf(3, 1, 0x1FFFF)));
    EXPECT_FALSE(zolcs::IntegerShare::of(settingsOf(1, 1 << 20, 4095)));
    EXPECT_FALSE(zolcs::IntegerShare::of(settingsOf(std::numeric_limits<std::int32_t>::max(), 0, 65535)));
}

}  // namespace
