#pragma once

#include "zolcs/ccsimage.h"
#include "zolcs/ccsrecords.h"

#include <vector>

class CCs2dTrafo;
class CCsOverlay;
class IMap;

/// The source image: pixels, the shutters that blank parts of it, and its overlay planes.
class ZOLWEBCS_API CCsRaster : public CCsImage {
public:
    /// Sizes the raster with setSize; throws that call's result as an int when it is not 255.
    CCsRaster(int width, int height, int type, double ratioYx, bool mapMemory, bool deferAllocation);

    /// Adopts a buffer whose lines are not padded (pitch = width). A type of -1 and a ratio of 0.0 mean "not set".
    CCsRaster(ZolMemMappedBuffer* buffer, int width, int height, int type, double ratioYx);

    /// A deep copy, pixels included. Throws an int when memory is exhausted (1) or the geometry is refused (0).
    CCsRaster(const CCsRaster& other);

    /// Deliberately shallow, as that of CCsImage.
    CCsRaster& operator=(const CCsRaster& other);

    CCsRaster* NewInstance() override;
    ~CCsRaster() override;
    unsigned char* getOrigin() override;

    /// Replaces geometry and memory. 255; 1 when memory is exhausted; 0 for an unknown type or an invalid raster.
    int setSize(int width, int height, int type, double ratioYx, bool mapMemory);

    void setAspectRatio(double ratioYx);
    [[nodiscard]] bool isValid() const;

    void setRectShutter(RECT rect);
    void setCircShutter(RECT box);
    void setPolygonalShutter(const std::vector<CPoint>& vertices);
    [[nodiscard]] RECT getRectShutterRect() const;
    [[nodiscard]] RECT getCircShutterRect() const;
    [[nodiscard]] std::vector<CPoint> getPolygonalShutterCoordinates() const;
    [[nodiscard]] CCsBitmapShutterInfo& getBitmapShutterInfo();
    [[nodiscard]] const CCsBitmapShutterInfo& getBitmapShutterInfo() const;
    [[nodiscard]] bool isRectShutter() const;
    [[nodiscard]] bool isCircShutter() const;
    [[nodiscard]] bool isPolygonalShutter() const;
    [[nodiscard]] bool isBitmapShutter() const;
    /// Rectangular, circular or polygonal.
    [[nodiscard]] bool isDisplayShutter() const;
    /// Any of the four kinds.
    [[nodiscard]] bool isShutter() const;
    bool setBitmapShutterInfo(const CCsBitmapShutterInfo& info);
    bool setDisplayShutterInfo(const CCsDisplayShutterInfo& info);
    [[nodiscard]] CCsDisplayShutterInfo getDisplayShutterInfo() const;
    void setPresentationShutterValue(unsigned short value);
    [[nodiscard]] unsigned short getPresentationShutterValue() const;
    void resetImage(int kind);
    void setShutterInfo(CCsRaster& source, CCs2dTrafo* trafo);

    void add60XXOverlayInfo(const CCs60XXOverlay& plane);
    [[nodiscard]] CCs60XXOverlayInfo& get60XXOverlayGroup();
    void set60XXOverlayGroup(const CCs60XXOverlayInfo& group);
    void reset60XXOverlayGroup();
    [[nodiscard]] bool isNonEmbeddedOverlayPresent() const;
    void setEmbeddedOverlayStatus(bool present);
    [[nodiscard]] bool isEmbeddedOverlayPresent() const;

    int MakeDIBGrey12_(BITMAPINFO*& result, CCsOverlay* overlay, CCs2dTrafo* trafo, HFONT font);
    int MakeDIBRgb8_(BITMAPINFO*& result, CCsOverlay* overlay, CCs2dTrafo* trafo, HFONT font, unsigned long color);
    int burnInOverlay(IMap& map, CCsOverlay* overlay, unsigned int planeMask, CCs2dTrafo* trafo, HFONT font,
                      int mergeMode, bool mergeFlag);
    int burnInOverlay(IMap& map, CCsOverlay* overlay, CCs2dTrafo* trafo, HFONT font, unsigned long color);

protected:
    int valid = 1;
    int externalBuffer = 0;
    bool mapMemory = true;
    bool deferAllocation = false;
    int bitmapShutter = 0;
    int rectShutter = 0;
    int circShutter = 0;
    int polygonalShutter = 0;
    RECT rectShutterRect = {0, 0, 0, 0};
    RECT circShutterRect = {0, 0, 0, 0};
    std::vector<CPoint> polygonVertices;
    CCsBitmapShutterInfo bitmapShutterInfo;
    unsigned short presentationShutterValue = 0;
    CCs60XXOverlayInfo overlayGroup;
    bool embeddedOverlay = false;

private:
    int allocateLike(const CCsRaster& other);
    void copyPixels(const CCsRaster& other);
    int replaceBuffer();
    void switchShuttersOff();
    void clearShutterValues();
    int print_(HDC dc, CCsOverlay* overlay, unsigned long color, CCs2dTrafo* trafo);

    bool sized = true;  // the last setSize succeeded
};
