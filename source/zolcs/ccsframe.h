#pragma once

#include "zolcs/ccsimage.h"

class CCs2dTrafo;
class CCsOverlay;

/// The display image: 32-bit pixels that are the bits of a DIB section, placed in a window's client area.
class ZOLWEBCS_API CCsFrame : public CCsImage {
public:
    CCsFrame() = default;
    CCsFrame(int width, int height);
    /// Throws the int 0 when init fails.
    CCsFrame(HWND window, int width, int height, int x, int y);
    /// Copies geometry and gets pixel memory of its own; pixels and aspect ratio are not copied.
    CCsFrame(const CCsFrame& other);
    /// Deliberately shallow: header, bitmap and buffer are shared with the source.
    CCsFrame& operator=(const CCsFrame& other);

    CCsFrame* NewInstance() override;
    ~CCsFrame() override;
    unsigned char* getOrigin() override;
    void unlock() override;
    virtual HBITMAP getHBitmap();
    virtual int invalidate(int width, int height, int x, int y);
    virtual int paint(HDC dc, CCsOverlay* overlay, CCs2dTrafo* trafo, unsigned long color, int width, int height, int x,
                      int y, CCsOverlay* textOverlay, unsigned long textColor, HFONT font, CCsOverlay* extraOverlay);
    virtual int setSize(int width, int height, int x, int y);
    virtual int print(HDC dc, RECT area, CCsOverlay* overlay, CCsOverlay* textOverlay, CCs2dTrafo* trafo,
                      unsigned long color, unsigned long textColor, int width, int height, int x, int y, HFONT font,
                      int mode);
    virtual int printColor(HDC dc, CCsOverlay* overlay, CCsOverlay* textOverlay, CCs2dTrafo* trafo, unsigned long color,
                           int width, int height, int x, int y, HFONT font, int mode);

    int init(HWND window, int width, int height, int x, int y);
    int init(HDC dc);
    int init();
    void unmapBitmap();
    int MakeDIB(BITMAPINFO*& result, CCsOverlay* overlay, CCsOverlay* textOverlay, CCs2dTrafo* trafo, int width,
                int height, HFONT selectFont, HFONT textFont, bool thirtyTwoBit, unsigned long color,
                unsigned long textColor);
    [[nodiscard]] int valid() const;

protected:
    int x = 0;
    int y = 0;
    HWND hwnd = nullptr;
    BITMAPINFO* wbitmapinfoPtr_ = nullptr;
    HBITMAP hBitmap = nullptr;
    int valid_ = 0;
};
