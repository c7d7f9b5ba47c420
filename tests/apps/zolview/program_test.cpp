// The program as its users meet it: exit status, messages, files.
#include "support/dicom_writer.h"
#include "support/read_png.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "support/folders.h"

namespace {

using zoltest::DicomWriter;
using zoltest::TemporaryFolder;

struct Outcome {
    int status = -1;
    std::string out;
    std::string err;
};

std::string contents(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class Program : public ::testing::Test {
protected:
    /// Runs zolview with these arguments, as a shell would split them.
    Outcome run(const std::string& arguments) {
        const std::string command =
            "'" ZOLVIEW_PROGRAM "' " + arguments + " >'" + file("out") + "' 2>'" + file("err") + "'";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contents(file("out")), contents(file("err"))};
    }
    Outcome render(const std::string& arguments) { return run("render " + arguments + " -o '" + file("p.png") + "'"); }
    std::string file(const std::string& name) { return folder_.file(name); }
    [[nodiscard]] bool hasPicture() { return std::filesystem::exists(file("p.png")); }

    TemporaryFolder folder_;
};

/// One line that starts with the program's name.
void expectOnePlainLine(const std::string& text) {
    EXPECT_TRUE(text.starts_with("zolview: ")) << text;
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(text.find('\n'), text.size() - 1) << text;
}

TEST_F(Program, InterpolatesSharpensAndMagnifies) {
    for (const char* options :
         {"--interpolation bilinear", "--interpolation bicubic --accelerated", "--sharpen 5,2 --zoom 2",
          "--magnifier 300,200,50,3", "--accelerated --magnifier 10,10,400,0.5 --interpolation nearest"}) {
        const Outcome outcome = render(std::string("phantom ") + options);
        EXPECT_EQ(outcome.status, 0) << options;
        EXPECT_EQ(outcome.err, "") << options;
        EXPECT_EQ(zoltest::readPng(file("p.png")).picture.width, 640);
    }
}

TEST_F(Program, RefusesWhatIsNoInterpolationSharpeningOrMagnifier) {
    for (const char* options : {"--interpolation cubic", "--sharpen 5", "--sharpen 0,1", "--magnifier 1,2,3",
                                "--magnifier 1,2,3,0", "--magnifier 1,2,0,2"}) {
        const Outcome outcome = render(std::string("phantom ") + options);
        EXPECT_EQ(outcome.status, 2) << options;
        expectOnePlainLine(outcome.err);
        EXPECT_FALSE(hasPicture());
    }
}

TEST_F(Program, TellsItsProgressWhenAsked) {
    const Outcome outcome = render("phantom --progress");
    EXPECT_EQ(outcome.status, 0);
    std::istringstream lines(outcome.err);
    for (const char* stage : {"reading", "drawing", "writing", "done"}) {
        std::string line;
        ASSERT_TRUE(std::getline(lines, line));
        EXPECT_TRUE(line.starts_with(std::string("zolview: phantom: ") + stage + " (")) << line;
    }
    EXPECT_EQ(lines.peek(), EOF);
}

TEST_F(Program, RendersThePhantom) {
    const Outcome outcome = render("phantom");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
    const zoltest::PngFile png = zoltest::readPng(file("p.png"));
    EXPECT_TRUE(png.colour);
    EXPECT_EQ(png.picture.width, 640);
    EXPECT_EQ(png.picture.height, 512);
}

TEST_F(Program, WritesGreyFilesForGreyPictures) {
    EXPECT_EQ(render("phantom --no-overlays").status, 0);
    EXPECT_FALSE(zoltest::readPng(file("p.png")).colour);
}

TEST_F(Program, TakesAllOptionsTogether) {
    const Outcome outcome = render(
        "phantom --size 300x200 --window 1500/1000 --zoom 1.6 --pan -10,20 --rotate -30 --flip h --invert "
        "--no-overlays "
        "--no-shutters --background 40");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    const viewing::Picture picture = zoltest::readPng(file("p.png")).picture;
    EXPECT_EQ(picture.width, 300);
    EXPECT_EQ(picture.height, 200);
    EXPECT_EQ(picture.at(0, 0), 0x282828U);
}

TEST_F(Program, DrawsAnnotations) {
    const std::string example =
        "--annotate '" + (zoltest::sourceFolder() / "examples/annotations/all-figures.json").string() + "'";
    ASSERT_EQ(render("phantom").status, 0);
    const std::string plain = contents(file("p.png"));
    const Outcome outcome = render("phantom " + example);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    const viewing::Picture drawn = zoltest::readPng(file("p.png")).picture;
    EXPECT_EQ(drawn.at(456, 232), 0x00D0FFU);
    EXPECT_EQ(render("phantom --burn-in " + example).status, 0);
    EXPECT_EQ(zoltest::readPng(file("p.png")).picture.at(456, 232), 0xFFFFFFU);
    EXPECT_NE(contents(file("p.png")), plain);
}

TEST_F(Program, PrintsPages) {
    const std::string pdf = " -o '" + file("p.pdf") + "'";
    const Outcome outcome = run("print phantom --paper A3 --landscape --margin 20 --dpi 300" + pdf);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(contents(file("p.pdf")).starts_with("%PDF-"));
    EXPECT_EQ(run("print phantom --rotate 270 --sharpen 3,1" + pdf).status, 0);
    for (const char* arguments : {"--paper A5", "--margin 91", "--margin -1", "--margin x", "--dpi 71", "--dpi 1201",
                                  "--dpi x", "--zoom 2", "--burn-in", "--rotate 45"}) {
        const Outcome wrong = run("print phantom " + std::string(arguments) + pdf);
        EXPECT_EQ(wrong.status, 2) << arguments;
        expectOnePlainLine(wrong.err);
    }
    const Outcome refused = run("print phantom --true-size -o '" + file("q.pdf") + "'");
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.err, "zolview: phantom: has no pixel spacing, so that its true size is unknown\n");
    EXPECT_FALSE(std::filesystem::exists(file("q.pdf")));
}

