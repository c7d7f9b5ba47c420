#include "viewing/render.h"

#include "viewing/display/annotation_overlay.h"
#include "viewing/display/draw_image.h"
#include "viewing/display/font.h"
#include "viewing/display/picture_size.h"
#include "viewing/display/report_log.h"
#include "viewing/output/memory_window.h"
#include "zolcs/ccsframe.h"

namespace viewing {

namespace {

void paint(CCsFrame& frame, CCs2dTrafo& view, HWND window, CCsOverlay* annotations) {
    constexpr int fontHeight = 18;
    const Font font(fontHeight, Font::Edges::Smooth);
    HDC dc = GetDC(window);
    // The frame draws its second overlay always, its first one only when that does not follow the image.
    const int painted = frame.paint(dc, nullptr, &view, 0, -1, -1, -1, -1, annotations, 0, font.handle(), nullptr);
    ReleaseDC(window, dc);
    ReportLog::check();
    if (painted != 255) throw Refusal("the picture could not be painted");
}

}  // namespace

Picture render(const StoredImage& image, const DisplaySettings& settings, std::vector<std::string>& notes) {
    const Size size = settings.size.value_or(defaultSize(image, settings.degrees));
    const ReportLog reports;
    try {
        MemoryWindow host(size.width, size.height);
        CCsFrame frame(host.handle(), size.width, size.height, 0, 0);
        CCs2dTrafo view = drawImage(image, settings, notes, frame);
        AnnotationOverlay overlay(drawnOver(settings),
                                  {view, image.ratioYx, static_cast<double>(size.width) / size.height});
        paint(frame, view, host.handle(), overlay.group());
        return host.takePicture();
    } catch (int) {
        // Rasters and frames throw a number when they cannot get their memory.
        throw noMemory(image, size);
    }
}

}  // namespace viewing
