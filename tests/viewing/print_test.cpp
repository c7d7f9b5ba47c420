// PDF pages, measured with poppler's tools.
#include "viewing/print.h"

#include "support/dicom_writer.h"
#include "support/test_data.h"
#include "viewing/dicom/dicom_file.h"
#include "viewing/image/phantom.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using namespace viewing;

/// A grey page as pdftoppm brings it out.
struct GreyPage {
    int width = 0;
    int height = 0;
    std::string pixels;

    [[nodiscard]] int at(int x, int y) const {
        return static_cast<unsigned char>(
            pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)]);
    }
};

class Print : public ::testing::Test {
protected:
    void SetUp() override {
        if (std::system("pdfinfo -v >/dev/null 2>&1") != 0) GTEST_SKIP() << "no poppler-utils";
    }

    void print(const StoredImage& image, const PageSettings& page = {}, const DisplaySettings& settings = {}) {
        viewing::print(image, settings, page, pdf(), notes_);
    }

    /// What a tool says of the page.
    std::string ask(const std::string& tool, const std::string& after = "") {
        const std::string out = folder_.file("answer");
        EXPECT_EQ(std::system((tool + " '" + pdf() + "' " + after + " >'" + out + "'").c_str()), 0) << tool;
        std::ostringstream text;
        text << std::ifstream(out).rdbuf();
        return text.str();
    }

    /// Width, height and both resolutions of the only picture on the page.
    std::array<int, 4> pictureOnPage() {
        std::istringstream lines(ask("pdfimages -list"));
        std::string line;
        std::getline(lines, line);
        std::getline(lines, line);
        std::getline(lines, line);
        std::istringstream columns(line);
        std::vector<std::string> words;
        for (std::string word; columns >> word;) words.push_back(word);
        EXPECT_GE(words.size(), 14U) << line;
        EXPECT_FALSE(std::getline(lines, line)) << line;
        return {std::stoi(words.at(3)), std::stoi(words.at(4)), std::stoi(words.at(12)), std::stoi(words.at(13))};
    }

    /// Page width and height in points.
    std::pair<double, double> pageSize() {
        const std::string info = ask("pdfinfo");
        std::istringstream sizes(info.substr(info.find("Page size:") + 10));
        double width = 0.0;
        double height = 0.0;
        std::string by;
        sizes >> width >> by >> height;
        return {width, height};
    }

    GreyPage draw(int dpi) {
        ask("pdftoppm -gray -singlefile -r " + std::to_string(dpi), "'" + folder_.file("page") + "'");
        std::ifstream file(folder_.file("page.pgm"), std::ios::binary);
        GreyPage page;
        std::string magic;
        int highest = 0;
        file >> magic >> page.width >> page.height >> highest;
        file.get();
        page.pixels.resize(static_cast<std::size_t>(page.width) * static_cast<std::size_t>(page.height));
        file.read(page.pixels.data(), static_cast<std::streamsize>(page.pixels.size()));
        EXPECT_TRUE(file.good());
        EXPECT_EQ(file.peek(), std::ifstream::traits_type::eof());
        return page;
    }

    std::string pdf() { return folder_.file("page.pdf"); }
    bool hasPdf() { return std::filesystem::exists(pdf()); }

    std::vector<std::string> notes_;
    zoltest::TemporaryFolder folder_;
};

/// 100 x 80 pixels of half a millimetre: black with a white frame of one pixel.
StoredImage framedImage() {
    StoredImage image;
    image.width = 100;
    image.height = 80;
    for (int y = 0; y < 80; ++y)
        for (int x = 0; x < 100; ++x)
            image.grey().samples.push_back(x == 0 || y == 0 || x == 99 || y == 79 ? std::uint16_t{4095}
                                                                                  : std::uint16_t{0});
    image.grey().maxLevel = 4095;
    image.pixelWidth = 0.5;
    return image;
}

std::vector<Annotation> figures(const std::string& list) {
    return parseAnnotations(R"({"annotations": [)" + list + "]}");
}

