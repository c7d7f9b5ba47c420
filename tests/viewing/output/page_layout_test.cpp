#include "viewing/output/page_layout.h"

#include <gtest/gtest.h>

namespace {

using namespace viewing;

StoredImage imageOf(int width, int height, double ratioYx = 1.0) {
    StoredImage image;
    image.width = width;
    image.height = height;
    image.ratioYx = ratioYx;
    return image;
}

Millimetres onPage(const StoredImage& image, double degrees, const PageSettings& page) {
    std::vector<std::string> notes;
    return imageOnPage(image, degrees, page, notes);
}

TEST(PageLayout, PapersLieAsTheyAreAskedTo) {
    PageSettings page;
    EXPECT_EQ(orientedPaper(page), (Millimetres{210.0, 297.0}));
    page.landscape = true;
    EXPECT_EQ(orientedPaper(page), (Millimetres{297.0, 210.0}));
}

TEST(PageLayout, ImagesFillTheRoomBetweenTheMargins) {
    PageSettings page;
    EXPECT_EQ(onPage(imageOf(100, 50), 0.0, page), (Millimetres{190.0, 95.0}));
    EXPECT_EQ(onPage(imageOf(100, 50), 90.0, page), (Millimetres{138.5, 277.0}));
    EXPECT_EQ(onPage(imageOf(100, 50, 2.0), 0.0, page), (Millimetres{190.0, 190.0}));
    page.margin = 0.0;
    EXPECT_EQ(onPage(imageOf(1, 10), 0.0, page), (Millimetres{29.7, 297.0}));
}

TEST(PageLayout, TrueSizeIsThatOfThePixelSpacing) {
    StoredImage image = imageOf(100, 50, 2.0);
    image.pixelWidth = 0.5;
    PageSettings page;
    page.trueSize = true;
    std::vector<std::string> notes;
    EXPECT_EQ(imageOnPage(image, 270.0, page, notes), (Millimetres{50.0, 50.0}));
    EXPECT_TRUE(notes.empty());
    image.spacingIsUncalibrated = true;
    EXPECT_EQ(imageOnPage(image, 0.0, page, notes), (Millimetres{50.0, 50.0}));
    EXPECT_EQ(notes, std::vector<std::string>{"the true size is that on the detector or film, not in the body"});
}

TEST(PageLayout, DotsAreRoundedAndCentred) {
    EXPECT_EQ(dots(25.4, 600), 600);
    EXPECT_EQ(dots(0.05, 254), 1);
    EXPECT_EQ(dots(0.04, 254), 0);
    PageSettings page;
    page.dpi = 254;
    const DotBox box = centredOnPage({190.0, 95.0}, page);
    EXPECT_EQ(box.left, 100);
    EXPECT_EQ(box.top, 1010);
    EXPECT_EQ(box.width, 1900);
    EXPECT_EQ(box.height, 950);
    const DotBox dot = centredOnPage({0.0, 0.0}, page);
    EXPECT_EQ(dot.width, 1);
    EXPECT_EQ(dot.height, 1);
}

}  // namespace
