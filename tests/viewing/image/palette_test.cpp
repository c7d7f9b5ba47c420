#include "viewing/image/palette.h"

#include "support/dicom_writer.h"
#include "support/test_data.h"
#include "viewing/dicom/dicom_file.h"
#include "viewing/open.h"

#include <gtest/gtest.h>

namespace {

using namespace viewing;
using zoltest::DicomWriter;
using zoltest::TemporaryFolder;

constexpr const char* names[] = {"HOT_IRON", "PET",    "HOT_METAL_BLUE", "PET_20_STEP",
                                 "SPRING",   "SUMMER", "FALL",           "WINTER"};

TEST(Palette, WellKnownOnesHaveTheirNames) {
    for (const char* name : names) EXPECT_TRUE(wellKnownPalette(name)) << name;
    EXPECT_EQ(wellKnownPalette("hot_iron"), wellKnownPalette("HOT_IRON"));
    for (const char* name : {"", "HOT", "HOTIRON", "PET ", "AUTUMN"}) EXPECT_FALSE(wellKnownPalette(name)) << name;
}

TEST(Palette, HotIronByItsRule) {
    const Palette palette = *wellKnownPalette("HOT_IRON");
    for (unsigned int i = 0; i < 255; ++i) {
        const unsigned int red = i < 128 ? 2 * i : 255;
        const unsigned int green = i < 128 ? 0 : 2 * (i - 128);
        const unsigned int blue = i < 192 ? 0 : 4 * (i - 192) + 4;
        EXPECT_EQ(palette[i], (red << 16U) | (green << 8U) | (i == 254 ? 252U : std::min(blue, 252U))) << i;
    }
    EXPECT_EQ(palette[255], 0xFFFFFFU);
}

TEST(Palette, SeasonsRunStraight) {
    const Palette spring = *wellKnownPalette("SPRING");
    const Palette fall = *wellKnownPalette("FALL");
    for (unsigned int i = 0; i < 256; ++i) {
        EXPECT_EQ(spring[i], 0xFF0000U | (i << 8U) | (255U - i));
        EXPECT_EQ(fall[i], 0xFF0000U | ((255U - i) << 8U));
    }
}

TEST(Palette, StepsAreTwentyColours) {
    const Palette palette = *wellKnownPalette("PET_20_STEP");
    int steps = 1;
    for (std::size_t i = 1; i < palette.size(); ++i) steps += palette[i] != palette[i - 1] ? 1 : 0;
    EXPECT_EQ(steps, 20);
    EXPECT_EQ(palette[0], 0x000000U);
    EXPECT_EQ(palette[255], 0xFFFFFFU);
}

TEST(Palette, BuiltInOnesAreThoseOfTheSampleFiles) {
    const std::filesystem::path folder = zoltest::sampleFolder() / "palettes";
    if (!std::filesystem::is_directory(folder)) GTEST_SKIP() << "no sample folder";
    const std::pair<const char*, const char*> files[] = {{"HOT_IRON", "hotiron"},
                                                         {"PET", "pet"},
                                                         {"HOT_METAL_BLUE", "hotmetalblue"},
                                                         {"PET_20_STEP", "pet20step"},
                                                         {"SPRING", "spring"},
                                                         {"SUMMER", "summer"},
                                                         {"FALL", "fall"},
                                                         {"WINTER", "winter"}};
    for (const auto& [name, file] : files) {
        const Palette read = DicomFile((folder / (std::string(file) + ".dcm")).string()).palette();
        const Palette built = *wellKnownPalette(name);
        for (std::size_t i = 0; i < read.size(); ++i) ASSERT_EQ(built[i], read[i]) << name << ' ' << i;
    }
}

TEST(Palette, FilesOfAnyLengthSpreadOverAllLevels) {
    const TemporaryFolder folder;
    DicomWriter two(1, 1);
    two.palette({2, 77, 16}, {0x1000, 0x2000}, {0x3000, 0x4000}, {0x5000, 0x6000});
    const Palette palette = openPalette(two.save(folder));
    EXPECT_EQ(palette[0], 0x103050U);
    EXPECT_EQ(palette[127], 0x103050U);
    EXPECT_EQ(palette[128], 0x204060U);
    EXPECT_EQ(palette[255], 0x204060U);
    DicomWriter many(1, 1);
    std::vector<std::uint16_t> ramp(1021);
    for (std::size_t i = 0; i < ramp.size(); ++i) ramp[i] = static_cast<std::uint16_t>(i / 4 * 256);
    many.palette({1021, 0, 16}, ramp, ramp, ramp);
    const Palette grey = openPalette(many.save(folder));
    for (unsigned int i = 0; i < 256; ++i) EXPECT_EQ(grey[i], i * 0x010101U);
}

TEST(Palette, FilesWithoutOneAreRefused) {
    const TemporaryFolder folder;
    DicomWriter writer(1, 1);
    try {
        openPalette(writer.save(folder));
        FAIL() << "accepted";
    } catch (const Refusal& refusal) {
        EXPECT_STREQ(refusal.what(), "contains no palette");
    }
    EXPECT_THROW(openPalette(folder.file("none.dcm")), Refusal);
}

}  // namespace
