#include "zolview/options.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using namespace viewing;
using namespace zolview;

std::optional<Options> parse(std::vector<const char*> words, std::ostream& out) {
    words.insert(words.begin(), "zolview");
    return parseOptions(static_cast<int>(words.size()), words.data(), out);
}

Options parsed(const std::vector<const char*>& words) {
    std::ostringstream out;
    std::optional<Options> options = parse(words, out);
    EXPECT_EQ(out.str(), "");
    return options.value();
}

std::string refusal(const std::vector<const char*>& words) {
    std::ostringstream out;
    try {
        static_cast<void>(parse(words, out));
    } catch (const UsageError& error) {
        return error.what();
    }
    return {};
}

TEST(Options, EveryCommandHasItsFilesAndTheDefaults) {
    Options options = parsed({"render", "scan.dcm", "-o", "scan.png"});
    EXPECT_EQ(options.command, Command::Render);
    EXPECT_EQ(options.input, "scan.dcm");
    EXPECT_EQ(options.output, "scan.png");
    EXPECT_EQ(options.open.frame, 1);
    EXPECT_EQ(options.open.voi, std::nullopt);
    EXPECT_FALSE(options.open.ownWindow);
    EXPECT_EQ(options.display.size, std::nullopt);
    EXPECT_EQ(options.display.zoom, 1.0);
    EXPECT_TRUE(options.display.overlays);
    EXPECT_TRUE(options.display.shutters);
    EXPECT_FALSE(options.progress);
    options = parsed({"print", "scan.dcm", "--output", "scan.pdf"});
    EXPECT_EQ(options.command, Command::Print);
    EXPECT_EQ(options.page.paper, paperA4);
    EXPECT_EQ(options.page.margin, 10.0);
    EXPECT_EQ(options.page.dpi, 600);
    options = parsed({"info", "scan.dcm"});
    EXPECT_EQ(options.command, Command::Info);
    EXPECT_EQ(options.output, "");
}

TEST(Options, ValuesGoWhereTheyBelong) {
    Options options = parsed({"render",
                              "a.dcm",
                              "-o",
                              "a.png",
                              "--size",
                              "640x480",
                              "--zoom",
                              "2.5",
                              "--pan",
                              "-3,4",
                              "--rotate",
                              "-30",
                              "--flip",
                              "v",
                              "--sharpen",
                              "5,2",
                              "--magnifier",
                              "1,2,3,4",
                              "--background",
                              "7",
                              "--invert",
                              "--frame",
                              "12",
                              "--voi",
                              "3",
                              "--palette",
                              "PET",
                              "--accelerated",
                              "--no-overlays",
                              "--annotate",
                              "notes.json",
                              "--burn-in",
                              "--no-shutters",
                              "--progress",
                              "--modality-lut",
                              "m.dcm",
                              "--voi-lut",
                              "v.dcm",
                              "--presentation-lut",
                              "p.dcm",
                              "--interpolation",
                              "bicubic"});
    EXPECT_EQ(options.display.size, (Size{640, 480}));
    EXPECT_EQ(options.display.zoom, 2.5);
    EXPECT_EQ(options.display.pan, (Pan{-3.0, 4.0}));
    EXPECT_EQ(options.display.degrees, -30.0);
    EXPECT_EQ(options.display.flip, Flip::Vertical);
    EXPECT_EQ(options.display.sharpening, (Sharpening{5, 2}));
    EXPECT_EQ(options.display.magnifier, (Magnifier{1, 2, 3, 4.0}));
    EXPECT_EQ(options.display.background, 7);
    EXPECT_EQ(options.display.interpolation, Interpolation::Bicubic);
    EXPECT_TRUE(options.display.invert);
    EXPECT_TRUE(options.display.accelerated);
    EXPECT_FALSE(options.display.overlays);
    EXPECT_FALSE(options.display.shutters);
    EXPECT_TRUE(options.display.burnIn);
    EXPECT_EQ(options.open.frame, 12);
    EXPECT_EQ(options.open.voi, 3);
    EXPECT_EQ(options.open.modalityFile, "m.dcm");
    EXPECT_EQ(options.open.voiFile, "v.dcm");
    EXPECT_EQ(options.open.presentationFile, "p.dcm");
    EXPECT_EQ(options.palette, "PET");
    EXPECT_EQ(options.annotationFile, "notes.json");
    EXPECT_TRUE(options.progress);
    options = parsed({"print", "a.dcm", "-o", "a.pdf", "--paper", "letter", "--landscape", "--margin", "5", "--dpi",
                      "300", "--true-size", "--rotate", "270"});
    EXPECT_EQ(options.page.paper, paperLetter);
    EXPECT_TRUE(options.page.landscape);
    EXPECT_EQ(options.page.margin, 5.0);
    EXPECT_EQ(options.page.dpi, 300);
    EXPECT_TRUE(options.page.trueSize);
    EXPECT_EQ(options.display.degrees, 270.0);
}

TEST(Options, AWindowOfOnesOwnLeavesTheFilesWindowsUnchosen) {
    const Options options = parsed({"render", "a.dcm", "-o", "a.png", "--window", "40/400"});
    EXPECT_EQ(options.display.window, (Window{40.0, 400.0}));
    EXPECT_TRUE(options.open.ownWindow);
    EXPECT_NE(refusal({"render", "a.dcm", "-o", "a.png", "--window", "40/400", "--voi", "1"}), "");
    EXPECT_NE(refusal({"render", "a.dcm", "-o", "a.png", "--window", "40/400", "--voi-lut", "v.dcm"}), "");
}

TEST(Options, WrongOnesSayWhatWouldBeRight) {
    EXPECT_EQ(refusal({"render", "a.dcm", "-o", "a.png", "--flip", "x"}), "--flip: must be h or v, not 'x'");
    EXPECT_EQ(refusal({"print", "a.dcm", "-o", "a.pdf", "--dpi", "71"}),
              "--dpi: must be a whole number from 72 to 1200, not '71'");
    EXPECT_EQ(refusal({"render", "a.dcm", "-o", ""}), "--output: must not be empty");
    EXPECT_NE(refusal({}), "");
    EXPECT_NE(refusal({"render", "a.dcm"}), "");
    EXPECT_NE(refusal({"info", "a.dcm", "--zoom", "2"}), "");
    EXPECT_NE(refusal({"render", "a.dcm", "-o", "a.png", "--burn-in"}), "");
}

TEST(Options, HelpAndVersionAreWritten) {
    for (const std::vector<const char*>& words :
         {std::vector<const char*>{"--help"}, {"render", "--help"}, {"print", "--help"}, {"info", "--help"}}) {
        std::ostringstream out;
        EXPECT_FALSE(parse(words, out));
        EXPECT_NE(out.str().find("--help"), std::string::npos);
    }
    std::ostringstream out;
    EXPECT_FALSE(parse({"--version"}, out));
    EXPECT_EQ(out.str().substr(0, 8), "zolview ");
}

}  // namespace
