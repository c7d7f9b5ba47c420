#pragma once

#include "zolcs/ccsexport.h"
#include "zolcs/ccsgeometry.h"
#include "zolcs/ccsrecords.h"

#include <vector>

class CCs2dTrafo;
class CCsImage;
class CCsRaster;

/// Coordinate conversion, shutter geometry, bit tests and small numeric rules that images, resampling and overlays share.
/// All functions are free of shared state.
namespace CCsImageUtils {

ZOLWEBCS_API CCsPoint imgToDsp(CCs2dTrafo& trafo, const CCsPoint& point);
ZOLWEBCS_API CCsPoint dspToImg(CCs2dTrafo& trafo, const CCsPoint& point);
ZOLWEBCS_API CCsPointDouble imgToDspD(CCs2dTrafo& trafo, const CCsPointDouble& point);
ZOLWEBCS_API CCsPointDouble dspToImgD(CCs2dTrafo& trafo, const CCsPointDouble& point);
ZOLWEBCS_API CRect imgToDsp(CCs2dTrafo& trafo, const RECT& rect);
ZOLWEBCS_API CRect dspToImg(CCs2dTrafo& trafo, const RECT& rect);
ZOLWEBCS_API int roundOff(double value);
ZOLWEBCS_API double getEuclidianDistance(const CCsPointDouble& a, const CCsPointDouble& b);
ZOLWEBCS_API RECT getROIBoundingRect(const std::vector<CPoint>& vertices);
ZOLWEBCS_API void rearrangeRectBounds(RECT& out, RECT in);

ZOLWEBCS_API void findCircShutterInfo(CCsCircularShutterInfo& info, const CCsRaster& raster);
ZOLWEBCS_API void findCircShutterInfo(CCsCircularShutterInfo& info, RECT box, int width);
ZOLWEBCS_API bool isPointInsideDisplayShutter(const CCsDisplayShutterInfo& shutter, int x, int y);
ZOLWEBCS_API bool isPointInsidePolygon(const std::vector<CPoint>& vertices, double x, double y);
ZOLWEBCS_API bool findRectangleIntersectionPoints(const CCsRectangularShutterInfo& shutter, int line, int& start,
                                                  int& end);
ZOLWEBCS_API bool findCircleScanLineIntersectionPoints(const CCsCircularShutterInfo& shutter, int line, int& start,
                                                       int& end);
ZOLWEBCS_API bool calculateDisplayShutterBoundIntersection(int* run, int line, const CCsDisplayShutterInfo& shutter,
                                                           RECT limits, bool unused);
ZOLWEBCS_API bool getDisplayShutterBounds(RECT& bounds, const CCsRaster& raster, CCs2dTrafo& trafo, bool toDisplay);
ZOLWEBCS_API bool getAffineBounds(const RECT& in, CCs2dTrafo& trafo, RECT& out, bool clip);
ZOLWEBCS_API void fillDisplayedRasterWithShutterPresentationValue(const CCsRaster& source, const CCsImage& display,
                                                                  unsigned char* pixels, CCs2dTrafo* trafo, RECT area);

ZOLWEBCS_API bool isBitmapShutterSet(const CCsBitmapShutterInfo& shutter, int x, int y);
ZOLWEBCS_API bool is60XXOverlayBitset(const CCs60XXOverlayInfo& overlays, unsigned short& index, int x, int y);
ZOLWEBCS_API bool isPixePadBitSet(const unsigned char* bits, long index);
ZOLWEBCS_API void setPixelPadBitSet(unsigned char* bits, int unused, unsigned long offset, int index);
ZOLWEBCS_API void resetPixelPadBitSet(unsigned char* bits, int row, int width, int column);

ZOLWEBCS_API bool isIPPCompatible(const CCsRaster* raster);
ZOLWEBCS_API bool isEntireSegmentFilledWithImage(const RECT& segment, const CCsImage& image);
ZOLWEBCS_API unsigned short calculateBitShiftValueForGreyConversion(unsigned short maxValue);
ZOLWEBCS_API int calculateFontHeight(HWND window, int baseHeight);
ZOLWEBCS_API int calculateFontHeight(RECT rect, int baseHeight, int imageSize, bool exact);

}  // namespace CCsImageUtils
