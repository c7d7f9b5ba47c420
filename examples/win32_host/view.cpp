#include "view.h"

#include "viewing/image/phantom.h"
#include "zolcs/ccsline.h"

#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <vector>

namespace win32host {

namespace {

constexpr int solid = 0;
constexpr std::uint16_t valueBits = 0x0FFF;
constexpr double notchFactor = 1.25;

SIZE clientSize(HWND window) {
    RECT area{};
    GetClientRect(window, &area);
    return {area.right, area.bottom};
}

const viewing::StoredImage& phantom() {
    static const viewing::StoredImage image = viewing::makePhantom();
    return image;
}

}  // namespace

View::View(HWND window)
    : raster_(phantom().width, phantom().height, CCS_GREY12, phantom().ratioYx, false, false),
      frame_(window, clientSize(window).cx, clientSize(window).cy, 0, 0),
      map_(MapFactory::CreateMap(MapFactory::Grey12)),
      track_(&annotations_) {
    if (map_ == nullptr) throw std::runtime_error("no memory for the grey map");
    palette_.getColorMap(colours_);
    map_->setColorMapIndex(&colours_);
    map_->setWindow(2048, 4096);
    fillRaster_();

    trafo_.setSizes(raster_, frame_);
    auto angle = std::make_unique<CCsLine>(&trafo_, 120, 100, 220, 160, 120, 220, solid);
    annotations_.append(*angle.release());  // the group owns it from here on
    annotations_.setGroupPickFlag(0);       // hits are the line's, so that it moves
}

void View::fillRaster_() {
    auto* line = reinterpret_cast<std::uint16_t*>(raster_.getOrigin());
    if (line == nullptr) throw std::runtime_error("no memory for the image");
    const std::uint16_t* sample = phantom().grey().samples.data();
    for (int y = 0; y < raster_.getHeight(); ++y, line += raster_.getPitch()) {
        for (int x = 0; x < raster_.getWidth(); ++x) line[x] = *sample++ & valueBits;
    }
    raster_.unlock();
}

void View::resize(int width, int height) {
    if (width > 0 && height > 0) frame_.setSize(width, height, 0, 0);
}

void View::drawImage_() { resampler_.bilinearGrey12IndexMap(raster_, frame_, trafo_, map_.get(), false, nullptr, 0); }

void View::paint(HDC dc) {
    // Annotations are drawn into the frame's own pixels: they need a fresh image beneath.
    drawImage_();
    frame_.paint(dc, nullptr, &trafo_, 0, -1, -1, -1, -1, nullptr, annotationColour, nullptr, &annotations_);
}

void View::press(int x, int y) {
    track_.downEvent(x, y);
    if (track_.getPicked() != nullptr) {
        RECT unused{};
        track_.getPicked()->select(unused);
    }
    frame_.invalidate(-1, -1, -1, -1);
}

void View::drag(int x, int y) {
    if (track_.getPicked() == nullptr) return;
    track_.motionEvent(x, y);
    track_.getPicked()->move(&trafo_, track_.getDx(), track_.getDy(), x, y, nullptr);
    track_.resetDxy();
    frame_.invalidate(-1, -1, -1, -1);
}

void View::release(int x, int y) {
    RECT unused{};
    if (track_.getPicked() != nullptr) track_.getPicked()->dspToImg(&trafo_);
    annotations_.unselect(unused);
    track_.upEvent(x, y);
    frame_.invalidate(-1, -1, -1, -1);
}

void View::turnWheel(int notches) {
    trafo_.scale(std::pow(notchFactor, notches));
    frame_.invalidate(-1, -1, -1, -1);
}

bool View::print(HDC dc, int pageWidth, int pageHeight) {
    drawImage_();
    const RECT all{0, 0, frame_.getWidth(), frame_.getHeight()};
    const int result = frame_.print(dc, all, &annotations_, nullptr, &trafo_, annotationColour, 0, pageWidth,
                                    pageHeight, 0, 0, nullptr, 3);
    frame_.unlock();  // printing leaves the pixels locked once more
    return result == CCS_DONE;
}

POINT View::annotationStart() {
    auto& line = static_cast<CCsLine&>(*annotations_.Find(1));
    line.imgToDsp(&trafo_);
    std::vector<CPoint> points;
    line.getEndPts(points);
    return points.front();
}

}  // namespace win32host
