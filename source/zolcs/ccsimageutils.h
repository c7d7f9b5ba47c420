#pragma once

#include "zolcs/ccsexport.h"
#include "zolcs/ccsgeometry.h"
#include "zolcs/ccsrecords.h"

#include <vector>

class CCs2dTrafo;
class CCsImage;
class CCsRaster;

/// Coordinate conversion, shutter geometry, bit tests and small numeric rules that images, resampling and overlays
/// share. All functions are free of shared state. Doubles that do not fit an integer result saturate; a NaN gives 0.
namespace CCsImageUtils {

// ---- Coordinates. Image pixels and display pixels, related by `trafo`; not rounded where the result is double.

/// Image to display, each coordinate rounded by roundOff.
ZOLWEBCS_API CCsPoint imgToDsp(CCs2dTrafo& trafo, const CCsPoint& point);
/// Display to image, each coordinate deliberately truncated towards zero, not rounded.
ZOLWEBCS_API CCsPoint dspToImg(CCs2dTrafo& trafo, const CCsPoint& point);
ZOLWEBCS_API CCsPointDouble imgToDspD(CCs2dTrafo& trafo, const CCsPointDouble& point);
ZOLWEBCS_API CCsPointDouble dspToImgD(CCs2dTrafo& trafo, const CCsPointDouble& point);
/// The corners (left, top) and (right, bottom) mapped as points, then normalised.
ZOLWEBCS_API CRect imgToDsp(CCs2dTrafo& trafo, const RECT& rect);
ZOLWEBCS_API CRect dspToImg(CCs2dTrafo& trafo, const RECT& rect);
/// Rounds half away from zero.
ZOLWEBCS_API int roundOff(double value);
ZOLWEBCS_API double getEuclidianDistance(const CCsPointDouble& a, const CCsPointDouble& b);
/// Smallest and largest coordinates of the vertices, right and bottom inclusive; all 0 without vertices.
ZOLWEBCS_API RECT getROIBoundingRect(const std::vector<CPoint>& vertices);
/// `out` becomes `in` with left and right, top and bottom exchanged where they are out of order.
ZOLWEBCS_API void rearrangeRectBounds(RECT& out, RECT in);

// ---- Shutters. All bounds are inclusive unless a comment says otherwise.

/// The raster's circle with its bounding box, as the overload below with the raster's width. Nothing changes while the
/// raster's circular shutter is off.
ZOLWEBCS_API void findCircShutterInfo(CCsCircularShutterInfo& info, const CCsRaster& raster);
/// The circle in a box (whose corners come in any order): half of the smaller side is the radius, and the centre lies
/// the whole part of it right of `left` and below `top`. A box without extent deliberately gives the radius width - 1.
/// `bounds` is left.
ZOLWEBCS_API void findCircShutterInfo(CCsCircularShutterInfo& info, RECT box, int width);
/// Whether a pixel lies inside every kind that is present: the rectangle with its edges, the circle with its rim, the
/// polygon by isPointInsidePolygon. True when none is.
ZOLWEBCS_API bool isPointInsideDisplayShutter(const CCsDisplayShutterInfo& shutter, int x, int y);
/// Even-odd rule on the closed polygon; a point on a right-hand edge is inside, one on a left-hand edge is not. False
/// for fewer than 2 vertices.
ZOLWEBCS_API bool isPointInsidePolygon(const std::vector<CPoint>& vertices, double x, double y);
/// Narrows the run start..end of a line to the rectangle. False, with the run unchanged, where the line misses it or
/// the run and the rectangle's columns have at most an end in common.
ZOLWEBCS_API bool findRectangleIntersectionPoints(const CCsRectangularShutterInfo& shutter, int line, int& start,
                                                  int& end);
/// Narrows the run to the circle's chord, whose ends are truncated. False as for the rectangle.
ZOLWEBCS_API bool findCircleScanLineIntersectionPoints(const CCsCircularShutterInfo& shutter, int line, int& start,
                                                       int& end);
/// Narrows a run (run[0]..run[1]) of a line to the rectangle, then to the circle, then to the polygon's bounding box,
/// and clamps it to the left and right of `limits` after each that succeeds. False when one fails (the circle is then
/// not tried) or the polygon has fewer than 3 vertices; true, with the run as it is, when no shutter is present. A line
/// outside the polygon's box changes neither run nor result: the polygon itself is tested for each pixel by the caller.
ZOLWEBCS_API bool calculateDisplayShutterBoundIntersection(int* run, int line, const CCsDisplayShutterInfo& shutter,
                                                           RECT limits, bool unused);
/// Intersects `bounds` (image pixels, right and bottom exclusive) with the raster's rectangle, its circle's box and its
/// polygon's bounding box (from 3 vertices on). False, with `bounds` all 0, when nothing is left. With `toDisplay` a
/// result that is not empty is mapped by imgToDsp. The bitmap shutter does not count.
ZOLWEBCS_API bool getDisplayShutterBounds(RECT& bounds, const CCsRaster& raster, CCs2dTrafo& trafo, bool toDisplay);
/// The display rectangle (right and bottom exclusive, whole pixels) around the mapped corners of `in`; with `clip` what
/// of it lies in the transformation's destination. False, with `out` all 0, when that is empty or not finite.
ZOLWEBCS_API bool getAffineBounds(const RECT& in, CCs2dTrafo& trafo, RECT& out, bool clip);
/// Prepares a 32-bit display before resampling: blue, green and red of what the image covers become the source's
/// presentation value (its upper 8 bits), the rest 0; everything does without a transformation, the fourth bytes then
/// stay. All is 0 for a bitmap shutter and for a value whose upper 8 bits are 0. `pixels` is the display's locked
/// memory; its last column and row that the image covers deliberately stay 0. `area` is not used.
ZOLWEBCS_API void fillDisplayedRasterWithShutterPresentationValue(const CCsRaster& source, const CCsImage& display,
                                                                  unsigned char* pixels, CCs2dTrafo* trafo, RECT area);

// ---- Bits. Bit k of a plane is bit k mod 8 of byte k / 8, lowest bit first; rows follow each other without padding.

/// The bitmap shutter's bit at an image pixel; false outside the bitmap and without data.
ZOLWEBCS_API bool isBitmapShutterSet(const CCsBitmapShutterInfo& shutter, int x, int y);
/// Whether any plane has its bit set at an image pixel; `index` is then the position of the first that has, and stays
/// as it was otherwise. Planes without data count as not set.
ZOLWEBCS_API bool is60XXOverlayBitset(const CCs60XXOverlayInfo& overlays, unsigned short& index, int x, int y);
/// False for null bits and a negative index.
ZOLWEBCS_API bool isPixePadBitSet(const unsigned char* bits, long index);
/// Sets bit offset + index. Nothing happens for null bits or a negative sum.
ZOLWEBCS_API void setPixelPadBitSet(unsigned char* bits, int unused, unsigned long offset, int index);
/// Deliberately sets bit row * width + column, whatever the name says. Nothing happens for null bits or a negative one.
ZOLWEBCS_API void resetPixelPadBitSet(unsigned char* bits, int row, int width, int column);

// ---- Numbers.

/// Whether the accelerated resampling takes a raster: not a null one, one with embedded overlays or one of CCS_RGB24.
ZOLWEBCS_API bool isIPPCompatible(const CCsRaster* raster);
/// Deliberately compares the segment's bottom with the image's width and its right with the image's height.
ZOLWEBCS_API bool isEntireSegmentFilledWithImage(const RECT& segment, const CCsImage& image);
/// The right shift that brings `maxValue` into 8 bits.
ZOLWEBCS_API unsigned short calculateBitShiftValueForGreyConversion(unsigned short maxValue);
/// The height of overlay text for a window, from `baseHeight` at 512 x 512: at least min(baseHeight, 11), at most 44.
/// A window that does not exist counts as one without extent.
ZOLWEBCS_API int calculateFontHeight(HWND window, int baseHeight);
/// As above for a rectangle. With `exact` the height is not limited, and a base height above `imageSize` enlarges the
/// reference size in proportion.
ZOLWEBCS_API int calculateFontHeight(RECT rect, int baseHeight, int imageSize, bool exact);

}  // namespace CCsImageUtils