TEST_F(Print, PagesHaveTheSizeOfThePaper) {
    // Rounded to whole dots, a dot being 0.12 points.
    const auto expectSize = [this](double width, double height) {
        EXPECT_NEAR(pageSize().first, width, 0.12);
        EXPECT_NEAR(pageSize().second, height, 0.12);
    };
    print(framedImage());
    expectSize(595.276, 841.890);
    PageSettings page;
    page.landscape = true;
    print(framedImage(), page);
    expectSize(841.890, 595.276);
    page.paper = paperA3;
    print(framedImage(), page);
    expectSize(1190.551, 841.890);
    page = {};
    page.paper = paperLetter;
    print(framedImage(), page);
    expectSize(612.0, 792.0);
}

TEST_F(Print, FillsThePageWithinItsMarginsWithTheImagesOwnPixels) {
    PageSettings page;
    page.margin = 5.0;
    print(framedImage(), page);
    // 100 pixels on 200 mm.
    EXPECT_EQ(pictureOnPage(), (std::array{100, 80, 13, 13}));
    const GreyPage drawn = draw(254);
    const int middle = drawn.height / 2;
    EXPECT_EQ(drawn.at(48, middle), 255);
    EXPECT_EQ(drawn.at(80, middle), 0);
    EXPECT_EQ(drawn.at(drawn.width - 80, middle), 0);
    EXPECT_EQ(drawn.at(drawn.width / 2, middle - 790), 255);
    EXPECT_EQ(drawn.at(drawn.width / 2, middle - 770), 0);
}

TEST_F(Print, QuarterTurnsAreThoseOfTheScreen) {
    StoredImage image = framedImage();
    std::fill(image.grey().samples.begin(), image.grey().samples.end(), std::uint16_t{0});
    // A white corner of a quarter of the image, left at the top.
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 50; ++x) image.grey().samples[static_cast<std::size_t>(y * 100 + x)] = 4095;
    PageSettings page;
    page.trueSize = true;
    DisplaySettings settings;
    struct Turn {
        double degrees;
        Flip flip;
        bool right;  ///< where the corner comes to lie
        bool bottom;
    };
    for (const Turn& turn : {Turn{0.0, Flip::None, false, false},
                             {90.0, Flip::None, true, false},
                             {180.0, Flip::None, true, true},
                             {270.0, Flip::None, false, true},
                             {90.0, Flip::Horizontal, true, true}}) {
        settings.degrees = turn.degrees;
        settings.flip = turn.flip;
        print(image, page, settings);
        const bool lies = turn.degrees == 90.0 || turn.degrees == 270.0;
        EXPECT_EQ(pictureOnPage(), (lies ? std::array{80, 100, 51, 51} : std::array{100, 80, 51, 51}));
        // 50 x 40 mm in the middle of the page, at 5 dots a millimetre.
        const GreyPage drawn = draw(127);
        const int width = lies ? 200 : 250;
        const int height = lies ? 250 : 200;
        for (const bool right : {false, true}) {
            for (const bool bottom : {false, true}) {
                const int x = (drawn.width + (right ? width : -width) / 2) / 2;
                const int y = (drawn.height + (bottom ? height : -height) / 2) / 2;
                EXPECT_EQ(drawn.at(x, y), right == turn.right && bottom == turn.bottom ? 255 : 0)
                    << turn.degrees << ' ' << right << bottom;
            }
        }
        EXPECT_EQ(drawn.at((drawn.width - width) / 2 - 3, drawn.height / 2), 255);
        EXPECT_EQ(drawn.at(drawn.width / 2, (drawn.height - height) / 2 - 3), 255);
    }
    // Turned, it fits where it did not.
    image.pixelWidth = 2.0;
    settings = {};
    EXPECT_THROW(print(image, page, settings), Refusal);
    settings.degrees = 90.0;
    print(image, page, settings);
}

