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
/// Reached through its virtual table only: the order of the operations is part of the contract. Results are
/// CCS_DONE (255), CCS_FAILED (0: refused input) and CCS_MISSING (1: a missing table or exhausted memory), unless an
/// operation says otherwise; what is refused has been reported through CCsError and leaves the map as it was. Setters
/// are not locked: do not reconfigure a map while another thread maps through it.
class ZOLWEBCS_API IMap {
public:
    IMap() = default;
    /// There is nothing to copy.
    IMap(const IMap&) = default;
    IMap& operator=(const IMap&) = default;

    /// Grey maps: the palette of 256 display pixels through which levels are shown; it stays the caller's and must live
    /// as long as tables are built from it. The table becomes stale. Null removes it. Colour maps ignore it.
    virtual void setColorMapIndex(CCsColorMapT* colorMap) = 0;

    /// Maps a whole raster of the map's own type onto a CCS_RGB8 image of the same size, pixel by pixel, with the
    /// raster's overlay planes and shutters.
    ///
    /// Grey maps first fill the destination with the shutter's presentation value (see
    /// CCsImageUtils::fillDisplayedRasterWithShutterPresentationValue), then write every pixel of `segment`, in
    /// display coordinates with right and bottom exclusive, clipped to the images. A pixel shows the first of: the
    /// colour of the overlay plane that has a bit there; the colour of the stored value's top four bits where the
    /// raster carries embedded overlays (12-bit map); 0 where `pixelPadding` has a bit (one bit per pixel, rows without
    /// padding, null for none; the first pixel is never padding); the shutter's presentation value where a shutter
    /// hides it; the table's entry. Overlays are shown while the map is enabled and their colour table is set.
    ///
    /// `wholeImageAllowed` permits the accelerated way for rasters without overlays, shutters and padding; it differs
    /// in one thing, that the 12-bit map shows a stored 65535 as the last entry of its memory, which no setting
    /// reaches. `trafo` (may be null) says where the presentation value goes. Both images are locked for the call.
    ///
    /// Grey maps: CCS_DONE, or CCS_INVALID (2) after a refusal (another type or size, no table, no pixel memory,
    /// exhausted memory), which leaves the destination as it was, unless memory runs out while rows are being mapped.
    /// One call at a time runs per map; its rows run on several threads.
    ///
    /// Colour maps take every channel of a pixel through the table (a 12-bit channel of 4096 and above takes the last
    /// entry) and set the fourth byte to 0. They map the pixels of `segment` that lie, with a circular shutter, between
    /// the circle's intersections with their row, both included; all others stay as they are, and nothing else that the
    /// raster carries and none of the last three arguments plays a part. 255, or 0 after a refusal, which leaves the
    /// destination as it was.
    virtual int mapRaster(CCsRaster& src, CCsImage& dst, RECT segment, bool wholeImageAllowed,
                          unsigned char* pixelPadding, CCs2dTrafo* trafo) = 0;

    /// The table, built first when a setting has made it stale; null when it cannot be built, or in a clone that has
    /// had no colour map yet. It stays the map's and is good until the next setter, releaseLut or destruction.
    /// Grey maps: 4096 (12-bit) or 65536 (16-bit) 32-bit display pixels by stored value.
    /// Colour maps: 4096 (12-bit) or 256 (8-bit) bytes by the value of a channel.
    virtual void* getLut() = 0;

    /// Sets the window over stored values. Any numbers are taken; a width below 1 is refused when a table is built.
    /// Grey maps: the table and the windowed non-linear table become stale. Of the colour maps only the 8-bit one's
    /// table becomes stale: the 12-bit map deliberately keeps a table that is built, and its clones show the new
    /// window. 255.
    virtual int setWindow(unsigned int centre, int width) = 0;

    /// Burns a rendered 32-bit bitmap into the raster's stored values; uses no state of the map. The bitmap's pixels
    /// follow its 40-byte header without gaps, top row first; what of the raster lies beyond them stays as it is. The
    /// raster is unlocked afterwards. 255; 0 for a raster of another pixel size, a null bitmap or a raster without
    /// memory, which change nothing.
    ///
    /// Grey maps, with mask = (2 << bits) - 1 in 16 bits and maximum = 255 for a depth of 8, else mask, but 0 for no
    /// bits: a bitmap pixel 0x00010101 gives the blank value; then, unless bits is 0, a stored value beyond mask
    /// becomes ink; 0x00FFFF00 gives ink, any other non-zero pixel half of it. Blank is the maximum and ink 0 when
    /// `blankToMax` is set, the other way round otherwise.
    ///
    /// Colour maps, for 32-bit rasters (CCS_RGB8): a bitmap pixel 0x00010101 clears the stored one, any other is ORed
    /// into it; the last three arguments are not used.
    virtual int mergeDIBtoData(CCsRaster& raster, BITMAPINFO* dib, unsigned int depth, int bits, bool blankToMax) = 0;

    /// A new map of the same class, which the caller owns, with copies of all owned tables; null when memory is
    /// exhausted. A grey map's clone starts without colour map and table and is usable after setColorMapIndex; that of
    /// the 12-bit colour map builds its table anew.
    virtual IMap* clone() = 0;

    virtual ~IMap();
};

/// A map of grey values through one table of 32-bit display pixels.
///
/// Levels 0 to 255 of the window, passed through what is set of a sigmoid, a presentation table, a non-linear table and
/// an index remap, choose display pixels from the colour map.
class ZOLWEBCS_API IGreyMap : public IMap {
public:
    int mergeDIBtoData(CCsRaster& raster, BITMAPINFO* dib, unsigned int depth, int bits, bool blankToMax) override;

