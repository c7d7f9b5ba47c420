#include "zolview/options.h"

#include "viewing/image/limits.h"
#include "zolview/option_values.h"

#include <CLI/CLI.hpp>

#include <limits>
#include <ostream>

namespace zolview {

using namespace viewing;

namespace {

constexpr const char* description =
    R"(zolview shows medical images: it reads a DICOM file and writes a PNG picture or a PDF page.

INPUT is a DICOM file (grey or colour, up to 16 bits per sample; uncompressed, deflated, RLE, JPEG, JPEG-LS or
JPEG 2000), or the word 'phantom': a built-in test picture that needs no file.

  zolview render phantom -o phantom.png
  zolview render ct.dcm -o bone.png --window 300/1500 --size 1024x1024
  zolview render chest.dcm -o part.png --zoom 3 --pan -200,100
  zolview render mammogram.dcm -o softer.png --voi 3
  zolview render pet.dcm -o hot.png --frame 12 --palette HOT_IRON
  zolview render mr.dcm -o smooth.png --size 1024x1024 --interpolation bicubic --sharpen 5,1
  zolview render phantom -o glass.png --magnifier 300,200,80,3
  zolview render phantom -o marked.png --annotate figures.json
  zolview print ct.dcm -o ct.pdf --rotate 90 --true-size
  zolview info ct.dcm)";

constexpr const char* footer = R"(The view is applied in this order: flip, rotate, zoom, pan.

Exit status: 0 done, 1 the input cannot be shown or the output cannot be written, 2 wrong usage.)";

/// Adds an option whose text `parse` turns into a value or refuses; `expected` tells what would have been right.
template <typename Parse, typename Store>
CLI::Option* addParsed(CLI::App& command, const std::string& name, const std::string& help, const std::string& unit,
                       const std::string& expected, Parse parse, Store store) {
    return command
        .add_option_function<std::string>(
            name,
            [name, expected, parse, store](const std::string& text) {
                const auto value = parse(text);
                if (!value) throw CLI::ValidationError(name, "must be " + expected + ", not '" + text + "'");
                store(*value);
            },
            help)
        ->type_name(unit);
}

/// Adds an option for the name of a file or the like. An empty one is refused: it comes from a shell's variable that is
/// not set, and leaving out what was asked for would go unnoticed.
CLI::Option* addName(CLI::App& command, const std::string& name, std::string& value, const std::string& help,
                     const std::string& unit) {
    const auto refuseEmpty = [](const std::string& text) { return text.empty() ? "must not be empty" : ""; };
    return command.add_option(name, value, help)->check(CLI::Validator(refuseEmpty, ""))->type_name(unit);
}

void addAnnotationOptions(CLI::App& command, Options& options) {
    CLI::Option* const annotate = addName(command, "--annotate", options.annotationFile,
                                          "Draw the annotations of this JSON file over the picture", "FILE.json");
    command
        .add_flag("--burn-in", options.display.burnIn,
                  "Write the annotations into the image's pixels instead of over the picture")
        ->needs(annotate);
}

/// Which image, and by which tables.
void addOpenOptions(CLI::App& command, OpenSettings& settings) {
    const auto parseOrdinal = [](const std::string& text) {
        return parseWhole(text, 1, std::numeric_limits<int>::max());
    };
    addParsed(command, "--frame", "Frame to show, counted from 1", "N", "a whole number from 1", parseOrdinal,
              [&settings](int frame) { settings.frame = frame; });
    addParsed(command, "--voi", "Use the window or VOI LUT with this number in the list of 'zolview info'", "N",
              "a whole number from 1", parseOrdinal, [&settings](int number) { settings.voi = number; })
        ->excludes("--window");
    const std::string unit = "FILE.dcm";
    addName(command, "--modality-lut", settings.modalityFile,
            "Take the Modality LUT, or slope and intercept, from another file", unit);
    addName(command, "--voi-lut", settings.voiFile,
            "Take the windows and VOI LUTs from another file, such as a presentation state", unit)
        ->excludes("--window");
    addName(command, "--presentation-lut", settings.presentationFile,
            "Take the Presentation LUT, or its shape, from another file", unit);
}

