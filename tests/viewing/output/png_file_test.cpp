#include "viewing/output/png_file.h"

#include "support/dicom_writer.h"
#include "support/file_limit.h"
#include "support/read_png.h"
#include "viewing/image/stored_image.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using namespace viewing;
using zoltest::TemporaryFolder;

TEST(PngOutput, GreyPixelsMakeAGreyFile) {
    const TemporaryFolder folder;
    const Picture picture{3, 2, {0x000000, 0x010101, 0x7F7F7F, 0x808080, 0xFEFEFE, 0xFFFFFF}};
    writePng(picture, folder.file("grey.png"));
    const zoltest::PngFile file = zoltest::readPng(folder.file("grey.png"));
    EXPECT_FALSE(file.colour);
    EXPECT_EQ(file.picture.width, 3);
    EXPECT_EQ(file.picture.height, 2);
    EXPECT_EQ(file.picture.pixels, picture.pixels);
}

TEST(PngOutput, OneColouredPixelMakesAColourFile) {
    const TemporaryFolder folder;
    const Picture picture{2, 1, {0x808080, 0x123456}};
    writePng(picture, folder.file("colour.png"));
    const zoltest::PngFile file = zoltest::readPng(folder.file("colour.png"));
    EXPECT_TRUE(file.colour);
    EXPECT_EQ(file.picture.pixels, picture.pixels);
}

TEST(PngOutput, RefusesPlainlyWhereItCannotWrite) {
    const TemporaryFolder folder;
    const std::string path = folder.file("missing/out.png");
    try {
        writePng({1, 1, {0}}, path);
        FAIL() << "written";
    } catch (const Refusal& refusal) {
        EXPECT_EQ(std::string(refusal.what()), "cannot write " + path + ": No such file or directory");
    }
}

TEST(PngOutput, LeavesNoHalfWrittenFile) {
    const TemporaryFolder folder;
    const std::string path = folder.file("empty.png");
    EXPECT_THROW(writePng({0, 0, {}}, path), Refusal);
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(PngOutput, LeavesNoFileOnAFullDisk) {
    const TemporaryFolder folder;
    const std::string path = folder.file("full.png");
    Picture picture{64, 64, {}};
    for (std::uint32_t i = 0; i < 64 * 64; ++i) picture.pixels.push_back((i * 2654435761U) >> 8U);
    {
        const zoltest::FileLimit limit(1000);
        EXPECT_THROW(writePng(picture, path), Refusal);
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(PngOutput, ADeviceThatFailsStays) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no device that is always full";
    const TemporaryFolder folder;
    // Should it be taken away after all, only the link goes.
    const std::string path = folder.file("device.png");
    std::filesystem::create_symlink("/dev/full", path);
    EXPECT_THROW(writePng({1, 1, {0}}, path), Refusal);
    EXPECT_TRUE(std::filesystem::is_symlink(path));
}

}  // namespace
