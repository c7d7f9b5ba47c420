#pragma once

#include "zolcs/ccscolorman.h"
#include "zolcs/ccsexport.h"
#include "zolcs/ccsresults.h"

#include <utility>

class CCs2dTrafo;
class CCsImage;
class CCsRaster;

/// Turns stored values into display values.
///
/// Hosts reach a map through its virtual table only: the order of the operations is part of the contract. Unless an
/// operation says otherwise, it returns CCS_DONE (255), CCS_FAILED (0) for refused input, or CCS_MISSING (1) when a
/// table is missing or memory is exhausted. A refusal is reported through CCsError and leaves the map unchanged.
/// Setters are not locked: do not reconfigure a map while another thread maps through it.
class ZOLWEBCS_API IMap {
public:
    IMap() = default;
    /// There is nothing to copy.
    IMap(const IMap&) = default;
    IMap& operator=(const IMap&) = default;

    /// Grey maps: sets the palette of 256 display pixels through which levels are shown. The palette stays the caller's
    /// and must live as long as tables are built from it; null removes it. The table becomes stale.
    /// Colour maps ignore the palette.
    virtual void setColorMapIndex(CCsColorMapT* colorMap) = 0;

    /// Maps a raster of the map's own type onto a CCS_RGB8 image of the same size, pixel by pixel: what each pixel
    /// shows and what the call returns stand at IGreyMap and IColorMap. Both images are locked for the call.
    ///
    /// - `segment`: the part to map, in display coordinates, right and bottom exclusive; clipped to the images.
    /// - `wholeImageAllowed`: permits the accelerated way (grey maps).
    /// - `pixelPadding`: the padding bits, one per pixel, rows without row padding, lowest bit of each byte first; null
    ///   for none (grey maps). They stay the caller's.
    /// - `trafo`: where the shutter's presentation value goes; may be null (grey maps).
    virtual int mapRaster(CCsRaster& src, CCsImage& dst, RECT segment, bool wholeImageAllowed,
                          unsigned char* pixelPadding, CCs2dTrafo* trafo) = 0;

    /// Returns the table and builds it first when a setting has made it stale. Null when it cannot be built, or in a
    /// clone that has had no colour map yet. The table stays the map's and is valid until the next setter, releaseLut
    /// or destruction.
    /// Grey maps: 4096 (12-bit) or 65536 (16-bit) 32-bit display pixels, indexed by the stored value.
    /// Colour maps: 4096 (12-bit) or 256 (8-bit) bytes, indexed by the value of a channel.
    virtual void* getLut() = 0;

    /// Sets the window over stored values and returns CCS_DONE. Every number is accepted here; a width below 1 is
    /// refused when a table is built. A centre of 2^31 or more is read as a negative 32-bit number. Grey maps: the
    /// table and the windowed non-linear table become stale. Colour maps: the 8-bit map's table becomes stale. The
    /// 12-bit map deliberately keeps a table that has been built; its clones show the new window.
    virtual int setWindow(unsigned int centre, int width) = 0;

    /// Burns a rendered 32-bit bitmap into the raster's stored values, without any state of the map: how pixels are
    /// merged stands at IGreyMap and IColorMap. The bitmap's pixels follow its 40-byte header without gaps, top row
    /// first; pixels of the raster outside the bitmap stay unchanged. The raster is unlocked afterwards.
    ///
    /// Returns CCS_DONE; or CCS_FAILED for a raster of another pixel size, a null bitmap or a raster without memory,
    /// and changes nothing then.
    virtual int mergeDIBtoData(CCsRaster& raster, BITMAPINFO* dib, unsigned int depth, int bits, bool blankToMax) = 0;

    /// Returns a new map of the same class with copies of all owned tables, or null when memory is exhausted. The
    /// caller owns it. The clone of a grey map starts without colour map and table and is usable after
    /// setColorMapIndex; the clone of the 12-bit colour map builds its table anew.
    virtual IMap* clone() = 0;

    virtual ~IMap();
};

