// Widths and places of fields of the Win32 names that the library's interface consists of: the same everywhere, but for
// pointers and for wide characters.
#include "platform/platform.h"

#include <gtest/gtest.h>

#include <cstddef>

namespace {

constexpr std::size_t pointer = sizeof(void*);
static_assert(pointer == 4 || pointer == 8);

static_assert(sizeof(LONG) == 4 && sizeof(DWORD) == 4 && sizeof(UINT) == 4 && sizeof(BOOL) == 4);
static_assert(sizeof(WORD) == 2 && sizeof(BYTE) == 1 && sizeof(COLORREF) == 4);
static_assert(sizeof(HDC) == pointer && sizeof(HWND) == pointer && sizeof(HGDIOBJ) == pointer);
static_assert(sizeof(POINT) == 8 && offsetof(POINT, y) == 4);
static_assert(sizeof(SIZE) == 8 && offsetof(SIZE, cy) == 4);
static_assert(sizeof(RECT) == 16 && offsetof(RECT, top) == 4 && offsetof(RECT, right) == 8);
static_assert(offsetof(RECT, bottom) == 12);
static_assert(sizeof(XFORM) == 24 && offsetof(XFORM, eM22) == 12 && offsetof(XFORM, eDy) == 20);
static_assert(sizeof(RGBQUAD) == 4 && offsetof(RGBQUAD, rgbRed) == 2);
static_assert(sizeof(BITMAPINFOHEADER) == 40 && offsetof(BITMAPINFOHEADER, biBitCount) == 14);
static_assert(offsetof(BITMAPINFOHEADER, biCompression) == 16 && offsetof(BITMAPINFOHEADER, biClrUsed) == 32);
static_assert(sizeof(BITMAPINFO) == 44 && offsetof(BITMAPINFO, bmiColors) == 40);
static_assert(sizeof(BITMAP) == 20 + pointer + (pointer == 8 ? 4 : 0) && offsetof(BITMAP, bmBitsPixel) == 18);
static_assert(offsetof(LOGFONTW, lfWeight) == 16 && offsetof(LOGFONTW, lfCharSet) == 23);
static_assert(offsetof(LOGFONTW, lfFaceName) == 28);
static_assert(sizeof(LOGFONTW) == 28 + LF_FACESIZE * sizeof(wchar_t));
static_assert(sizeof(CPoint) == sizeof(POINT) && sizeof(CSize) == sizeof(SIZE) && sizeof(CRect) == sizeof(RECT));

TEST(Win32Types, ColoursHaveRedInTheLowByte) {
    EXPECT_EQ(RGB(1, 2, 3), 0x030201U);
    EXPECT_EQ(GetRValue(0x030201U), 1);
    EXPECT_EQ(GetGValue(0x030201U), 2);
    EXPECT_EQ(GetBValue(0x030201U), 3);
}

}  // namespace
