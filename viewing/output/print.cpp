#include "viewing/output/print.h"

#include "viewing/display/annotation_overlay.h"
#include "viewing/display/fonts.h"
#include "viewing/display/render.h"
#include "viewing/display/report_log.h"
#include "zolcs/ccsframe.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

namespace viewing {

namespace {

/// A width and height in millimetres.
using Extent = Paper;

std::string millimetres(const Extent& extent) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.1f x %.1f mm", extent.width, extent.height);
    return text.data();
}

Paper orient(const PrintOptions& page) {
    return page.landscape ? Paper{page.paper.height, page.paper.width} : page.paper;
}

int dots(double length, int dpi) {
    constexpr double inch = 25.4;
    return static_cast<int>(std::lround(length * dpi / inch));
}

/// How large the image becomes within the margins.
Extent extentOf(const StoredImage& image, double degrees, const PrintOptions& page, std::vector<std::string>& notes) {
    const Paper paper = orient(page);
    const Extent room{paper.width - 2.0 * page.margin, paper.height - 2.0 * page.margin};
    // In widths of a pixel.
    Extent extent{static_cast<double>(image.width), image.height * image.ratioYx};
    if (isQuarterTurn(degrees)) std::swap(extent.width, extent.height);
    const auto scaled = [&extent](double scale) { return Extent{extent.width * scale, extent.height * scale}; };
    if (!page.trueSize) return scaled(std::min(room.width / extent.width, room.height / extent.height));

    if (!image.pixelWidth) throw Refusal("has no pixel spacing, so that its true size is unknown");
    if (image.spacingIsUncalibrated)
        notes.emplace_back("the true size is that on the detector or film, not in the body");
    extent = scaled(*image.pixelWidth);
    if (extent.width > room.width || extent.height > room.height)
        throw Refusal("is too large for the page at its true size: " + millimetres(extent) + ", and the page holds " +
                      millimetres(room));
    return extent;
}

/// One document of one page. Unless it was finished, no file is left.
class PdfPage {
public:
    PdfPage(const std::string& path, const Paper& paper, int dpi)
        : path_(path), dc_(ZolCreatePdfPrinterDC(path.c_str(), paper.width, paper.height, dpi)) {
        DOCINFOW info{};
        info.cbSize = sizeof info;
        info.lpszDocName = L"zolview";
        if (dc_ == nullptr || StartDocW(dc_, &info) <= 0 || StartPage(dc_) <= 0) refuse();
    }
    PdfPage(const PdfPage&) = delete;
    PdfPage& operator=(const PdfPage&) = delete;
    ~PdfPage() { DeleteDC(dc_); }

    [[nodiscard]] HDC dc() const { return dc_; }

    void finish() {
        if (EndPage(dc_) <= 0 || EndDoc(dc_) <= 0) refuse();
    }

private:
    [[noreturn]] void refuse() const { throw Refusal("cannot write " + path_); }

    std::string path_;
    HDC dc_;
};

void print(CCsFrame& frame, CCs2dTrafo& view, CCsOverlay* annotations, const Extent& extent, const PrintOptions& page,
           const std::string& path) {
    constexpr double letterHeight = 3.5;
    const Paper paper = orient(page);
    const int width = std::max(dots(extent.width, page.dpi), 1);
    const int height = std::max(dots(extent.height, page.dpi), 1);
    const int left = (dots(paper.width, page.dpi) - width) / 2;
    const int top = (dots(paper.height, page.dpi) - height) / 2;

    PdfPage pdf(path, paper, page.dpi);
    const Font font(dots(letterHeight, page.dpi), Font::Edges::Smooth);
    // Texts and normalised figures count from the image's corner only where that is the origin.
    SetViewportOrgEx(pdf.dc(), left, top, nullptr);
    // What reaches beyond the image would be white on white paper.
    IntersectClipRect(pdf.dc(), 0, 0, width, height);
    const int printed = frame.print(pdf.dc(), {0, 0, width, height}, nullptr, annotations, &view, 0, 0, width, height,
                                    0, 0, font.handle(), printerMode);
    ReportLog::check();
    if (printed != 255) throw Refusal("the page could not be printed");
    pdf.finish();
}

}  // namespace

std::optional<Paper> parsePaper(const std::string& text) {
    if (text == "A4") return Paper{210.0, 297.0};
    if (text == "A3") return Paper{297.0, 420.0};
    if (text == "letter") return Paper{215.9, 279.4};
    return std::nullopt;
}

void printPdf(const StoredImage& image, const RenderOptions& options, const PrintOptions& page, const std::string& path,
              std::vector<std::string>& notes) {
    const Extent extent = extentOf(image, options.degrees, page, notes);
    const Size size = ownSize(image, options.degrees, maxSide);
    const ReportLog reports;
    try {
        CCsFrame frame(size.width, size.height);
        if (frame.init() != 255) throw noMemory(image, size);
        CCs2dTrafo view = drawImage(image, options, notes, frame);
        AnnotationOverlay overlay(drawnOver(options),
                                  {view, image.ratioYx, static_cast<double>(size.width) / size.height});
        print(frame, view, overlay.group(), extent, page, path);
    } catch (int) {
        throw noMemory(image, size);
    }
}

}  // namespace viewing
