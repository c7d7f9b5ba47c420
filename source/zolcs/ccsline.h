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
/// Every vertex is kept in display pixels (as integers and unrounded) and in image pixels. The image coordinates count,
/// and painting the screen updates the display coordinates after zoom and pan, except while the display
/// coordinates are authoritative: from a move on until dspToImg. A line whose coordinates are normalised (fractions of
/// the output's size) instead stays where it is on the output whatever the view is; it has no display and image
/// coordinates, is not picked and does not move.
///
/// Pen styles are GDI's: 0 solid, 2 dotted, and so on. Lines without vertices do nothing in every operation.
class ZOLWEBCS_API CCsLine : public CCsOverlay {
public:
    /// No vertices.
    CCsLine();

    /// One to four vertices in display pixels; `trafo` gives their image coordinates. Without one (null) the display
    /// coordinates are authoritative until dspToImg.
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

    /// Deep; the copy is in no group.
    CCsLine(const CCsLine& other);
    CCsLine& operator=(const CCsLine&) = delete;
    ~CCsLine() override;

    /// A deep copy on the heap that belongs to the caller, or null when memory is exhausted.
    CCsOverlay* NewInstance() override;

    /// This line when (x, y), in display pixels, lies within 4 pixels of a segment (of the closing segment, too, when
    /// closed), else null; always null while the group pick flag is 0, as it is for external lines. Segments of no
    /// length are never hit.
    CCsOverlay* pick(int x, int y) override;

    using CCsOverlay::select;
    using CCsOverlay::unselect;

    /// A drag by (dx, dy) pixels that has arrived at (x, y): the vertices move in display pixels, and the display
    /// coordinates are authoritative until dspToImg, which the caller calls when the drag ends. When the line is
    /// selected and the pointer was on a vertex' handle, that vertex alone moves (of several, the last one); otherwise
    /// all of them. `region`, where not null, takes up the areas of all vertices before and after. Nothing while not
    /// movable.
    void move(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region) override;

