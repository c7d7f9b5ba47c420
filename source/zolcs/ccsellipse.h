#pragma once

#include "zolcs/ccsgeometry.h"
#include "zolcs/ccsoverlay.h"

#include <array>
#include <cstdint>
#include <optional>

namespace zolcs {
struct OutputBounds;
struct OutputPoint;
struct Placement;
}  // namespace zolcs

/// An ellipse annotation.
///
/// The plain form is inscribed in an upright rectangle that is kept in display and in image pixels. The angular form is
/// turned: it is given by four points in image coordinates, the ends of one axis and the ends of the axis across it;
/// for picking, handles and moving it has the upright rectangle around it.
///
/// The image coordinates count, and painting the screen updates the display rectangle after zoom and pan, except
/// while the display rectangle is authoritative: from a move on until dspToImg.
class ZOLWEBCS_API CCsEllipse : public CCsOverlay {
public:
    /// A plain ellipse without extent.
    CCsEllipse();

    /// A plain ellipse in the rectangle of two opposite corners in display pixels; `trafo` gives the image coordinates.
    /// Without a transformation (null) the display rectangle is authoritative until dspToImg.
    CCsEllipse(CCs2dTrafo* trafo, const CCsPoint& first, const CCsPoint& second);

    /// An angular ellipse in image coordinates, with one axis from p0 to p1 and the other from p2 to p3. `trafo` gives
    /// the display rectangle; without a transformation (null) painting computes it.
    CCsEllipse(CCs2dTrafo* trafo, const CCsPointDouble& p0, const CCsPointDouble& p1, const CCsPointDouble& p2,
               const CCsPointDouble& p3);

    CCsEllipse(const CCsEllipse& other);
    CCsEllipse& operator=(const CCsEllipse& other) = delete;
    ~CCsEllipse() override;

    CCsOverlay* NewInstance() override;

    /// Returns this ellipse when (x, y), in display pixels, lies near its outline, and then also determines the grabbed
    /// handle. Near means |1 - e| <= 0.25, where e is the squared distance from the centre in units of the half axes
    /// (truncated to integers); so the band grows with the ellipse. Returns null elsewhere, and always while a half
    /// axis is 0; the grabbed handle then stays.
    CCsOverlay* pick(int x, int y) override;

    /// Selects the ellipse: it shows its handles. `rect` stays unchanged.
    void select(RECT& rect) override;
    /// Ends the selection and returns 0. `rect` stays unchanged.
    int unselect(RECT& rect) override;

    /// Moves by (dx, dy) pixels for a drag whose pointer is now at (x, y): with a grabbed handle its edge, keeping the
    /// rectangle above the minimum size; otherwise the whole figure. The display rectangle is authoritative until
    /// dspToImg. `region`, if not null, grows by the areas before and after. Does nothing while the ellipse is not
    /// movable.
    void move(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region) override;

    using CCsOverlay::render;
    /// Draws the ellipse in `color`, filled if set, and its handles while selected. Width, height and offsets have no
    /// effect. Draws nothing while the ellipse is not renderable, for a mode that is no render mode, and where the
    /// transformation that the mode needs is null.
    void render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode, int width,
                int height, int offsetX, int offsetY) override;

    /// Computes the image coordinates from the display rectangle, which is then no longer authoritative. Does nothing
    /// for null.
    void dspToImg(CCs2dTrafo* trafo) override;

    /// Deliberately does nothing; the other getSize gives the size.
    void getSize(RECT& rect) override;
    /// Deliberately does nothing: an ellipse has no shadow.
    void setDicomPrintFlag(bool on) override;

    using CCsOverlay::renderEllipse;

    /// Sets two opposite corners in display pixels, like the constructor. Stretches an angular ellipse with its
    /// rectangle.
    virtual void setPts(CCs2dTrafo* trafo, const CCsPoint& first, const CCsPoint& second);

    /// The first step of a drag: grabs the handle at the pointer's previous position (x - dx, y - dy), if there is one,
    /// and moves.
    virtual void beginMove(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region);

    /// The last step of a drag: moves, computes the image coordinates from the display rectangle and releases the
    /// handle.
    virtual void endMove(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region);

    /// Computes the display rectangle from the image coordinates. Does nothing for null.
    virtual void imgToDsp(CCs2dTrafo* trafo);

    /// Gives the display rectangle including the pen and, while selected, the handles around it. Right and bottom are
    /// exclusive. `dc` has no effect.
    virtual void getSize(RECT& rect, HDC dc);

    /// Gives left top and right bottom in display pixels.
    virtual void getEndPts(CCsPoint& first, CCsPoint& second) const;
    /// Gives the same corners in image pixels; for an angular ellipse, left top and right bottom of the rectangle
    /// around it.
    virtual void getImagePts(CCsPointDouble& first, CCsPointDouble& second) const;

    [[nodiscard]] bool isVertexPicked() const { return grabbedHandle != noHandle; }
    [[nodiscard]] bool isAngular() const { return angular; }
    [[nodiscard]] bool isFilled() const { return filled; }
    void setFilled(bool on) { filled = on; }
    /// Sets the fill colour, 0x00BBGGRR, and fills the ellipse. Deliberately different from a line: 0 fills, too, in
    /// the colour of the outline.
    void setColorFilled(unsigned long newColor);

protected:
    static constexpr std::int32_t leftHandle = 0;
    static constexpr std::int32_t rightHandle = 1;
    static constexpr std::int32_t topHandle = 2;
    static constexpr std::int32_t bottomHandle = 3;
    static constexpr std::int32_t noHandle = 4;

    /// Draws the ellipse in a rectangle in output coordinates (an angular one through `trafo` instead), then the
    /// handles of the rectangle. Draws nothing while the ellipse is not renderable.
    virtual void renderEllipse(CCs2dTrafo* trafo, const RECT& rect, unsigned long color, HDC dc, int mode);

    /// While selected, draws the handles in the middle of the left, right, top and bottom edge, with the brush that is
    /// selected in `dc`.
    virtual void renderSelectionHandles(const RECT& rect, HDC dc) const;

    /// Extends a side of less than 10 display pixels by 10, in display and, deliberately by the same number, in image
    /// pixels, and grabs the opposite handle: a drag through the opposite edge continues with that edge. Checks the
    /// height only when the width is large enough.
    virtual void maintainMinimumSize();

    CCsRect<int, CCsPoint> displayRect;
    CCsRect<double, CCsPointDouble> imageRect;
    std::int32_t grabbedHandle = noHandle;
    bool angular = false;
    CCsPointDouble axisPoints[4];
    bool filled = false;
    std::uint32_t fillColor = 0;
    bool displayAuthoritative = false;
    /// How far the exact edges lie beyond those of displayRect, which painting has rounded: so that neither a drag nor
    /// a dspToImg for another figure of the group brings the ellipse to whole pixels of a small view.
    CCsRect<double, CCsPointDouble> roundedOff;

private:
    [[nodiscard]] std::array<zolcs::OutputPoint, 4> displayedAxes_(CCs2dTrafo& trafo) const;
    [[nodiscard]] zolcs::OutputBounds exactDisplay_() const;
    std::optional<zolcs::OutputBounds> outputBounds_(const zolcs::Placement& placement);
    void setImageRectFromAxes_();
    void stretchAxes_(CCs2dTrafo& trafo, const CCsRect<int, CCsPoint>& before);
    void joinArea_(CCsRegion* region);
    void sortEdges_();
    void drawTurned_(CCs2dTrafo& trafo, HDC dc) const;
};