TEST_F(Print, TrueSizeFollowsThePixelSpacing) {
    PageSettings page;
    page.trueSize = true;
    print(framedImage(), page);
    EXPECT_EQ(pictureOnPage(), (std::array{100, 80, 51, 51}));
    EXPECT_TRUE(notes_.empty());

    StoredImage tall = framedImage();
    tall.ratioYx = 2.0;
    tall.spacingIsUncalibrated = true;
    print(tall, page);
    EXPECT_EQ(pictureOnPage(), (std::array{100, 160, 51, 51}));
    EXPECT_EQ(notes_, std::vector<std::string>{"the true size is that on the detector or film, not in the body"});
}

TEST_F(Print, RefusesATrueSizeThatCannotBe) {
    PageSettings page;
    page.trueSize = true;
    const auto refusal = [&](const StoredImage& image) -> std::string {
        try {
            print(image, page);
        } catch (const Refusal& refused) {
            return refused.what();
        }
        return "";
    };
    StoredImage image = framedImage();
    image.pixelWidth.reset();
    EXPECT_EQ(refusal(image), "has no pixel spacing, so that its true size is unknown");
    image.pixelWidth = 3.0;
    EXPECT_EQ(refusal(image),
              "is too large for the page at its true size: 300.0 x 240.0 mm, and the page holds 190.0 x 277.0 mm");
    EXPECT_FALSE(hasPdf());
    page.paper = paperA3;
    page.landscape = true;
    EXPECT_EQ(refusal(image), "");
}

TEST_F(Print, GridOfTenMillimetresMeasuresTenMillimetres) {
    const std::filesystem::path file = zoltest::sampleFolder() / "derived" / "chart_12bit_10mm_grid.dcm";
    if (!std::filesystem::exists(file)) GTEST_SKIP() << "no sample folder";
    PageSettings page;
    page.trueSize = true;
    print(DicomFile(file.string()).image(), page);
    EXPECT_EQ(pictureOnPage(), (std::array{400, 400, 102, 102}));

    // 0.05 mm a pixel: the grid's ten dark lines begin every 200 of them, in both directions.
    const GreyPage drawn = draw(508);
    std::vector<int> columns;
    const int y = drawn.height / 2 - 900;
    for (int x = 1; x < drawn.width; ++x)
        if (drawn.at(x - 1, y) - drawn.at(x, y) > 60) columns.push_back(x);
    std::vector<int> rows;
    const int column = drawn.width / 2 - 900;
    for (int row = 1; row < drawn.height; ++row)
        if (drawn.at(column, row - 1) - drawn.at(column, row) > 60) rows.push_back(row);
    for (const std::vector<int>& lines : {columns, rows}) {
        ASSERT_EQ(lines.size(), 10U);
        for (std::size_t i = 1; i < lines.size(); ++i) EXPECT_NEAR(lines[i] - lines[i - 1], 200, 1) << i;
        EXPECT_NEAR(lines.back() - lines.front(), 1800, 1);
    }
}

TEST_F(Print, AnnotationsAreVectorsAndTextsAreText) {
    DisplaySettings settings;
    settings.annotations = figures(R"({"figure": "line", "points": [[20, 40], [80, 40]], "shadow": false},
        {"figure": "text", "points": [[20, 10]], "text": "12 µm across"},
        {"figure": "text", "points": [[0.9, 0.9]], "coordinates": "normalised", "align": "right", "text": "right"})");
    PageSettings page;
    page.trueSize = true;
    print(framedImage(), page, settings);
    EXPECT_EQ(pictureOnPage(), (std::array{100, 80, 51, 51}));
    const std::string text = ask("pdftotext", "-");
    EXPECT_NE(text.find("12 µm across"), std::string::npos) << text;
    EXPECT_NE(text.find("right"), std::string::npos) << text;
    EXPECT_EQ(text.find("across"), text.rfind("across")) << text;

    // The image's corner lies at (80 mm, 128.5 mm); line from 10 to 40 mm right of it, 20 mm below, 0.42 mm thick.
    const GreyPage drawn = draw(508);
    EXPECT_EQ(drawn.at(1600 + 204, 2570 + 400), 255);
    EXPECT_EQ(drawn.at(1600 + 796, 2570 + 400), 255);
    EXPECT_EQ(drawn.at(1600 + 500, 2570 + 396), 255);
    EXPECT_EQ(drawn.at(1600 + 500, 2570 + 410), 0);
    EXPECT_EQ(drawn.at(1600 + 180, 2570 + 400), 0);
    EXPECT_EQ(drawn.at(1600 + 820, 2570 + 400), 0);
    // Letters below the anchor, 10 mm right and 5 mm down, within 3.5 mm and their descent.
    int letters = 0;
    for (int y = 2570 + 104; y < 2570 + 190; ++y)
        for (int x = 1600 + 200; x < 1600 + 800; ++x) letters += drawn.at(x, y) > 200 ? 1 : 0;
    EXPECT_GT(letters, 500);
}