TEST_F(Program, RefusesBadAnnotationsInOneLineWithTheirFile) {
    const std::string bad = file("bad.json");
    std::ofstream(bad) << R"({"annotations": [{"figure": "blob"}]})";
    for (const std::string& name : {bad, file("none.json"), file("")}) {
        const Outcome outcome = render("phantom --annotate '" + name + "'");
        EXPECT_EQ(outcome.status, 1);
        expectOnePlainLine(outcome.err);
        EXPECT_TRUE(outcome.err.starts_with("zolview: " + name + ": ")) << outcome.err;
        EXPECT_FALSE(hasPicture());
    }
}

TEST_F(Program, TheSameCommandMakesTheSameFile) {
    ASSERT_EQ(render("phantom --zoom 1.3 --rotate 17").status, 0);
    const std::string first = contents(file("p.png"));
    ASSERT_EQ(render("phantom --zoom 1.3 --rotate 17").status, 0);
    EXPECT_EQ(first, contents(file("p.png")));
}

TEST_F(Program, HelpAndVersion) {
    for (const char* arguments : {"--help", "render --help", "print --help", "info --help"}) {
        const Outcome help = run(arguments);
        EXPECT_EQ(help.status, 0);
        EXPECT_EQ(help.err, "");
        EXPECT_NE(help.out.find("INPUT"), std::string::npos);
    }
    for (const char* option :
         {"--size",    "--window",        "--zoom",        "--pan",          "--rotate",    "--flip",
          "--invert",  "--no-overlays",   "--no-shutters", "--background",   "--output",    "--annotate",
          "--burn-in", "--frame",         "--voi",         "--modality-lut", "--voi-lut",   "--presentation-lut",
          "--palette", "--interpolation", "--accelerated", "--sharpen",      "--magnifier", "--progress"})
        EXPECT_NE(run("render --help").out.find(option), std::string::npos) << option;
    for (const char* option : {"--paper", "--landscape", "--rotate", "--margin", "--dpi", "--true-size"})
        EXPECT_NE(run("print --help").out.find(option), std::string::npos) << option;
    const Outcome version = run("--version");
    EXPECT_EQ(version.status, 0);
    EXPECT_TRUE(version.out.starts_with("zolview "));
}

TEST_F(Program, WrongUsageEndsWithTwoAndOneLine) {
    for (const char* arguments :
         {"", "render", "render phantom", "frobnicate", "info", "render phantom -o", "render phantom -o a.png -o b.png",
          "render phantom extra -o p.png", "render phantom -o p.png --burn-in", "info phantom --zoom 2",
          "render phantom -o p.png --frobnicate"}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 2) << arguments;
        EXPECT_EQ(outcome.out, "") << arguments;
        expectOnePlainLine(outcome.err);
    }
}

