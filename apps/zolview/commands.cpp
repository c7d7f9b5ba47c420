#include "zolview/commands.h"

#include "viewing/annotations/annotations.h"
#include "viewing/describe.h"
#include "viewing/output/png_file.h"
#include "viewing/print.h"
#include "viewing/render.h"
#include "viewing/text/plain_text.h"
#include "zolview/progress.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <iostream>
#include <new>
#include <system_error>

namespace zolview {

using namespace viewing;

namespace {

void renderToFile(const Options& options) {
    Progress progress(std::cerr, progressWay(options.progress), options.input);
    progress.stage("reading");
    const StoredImage image = openImage(options.input, options.open);
    std::vector<std::string> notes = image.notes;
    progress.stage("drawing");
    const Picture picture = render(image, options.display, notes);
    progress.clear();
    tell(options.input, notes);
    progress.stage("writing");
    writePng(picture, options.output);
    progress.stage("done");
}

void printToFile(const Options& options) {
    Progress progress(std::cerr, progressWay(options.progress), options.input);
    progress.stage("reading");
    const StoredImage image = openImage(options.input, options.open);
    std::vector<std::string> notes = image.notes;
    progress.stage("printing");
    print(image, options.display, options.page, options.output, notes);
    progress.clear();
    tell(options.input, notes);
    progress.stage("done");
}

void printInfo(const Options& options) {
    std::string lines;
    for (const auto& [name, value] : describe(options.input)) lines += name + ": " + plainText(value) + '\n';
    std::cout << lines;
}

/// A slip of the keyboard must not cost an image.
void refuseToOverwrite(const Options& options) {
    std::vector<std::string> inputs = filesRead(options.input, options.open);
    inputs.insert(inputs.end(), {options.annotationFile, options.palette});
    const auto isOutput = [&options](const std::string& input) {
        std::error_code ignored;
        return std::filesystem::equivalent(options.output, input, ignored);
    };
    if (std::any_of(inputs.begin(), inputs.end(), isOutput)) throw Refusal("is an input, which would be overwritten");
}

/// Does an action with a file, whose name goes before whatever goes wrong.
template <typename Action>
ExitStatus attempt(const std::string& file, Action action) {
    try {
        action();
    } catch (const FileRefusal& refusal) {
        return fail(exitRefused, refusal.file() + ": " + refusal.what());
    } catch (const Refusal& refusal) {
        return fail(exitRefused, file + ": " + refusal.what());
    } catch (const std::bad_alloc&) {
        return fail(exitRefused, file + ": not enough memory");
    } catch (const std::exception& error) {
        return fail(exitRefused, file + ": " + error.what());
    }
    return exitDone;
}

void runCommand(const Options& options) {
    switch (options.command) {
        case Command::Render:
            return renderToFile(options);
        case Command::Print:
            return printToFile(options);
        case Command::Info:
            return printInfo(options);
    }
}

}  // namespace

ExitStatus run(Options options) {
    ExitStatus status = exitDone;
    if (!options.output.empty()) status = attempt(options.output, [&] { refuseToOverwrite(options); });
    if (status == exitDone && !options.annotationFile.empty())
        status = attempt(options.annotationFile,
                         [&] { options.display.annotations = readAnnotations(options.annotationFile); });
    if (status == exitDone && !options.palette.empty())
        status = attempt(options.palette, [&] { options.display.palette = openPalette(options.palette); });
    if (status == exitDone) status = attempt(options.input, [&] { runCommand(options); });
    return status;
}

}  // namespace zolview