/// What concerns the image, wherever it is shown.
void addImageOptions(CLI::App& command, Options& options) {
    DisplaySettings& settings = options.display;
    addParsed(command, "--window",
              "Window, in the image's units such as HU (default: the file's first window or VOI LUT, else all values)",
              "CENTRE/WIDTH", "CENTRE/WIDTH, two numbers up to 1000000000, the width 1 or more", parseWindow,
              [&settings](Window window) { settings.window = window; });
    addName(command, "--palette", options.palette,
            "Show grey in colours: HOT_IRON, PET, HOT_METAL_BLUE, PET_20_STEP, SPRING, SUMMER, FALL, WINTER, or the "
            "palette of a file",
            "NAME|FILE.dcm");
    addParsed(command, "--flip", "Mirror the image: h exchanges left and right, v exchanges top and bottom", "h|v",
              "h or v", parseFlip, [&settings](Flip flip) { settings.flip = flip; });
    addParsed(command, "--sharpen", "Sharpen by unsharp masking with a square box, in pixels of the image",
              "BOX,STRENGTH", "BOX,STRENGTH, two whole numbers from 1, the strength at most 1000", parseSharpening,
              [&settings](Sharpening sharpening) { settings.sharpening = sharpening; });
    command.add_flag("--invert", settings.invert, "Exchange black and white");
    command.add_flag_callback(
        "--no-overlays", [&settings] { settings.overlays = false; }, "Leave out the image's overlay planes");
    command.add_flag_callback(
        "--no-shutters", [&settings] { settings.shutters = false; }, "Show what the image's shutters hide");
    addAnnotationOptions(command, options);
}

void addViewOptions(CLI::App& command, DisplaySettings& settings) {
    addParsed(command, "--size", "Size of the picture (default: the image's own, at most 2048 on the longer side)",
              "WIDTHxHEIGHT",
              "WIDTHxHEIGHT with sides from 1 to " + std::to_string(maxSide) + " and at most " +
                  std::to_string(maxPixels) + " pixels in all",
              parseSize, [&settings](Size size) { settings.size = size; });
    addParsed(
        command, "--zoom", "Magnification; 1 (the default) shows the whole image", "FACTOR",
        "a number from 0.001 to 1000", [](const std::string& text) { return parseNumber(text, minZoom, maxZoom); },
        [&settings](double zoom) { settings.zoom = zoom; });
    addParsed(command, "--pan", "Move the image right and down, in pixels of the picture", "X,Y",
              "X,Y, two numbers from -1000000 to 1000000", parsePan, [&settings](Pan pan) { settings.pan = pan; });
    addParsed(
        command, "--rotate", "Turn the image clockwise", "DEGREES", "a number of degrees from -1000000 to 1000000",
        [](const std::string& text) { return parseNumber(text, -maxDegrees, maxDegrees); },
        [&settings](double degrees) { settings.degrees = degrees; });
    addParsed(
        command, "--background", "Grey outside the image, from 0 (black, the default) to 255", "GREY",
        "a whole number from 0 to 255", [](const std::string& text) { return parseWhole(text, 0, 255); },
        [&settings](int grey) { settings.background = grey; });
}

