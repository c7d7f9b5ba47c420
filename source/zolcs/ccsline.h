#pragma once

#include "zolcs/ccsgeometry.h"
#include "zolcs/ccsoverlay.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <vector>

namespace zolcs {
struct Corners;
struct Outline;
struct OutputPoint;
}  // namespace zolcs

/// An annotation made of vertices: a marker point, a line, an angle, a rectangle or square, an open or closed polyline,
/// a filled polygon, and, drawn in other ways from the same vertices, a smooth curve, a circle or an ellipse.
///
/// A line keeps every vertex in display pixels (as integers and unrounded) and in image pixels. The image coordinates
/// count: painting the screen updates the display coordinates after zoom and pan. Only from a move until dspToImg are
/// the display coordinates authoritative. A normalised line keeps its vertices as fractions of the output's size and
/// stays in place on the output in every view; it has no display and image coordinates, cannot be picked and does not
/// move.
///
/// Pen styles are GDI's: 0 solid, 2 dotted, and so on. A line without vertices does nothing in every operation.
class ZOLWEBCS_API CCsLine : public CCsOverlay {
public:
    /// A line without vertices.
    CCsLine();

    /// One to four vertices in display pixels; `trafo` gives their image coordinates. Without a transformation (null)
    /// the display coordinates are authoritative until dspToImg.
    CCsLine(CCs2dTrafo* trafo, int x, int y, int penStyle);
    CCsLine(CCs2dTrafo* trafo, int x1, int y1, int x2, int y2, int penStyle);
    CCsLine(CCs2dTrafo* trafo, int x1, int y1, int x2, int y2, int x3, int y3, int penStyle);
    CCsLine(CCs2dTrafo* trafo, int x1, int y1, int x2, int y2, int x3, int y3, int x4, int y4, int penStyle);
    CCsLine(CCs2dTrafo* trafo, const CCsPointDouble& first, const CCsPointDouble& second, int penStyle);

    /// Two vertices: in display pixels, or normalised.
    CCsLine(CCs2dTrafo* trafo, double x1, double y1, double x2, double y2, int penStyle, bool normalised);

    /// Four vertices: in display pixels, or normalised. With `ellipse` the ellipse in their rectangle is drawn.
    CCsLine(CCs2dTrafo* trafo, double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4,
            int penStyle, bool ellipse, bool normalised);

    /// Any number of vertices: in display pixels, or normalised. With `interpolated` a smooth curve through them is
    /// drawn. A filled line of more than three vertices is an area.
    CCsLine(CCs2dTrafo* trafo, const std::vector<CCsPointDouble>& points, int penStyle, bool interpolated,
            bool normalised, bool filled);

    /// A deep copy, which is in no group.
    CCsLine(const CCsLine& other);
    CCsLine& operator=(const CCsLine&) = delete;
    ~CCsLine() override;

    /// Returns a deep copy on the heap, which the caller owns, or null when memory is exhausted.
    CCsOverlay* NewInstance() override;

    /// Returns this line when (x, y), in display pixels, lies within 4 pixels of a segment (including the closing
    /// segment of a closed line), else null. Always null while the group pick flag is 0, as it is for external lines. A
    /// segment without length is never hit.
    CCsOverlay* pick(int x, int y) override;

    using CCsOverlay::select;
    using CCsOverlay::unselect;

    /// Moves vertices by (dx, dy) display pixels for a drag whose pointer is now at (x, y): if the line is selected and
    /// the pointer was on a vertex's handle, that vertex alone (of several, the last one); otherwise all vertices. The
    /// display coordinates are then authoritative until dspToImg, which the caller calls when the drag ends. `region`,
    /// if not null, grows by the areas of all vertices before and after. Does nothing while the line is not movable.
    void move(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region) override;

