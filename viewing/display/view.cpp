#include "viewing/display/view.h"

#include "zolcs/ccsimage.h"

#include <cmath>

namespace viewing {

CCs2dTrafo makeView(const CCsImage& image, const CCsImage& frame, const DisplaySettings& settings) {
    CCs2dTrafo view;
    view.setSizes(image, frame);
    if (settings.flip == Flip::Horizontal) view.mirror(CCS_HORIZONTAL);
    if (settings.flip == Flip::Vertical) view.mirror(CCS_VERTICAL);
    // x grows right and y down, so that a positive angle turns clockwise on the screen.
    view.rotate(std::fmod(settings.degrees, 360.0));

    if (settings.zoom != 1.0) {
        // After a quarter turn the transformation fits the turned image at scale 1 and the upright one at all other
        // scales. A magnification must start from what zoom 1 shows, so the fit is taken out here.
        double fit = 1.0;
        double zoomed = 1.0;
        view.getDspScaleFactor(fit);
        view.setFitIntoSegementMode(false);
        view.scale2dMatrix(settings.zoom);
        view.getDspScaleFactor(zoomed);
        view.scale2dMatrix(fit * settings.zoom / zoomed);
    }

    setPan(view, settings.pan.x, settings.pan.y);
    return view;
}

void setPan(CCs2dTrafo& view, double x, double y) {
    // Pan factors count reference extents; how many pixels one of them is shows in the matrix.
    double a = 0.0, b = 0.0, c = 0.0, d = 0.0, e = 0.0, f = 0.0, eOne = 0.0, fOne = 0.0;
    view.setDspPanFactor(0.0, 0.0);
    view.getImgToDsp(a, b, c, d, e, f);
    view.setDspPanFactor(1.0, 1.0);
    view.getImgToDsp(a, b, c, d, eOne, fOne);
    view.setDspPanFactor(x / (eOne - e), y / (fOne - f));
}

}  // namespace viewing