/// How the image's pixels become the picture's.
void addDrawingOptions(CLI::App& command, DisplaySettings& settings) {
    addParsed(command, "--interpolation", "Interpolation between pixels: nearest (the default), bilinear or bicubic",
              "METHOD", "nearest, bilinear or bicubic", parseInterpolation,
              [&settings](Interpolation interpolation) { settings.interpolation = interpolation; });
    command.add_flag("--accelerated", settings.accelerated, "Draw with the host's image primitives");
    addParsed(command, "--magnifier", "Put a round magnifier on the picture: centre, radius and magnification",
              "X,Y,RADIUS,FACTOR",
              "X,Y,RADIUS,FACTOR: whole pixels of the picture, the radius from 1 to 4096, the factor from 0.01 to 100",
              parseMagnifier, [&settings](Magnifier magnifier) { settings.magnifier = magnifier; });
}

void addPageOptions(CLI::App& command, Options& options) {
    PageSettings& page = options.page;
    addParsed(command, "--rotate", "Turn the image clockwise by quarters", "DEGREES", "0, 90, 180 or 270",
              parseQuarterTurn, [&options](int degrees) { options.display.degrees = degrees; });
    addParsed(command, "--paper", "Size of the page: A4 (the default), A3 or letter", "PAPER", "A4, A3 or letter",
              parsePaper, [&page](Millimetres paper) { page.paper = paper; });
    command.add_flag("--landscape", page.landscape, "Turn the page on its side");
    addParsed(
        command, "--margin", "Margin on every side, in millimetres (default: 10)", "MM", "a number from 0 to 90",
        [](const std::string& text) { return parseNumber(text, 0.0, maxMargin); },
        [&page](double margin) { page.margin = margin; });
    addParsed(
        command, "--dpi", "Resolution of lines and positions, in dots per inch (default: 600)", "N",
        "a whole number from " + std::to_string(minDpi) + " to " + std::to_string(maxDpi),
        [](const std::string& text) { return parseWhole(text, minDpi, maxDpi); }, [&page](int dpi) { page.dpi = dpi; });
    command.add_flag("--true-size", page.trueSize,
                     "Print at the size that the pixel spacing gives, not at the largest that fits");
}

/// Writes what was asked for where the exception is a request for help or the version, and is an error otherwise.
void answer(const CLI::App& app, const CLI::ParseError& request, std::ostream& out) {
    if (request.get_exit_code() != static_cast<int>(CLI::ExitCodes::Success)) throw UsageError(request.what());
    app.exit(request, out, out);
}

}  // namespace

std::optional<Options> parseOptions(int argc, const char* const* argv, std::ostream& out) {
    Options options;
    CLI::App app(description, "zolview");
    app.set_version_flag("--version", "zolview " ZOLVIEW_VERSION);
    app.require_subcommand(1);
    app.footer(footer);
    CLI::App& renderCommand = *app.add_subcommand("render", "Write the image to a PNG file");
    CLI::App& printCommand = *app.add_subcommand("print", "Put the image on a page of a PDF file");
    CLI::App& infoCommand = *app.add_subcommand("info", "Report what the input contains and whether it can be shown");
    for (CLI::App* const command : {&renderCommand, &printCommand, &infoCommand})
        addName(*command, "INPUT", options.input, "A DICOM file, or the word 'phantom'", "")->required();
    addName(renderCommand, "-o,--output", options.output, "The PNG file to write", "OUT.png")->required();
    addName(printCommand, "-o,--output", options.output, "The PDF file to write", "OUT.pdf")->required();
    renderCommand.footer(footer);
    addViewOptions(renderCommand, options.display);
    addDrawingOptions(renderCommand, options.display);
    addPageOptions(printCommand, options);
    for (CLI::App* const command : {&renderCommand, &printCommand}) {
        addImageOptions(*command, options);
        addOpenOptions(*command, options.open);
        command->add_flag("--progress", options.progress,
                          "Report each stage on standard error (on a terminal: after 0.5 s even without this option)");
    }

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& request) {
        answer(app, request, out);
        return std::nullopt;
    }
    if (renderCommand.parsed()) options.command = Command::Render;
    if (printCommand.parsed()) options.command = Command::Print;
    options.open.ownWindow = options.display.window.has_value();
    return options;
}

}  // namespace zolview
