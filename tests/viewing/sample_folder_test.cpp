// Every file of the sample folder: shown, or refused with the words that are expected.
#include "support/test_data.h"
#include "viewing/dicom/dicom_file.h"
#include "viewing/open.h"
#include "viewing/render.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using namespace viewing;

/// The start of the refusal; files that are not listed are shown.
const std::map<std::string, std::string> refusals{
    {"chrKoreanMulti", "contains no image (it is a ComputedRadiographyImageStorage)"},
    {"MR_truncated", "is truncated, or is not a DICOM file"},
    {"j2k_16bit_in_8_allocated", "has a JPEG 2000 codestream of 16 bits a sample where Bits Allocated says 8"},
    {"j2k_half_of_its_tiles", "is truncated: its JPEG 2000 codestream has 8 of 16 tiles"},
    {"j2k_tiny_precincts_9GB", "has a JPEG 2000 codestream cut into so small parts that decoding it would take far "},
    {"jpeg_8bit_in_16_allocated", "has a JPEG codestream of 8 bits a sample where Bits Stored says 16"},
    {"jpeg_cut_with_eoi", "has a damaged JPEG codestream"},
    {"jpeg_extended_cut_with_eoi", "has a damaged JPEG codestream"},
    {"jpeg_one_component_in_rgb", "has a JPEG codestream of 1 sample a pixel where Samples per Pixel says 3"},
    {"jpeg_smaller_than_rows_columns",
     "has a JPEG codestream of 320 x 240 pixels where Columns and Rows say 640 x 480"},
};

std::string expectedRefusal(const std::filesystem::path& path) {
    const std::string name = path.stem().string();
    if (name.find("gsps") != std::string::npos)
        return "contains no image (it is a GrayscaleSoftcopyPresentationStateStorage)";
    if (path.parent_path().filename() == "palettes") return "contains no image (it is a ColorPaletteStorage)";
    const auto found = refusals.find(name);
    return found == refusals.end() ? "" : found->second;
}

TEST(SampleFolder, EveryFileIsShownOrRefusedAsExpected) {
    const std::filesystem::path folder = zoltest::sampleFolder();
    if (folder.empty()) GTEST_SKIP() << "no sample folder";
    int shown = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() != ".dcm") continue;
        const std::string expected = expectedRefusal(entry.path());
        std::string refusal;
        try {
            const StoredImage image = openImage(entry.path().string(), {});
            DisplaySettings settings;
            settings.size = Size{200, 160};
            std::vector<std::string> notes;
            const Picture picture = render(image, settings, notes);
            EXPECT_GT(std::count_if(picture.pixels.begin(), picture.pixels.end(),
                                    [](std::uint32_t pixel) { return pixel != 0; }),
                      100)
                << entry.path();
            ++shown;
        } catch (const Refusal& refused) {
            refusal = refused.what();
        }
        EXPECT_EQ(refusal.substr(0, expected.size()), expected) << entry.path();
        EXPECT_EQ(refusal.empty(), expected.empty()) << entry.path() << ": " << refusal;
    }
    EXPECT_GT(shown, 45);
}

TEST(SampleFolder, OneImageInSixEncodingsIsOneImage) {
    const std::filesystem::path folder = zoltest::sampleFolder();
    if (folder.empty()) GTEST_SKIP() << "no sample folder";
    const StoredImage base = openImage((folder / "syntax/MR_small.dcm").string(), {});
    for (const char* name : {"implicit", "bigendian", "RLE", "jpeg_ls_lossless", "jp2klossless"}) {
        const StoredImage other =
            openImage((folder / "syntax" / (std::string("MR_small_") + name + ".dcm")).string(), {});
        EXPECT_EQ(other.grey().samples, base.grey().samples) << name;
        EXPECT_EQ(other.grey().voi, base.grey().voi) << name;
    }
}