TEST_F(Program, WrongValuesEndWithTwoAndSayWhatIsRight) {
    for (const char* arguments : {"--size 0x0",
                                  "--size 0x10",
                                  "--size -5x10",
                                  "--size 32768x1",
                                  "--size 1x32768",
                                  "--size 32767x32767",
                                  "--size 99999999999999999999x1",
                                  "--size 640",
                                  "--size axb",
                                  "--window 40/0",
                                  "--window 40/-1",
                                  "--window 40/0.5",
                                  "--window 40",
                                  "--window nan/nan",
                                  "--zoom 0",
                                  "--zoom -1",
                                  "--zoom 1e308",
                                  "--zoom nan",
                                  "--pan 1e30,0",
                                  "--pan 5",
                                  "--pan inf,inf",
                                  "--rotate right",
                                  "--rotate inf",
                                  "--flip x",
                                  "--flip H",
                                  "--background -1",
                                  "--background 256",
                                  "--background grey",
                                  "--frame 0",
                                  "--frame x",
                                  "--voi 0",
                                  "--voi -1",
                                  "--voi x",
                                  "--voi-lut x.dcm --window 40/400",
                                  "--voi 1 --window 40/400"}) {
        const Outcome outcome = render(std::string("phantom ") + arguments);
        EXPECT_EQ(outcome.status, 2) << arguments;
        expectOnePlainLine(outcome.err);
        const std::string option = std::string(arguments).substr(0, std::string(arguments).find(' '));
        EXPECT_NE(outcome.err.find(option), std::string::npos) << outcome.err;
        EXPECT_FALSE(hasPicture()) << arguments;
    }
    EXPECT_EQ(
        render("phantom --size 0x0").err,
        "zolview: --size: must be WIDTHxHEIGHT with sides from 1 to 32767 and at most 67108864 pixels in all, not "
        "'0x0' (see zolview --help)\n");
}

TEST_F(Program, RefusesWhatItCannotShow) {
    const Outcome missing = render("nowhere.dcm");
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.err, "zolview: nowhere.dcm: there is no such file\n");

    DicomWriter purple(2, 2);
    purple.put(DCM_PhotometricInterpretation, "PURPLE");
    const std::string path = purple.save(folder_);
    const Outcome refused = render("'" + path + "'");
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.out, "");
    EXPECT_EQ(refused.err,
              "zolview: " + path + ": has the photometric interpretation 'PURPLE', which zolview cannot show\n");
    EXPECT_FALSE(hasPicture());
}

TEST_F(Program, RefusesEmptyNames) {
    for (const char* option :
         {"--annotate", "--palette", "--modality-lut", "--voi-lut", "--presentation-lut", "--output"}) {
        const Outcome outcome = run("render phantom " + std::string(option) + " '' -o '" +
                                    (option == std::string("--output") ? "" : file("p.png")) + "'");
        EXPECT_EQ(outcome.status, 2) << option;
        expectOnePlainLine(outcome.err);
        EXPECT_FALSE(hasPicture());
    }
    EXPECT_EQ(run("info ''").err, "zolview: INPUT: must not be empty (see zolview --help)\n");
}

TEST_F(Program, NeverWritesOverAnInput) {
    DicomWriter writer(2, 2);
    const std::string path = writer.save(folder_);
    const std::string before = contents(path);
    std::filesystem::create_symlink(path, file("link.dcm"));
    const std::string quoted = "'" + path + "'";
    const std::string link = "'" + file("link.dcm") + "'";
    std::ofstream(file("p.json")) << R"({"annotations": []})";
    const std::string json = "'" + file("p.json") + "'";
    for (const std::string& arguments :
         {"render " + quoted + " -o " + quoted, "render " + quoted + " -o " + link, "render " + link + " -o " + quoted,
          "print " + quoted + " -o " + quoted, "render phantom --palette " + quoted + " -o " + quoted,
          "render phantom --modality-lut " + quoted + " -o " + quoted,
          "render phantom --voi-lut " + quoted + " -o " + link,
          "render phantom --presentation-lut " + quoted + " -o " + quoted,
          "print phantom --annotate " + json + " -o " + json}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 1) << arguments;
        expectOnePlainLine(outcome.err);
        EXPECT_TRUE(outcome.err.ends_with(": is an input, which would be overwritten\n")) << outcome.err;
    }
    EXPECT_EQ(contents(path), before);
    // The phantom is no file, whatever files are called.
    std::ofstream(file("phantom")) << "old";
    EXPECT_EQ(std::system(("cd '" + folder_.file("") + "' && '" ZOLVIEW_PROGRAM "' render phantom -o phantom").c_str()),
              0);
    EXPECT_EQ(zoltest::readPng(file("phantom")).picture.width, 640);
}

