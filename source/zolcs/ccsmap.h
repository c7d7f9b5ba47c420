#pragma once

#include "zolcs/ccscolorman.h"
#include "zolcs/ccsexport.h"

#include <utility>

class CCs2dTrafo;
class CCsImage;
class CCsRaster;

/// Turns stored values into display values. Reached through its virtual table only: the order of the operations is
/// part of the contract. Setters are not locked; do not reconfigure a map while a thread maps through it.
class ZOLWEBCS_API IMap {
public:
    IMap() = default;
    IMap(const IMap&) {}
    IMap& operator=(const IMap&) { return *this; }

    virtual void setColorMapIndex(CCsColorMapT* colorMap) = 0;
    virtual int mapRaster(CCsRaster& src, CCsImage& dst, RECT segment, bool wholeImageAllowed,
                          unsigned char* pixelPadding, CCs2dTrafo* trafo) = 0;
    virtual void* getLut() = 0;
    virtual int setWindow(unsigned int centre, int width) = 0;
    virtual int mergeDIBtoData(CCsRaster& raster, BITMAPINFO* dib, unsigned int depth, int bits, bool blankToMax) = 0;
    virtual IMap* clone() = 0;
    virtual ~IMap();
};

/// A map of grey values through one table of 32-bit display pixels.
class ZOLWEBCS_API IGreyMap : public IMap {
public:
    int mergeDIBtoData(CCsRaster& raster, BITMAPINFO* dib, unsigned int depth, int bits, bool blankToMax) override;

    virtual int allocateLut() = 0;
    virtual int setNonLinearLut(const unsigned short* values, unsigned int firstMapped, int count, bool exact) = 0;
    virtual void setIndexRemap(const unsigned char* table) = 0;
    virtual int setPresentationLut(const unsigned short* values, unsigned int firstMapped, int count) = 0;
    virtual int getWindowedNonLinearLut(unsigned short** values, unsigned int* first, unsigned int* count,
                                        bool unwindowed) = 0;
    virtual void setEnabled(bool on) = 0;
    virtual bool isEnabled() = 0;
    virtual void clearNonLinearLut() = 0;
    virtual void copyLut(unsigned int** dst) = 0;
    virtual void enableSigmoid() = 0;
    virtual void setSigmoidBits(int bits) = 0;
    virtual void setExactNonLinearWindow(bool on) = 0;
    virtual unsigned short getNonLinearShift() = 0;
    virtual unsigned int applyPresentationLut(unsigned int value, unsigned int shift) = 0;
    virtual bool hasPresentationLut() = 0;
    virtual void setOverlayColors(unsigned int* planeColors, unsigned int* groupColors) = 0;
    virtual std::pair<unsigned int*, unsigned int*> getOverlayColors() = 0;
    virtual void releaseLut() = 0;
    virtual void setMapFlags(int flags) = 0;
    virtual int getMapFlags() = 0;
};

/// A map of colour channels through byte tables.
class ZOLWEBCS_API IColorMap : public IMap {
public:
    virtual int mapRasterSeparate(CCsImage& src, CCsImage& dst) = 0;
    virtual void reserved1(void* first, void* second) = 0;
    virtual void reserved2(void* first, void* second) = 0;
    virtual void reserved3(void* first, void* second) = 0;
};

/// The one source of concrete maps.
class ZOLWEBCS_API MapFactory {
public:
    enum MapType : int { Grey12 = 0, Grey16 = 1, Rgb12 = 2, Rgb8 = 3 };

    /// A new map that the caller owns, or null for an unknown type or when memory is exhausted.
    static IMap* CreateMap(MapType type);

private:
    MapFactory() = default;
};