/// A map of grey values through one table of 32-bit display pixels.
///
/// The window gives each stored value a level from 0 to 255. Where they are set, a sigmoid, a presentation table, a
/// non-linear table and an index remap take part. The level selects a display pixel of the colour map.
///
/// mapRaster fills the destination with the shutter's presentation value (see
/// CCsImageUtils::fillDisplayedRasterWithShutterPresentationValue), then writes every pixel of the segment. A pixel
/// shows the first of these that applies:
/// 1. the colour of the first overlay plane that has a bit there;
/// 2. the colour of the stored value's top four bits, if not 0, where the raster has embedded overlays (12-bit map);
/// 3. 0, where the padding has a bit; the first pixel of the image is never padding;
/// 4. the shutter's presentation value, where a shutter hides the pixel;
/// 5. the table's entry for the stored value.
///
/// Overlays (1 and 2) are shown while the map is enabled and their colour table is set. The accelerated way serves
/// rasters without overlays, shutters and padding. It differs in one point: the 12-bit map shows a stored 65535 as the
/// last entry of its memory, which no setting reaches.
///
/// mapRaster returns CCS_DONE; or CCS_INVALID after a refusal (another type or size, no table, no pixel memory,
/// exhausted memory), which leaves the destination unchanged unless memory runs out while rows are being mapped. One
/// call at a time runs per map; its rows run on several threads.
///
/// mergeDIBtoData uses mask = (2 << bits) - 1, cut to 16 bits (0 for negative bits), and a maximum: 255 for a depth of
/// 8, else 0 for no bits, else mask. With `blankToMax` blank is the maximum and ink is 0; otherwise blank is 0 and ink
/// is the maximum. A pixel gets the first of these that applies:
/// 1. blank, where the bitmap has 0x00010101;
/// 2. ink, where the stored value has bits outside mask, unless `bits` is 0;
/// 3. ink, where the bitmap has 0x00FFFF00;
/// 4. half of ink, where the bitmap has any other value but 0;
/// 5. what it had.
class ZOLWEBCS_API IGreyMap : public IMap {
public:
    int mergeDIBtoData(CCsRaster& raster, BITMAPINFO* dib, unsigned int depth, int bits, bool blankToMax) override;

    /// Takes a chunk for the table if the map holds none. The chunk is zeroed and the table is stale. Returns CCS_DONE;
    /// or CCS_MISSING when there is no chunk (logged as "zolcs - E", not reported). May be called from any thread.
    virtual int allocateLut() = 0;

    /// Copies a non-linear table of `count` values and switches it on. The first value is for the stored value
    /// `firstMapped`; `exact` is as in setExactNonLinearWindow. A count below 1 stores a single entry 0 and reads
    /// nothing. Returns CCS_DONE; CCS_MISSING when memory is exhausted (the map then has no non-linear table);
    /// CCS_FAILED for null values with a count of 1 or more, which changes nothing.
    virtual int setNonLinearLut(const unsigned short* values, unsigned int firstMapped, int count, bool exact) = 0;

    /// Copies a table of 256 bytes, from windowed level to palette index, and switches it on. The table becomes stale.
    /// Null changes nothing.
    virtual void setIndexRemap(const unsigned char* table) = 0;

    /// Copies a presentation table and switches it on; parameters and results are those of setNonLinearLut.
    /// Deliberately does not make the table stale: set the window afterwards. The 12-bit map spreads the window, and
    /// the non-linear table's values, over the whole presentation table. The 16-bit map indexes it with the stored
    /// value (where it is too short, with its last entry) and shows a non-linear table without it.
    virtual int setPresentationLut(const unsigned short* values, unsigned int firstMapped, int count) = 0;

    /// Gives the non-linear table resampled to the window, from the first stored value inside it; builds it first when
    /// it is stale. With `unwindowed`, and while the exact window is on, gives the table as it was set. The values stay
    /// the map's and are valid until the next setter. Each of the three result pointers may be null. Returns CCS_DONE;
    /// or CCS_FAILED when the windowed table cannot be built, and sets no result then.
    virtual int getWindowedNonLinearLut(unsigned short** values, unsigned int* first, unsigned int* count,
                                        bool unwindowed) = 0;

    /// Sets whether overlays are shown (initially true). Switching off makes the table stale, switching on does not.
    virtual void setEnabled(bool on) = 0;
    virtual bool isEnabled() = 0;

    /// Switches the non-linear table off but keeps it. Deliberately does not make the table stale.
    virtual void clearNonLinearLut() = 0;

