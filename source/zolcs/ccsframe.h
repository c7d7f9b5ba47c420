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
/// Resampling writes the pixels; paint and print draw overlays above them and copy the result to a window or page. A
/// frame is not valid until an init succeeds. Before that, setSize, paint, print and printColor report "Initialization
/// of frame object not performed" and return CCS_INVALID. Otherwise operations return CCS_DONE (255), or CCS_FAILED (0)
/// after a failure, which is reported. Only the GUI thread uses a frame.
///
/// Positions are client coordinates; right and bottom edges are exclusive. Rows are getPitch() pixels apart: the width
/// rounded up to a multiple of four.
///
/// On mapped memory (see ZolMemMappedManager::setUseMappings) the frame has a GDI bitmap only while it is drawn on; on
/// plain memory the bitmap holds the pixels and lives as long as they do.
class ZOLWEBCS_API CCsFrame : public CCsImage {
public:
    /// Empty: every number 0, not valid.
    CCsFrame();

    /// An empty frame with the size that init will give it.
    CCsFrame(int width, int height);

    /// As init with the same arguments; throws the int 0 when that fails.
    CCsFrame(HWND window, int width, int height, int x, int y);

    /// Makes a frame of the same window, place and size with pixels of its own, all zero: neither pixels nor aspect
    /// ratio are copied. Copying a frame that is not valid is reported. When memory is exhausted the copy has no
    /// pixels.
    CCsFrame(const CCsFrame& other);

    /// Deliberately shallow: header, bitmap and buffer are shared with the source, and both frames would destroy them.
    /// Hold such a copy where its destructor does not run.
    CCsFrame& operator=(const CCsFrame& other);

    /// Returns a copy on the heap, which the caller owns; null when memory is exhausted.
    CCsFrame* NewInstance() override;

    ~CCsFrame() override;

    /// As CCsImage's, after GDI has finished drawing on the frame.
    unsigned char* getOrigin() override;

    /// Returns the bitmap, to be selected into a memory device context; after unmapBitmap it makes a new one. The
    /// bitmap stays the frame's. Null without pixels.
    virtual HBITMAP getHBitmap();

    /// Asks for a repaint of that part of the window without erasing the background; -1 stands for the frame's own
    /// number. Returns CCS_DONE; or CCS_FAILED, reported with the result as number, when that fails or the frame has no
    /// window.
    virtual int invalidate(int areaWidth, int areaHeight, int left, int top);

    /// Draws the overlays into the frame's own pixels and copies the given area of the client to `dc`. -1 stands for
    /// the frame's own number. An area outside the frame is a success without any drawing.
    ///
    /// Overlays are drawn with CCS_MODE_SCREEN, the size of the area and an identity as output transformation, in this
    /// order:
    /// 1. the main overlay in `color` with the font of `dc`, if it is not transformable and there is a transformation;
    /// 2. the text overlay in `textColor` with `font`, if both are given;
    /// 3. the extra overlay in `textColor`.
    ///
    /// Returns CCS_DONE; or CCS_FAILED, reported with the result as number, when the copy fails or there are no pixels.
    virtual int paint(HDC dc, CCsOverlay* overlay, CCs2dTrafo* trafo, unsigned long color, int areaWidth,
                      int areaHeight, int left, int top, CCsOverlay* textOverlay, unsigned long textColor, HFONT font,
                      CCsOverlay* extraOverlay);

    /// Sets size and place and makes new pixels, all zero; -1 keeps the present number. Validity does not change.
    /// Returns:
    /// - CCS_DONE;
    /// - CCS_FAILED without a report: there is no memory for that size, which includes negative ones; the frame has no
    /// pixels;
    /// - CCS_FAILED with a report: GDI refuses the bitmap, as for a size of 0; the frame can be drawn on again after
    /// another
    ///   setSize.
    virtual int setSize(int newWidth, int newHeight, int newX, int newY);

    /// Stretches the frame over the page, which is pageWidth by pageHeight device units at (left, top), so that the
    /// frame's larger extent fills the page's larger extent; then draws the overlays with `mode`. A width or height
    /// below 1 is a success without any drawing.
    ///
    /// Without a transformation no overlay is drawn. Overlays receive the area as size and offsets, so texts lie lower
    /// by its top: pass an area that begins at 0 to have them in place. Text is drawn with `font`, where it is given,
    /// in white for CCS_MODE_PRINTER and in `textColor` otherwise.
    ///
    /// Returns CCS_DONE; or CCS_FAILED when the stretch mode cannot be set (reported with the result as number) or no
    /// row can be copied (reported with -1). Leaves the pixels locked once more.
    virtual int print(HDC dc, RECT area, CCsOverlay* overlay, CCsOverlay* textOverlay, CCs2dTrafo* trafo,
                      unsigned long color, unsigned long textColor, int pageWidth, int pageHeight, int left, int top,
                      HFONT font, int mode);

    /// As print, through a copy with 24 bits per pixel whose channels are deliberately rotated: blue gets green, green
    /// gets red, red gets blue. Overlays receive the size of the printed frame and no offsets. Text is drawn only where
    /// a font is given, in white for CCS_MODE_PRINTER and in 0x00FFFF otherwise.
    virtual int printColor(HDC dc, CCsOverlay* overlay, CCsOverlay* textOverlay, CCs2dTrafo* trafo, unsigned long color,
                           int pageWidth, int pageHeight, int left, int top, HFONT font, int mode);

    /// Takes the aspect ratio from the window's device and makes pixels of that size. Returns CCS_DONE; or CCS_FAILED,
    /// reported, when there is no device context or no memory for pixels, and the frame is then not valid.
    int init(HWND window, int newWidth, int newHeight, int newX, int newY);

    /// As above for a device context, without a window and with the present size.
    int init(HDC dc);

    /// As above without a device; pixels are square.
    int init();

    /// Releases the bitmap of a frame on mapped memory after drawing; the pixels stay. A frame on plain memory keeps
    /// its bitmap.
    void unmapBitmap();

    /// Prints the frame and the overlays with CCS_MODE_BITMAP_PRINTER into a bitmap of dibWidth by dibHeight pixels,
    /// bottom row first, with 32 or 24 bits per pixel, in one block behind a BITMAPINFO. Overlays find `selectFont`
    /// selected where it is given. `result` is set in any case and belongs to the caller, who frees it with
    /// delete[] reinterpret_cast<unsigned char*>(result).
    ///
    /// Deliberately only the first dibWidth * dibHeight * 3 bytes of the pixels are copied, also of 32-bit ones; the
    /// rest is 0.
    ///
    /// Returns CCS_DONE, also when printing has failed (which is reported; a frame without pixels gives a black
    /// bitmap); or CCS_FAILED, reported, when no bitmap of that size can be made. `result` then holds the header, or
    /// null when memory is exhausted.
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
