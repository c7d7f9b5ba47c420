#pragma once

#include "zolcs/ccsimage.h"
#include "zolcs/ccsrecords.h"

#include <vector>

class CCs2dTrafo;
class CCsOverlay;
class IMap;

namespace zolcs {
struct DibReports;
}

/// The source image: pixels, the shutters that hide parts of it, and its overlay planes.
///
/// Every type but CCS_RGB24 has a spare row and a spare pixel behind the image, which interpolation may read. The host
/// fills a raster and resampling reads it on one thread at a time.
class ZOLWEBCS_API CCsRaster : public CCsImage {
public:
    /// Sizes the raster with setSize, with all shutters off. Throws that call's result as an int when it is not
    /// CCS_DONE.
    ///
    /// With `deferAllocation` every setSize records the geometry only. The first getOrigin then allocates the memory,
    /// and from then on nothing is deferred.
    CCsRaster(int width, int height, int type, double ratioYx, bool mapMemory, bool deferAllocation);

    /// Adopts a buffer, which the raster then owns. Its rows have no padding (pitch = width), and it holds at least
    /// width * height pixels. A type of -1 and a ratio of 0.0 mean "not set". With a null buffer the first getOrigin
    /// allocates one.
    CCsRaster(ZolMemMappedBuffer* buffer, int width, int height, int type, double ratioYx);

    /// Copies everything, pixels included. The copy of an adopted buffer keeps its layout and gets a spare row and
    /// pixel; an unknown type is then reported and its pixels are not copied. Throws an int: 1 when memory is exhausted
    /// (reported unless the buffer was adopted), 0 when the geometry is refused.
    CCsRaster(const CCsRaster& other);

    /// Deliberately shallow for the pixels, like CCsImage's; vertices and planes are copied.
    CCsRaster& operator=(const CCsRaster& other);

    /// Returns a copy of this raster, which the caller owns. Throws as the copy constructor does.
    CCsRaster* NewInstance() override;
    ~CCsRaster() override;

    /// Locks the memory and returns the first pixel's address. A raster without memory first allocates it by setSize
    /// with the stored values. Null when that fails.
    unsigned char* getOrigin() override;

    /// Replaces geometry and memory. A type of -1 and a ratio of 0.0 keep the current ones. New pixels are zero, and
    /// the memory is locked once. Returns:
    /// - CCS_DONE;
    /// - CCS_MISSING, reported: the memory cannot be allocated, which includes negative sizes and byte counts beyond 32
    /// bits;
    /// - CCS_FAILED, reported: the type is unknown, or the constructor failed.
    ///
    /// The old pixels are gone, and after a failure the raster has the new geometry without memory; a later call can
    /// succeed. Only a raster whose constructor failed is left unchanged.
    int setSize(int width, int height, int type, double ratioYx, bool mapMemory);

    /// Sets the height of a pixel divided by its width; 0.0 changes nothing.
    void setAspectRatio(double ratioYx);

    /// True when construction and the last setSize succeeded.
    [[nodiscard]] bool isValid() const;

    // Shutters. Rectangles are in image pixels, right and bottom inclusive. Setting a kind of shutter switches it on.

    void setRectShutter(RECT rect);
    /// `box` is the circle's bounding box.
    void setCircShutter(RECT box);
    void setPolygonalShutter(const std::vector<CPoint>& vertices);
    [[nodiscard]] RECT getRectShutterRect() const;
    [[nodiscard]] RECT getCircShutterRect() const;
    /// A copy of the vertices.
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

    /// Takes over the record except for its group and auxiliary value. The bits stay the host's. A record with neither
    /// tag nor data is ignored. Always returns true.
    bool setBitmapShutterInfo(const CCsBitmapShutterInfo& info);

    /// Replaces all shutters, the bitmap shutter included, by those present in the record (the circle by its `bounds`).
    /// A record without any is ignored. The record's presentation value is deliberately not stored. Always returns
    /// true.
    bool setDisplayShutterInfo(const CCsDisplayShutterInfo& info);

    /// Returns the rectangular, circular and polygonal shutters, the circle computed from its box, with the value of
    /// getPresentationShutterValue().
    [[nodiscard]] CCsDisplayShutterInfo getDisplayShutterInfo() const;

    void setPresentationShutterValue(unsigned short value);
    /// The value outside the shutters: the bitmap shutter's own while that is on.
    [[nodiscard]] unsigned short getPresentationShutterValue() const;

    /// Switches shutters off: 1 the circular, 2 the rectangular, 3 the polygonal (and drops its vertices), 4 the bitmap
    /// shutter, any other number all of them. -1 also clears the bitmap record's presentation value.
    void resetImage(int kind);

    /// Takes over the source's overlay planes (if it has any), its embedded-overlay status and its shutters. Shutters
    /// are mapped to display coordinates by `trafo`; without one (null) they stay in image coordinates. A bitmap
    /// shutter stays in image coordinates and is taken over alone. The presentation value is not taken over from a
    /// source without shutters.
    void setShutterInfo(CCsRaster& source, CCs2dTrafo* trafo);

    // Overlay planes. Their bits stay the host's.

    void add60XXOverlayInfo(const CCs60XXOverlay& plane);
    [[nodiscard]] CCs60XXOverlayInfo& get60XXOverlayGroup();
    void set60XXOverlayGroup(const CCs60XXOverlayInfo& group);
    void reset60XXOverlayGroup();
    [[nodiscard]] bool isNonEmbeddedOverlayPresent() const;
    /// Says whether the pixels carry embedded overlay bits.
    void setEmbeddedOverlayStatus(bool present);
    [[nodiscard]] bool isEmbeddedOverlayPresent() const;

    // Graphics that become pixels.

    /// Draws an overlay (none when null) with CCS_MODE_BURN_IN on black into a new 32-bit top-down bitmap of
    /// pitch x height pixels: a 40-byte header directly followed by the pixels. `font` is selected unless it is null.
    /// The grey form draws in the colour 0xFFFF.
    ///
    /// Returns CCS_DONE, and `result` belongs to the caller, who frees it with delete[] on unsigned char*; or
    /// CCS_MISSING when memory is exhausted, or CCS_FAILED when GDI refuses, both reported and with a null `result`.
    int MakeDIBGrey12_(BITMAPINFO*& result, CCsOverlay* overlay, CCs2dTrafo* trafo, HFONT font);
    int MakeDIBRgb8_(BITMAPINFO*& result, CCsOverlay* overlay, CCs2dTrafo* trafo, HFONT font, unsigned long color);

    /// Draws an overlay as above and lets the map merge it into the pixels. `planeMask`, `mergeMode` and `mergeFlag`
    /// are the depth, bits and blankToMax of IMap::mergeDIBtoData. Returns CCS_DONE; or the drawing's failure, and the
    /// pixels are then unchanged.
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
    int makeDib(BITMAPINFO*& result, CCsOverlay* overlay, CCs2dTrafo* trafo, HFONT font, unsigned long color,
                const zolcs::DibReports& reports);
    int print_(HDC dc, CCsOverlay* overlay, unsigned long color, CCs2dTrafo* trafo);

    bool sized = true;  // the last setSize succeeded
};