TEST_F(Print, NothingIsDrawnBesideTheImage) {
    DisplaySettings settings;
    settings.annotations = figures(R"({"figure": "line", "points": [[80, 40], [140, 40]]})");
    PageSettings page;
    page.trueSize = true;
    print(framedImage(), page, settings);
    // The image's right edge lies at 2600. Without an end there, the line's shadow would be seen on white paper.
    const GreyPage drawn = draw(508);
    EXPECT_EQ(drawn.at(2560, 2570 + 400), 255);
    for (int y = 2570 + 380; y < 2570 + 440; ++y)
        for (int x = 2604; x < 3000; ++x) ASSERT_EQ(drawn.at(x, y), 255) << x << ',' << y;
}

/// The lengths of the dark runs between two places of a row or a column.
std::vector<int> darkRuns(const GreyPage& page, int x, int y, int stepX, int stepY, int count) {
    std::vector<int> runs;
    bool dark = false;
    for (int i = 0; i < count; ++i, x += stepX, y += stepY) {
        const bool now = page.at(x, y) < 128;
        if (now && !dark) runs.push_back(0);
        if (now) ++runs.back();
        dark = now;
    }
    return runs;
}

TEST_F(Print, ShadowsAndHalosHaveTheirSize) {
    StoredImage white = framedImage();
    std::fill(white.grey().samples.begin(), white.grey().samples.end(), std::uint16_t{4095});
    DisplaySettings settings;
    settings.annotations = figures(R"({"figure": "line", "points": [[20, 40], [80, 40]]},
        {"figure": "text", "points": [[20, 10]], "text": "I"})");
    for (const auto& [dpi, shadow] : {std::pair(600, 8.5), {300, 8.5}, {150, 6.8}}) {
        PageSettings page;
        page.trueSize = true;
        page.dpi = dpi;
        print(white, page, settings);
        const GreyPage drawn = draw(508);
        // A pen of 10 dots at 600 dpi, 5 at 300 and 2 at 150. White on white, only the shadow shows, 10 dots away.
        const std::vector<int> below = darkRuns(drawn, 1600 + 500, 2570 + 380, 0, 1, 80);
        ASSERT_EQ(below.size(), 1U) << dpi;
        EXPECT_NEAR(below[0], shadow, 1.5) << dpi;
        // The letter's stem is white between the two sides of its halo, a 150th of an inch each.
        constexpr double halo = 3.4;
        const std::vector<int> across = darkRuns(drawn, 1600 + 180, 2570 + 150, 1, 0, 80);
        ASSERT_EQ(across.size(), 2U) << dpi;
        EXPECT_NEAR(across[0], halo, 1.5) << dpi;
        EXPECT_NEAR(across[1], halo, 1.5) << dpi;
    }
}

TEST_F(Print, BurntInAnnotationsAreNoVectors) {
    DisplaySettings settings;
    settings.burnIn = true;
    settings.annotations = figures(R"({"figure": "text", "points": [[20, 10]], "text": "gone"})");
    print(framedImage(), {}, settings);
    EXPECT_EQ(ask("pdftotext", "-").find("gone"), std::string::npos);
}

TEST_F(Print, FilesThatCannotBeWritten) {
    EXPECT_THROW(viewing::print(framedImage(), {}, {}, folder_.file("none/page.pdf"), notes_), Refusal);
}

}  // namespace