TEST(SampleFolder, RunLengthsInTwoFragmentsAreOneImage) {
    const std::filesystem::path folder = zoltest::sampleFolder();
    if (folder.empty()) GTEST_SKIP() << "no sample folder";
    EXPECT_EQ(openImage((folder / "broken/rle_two_fragments_wrong_picture.dcm").string(), {}).grey().samples,
              openImage((folder / "syntax/MR_small_RLE.dcm").string(), {}).grey().samples);
}

Picture showSample(const std::filesystem::path& path, const OpenSettings& load = {},
                   const DisplaySettings& settings = {}) {
    std::vector<std::string> notes;
    return render(openImage(path.string(), load), settings, notes);
}

TEST(SampleFolder, ThreeTablesMakeACleanRampOfTheScrambledImage) {
    const std::filesystem::path folder = zoltest::sampleFolder();
    if (folder.empty()) GTEST_SKIP() << "no sample folder";
    OpenSettings tables;
    tables.modalityFile = tables.voiFile = tables.presentationFile = (folder / "xlut_p03_gsps.dcm").string();
    const Picture picture = showSample(folder / "xlut_image.dcm", tables);
    // A ramp of all greys above one of sixteen steps. The last row is not scrambled, and no part of them.
    for (int y = 0; y < 511; ++y) {
        for (int x = 0; x < 512; ++x) {
            const int grey = y < 256 ? x / 2 : x / 32 * 17;
            ASSERT_EQ(picture.at(x, y), static_cast<std::uint32_t>(grey) * 0x010101U) << x << ',' << y;
        }
    }
}

TEST(SampleFolder, EveryDeepValueIsMonotonicUnderEveryWindow) {
    const std::filesystem::path folder = zoltest::sampleFolder();
    if (folder.empty()) GTEST_SKIP() << "no sample folder";
    const std::filesystem::path chart = folder / "derived/chart_16bit_every_value.dcm";
    const StoredImage image = DicomFile(chart.string()).image();
    std::vector<std::size_t> byValue(65536);
    for (std::size_t i = 0; i < image.grey().samples.size(); ++i) byValue[image.grey().samples[i]] = i;
    for (const Window window : {Window{32768.0, 65536.0},
                                {1.0, 1.0},
                                {40000.5, 3.0},
                                {9999.0, 20001.0},
                                {65535.0, 2.0},
                                {-100.0, 1000.0},
                                {70000.0, 9000.0}}) {
        DisplaySettings settings;
        settings.window = window;
        const Picture picture = showSample(chart, {}, settings);
        for (std::size_t value = 1; value < byValue.size(); ++value)
            ASSERT_LE(picture.pixels[byValue[value - 1]], picture.pixels[byValue[value]])
                << window.centre << '/' << window.width << " at " << value;
    }
}

TEST(SampleFolder, PalettesOfBothDepthsAreOnePicture) {
    const std::filesystem::path folder = zoltest::sampleFolder();
    if (folder.empty()) GTEST_SKIP() << "no sample folder";
    EXPECT_EQ(showSample(folder / "testpattern_palette_8bitlut.dcm").pixels,
              showSample(folder / "testpattern_palette_16bitlut.dcm").pixels);
}

TEST(SampleFolder, EveryFrameIsThere) {
    const std::filesystem::path folder = zoltest::sampleFolder();
    if (folder.empty()) GTEST_SKIP() << "no sample folder";
    const std::filesystem::path film = folder / "us_ybr422_jpeg_30fr.dcm";
    OpenSettings load;
    const Picture first = showSample(film);
    load.frame = 30;
    EXPECT_NE(showSample(film, load).pixels, first.pixels);
    load.frame = 31;
    EXPECT_THROW(openImage(film.string(), load), Refusal);
}

TEST(SampleFolder, EveryStoredValueHasItsLevel) {
    const std::filesystem::path folder = zoltest::sampleFolder();
    if (folder.empty()) GTEST_SKIP() << "no sample folder";
    const StoredImage image = DicomFile((folder / "derived/chart_12bit_every_value.dcm").string()).image();
    std::vector<int> count(4096);
    for (const std::uint16_t sample : image.grey().samples) ++count[sample];
    EXPECT_EQ(count, std::vector<int>(4096, 1));
}

}  // namespace