    using CCsOverlay::render;
    /// Draws the shadow and the outline, with handles while selected, or the filled area; as a smooth curve or an
    /// ellipse when the line is one. The pen is one pixel wide and of `color` on the screen and for
    /// CCS_MODE_BITMAP_PRINTER, a sixtieth of an inch wide and white on a printer, and yellow and about a tenth of the
    /// text's height wide where it is burnt in. An area is filled with its own colour, which shows as a mid grey on the
    /// screen and for CCS_MODE_BITMAP_PRINTER, or like the pen where it has none. Width, height and offsets have no
    /// effect. Nothing is drawn while not renderable, without vertices, for a mode that is no render mode (normalised
    /// lines apart), and where the transformation that the mode needs is null. The device context keeps its pen, brush
    /// and background mode.
    void render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode, int width,
                int height, int offsetX, int offsetY) override;

    /// Takes the image coordinates from the display coordinates, which are no longer authoritative then. Without a
    /// transformation (null) they stay so.
    void dspToImg(CCs2dTrafo* trafo) override;

    /// Grows `rect` to hold all display points, their largest x and y being its right and bottom. A rectangle of zeros,
    /// or one whose edges are out of order, holds nothing yet and is replaced.
    void getSize(RECT& rect) override;

    /// Stores the flag: a shadow that is burnt in is nearly black then, and drawn twice.
    void setDicomPrintFlag(bool on) override;

    /// Draws the ellipse that touches the sides of the rectangle of four vertices (in order around it) in their middle,
    /// however it is turned, otherwise as render does. Draws nothing for other numbers of vertices. The flags have no
    /// effect.
    void renderEllipse(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode,
                       int width, int height, int offsetX, int offsetY, bool flag1, bool flag2) override;

    /// Draws a smooth curve (a Catmull-Rom spline) through all vertices, otherwise as render does. The flags have no
    /// effect.
    virtual void renderInterpolatedLine(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc,
                                        int mode, int width, int height, int offsetX, int offsetY, bool flag1,
                                        bool flag2);

    /// Shows handles at the vertices, by which they can be dragged.
    virtual void select();
    /// Always 0.
    virtual int unselect();

    /// 1 when the line is selected and (x - dx, y - dy) lies in the 14 by 14 square around a vertex, half-open on the
    /// right and bottom; else 0.
    virtual int pickVertex(int dx, int dy, int x, int y);

    /// As move, for four vertices around a rectangle (in any position): a dragged corner takes its neighbours along, so
    /// that the opposite corner stays and all angles stay right. Other lines move as by move.
    void moveRectangle(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region);

    /// As moveRectangle, with sides of equal length: the longer one that the pointer asks for.
    void moveSquare(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region);

    /// As moveSquare, but the centre stays: a dragged corner changes the radius. Of two vertices the first is the
    /// centre, whose drag moves the circle, and the second one lies on the circle and moves alone. Other lines move as
    /// by move.
    void moveCircle(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region);

    /// Takes the display coordinates, rounded and not, from the image coordinates. Nothing for null.
    void imgToDsp(CCs2dTrafo* trafo);

    /// The first two, three or four vertices in display pixels; outputs for vertices that the line does not have stay
    /// unchanged. Likewise below.
    void getEndPts(int& x1, int& y1, int& x2, int& y2) const;
    void getEndPts(int& x1, int& y1, int& x2, int& y2, int& x3, int& y3) const;
    void getEndPts(int& x1, int& y1, int& x2, int& y2, int& x3, int& y3, int& x4, int& y4) const;
    /// All vertices in display pixels in place of what the vector held.
    void getEndPts(std::vector<CPoint>& points) const;
    /// Not rounded.
    void getEndPts(double& x1, double& y1, double& x2, double& y2) const;

    /// In image pixels.
    void getImagePts(double& x1, double& y1, double& x2, double& y2) const;
    void getImagePts(double& x1, double& y1, double& x2, double& y2, double& x3, double& y3) const;
    void getImagePts(double& x1, double& y1, double& x2, double& y2, double& x3, double& y3, double& x4,
                     double& y4) const;
    /// In image pixels, after dspToImg where the display coordinates are authoritative and `trafo` is not null.
    void getImagePts(CCs2dTrafo* trafo, double& x1, double& y1, double& x2, double& y2);
    void getImagePts(CCs2dTrafo* trafo, double& x1, double& y1, double& x2, double& y2, double& x3, double& y3);
    void getImagePts(CCs2dTrafo* trafo, double& x1, double& y1, double& x2, double& y2, double& x3, double& y3,
                     double& x4, double& y4);

    /// As fractions of the output's size.
    void getNormEndPts(double& x1, double& y1, double& x2, double& y2) const;
    void getNormEndPts(double& x1, double& y1, double& x2, double& y2, double& x3, double& y3) const;
    void getNormEndPts(double& x1, double& y1, double& x2, double& y2, double& x3, double& y3, double& x4,
                       double& y4) const;

    /// New display coordinates for a line of exactly this many vertices, from which dspToImg takes the image
    /// coordinates; without a transformation (null) the display coordinates are authoritative. Nothing for other and
    /// for normalised lines.
    void setPts(CCs2dTrafo* trafo, int x1, int y1, int x2, int y2);
    void setPts(CCs2dTrafo* trafo, int x1, int y1, int x2, int y2, int x3, int y3);
    void setPts(CCs2dTrafo* trafo, int x1, int y1, int x2, int y2, int x3, int y3, int x4, int y4);

    /// As setPts with two points that need not be integers (the integer display coordinates are truncated); on a
    /// normalised line they are fractions of the output's size.
    void setDspPoints(CCs2dTrafo* trafo, double x1, double y1, double x2, double y2);

    /// New image coordinates for a line of exactly two vertices; the display coordinates follow by imgToDsp.
    void setImgPts(CCs2dTrafo* trafo, double x1, double y1, double x2, double y2);

    /// New normalised coordinates for a normalised line of exactly four vertices.
    void setNormPts(CCs2dTrafo* trafo, double x1, double y1, double x2, double y2, double x3, double y3, double x4,
                    double y4);

    /// Whether the outline has a dark copy behind it, which keeps it visible on bright tissue.
    void setShadow(bool on);
    /// GDI's PS_SOLID, PS_DASH and so on; dashes and dots are GDI's, which draws them in pens one pixel wide only.
    void setPenStyle(int style);
    /// 0x00BBGGRR; a colour other than 0 makes the line filled, 0 makes it an outline.
    void setColorFilled(unsigned long newColor);
    /// Joins the last vertex to the first one.
    void close();

protected:
    /// Output coordinates of a vertex; false, and x and y unchanged, when it has none (see render).
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
