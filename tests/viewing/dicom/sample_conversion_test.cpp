#include "viewing/dicom/sample_conversion.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace viewing;
using Words = std::vector<std::uint16_t>;

GreyImage convert(const Words& words, const PixelFormat& format, std::optional<PaddingRange> padding = {},
                  std::uint16_t embedded = 0) {
    StoredImage image;
    image.width = static_cast<int>(words.size());
    image.height = 1;
    convertSamples(image, words, format, padding, embedded);
    return image.grey();
}

TEST(SampleConversion, ValueBitsAndSign) {
    const PixelFormat twelve{16, 12, 11, false};
    EXPECT_EQ(twelve.valueBits(), 0x0FFF);
    EXPECT_EQ(twelve.value(0xF123), 0x123);

    const PixelFormat signedTwelve{16, 12, 11, true};
    EXPECT_EQ(signedTwelve.value(0x07FF), 2047);
    EXPECT_EQ(signedTwelve.value(0x0800), -2048);
    EXPECT_EQ(signedTwelve.value(0x5FFF), -1);

    const PixelFormat high{16, 12, 15, false};
    EXPECT_EQ(high.valueBits(), 0xFFF0);
    EXPECT_EQ(high.value(0xABCF), 0xABC);

    const PixelFormat full{16, 16, 15, true};
    EXPECT_EQ(full.value(0x8000), -32768);
    EXPECT_EQ(full.value(0x7FFF), 32767);

    const PixelFormat one{8, 1, 0, true};
    EXPECT_EQ(one.value(1), -1);
    EXPECT_EQ(one.value(0), 0);
}

TEST(SampleConversion, UnsignedTwelveBitsStayAsTheyAre) {
    const GreyImage image = convert({0, 1, 4095, 0xF800}, {16, 12, 11, false});
    EXPECT_EQ(image.samples, (Words{0, 1, 4095, 2048}));
    EXPECT_EQ(image.lowest, 0);
    EXPECT_EQ(image.minLevel, 0);
    EXPECT_EQ(image.maxLevel, 4095);
    EXPECT_TRUE(image.padding.empty());
}

TEST(SampleConversion, SignedValuesAreLiftedByHalfTheirRange) {
    const GreyImage twelve = convert({0x800, 0xFFF, 0, 0x7FF}, {16, 12, 11, true});
    EXPECT_EQ(twelve.samples, (Words{0, 2047, 2048, 4095}));
    EXPECT_EQ(twelve.lowest, -2048);

    const GreyImage nine = convert({0x100, 0x1FF, 0, 0xFF}, {16, 9, 8, true});
    EXPECT_EQ(nine.samples, (Words{0, 255, 256, 511}));
    EXPECT_EQ(nine.lowest, -256);
    EXPECT_EQ(nine.minLevel, 0);
    EXPECT_EQ(nine.maxLevel, 511);
}

TEST(SampleConversion, SixteenBitsAreTakenWhenTheirValuesFit) {
    const GreyImage image = convert({0xFC18, 3095, 0}, {16, 16, 15, true});
    EXPECT_EQ(image.lowest, -1000);
    EXPECT_EQ(image.samples, (Words{0, 4095, 1000}));
    EXPECT_EQ(image.maxLevel, 4095);
}

TEST(SampleConversion, SixteenBitsThatDoNotFitHaveALevelEach) {
    const GreyImage plain = convert({0, 4096, 65535}, {16, 16, 15, false});
    EXPECT_EQ(plain.levels, levels16);
    EXPECT_EQ(plain.lowest, 0);
    EXPECT_EQ(plain.samples, (Words{0, 4096, 65535}));
    EXPECT_EQ(plain.maxLevel, 65535);
    const GreyImage lifted = convert({0x8000, 0xFFFF, 0, 0x7FFF}, {16, 16, 15, true});
    EXPECT_EQ(lifted.lowest, -32768);
    EXPECT_EQ(lifted.samples, (Words{0, 32767, 32768, 65535}));
    const GreyImage thirteen = convert({0x1000, 0x0FFF, 0xEFFF}, {16, 13, 12, true});
    EXPECT_EQ(thirteen.levels, levels16);
    EXPECT_EQ(thirteen.lowest, -4096);
    EXPECT_EQ(thirteen.samples, (Words{0, 8191, 8191}));
    EXPECT_EQ(convert({0, 4095}, {16, 13, 12, false}).levels, levels12);
}

TEST(SampleConversion, TwelveBitsAnywhereInTheWordStayTwelve) {
    const GreyImage high = convert({0xFFF0, 0x000F, 0x8000}, {16, 12, 15, true});
    EXPECT_EQ(high.levels, levels12);
    EXPECT_EQ(high.samples, (Words{2047, 2048, 0}));
    const GreyImage middle = convert({0x03FC, 0xFC03}, {16, 8, 9, false});
    EXPECT_EQ(middle.samples, (Words{255, 0}));
}

TEST(SampleConversion, PaddingDoesNotCountForTheRange) {
    const GreyImage image = convert({0xF830, 100, 4195, 0xF82F}, {16, 16, 15, true}, PaddingRange{-2001, -2000});
    EXPECT_EQ(image.lowest, 100);
    EXPECT_EQ(image.samples, (Words{0, 0, 4095, 0}));
    EXPECT_TRUE(image.padding.get(0, 0));
    EXPECT_FALSE(image.padding.get(1, 0));
    EXPECT_FALSE(image.padding.get(2, 0));
    EXPECT_TRUE(image.padding.get(3, 0));
    EXPECT_EQ(image.minLevel, 0);
    EXPECT_EQ(image.maxLevel, 4095);
}

TEST(SampleConversion, PaddingAboveTheRangeStaysWithinTheLevels) {
    const GreyImage image = convert({65535, 10, 20}, {16, 16, 15, false}, PaddingRange{65535, 65535});
    EXPECT_EQ(image.samples, (Words{4095, 0, 10}));
}

TEST(SampleConversion, NothingButPaddingIsAnImageWithoutValues) {
    const GreyImage image = convert({7, 7}, {16, 12, 11, true}, PaddingRange{7, 7});
    EXPECT_TRUE(image.padding.get(0, 0));
    EXPECT_TRUE(image.padding.get(1, 0));
    EXPECT_EQ(image.minLevel, image.maxLevel);
}

TEST(SampleConversion, EmbeddedBitsTravelAboveTheLevels) {
    const GreyImage image = convert({0x1001, 0x2002, 0x8003}, {16, 12, 11, false}, {}, 0x9000);
    EXPECT_EQ(image.samples, (Words{0x1001, 0x0002, 0x8003}));
    const GreyImage lifted = convert({0x1000}, {16, 12, 11, true}, {}, 0x1000);
    EXPECT_EQ(lifted.samples, (Words{0x1800}));
}

}  // namespace
