#include "viewing/print.h"

#include "viewing/display/annotation_overlay.h"
#include "viewing/display/draw_image.h"
#include "viewing/display/font.h"
#include "viewing/display/picture_size.h"
#include "viewing/display/report_log.h"
#include "viewing/output/page_layout.h"
#include "viewing/output/pdf_page.h"
#include "zolcs/ccsframe.h"

namespace viewing {

namespace {

void printFrame(CCsFrame& frame, CCs2dTrafo& view, CCsOverlay* annotations, const Millimetres& size,
                const PageSettings& page, const std::string& path) {
    constexpr double letterHeight = 3.5;
    PdfPage pdf(path, orientedPaper(page), page.dpi);
    const Font font(dots(letterHeight, page.dpi), Font::Edges::Smooth);
    const DotBox area = centredOnPage(size, page);
    // Texts and normalised figures count from the image's corner only where that is the origin.
    SetViewportOrgEx(pdf.dc(), area.left, area.top, nullptr);
    // What reaches beyond the image would be white on white paper.
    IntersectClipRect(pdf.dc(), 0, 0, area.width, area.height);
    const int printed = frame.print(pdf.dc(), {0, 0, area.width, area.height}, nullptr, annotations, &view, 0, 0,
                                    area.width, area.height, 0, 0, font.handle(), printerMode);
    ReportLog::check();
    if (printed != 255) throw Refusal("the page could not be printed");
    pdf.finish();
}

}  // namespace

void print(const StoredImage& image, const DisplaySettings& settings, const PageSettings& page, const std::string& path,
           std::vector<std::string>& notes) {
    const Millimetres extent = imageOnPage(image, settings.degrees, page, notes);
    const Size size = ownSize(image, settings.degrees, maxSide);
    const ReportLog reports;
    try {
        CCsFrame frame(size.width, size.height);
        if (frame.init() != 255) throw noMemory(image, size);
        CCs2dTrafo view = drawImage(image, settings, notes, frame);
        AnnotationOverlay overlay(drawnOver(settings),
                                  {view, image.ratioYx, static_cast<double>(size.width) / size.height});
        printFrame(frame, view, overlay.group(), extent, page, path);
    } catch (int) {
        throw noMemory(image, size);
    }
}

}  // namespace viewing