    using CCsOverlay::render;
    /// Draws the shadow and the outline, with handles while selected, or the filled area; as a smooth curve or an
    /// ellipse when the line is one.
    ///
    /// The pen depends on the mode: one pixel wide in `color` for CCS_MODE_SCREEN and CCS_MODE_BITMAP_PRINTER, 1/60
    /// inch wide and white for CCS_MODE_PRINTER, about a tenth of the text's height wide and yellow for
    /// CCS_MODE_BURN_IN. An area is filled with its own colour (for CCS_MODE_SCREEN and CCS_MODE_BITMAP_PRINTER shown
    /// as a mid grey), or with the pen's colour where it has none.
    ///
    /// Width, height and offsets have no effect. Draws nothing while the line is not renderable, has no vertices, gets
    /// a mode that is no render mode (except for normalised lines), or gets null for the transformation that the mode
    /// needs. The device context keeps its pen, brush and background mode.
    void render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode, int width,
                int height, int offsetX, int offsetY) override;

    /// Computes the image coordinates from the display coordinates, which are then no longer authoritative. Without a
    /// transformation (null) they stay authoritative.
    void dspToImg(CCs2dTrafo* trafo) override;

    /// Grows `rect` to include all display points; its right and bottom become at least their largest x and y. A
    /// rectangle of zeros, or one whose edges are out of order, counts as empty and is replaced.
    void getSize(RECT& rect) override;

    /// Stores the flag. With the flag set, a burnt-in shadow is nearly black and drawn twice.
    void setDicomPrintFlag(bool on) override;

    /// As `render`, but draws the ellipse that touches the sides of the rectangle of four vertices (in order around it)
    /// in their middles, for every rotation of the rectangle. Draws nothing for other numbers of vertices. The flags
    /// have no effect.
    void renderEllipse(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode,
                       int width, int height, int offsetX, int offsetY, bool flag1, bool flag2) override;

    /// As `render`, but draws a smooth curve (a Catmull-Rom spline) through all vertices. The flags have no effect.
    virtual void renderInterpolatedLine(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc,
                                        int mode, int width, int height, int offsetX, int offsetY, bool flag1,
                                        bool flag2);

    /// Selects the line: it shows handles at its vertices, by which they can be dragged.
    virtual void select();
    /// Ends the selection. Always returns 0.
    virtual int unselect();

    /// Returns 1 when the line is selected and (x - dx, y - dy) lies in the 14 by 14 square around a vertex, right and
    /// bottom exclusive; else 0.
    virtual int pickVertex(int dx, int dy, int x, int y);

    /// As `move` for four vertices around a rectangle of any rotation: a dragged corner takes its neighbours along, so
    /// the opposite corner stays in place and all angles stay right angles. Other lines move as by `move`.
    void moveRectangle(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region);

    /// As moveRectangle with sides of equal length: the longer of the two that the pointer gives.
    void moveSquare(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region);

    /// As moveSquare, but the centre stays in place: a dragged corner changes the radius. With two vertices, the first
    /// is the centre and dragging it moves the circle; the second lies on the circle and moves alone. Other lines move
    /// as by `move`.
    void moveCircle(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region);

    /// Computes the display coordinates, rounded and unrounded, from the image coordinates. Does nothing for null.
    void imgToDsp(CCs2dTrafo* trafo);

    /// Give the first two, three or four vertices in display pixels. Here and below, arguments for vertices that the
    /// line does not have stay unchanged.
    void getEndPts(int& x1, int& y1, int& x2, int& y2) const;
    void getEndPts(int& x1, int& y1, int& x2, int& y2, int& x3, int& y3) const;
    void getEndPts(int& x1, int& y1, int& x2, int& y2, int& x3, int& y3, int& x4, int& y4) const;
    /// Replaces the contents of the vector by all vertices in display pixels.
    void getEndPts(std::vector<CPoint>& points) const;
    /// Gives the first two vertices in display pixels, unrounded.
    void getEndPts(double& x1, double& y1, double& x2, double& y2) const;

    /// Give the first two, three or four vertices in image pixels.
    void getImagePts(double& x1, double& y1, double& x2, double& y2) const;
    void getImagePts(double& x1, double& y1, double& x2, double& y2, double& x3, double& y3) const;
    void getImagePts(double& x1, double& y1, double& x2, double& y2, double& x3, double& y3, double& x4,
                     double& y4) const;
    /// The same, after dspToImg if the display coordinates are authoritative and `trafo` is not null.
    void getImagePts(CCs2dTrafo* trafo, double& x1, double& y1, double& x2, double& y2);
    void getImagePts(CCs2dTrafo* trafo, double& x1, double& y1, double& x2, double& y2, double& x3, double& y3);
    void getImagePts(CCs2dTrafo* trafo, double& x1, double& y1, double& x2, double& y2, double& x3, double& y3,
                     double& x4, double& y4);

    /// Give the first two, three or four vertices of a normalised line as fractions of the output's size.
    void getNormEndPts(double& x1, double& y1, double& x2, double& y2) const;
    void getNormEndPts(double& x1, double& y1, double& x2, double& y2, double& x3, double& y3) const;
    void getNormEndPts(double& x1, double& y1, double& x2, double& y2, double& x3, double& y3, double& x4,
                       double& y4) const;

    /// Set the display coordinates of a line of exactly this many vertices; dspToImg then computes the image
    /// coordinates. Without a transformation (null) the display coordinates are authoritative. They do nothing for
    /// other lines and for normalised lines.
    void setPts(CCs2dTrafo* trafo, int x1, int y1, int x2, int y2);
    void setPts(CCs2dTrafo* trafo, int x1, int y1, int x2, int y2, int x3, int y3);
    void setPts(CCs2dTrafo* trafo, int x1, int y1, int x2, int y2, int x3, int y3, int x4, int y4);

    /// As setPts with two points that need not be integers; the integer display coordinates are truncated. For a
    /// normalised line the points are fractions of the output's size.
    void setDspPoints(CCs2dTrafo* trafo, double x1, double y1, double x2, double y2);

    /// Sets the image coordinates of a line of exactly two vertices; imgToDsp then computes the display coordinates.
    void setImgPts(CCs2dTrafo* trafo, double x1, double y1, double x2, double y2);

    /// Sets the coordinates of a normalised line of exactly four vertices.
    void setNormPts(CCs2dTrafo* trafo, double x1, double y1, double x2, double y2, double x3, double y3, double x4,
                    double y4);

    /// Sets whether the outline has a dark copy behind it, which keeps it visible on bright tissue.
    void setShadow(bool on);
    /// Sets the pen style: GDI's PS_SOLID, PS_DASH and so on. GDI draws dashes and dots only with pens one pixel wide.
    void setPenStyle(int style);
    /// Sets the fill colour, 0x00BBGGRR: a colour other than 0 makes the line filled, 0 makes it an outline.
    void setColorFilled(unsigned long newColor);
    /// Joins the last vertex to the first one.
    void close();

