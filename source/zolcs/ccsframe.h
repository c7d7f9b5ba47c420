#pragma once

#include "zolcs/ccsimage.h"
#include "zolcs/ccsrendermodes.h"

class CCs2dTrafo;
class CCsOverlay;
namespace zolcs {
struct ReportSite;
}

/// The display image: 32-bit pixels (CCS_RGB8) that are the bits of a DIB section, placed in a window's client area.
///
/// Resampling writes the pixels; paint and print draw overlays on top and bring the result out. A frame is not valid
/// until an init succeeds; setSize, paint, print and printColor refuse to work before that: they report
/// "Initialization of frame object not performed" and return CCS_INVALID. Otherwise
/// operations return CCS_DONE (255), or CCS_FAILED (0) after a failure, which is reported. For the GUI thread only.
///
/// Positions are client coordinates; right and bottom edges are exclusive. Lines are getPitch() pixels apart: the width
/// rounded up to a multiple of four.
///
/// On mapped memory (see ZolMemMappedManager::setUseMappings) the frame has a GDI bitmap only while it is drawn on; on
/// plain memory the bitmap holds the pixels and lives as long as they do.
class ZOLWEBCS_API CCsFrame : public CCsImage {
public:
    /// Empty: every number 0, not valid.
    CCsFrame();

    /// As empty, with the size that init will give it.
    CCsFrame(int width, int height);

    /// As init with the same arguments; throws the int 0 when that fails.
    CCsFrame(HWND window, int width, int height, int x, int y);

    /// A frame of the same window, place and size with pixels of its own, all zero: neither pixels nor aspect ratio are
    /// copied. The copy of a frame that is not valid reports that. Where memory is exhausted the copy has no pixels.
    CCsFrame(const CCsFrame& other);

    /// Deliberately shallow: header, bitmap and buffer are shared with the source, and both frames would destroy them.
    /// Hold such a copy where its destructor does not run.
    CCsFrame& operator=(const CCsFrame& other);

    /// A copy on the heap that belongs to the caller; null when memory is exhausted.
    CCsFrame* NewInstance() override;

    ~CCsFrame() override;

    /// As CCsImage's, after GDI has finished what it was told to draw here.
    unsigned char* getOrigin() override;

    /// The bitmap, to be selected into a memory device context; made anew after unmapBitmap. It stays the frame's. Null
    /// without pixels.
    virtual HBITMAP getHBitmap();

    /// Asks for a repaint of that part of the window, background left alone; -1 stands for the frame's own number. 255;
    /// or 0, reported with the result as number, when that fails or the frame has no window.
    virtual int invalidate(int areaWidth, int areaHeight, int left, int top);

    /// Draws the overlays into the frame's own pixels and copies what lies in the given area of the client to `dc`. -1
    /// stands for the frame's own number. An area outside the frame is a success, without any drawing.
    ///
    /// The main overlay is drawn in `color` with the font of `dc`, only when it is not transformable and there is a
    /// transformation; then the text overlay in `textColor` with `font`, only when both are given; then the extra
    /// overlay in `textColor`. All with CCS_MODE_SCREEN, the size of the area and an identity as output transformation.
    ///
    /// 255; or 0, reported with the result as number, when the copy fails or there are no pixels.
    virtual int paint(HDC dc, CCsOverlay* overlay, CCs2dTrafo* trafo, unsigned long color, int areaWidth,
                      int areaHeight, int left, int top, CCsOverlay* textOverlay, unsigned long textColor, HFONT font,
                      CCsOverlay* extraOverlay);

    /// New size, place and pixels (all zero); -1 keeps the present number. 255; 0 without a report when there is no
    /// memory for that size, as for a negative one: the frame has no pixels then. 0 with a report when GDI refuses the
    /// bitmap, as for a size of 0: the frame can then be drawn on again after another setSize. Validity stays.
    virtual int setSize(int newWidth, int newHeight, int newX, int newY);

    /// Stretches the frame over the page, pageWidth by pageHeight device units at (left, top), as large as it gets with
    /// its larger extent in the larger extent there, then draws the overlays with `mode`. Without a transformation no
    /// overlay is drawn. Overlays are told the area as size and offsets, so that texts lie lower by its top: a page
    /// whose area begins at 0 has them in their place. Text is drawn with `font`, where it is given, in white for
    /// CCS_MODE_PRINTER and in `textColor` otherwise. A width or height below 1 is a success, without any drawing.
    ///
    /// 255; or 0 when the stretch mode cannot be set (reported with the result as number) or no line can be brought out
    /// (reported with -1). Leaves the pixels locked once more.
    virtual int print(HDC dc, RECT area, CCsOverlay* overlay, CCsOverlay* textOverlay, CCs2dTrafo* trafo,
                      unsigned long color, unsigned long textColor, int pageWidth, int pageHeight, int left, int top,
                      HFONT font, int mode);

    /// As print, through a copy of 24 bits a pixel whose channels are deliberately rotated: blue gets green, green gets
    /// red, red gets blue. Overlays are told the size of the printed frame and no offsets; text is drawn only where a
    /// font is given, in white for CCS_MODE_PRINTER and in 0x00FFFF otherwise.
    virtual int printColor(HDC dc, CCsOverlay* overlay, CCsOverlay* textOverlay, CCs2dTrafo* trafo, unsigned long color,
                           int pageWidth, int pageHeight, int left, int top, HFONT font, int mode);

    /// Takes the aspect ratio from the window's device and gets pixels of that size. 255; or 0, reported, and not valid
    /// when there is no device context or no pixels can be had.
    int init(HWND window, int newWidth, int newHeight, int newX, int newY);

    /// As above for a device context, without a window and with the present size.
    int init(HDC dc);

    /// As above without a device: pixels are square.
    int init();

    /// Gives up the bitmap of a frame on mapped memory after drawing; the pixels stay. A frame on plain memory keeps
    /// it.
    void unmapBitmap();

    /// Prints the frame and the overlays with CCS_MODE_BITMAP_PRINTER into a bitmap of dibWidth by dibHeight pixels,
    /// bottom line first, with 32 or 24 bits a pixel, behind a BITMAPINFO in one block. `selectFont`, where it is
    /// given, is the font that overlays find selected. `result` is set in any case and belongs to the caller, who frees
    /// it with delete[] reinterpret_cast<unsigned char*>(result).
    ///
    /// Deliberately only the first dibWidth * dibHeight * 3 bytes of the pixels are brought over, also of 32-bit ones;
    /// the rest is 0.
    ///
    /// 255, also when printing has failed (that is reported; a frame without pixels gives a black bitmap); or 0,
    /// reported, when no bitmap of that size can be made. `result` then holds the header, or null when memory is
    /// exhausted.
    int MakeDIB(BITMAPINFO*& result, CCsOverlay* overlay, CCsOverlay* textOverlay, CCs2dTrafo* trafo, int dibWidth,
                int dibHeight, HFONT selectFont, HFONT textFont, bool thirtyTwoBit, unsigned long color,
                unsigned long textColor);

    /// 1 after a successful init, else 0.
    [[nodiscard]] int valid() const;

protected:
    int x = 0;
    int y = 0;
    HWND hwnd = nullptr;
    BITMAPINFO* wbitmapinfoPtr_ = nullptr;
    HBITMAP hBitmap = nullptr;
    int valid_ = 0;

private:
    void prepareInit_(HWND window);
    int finishInit_(int newWidth, int newHeight, int newX, int newY, const zolcs::ReportSite& failure);
    bool createBitmap_();
    void deleteBitmap_();
};
