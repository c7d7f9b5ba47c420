// One image in one window: what the host adds to the library.
#pragma once

#include "platform/platform.h"
#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsbilinear.h"
#include "zolcs/ccscolorman.h"
#include "zolcs/ccsframe.h"
#include "zolcs/ccsgroup.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsraster.h"
#include "zolcs/ccstrack.h"

#include <memory>

namespace win32host {

inline constexpr COLORREF annotationColour = RGB(255, 255, 0);

/// The image, its view and its annotation, an angle. Positions are pixels of the client area.
class View {
public:
    /// Throws where the library cannot make a frame for the window.
    explicit View(HWND window);

    void resize(int width, int height);

    /// Brings what shows in the window to `dc`.
    void paint(HDC dc);

    /// The left button goes down, moves and goes up: drags the annotation where it was hit.
    void press(int x, int y);
    void drag(int x, int y);
    void release(int x, int y);

    /// Notches away from the user enlarge.
    void turnWheel(int notches);

    /// The image with its annotation as large as it gets on a page of that size. False when it cannot be drawn.
    bool print(HDC dc, int pageWidth, int pageHeight);

    /// The annotation's first vertex, where it is in the window now.
    [[nodiscard]] POINT annotationStart();

private:
    void fillRaster_();
    void drawImage_();

    CCsRaster raster_;
    CCsFrame frame_;
    CCs2dTrafo trafo_;
    CCsBilinear resampler_;
    CCsColorMan palette_;
    CCsColorMapT colours_{};
    std::unique_ptr<IMap> map_;
    CCsGroup annotations_;
    CCsTrack track_;
};

}  // namespace win32host