protected:
    /// Gives the output coordinates of a vertex. Returns false and leaves x and y unchanged when it has none (see
    /// `render`).
    bool transformToOutput(int index, CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, double& x, double& y, int mode);

    std::int32_t maxPointCount = 0;
    std::int32_t pointCount = 0;
    std::unique_ptr<CCsPoint[]> displayPoints;
    std::unique_ptr<CCsPointDouble[]> displayPointsDouble;
    std::unique_ptr<CCsPointDouble[]> normalisedPoints;  ///< of normalised lines, which have none of the others
    std::unique_ptr<CCsPointDouble[]> imagePoints;
    double closed = 0.0;
    std::int32_t displayAuthoritative = 0;
    std::int32_t penStyle = 0;
    bool ellipse = false;
    std::int32_t interpolated = 0;
    bool normalised = false;
    bool filled = false;
    std::uint32_t fillColor = 0;

private:
    /// The corner that a reshaping drag holds, and where the pointer held it.
    struct Hold {
        int vertex = -1;
        int pointerX = 0;
        int pointerY = 0;
        double offsetX = 0.0;
        double offsetY = 0.0;
    };

    /// What every way of drawing needs of a render call.
    struct Scene {
        CCs2dTrafo* imageTrafo;
        CCs2dTrafo* outputTrafo;
        unsigned long color;
        HDC dc;
        int mode;
    };

    CCsLine(CCs2dTrafo* trafo, const CCsPointDouble* points, std::size_t count, int penStyle, bool normalised);
    CCsLine(CCs2dTrafo* trafo, std::initializer_list<CCsPointDouble> points, int penStyle, bool normalised);

    void storeDisplayPoints_(const CCsPointDouble* points);
    void setDisplayPoints_(CCs2dTrafo* trafo, std::initializer_list<CCsPointDouble> points);
    void setNormalisedPoints_(CCs2dTrafo* trafo, std::initializer_list<CCsPointDouble> points);
    void bringImagePointsUpToDate_(CCs2dTrafo* trafo);
    [[nodiscard]] bool pickSegment(int from, int to, int x, int y) const;
    [[nodiscard]] int vertexAt_(int dx, int dy, int x, int y) const;
    [[nodiscard]] int heldCorner_(int dx, int dy, int x, int y);
    void joinArea_(int vertex, CCsRegion* region) const;
    void shift_(int onlyVertex, int dx, int dy, CCsRegion* region);
    void reshape_(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region, void (*shape)(zolcs::Corners&));
    void draw_(const Scene& scene,
               zolcs::Outline (*makeOutline)(const std::vector<zolcs::OutputPoint>&, bool closed, bool area));

    Hold hold_;
};
