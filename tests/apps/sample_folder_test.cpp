// Every file of the sample folder: shown, or refused with the words that are expected.
#include "support/test_data.h"
#include "zolview/dicom_input.h"
#include "zolview/render.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using namespace zolview;

/// The start of the refusal; files that are not listed are shown.
const std::map<std::string, std::string> refusals{
    {"chrKoreanMulti", "contains no image (it is a ComputedRadiographyImageStorage)"},
    {"MR_truncated", "is truncated, or is not a DICOM file"},
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
            const StoredImage image = DicomFile(entry.path().string()).image();
            RenderOptions options;
            options.size = Size{200, 160};
            std::vector<std::string> notes;
            const Picture picture = render(image, options, notes);
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
    const StoredImage base = DicomFile((folder / "syntax/MR_small.dcm").string()).image();
    for (const char* name : {"implicit", "bigendian", "RLE", "jpeg_ls_lossless", "jp2klossless"}) {
        const StoredImage other =
            DicomFile((folder / "syntax" / (std::string("MR_small_") + name + ".dcm")).string()).image();
        EXPECT_EQ(other.samples, base.samples) << name;
        EXPECT_EQ(other.window, base.window) << name;
    }
}

TEST(SampleFolder, EveryStoredValueHasItsLevel) {
    const std::filesystem::path folder = zoltest::sampleFolder();
    if (folder.empty()) GTEST_SKIP() << "no sample folder";
    const StoredImage image = DicomFile((folder / "derived/chart_12bit_every_value.dcm").string()).image();
    std::vector<int> count(4096);
    for (const std::uint16_t sample : image.samples) ++count[sample];
    EXPECT_EQ(count, std::vector<int>(4096, 1));
}

}  // namespace