TEST_F(Program, TellsTerminalsNothingButLetters) {
    DicomWriter writer(2, 2);
    writer.put(DCM_WindowCenter, "1").put(DCM_WindowWidth, "2").put(DCM_WindowCenterWidthExplanation, "a\x1B[2Jb\n");
    writer.put(DCM_ShutterShape, "\x1B[31m");
    const std::string path = "'" + writer.save(folder_) + "'";
    EXPECT_NE(run("info " + path).out.find(", \"a?[2Jb\"\n"), std::string::npos) << run("info " + path).out;
    const Outcome outcome = render(path);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err,
              "zolview: " + folder_.file("test.dcm") + ": the shutter '?[31m' cannot be read and is not applied\n");
    EXPECT_EQ(run("render '\x1B.dcm' -o p.png").err, "zolview: ?.dcm: there is no such file\n");
}

TEST_F(Program, RefusesToWriteWhereItCannot) {
    const Outcome outcome = run("render phantom -o '" + file("missing/p.png") + "'");
    EXPECT_EQ(outcome.status, 1);
    expectOnePlainLine(outcome.err);
    EXPECT_NE(outcome.err.find("No such file or directory"), std::string::npos);
}

TEST_F(Program, SaysWhatItFoundOddAndShowsThePicture) {
    DicomWriter writer(2, 2);
    writer.put(DCM_WindowCenter, "1").put(DCM_WindowWidth, "0");
    const std::string path = writer.save(folder_);
    const Outcome outcome = render("'" + path + "'");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "zolview: " + path +
                               ": the file's window has a width of 0; shown with the full range of values instead\n");
    EXPECT_TRUE(hasPicture());
}

TEST_F(Program, InfoTellsAboutAnImage) {
    DicomWriter writer(3, 2);
    writer.put(DCM_WindowCenter, "40").put(DCM_WindowWidth, "400").put(DCM_RescaleIntercept, "-1000");
    writer.put(DCM_PatientName, "Somebody");
    const Outcome outcome = run("info '" + writer.save(folder_) + "'");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out,
              "object: SecondaryCaptureImageStorage\n"
              "transfer syntax: Little Endian Explicit\n"
              "size: 3 x 2\n"
              "photometric: MONOCHROME2\n"
              "bits: 12 stored in 16, unsigned\n"
              "pixel height to width: 1\n"
              "values: stored 0 to 0, output -1000 to -1000\n"
              "voi 1: window, centre 40, width 400\n"
              "low values: black\n");
}

TEST_F(Program, InfoListsWindowsTablesAndFrames) {
    DicomWriter writer(2, 1);
    writer.put(DCM_NumberOfFrames, "2").pixels({0, 100, 5, 6}).put(DCM_PhotometricInterpretation, "MONOCHROME1");
    writer.put(DCM_WindowCenter, "40\\50").put(DCM_WindowWidth, "400\\0").put(DCM_VOILUTFunction, "SIGMOID");
    writer.put(DCM_WindowCenterWidthExplanation, "SOFT");
    writer.lut(DCM_ModalityLUTSequence, {2, 0, 8}, {10, 20}).lut(DCM_PresentationLUTSequence, {2, 0, 8}, {1, 2});
    writer.lut(DCM_VOILUTSequence, {2, 7, 12}, {1, 2}, "HARD").lut(DCM_VOILUTSequence, {3, 7, 12}, {1, 2});
    const Outcome outcome = run("info '" + writer.save(folder_) + "'");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out,
              "object: SecondaryCaptureImageStorage\n"
              "transfer syntax: Little Endian Explicit\n"
              "size: 2 x 1\n"
              "photometric: MONOCHROME1\n"
              "bits: 12 stored in 16, unsigned\n"
              "frames: 2\n"
              "pixel height to width: 1\n"
              "values: stored 0 to 100, output 10 to 20\n"
              "modality: table of 2 entries from 0, 8 bits\n"
              "voi 1: window, centre 40, width 400, sigmoid, \"SOFT\"\n"
              "voi 2: window, cannot be applied: has a width of 0\n"
              "voi 3: table of 2 entries from 7, 12 bits, \"HARD\"\n"
              "voi 4: table, cannot be applied: has a VOI LUT with 2 of 3 entries\n"
              "presentation: table of 2 entries from 0, 8 bits\n"
              "low values: white\n");
}