    /// Copies the table's whole memory (0x40000 bytes) to `*dst`, then its first 0x1000 bytes to the byte offsets
    /// 0x4000, 0x8000, ... 0x3C000. Builds the table first when it is stale; where it cannot be built, sets all bytes
    /// to 0. `*dst` is the caller's.
    virtual void copyLut(unsigned int** dst) = 0;

    /// Selects the sigmoid window. Deliberately does not make the table stale. The 16-bit map's sigmoid leaves the
    /// table's last entry, for 65535, as it was.
    virtual void enableSigmoid() = 0;

    /// Sets the sigmoid's output depth in bits (initially 12), limited to 0 to 31. Does not make the table stale.
    virtual void setSigmoidBits(int bits) = 0;

    /// Shows the non-linear table's window as 256 even steps instead of through its values. Does not make the table
    /// stale.
    virtual void setExactNonLinearWindow(bool on) = 0;

    /// Returns the shift that brought the non-linear table's values to 8 bits when the table was last built.
    virtual unsigned short getNonLinearShift() = 0;

    /// Returns the 8-bit level of a value of `shift` + 8 bits: through the presentation table, or, without one, its
    /// upper bits.
    virtual unsigned int applyPresentationLut(unsigned int value, unsigned int shift) = 0;
    virtual bool hasPresentationLut() = 0;

    /// Sets two tables of 16 display pixels each, which stay the caller's. `planeColors` is indexed by the top four
    /// bits of a stored value (embedded overlays), `groupColors` by the position of an overlay plane (planes beyond the
    /// sixteenth take the last colour). Null shows no such overlays.
    virtual void setOverlayColors(unsigned int* planeColors, unsigned int* groupColors) = 0;
    virtual std::pair<unsigned int*, unsigned int*> getOverlayColors() = 0;

    /// Returns the table's chunk to the pool. The table becomes stale. May be called from any thread.
    virtual void releaseLut() = 0;

    /// Sets option bits (initially 0): 0x2 forbids mapRaster's accelerated way; the others are stored and have no
    /// effect.
    virtual void setMapFlags(int flags) = 0;
    virtual int getMapFlags() = 0;
};

/// A map of colour channels through byte tables: 0 below the window, 255 above it, 256 even steps inside. Initially the
/// window has centre 2048 and width 2048.
///
/// mapRaster takes every channel of a pixel through the table (a 12-bit channel of 4096 or more takes the last entry)
/// and sets the fourth byte to 0. Where the raster has a circular shutter, it maps the pixels of `segment` from the
/// circle's first to its last intersection with their row, both included, and leaves all others unchanged. Nothing else
/// that the raster has plays a part, nor do the last three arguments. It returns CCS_DONE; or CCS_FAILED after a
/// refusal, which leaves the destination unchanged.
///
/// mergeDIBtoData takes rasters of 32-bit pixels (CCS_RGB8): where the bitmap has 0x00010101 the stored pixel becomes
/// 0, any other value is ORed into it. The last three arguments are not used.
class ZOLWEBCS_API IColorMap : public IMap {
public:
    /// 8-bit map: maps an image onto another of its size, both CCS_RGB8, through one table per channel (red, green and
    /// blue, each with centre 127 and width 256), and sets the fourth byte to 0. Source and destination may be the same
    /// image. Returns CCS_DONE; or CCS_FAILED after a refusal, which changes nothing. One call at a time runs per map.
    /// 12-bit map: does nothing and returns CCS_DONE.
    virtual int mapRasterSeparate(CCsImage& src, CCsImage& dst) = 0;

    /// Reserved: accept any two arguments and do nothing.
    virtual void reserved1(void* first, void* second) = 0;
    virtual void reserved2(void* first, void* second) = 0;
    virtual void reserved3(void* first, void* second) = 0;
};

/// Makes all concrete maps.
class ZOLWEBCS_API MapFactory {
public:
    enum MapType : int { Grey12 = 0, Grey16 = 1, Rgb12 = 2, Rgb8 = 3 };

    /// Returns a new map, which the caller owns and destroys; null for any other number and when memory is exhausted.
    /// Neither is reported.
    static IMap* CreateMap(MapType type);

private:
    MapFactory() = default;
};
