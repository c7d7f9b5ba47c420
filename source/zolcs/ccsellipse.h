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
    /// Without one (null) the display rectangle is authoritative until dspToImg.
    CCsEllipse(CCs2dTrafo* trafo, const CCsPoint& first, const CCsPoint& second);

    /// An angular ellipse in image coordinates: one axis from p0 to p1, the other one from p2 to p3. `trafo` gives the
    /// display rectangle; without one (null) painting does.
    CCsEllipse(CCs2dTrafo* trafo, const CCsPointDouble& p0, const CCsPointDouble& p1, const CCsPointDouble& p2,
               const CCsPointDouble& p3);

    CCsEllipse(const CCsEllipse& other);
    CCsEllipse& operator=(const CCsEllipse& other) = delete;
    ~CCsEllipse() override;

    CCsOverlay* NewInstance() override;

    /// This ellipse when (x, y), in display pixels, lies near its outline: with e the squared distance from the centre
    /// in units of the half axes (truncated to integers), when |1 - e| is at most 0.25, so that the band grows with the
    /// ellipse. A hit also says which handle is grabbed. Null for the inside, and always while a half axis is 0; the
    /// grabbed handle stays then.
    CCsOverlay* pick(int x, int y) override;

    /// Marks as selected: handles are shown. `rect` stays as it is.
    void select(RECT& rect) override;
    /// Ends the selection; 0. `rect` stays as it is.
    int unselect(RECT& rect) override;

    /// A drag by (dx, dy) pixels that has arrived at (x, y). With a handle grabbed its edge moves, and the rectangle is
    /// kept above the minimum size; otherwise the whole figure moves. The display rectangle is authoritative until
    /// dspToImg. `region`, where not null, takes up the areas before and after. Nothing while not movable.
    void move(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region) override;

    using CCsOverlay::render;
    /// Draws the ellipse in `color`, filled if so set, and its handles while selected. Width, height and offsets have
    /// no effect. Nothing is drawn while not renderable, for a mode that is no render mode, and where the
    /// transformation that the mode needs is null.
    void render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode, int width,
                int height, int offsetX, int offsetY) override;

    /// Takes the image coordinates from the display rectangle, which is no longer authoritative then. Nothing for null.
    void dspToImg(CCs2dTrafo* trafo) override;

    /// Deliberately does nothing; the other getSize gives the size.
    void getSize(RECT& rect) override;
    /// Deliberately nothing: an ellipse has no shadow.
    void setDicomPrintFlag(bool on) override;

    using CCsOverlay::renderEllipse;

    /// New opposite corners in display pixels, as the constructor takes them. An angular ellipse is stretched with its
    /// rectangle.
    virtual void setPts(CCs2dTrafo* trafo, const CCsPoint& first, const CCsPoint& second);

    /// The first step of a drag: grabs the handle at the pointer's previous position (x - dx, y - dy), if there is one,
    /// and moves.
    virtual void beginMove(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region);

    /// The last step of a drag: moves, takes the image coordinates from the display rectangle and lets go of the
    /// handle.
    virtual void endMove(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region);

    /// Takes the display rectangle from the image coordinates. Nothing for null.
    virtual void imgToDsp(CCs2dTrafo* trafo);

    /// The display rectangle with what is painted around it: the pen, and while selected the handles. Right and bottom
    /// are exclusive. `dc` is not looked at.
    virtual void getSize(RECT& rect, HDC dc);

    /// Left top and right bottom in display pixels.
    virtual void getEndPts(CCsPoint& first, CCsPoint& second) const;
    /// The same corners in image pixels; of an angular ellipse left top and right bottom of the rectangle around it.
    virtual void getImagePts(CCsPointDouble& first, CCsPointDouble& second) const;

    [[nodiscard]] bool isVertexPicked() const { return grabbedHandle != noHandle; }
    [[nodiscard]] bool isAngular() const { return angular; }
    [[nodiscard]] bool isFilled() const { return filled; }
    void setFilled(bool on) { filled = on; }
    /// 0x00BBGGRR. Deliberately unlike a line's, a colour of 0 fills, too: in the colour of the outline.
    void setColorFilled(unsigned long newColor);

protected:
    static constexpr std::int32_t leftHandle = 0;
    static constexpr std::int32_t rightHandle = 1;
    static constexpr std::int32_t topHandle = 2;
    static constexpr std::int32_t bottomHandle = 3;
    static constexpr std::int32_t noHandle = 4;

    /// Draws the ellipse in a rectangle in output coordinates, an angular one through `trafo` instead; then the handles
    /// of the rectangle. Nothing while not renderable.
    virtual void renderEllipse(CCs2dTrafo* trafo, const RECT& rect, unsigned long color, HDC dc, int mode);

    /// While selected: the handles in the middle of the edges, left, right, top, bottom, with the brush that is
    /// selected.
    virtual void renderSelectionHandles(const RECT& rect, HDC dc) const;

    /// Makes a side of less than 10 display pixels longer by 10, in display and, deliberately by the same number, in
    /// image pixels, and grabs the handle across: a drag through the opposite edge goes on with that edge. The height
    /// is looked at only when the width is large enough.
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