TEST_F(Program, ChoosesFramesTablesAndPalettes) {
    DicomWriter writer(2, 1);
    writer.put(DCM_NumberOfFrames, "2").pixels({0, 100, 100, 0});
    writer.put(DCM_WindowCenter, "50").put(DCM_WindowWidth, "2");
    writer.lut(DCM_VOILUTSequence, {2, 99, 8}, {0x40, 0x80});
    const std::string path = "'" + writer.save(folder_) + "'";
    const auto pixels = [&](const std::string& arguments) {
        const Outcome outcome = render(path + " " + arguments);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        return zoltest::readPng(file("p.png")).picture.pixels;
    };
    using Pixels = std::vector<std::uint32_t>;
    EXPECT_EQ(pixels(""), (Pixels{0x000000, 0xFFFFFF}));
    EXPECT_EQ(pixels("--frame 2"), (Pixels{0xFFFFFF, 0x000000}));
    EXPECT_EQ(pixels("--voi 2"), (Pixels{0x404040, 0x808080}));
    EXPECT_EQ(pixels("--palette WINTER"), (Pixels{0x0000FF, 0x7FFF80}));
    EXPECT_EQ(pixels("--palette WINTER --invert"), (Pixels{0x7FFF80, 0x0000FF}));
    EXPECT_EQ(pixels("--voi 2 --voi-lut " + path), (Pixels{0x404040, 0x808080}));

    EXPECT_EQ(render(path + " --frame 3").err,
              "zolview: " + folder_.file("test.dcm") + ": has 2 frames; there is no frame 3\n");
    EXPECT_EQ(render(path + " --voi 3").err,
              "zolview: " + folder_.file("test.dcm") +
                  ": has no window or VOI LUT 3, but 1: window, centre 50, width 2; 2: table of 2 entries from 99, 8 "
                  "bits\n");
    EXPECT_EQ(render("phantom --modality-lut " + path).err,
              "zolview: " + folder_.file("test.dcm") + ": has no Modality LUT and no rescale slope\n");
    EXPECT_EQ(render("phantom --palette " + path).err,
              "zolview: " + folder_.file("test.dcm") + ": contains no palette\n");
    EXPECT_EQ(render("phantom --palette PINK").err, "zolview: PINK: there is no such file\n");
    EXPECT_EQ(render("phantom --frame 2").err, "zolview: phantom: has one frame only\n");
    for (const char* arguments : {"--frame 3", "--voi 3", "--palette PINK", "--voi-lut none.dcm"})
        EXPECT_EQ(render(path + " " + arguments).status, 1) << arguments;
}

TEST_F(Program, InfoTellsWhyAnImageCannotBeShown) {
    DicomWriter writer(2, 2);
    writer.put(DCM_PhotometricInterpretation, "PALETTE COLOR");
    const Outcome outcome = run("info '" + writer.save(folder_) + "'");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.out.find("\nzolview cannot show it: has a red palette without a descriptor of three numbers\n"),
              std::string::npos);
}

TEST_F(Program, InfoTellsAboutThePhantom) {
    const Outcome outcome = run("info phantom");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.out.starts_with("object: the built-in phantom\nsize: 640 x 512\n"));
}

TEST_F(Program, InfoRefusesWhatIsNoDicom) {
    std::ofstream(file("note.txt")) << "not an image\n";
    const Outcome outcome = run("info '" + file("note.txt") + "'");
    EXPECT_EQ(outcome.status, 1);
    expectOnePlainLine(outcome.err);
}

}  // namespace