    /// Takes a chunk for the table if none is held; it starts as zeroes, and the table as stale. 255, or 1 when there
    /// is no chunk (logged as "zolcs - E", not reported). May be called from any thread.
    virtual int allocateLut() = 0;

    /// Copies a non-linear table of `count` values, of which the first is for the stored value `firstMapped`, and
    /// switches it on; `exact` is as setExactNonLinearWindow. A count below 1 stores a single entry 0 and reads
    /// nothing. 255. 1 when memory is exhausted: there is no non-linear table then. 0 for null values, which changes
    /// nothing.
    virtual int setNonLinearLut(const unsigned short* values, unsigned int firstMapped, int count, bool exact) = 0;

    /// Copies a table of 256 bytes from windowed level to palette index and switches it on; the table becomes stale.
    /// Null changes nothing.
    virtual void setIndexRemap(const unsigned char* table) = 0;

    /// Copies a presentation table and switches it on; parameters and results as setNonLinearLut. Deliberately does not
    /// make the table stale: set the window afterwards. The 12-bit map spreads the window, and the non-linear table's
    /// values, over the whole of it; the 16-bit map indexes it with the stored value (its last entry serves where it is
    /// too short) and shows a non-linear table without it.
    virtual int setPresentationLut(const unsigned short* values, unsigned int firstMapped, int count) = 0;

    /// The non-linear table resampled to the window, from the first stored value inside it, built first when stale;
    /// with `unwindowed`, and while the exact window is on, the table as it was given. The values stay the map's and
    /// are good until the next setter. Each of the three results may be null. 255; 0 when the windowed table cannot be
    /// built, which leaves them unset.
    virtual int getWindowedNonLinearLut(unsigned short** values, unsigned int* first, unsigned int* count,
                                        bool unwindowed) = 0;

    /// Whether overlays are shown (true to begin with). Switching off makes the table stale, switching on does not.
    virtual void setEnabled(bool on) = 0;
    virtual bool isEnabled() = 0;

    /// Switches the non-linear table off but keeps it. Deliberately does not make the table stale.
    virtual void clearNonLinearLut() = 0;

    /// Copies the table's whole memory (0x40000 bytes, built first when stale) to `*dst`, then its first 0x1000 bytes
    /// to the byte offsets 0x4000, 0x8000, ... 0x3C000. Where no table can be built, all bytes are set to zero.
    virtual void copyLut(unsigned int** dst) = 0;

    /// Selects the sigmoid window. Deliberately does not make the table stale. The 16-bit map's sigmoid leaves the
    /// table's last entry, for 65535, as it was.
    virtual void enableSigmoid() = 0;

    /// Output depth of the sigmoid in bits (12 to begin with), limited to 0 to 31. Does not make the table stale.
    virtual void setSigmoidBits(int bits) = 0;

    /// Shows the non-linear table's window as 256 even steps instead of through its values. Does not make the table
    /// stale.
    virtual void setExactNonLinearWindow(bool on) = 0;

    /// The shift that brought the non-linear table's values to 8 bits when the table was last built.
    virtual unsigned short getNonLinearShift() = 0;

    /// The 8-bit level of a value of `shift` + 8 bits: through the presentation table, or without one its upper bits.
    virtual unsigned int applyPresentationLut(unsigned int value, unsigned int shift) = 0;
    virtual bool hasPresentationLut() = 0;

    /// Two tables of 16 display pixels, which stay the caller's: for embedded overlay bits by the top four bits of a
    /// stored value, and for overlay planes by their position (later ones take the last). Null shows none.
    virtual void setOverlayColors(unsigned int* planeColors, unsigned int* groupColors) = 0;
    virtual std::pair<unsigned int*, unsigned int*> getOverlayColors() = 0;

    /// Gives the table's chunk back; the table becomes stale. May be called from any thread.
    virtual void releaseLut() = 0;

    /// Option bits (0 to begin with): 0x2 forbids mapRaster's accelerated way; others are kept and mean nothing.
    virtual void setMapFlags(int flags) = 0;
    virtual int getMapFlags() = 0;
};

/// A map of colour channels through byte tables: 0 below the window, 255 above it, 256 even steps inside. The window is
/// centre 2048 and width 2048 to begin with.
class ZOLWEBCS_API IColorMap : public IMap {
public:
    /// 8-bit map: maps an image onto another of its size, both CCS_RGB8, through one table for each channel (red, green
    /// and blue, each with centre 127 and width 256), and sets the fourth byte to 0; source and destination may be the
    /// same image. 255; 0 after a refusal, which changes nothing. One call at a time runs per map. 12-bit map: does
    /// nothing; 255.
    virtual int mapRasterSeparate(CCsImage& src, CCsImage& dst) = 0;

    /// Take any two arguments and do nothing.
    virtual void reserved1(void* first, void* second) = 0;
    virtual void reserved2(void* first, void* second) = 0;
    virtual void reserved3(void* first, void* second) = 0;
};

/// The one source of concrete maps.
class ZOLWEBCS_API MapFactory {
public:
    enum MapType : int { Grey12 = 0, Grey16 = 1, Rgb12 = 2, Rgb8 = 3 };

    /// A new map that the caller owns and destroys; null for any other number and when memory is exhausted, neither of
    /// which is reported.
    static IMap* CreateMap(MapType type);

private:
    MapFactory() = default;
};
