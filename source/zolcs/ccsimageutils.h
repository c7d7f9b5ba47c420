#pragma once

#include "zolcs/ccsexport.h"
#include "zolcs/ccsgeometry.h"
#include "zolcs/ccsrecords.h"

#include <vector>

class CCs2dTrafo;
class CCsImage;
class CCsRaster;

/// Coordinate conversion, shutter geometry, bit tests and small numeric rules that images, resampling and overlays
/// share. The functions have no shared state. Doubles that do not fit an integer result saturate; NaN gives 0.
namespace CCsImageUtils {

// ---- Coordinates: image pixels and display pixels, related by `trafo`. Double results are not rounded.

/// Image to display; rounds each coordinate by roundOff.
ZOLWEBCS_API CCsPoint imgToDsp(CCs2dTrafo& trafo, const CCsPoint& point);
/// Display to image; deliberately truncates each coordinate towards zero instead of rounding it.
ZOLWEBCS_API CCsPoint dspToImg(CCs2dTrafo& trafo, const CCsPoint& point);
ZOLWEBCS_API CCsPointDouble imgToDspD(CCs2dTrafo& trafo, const CCsPointDouble& point);
ZOLWEBCS_API CCsPointDouble dspToImgD(CCs2dTrafo& trafo, const CCsPointDouble& point);
/// Maps the corners (left, top) and (right, bottom) as points and normalises the result.
ZOLWEBCS_API CRect imgToDsp(CCs2dTrafo& trafo, const RECT& rect);
ZOLWEBCS_API CRect dspToImg(CCs2dTrafo& trafo, const RECT& rect);
/// Rounds half away from zero.
ZOLWEBCS_API int roundOff(double value);
ZOLWEBCS_API double getEuclidianDistance(const CCsPointDouble& a, const CCsPointDouble& b);
/// The smallest and largest coordinates of the vertices, right and bottom inclusive; all 0 without vertices.
ZOLWEBCS_API RECT getROIBoundingRect(const std::vector<CPoint>& vertices);
/// Sets `out` to `in`, with left and right, top and bottom exchanged where they are out of order.
ZOLWEBCS_API void rearrangeRectBounds(RECT& out, RECT in);

// ---- Shutters. All bounds are inclusive unless a comment says otherwise.

/// Gives the raster's circle and its bounding box, as the overload below does with the raster's width. Changes nothing
/// while the raster's circular shutter is off.
ZOLWEBCS_API void findCircShutterInfo(CCsCircularShutterInfo& info, const CCsRaster& raster);
/// Gives the circle in a box, whose corners can have any order. Its radius is half of the smaller side; its centre lies
/// the integer part of the radius right of `left` and below `top`. A box without extent deliberately gives the radius
/// width - 1. `bounds` stays unchanged.
ZOLWEBCS_API void findCircShutterInfo(CCsCircularShutterInfo& info, RECT box, int width);
/// Whether a pixel lies inside every kind that is present: the rectangle with its edges, the circle with its rim, the
/// polygon by isPointInsidePolygon. True when none is.
ZOLWEBCS_API bool isPointInsideDisplayShutter(const CCsDisplayShutterInfo& shutter, int x, int y);
/// Even-odd rule on the closed polygon; a point on a right-hand edge is inside, one on a left-hand edge is not. False
/// for fewer than 2 vertices.
ZOLWEBCS_API bool isPointInsidePolygon(const std::vector<CPoint>& vertices, double x, double y);
/// Narrows the run start..end of a row to the rectangle. Returns false and leaves the run unchanged where the row
/// misses the rectangle, or where the run and the rectangle's columns have at most one end in common.
ZOLWEBCS_API bool findRectangleIntersectionPoints(const CCsRectangularShutterInfo& shutter, int line, int& start,
                                                  int& end);
/// Narrows the run to the circle's chord, whose ends are truncated. Returns false as for the rectangle.
ZOLWEBCS_API bool findCircleScanLineIntersectionPoints(const CCsCircularShutterInfo& shutter, int line, int& start,
                                                       int& end);
/// Narrows the run run[0]..run[1] of a row to the rectangle, then to the circle, then to the polygon's bounding box,
/// and clamps it to the left and right of `limits` after each step that succeeds. Returns false when a step fails
/// (after the rectangle the circle is then not tried) or the polygon has fewer than 3 vertices. Returns true and leaves
/// the run unchanged when no shutter is present. A row outside the polygon's box changes neither run nor result: the
/// caller tests the polygon itself for each pixel.
ZOLWEBCS_API bool calculateDisplayShutterBoundIntersection(int* run, int line, const CCsDisplayShutterInfo& shutter,
                                                           RECT limits, bool unused);
/// Intersects `bounds` (image pixels, right and bottom exclusive) with the raster's rectangle, its circle's box and its
/// polygon's bounding box (from 3 vertices on). Returns false and sets `bounds` to all 0 when nothing is left. With
/// `toDisplay` a result that is not empty is mapped by imgToDsp. The bitmap shutter plays no part.
ZOLWEBCS_API bool getDisplayShutterBounds(RECT& bounds, const CCsRaster& raster, CCs2dTrafo& trafo, bool toDisplay);
/// Gives the display rectangle (whole pixels, right and bottom exclusive) around the mapped corners of `in`; with
/// `clip` clipped to the transformation's destination. Returns false and sets `out` to all 0 when it is empty or not
/// finite.
ZOLWEBCS_API bool getAffineBounds(const RECT& in, CCs2dTrafo& trafo, RECT& out, bool clip);
/// Prepares a 32-bit display before resampling. In the pixels that the image covers, blue, green and red become the
/// upper 8 bits of the source's presentation value; all other pixels become 0. The last column and row that the image
/// covers deliberately stay 0. Without a transformation (null) every pixel gets the value, and the fourth bytes stay
/// unchanged. For a bitmap shutter, and for a value whose upper 8 bits are 0, everything becomes 0. `pixels` is the
/// display's locked memory; `area` is not used.
ZOLWEBCS_API void fillDisplayedRasterWithShutterPresentationValue(const CCsRaster& source, const CCsImage& display,
                                                                  unsigned char* pixels, CCs2dTrafo* trafo, RECT area);

// ---- Bits. Bit k of a plane is bit k mod 8 of byte k / 8, lowest bit first; rows have no padding.

/// The bitmap shutter's bit at an image pixel; false outside the bitmap and without data.
ZOLWEBCS_API bool isBitmapShutterSet(const CCsBitmapShutterInfo& shutter, int x, int y);
/// Whether any plane has its bit set at an image pixel. If so, `index` becomes the position of the first such plane,
/// otherwise it stays unchanged. Planes without data count as not set.
ZOLWEBCS_API bool is60XXOverlayBitset(const CCs60XXOverlayInfo& overlays, unsigned short& index, int x, int y);
/// False for null bits and a negative index.
ZOLWEBCS_API bool isPixePadBitSet(const unsigned char* bits, long index);
/// Sets bit offset + index. Does nothing for null bits or a negative sum.
ZOLWEBCS_API void setPixelPadBitSet(unsigned char* bits, int unused, unsigned long offset, int index);
/// Deliberately sets bit row * width + column, whatever the name says. Does nothing for null bits or a negative number.
ZOLWEBCS_API void resetPixelPadBitSet(unsigned char* bits, int row, int width, int column);

// ---- Numbers.

/// Whether accelerated resampling accepts a raster: not null, not CCS_RGB24, without embedded overlays.
ZOLWEBCS_API bool isIPPCompatible(const CCsRaster* raster);
/// Deliberately compares the segment's bottom with the image's width and its right with the image's height.
ZOLWEBCS_API bool isEntireSegmentFilledWithImage(const RECT& segment, const CCsImage& image);
/// The right shift that brings `maxValue` into 8 bits.
ZOLWEBCS_API unsigned short calculateBitShiftValueForGreyConversion(unsigned short maxValue);
/// The height of overlay text in a window, given the height `baseHeight` at 512 x 512: at least min(baseHeight, 11), at
/// most 44. A window that does not exist counts as one without extent.
ZOLWEBCS_API int calculateFontHeight(HWND window, int baseHeight);
/// As above for a rectangle. With `exact` the height has no limits, and a base height above `imageSize` enlarges the
/// reference size in proportion.
ZOLWEBCS_API int calculateFontHeight(RECT rect, int baseHeight, int imageSize, bool exact);

}  // namespace CCsImageUtils
