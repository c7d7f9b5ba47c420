#include "zolview/png_output.h"

#include "dicom_writer.h"
#include "read_png.h"
#include "zolview/stored_image.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using namespace zolview;
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

}  // namespace
