// The subset of GDI and USER that the library and its hosts draw with, under Win32's own names, widths and values.
//
// The library and zolview call two thirds of it. The rest is for hosts, which draw on the same device contexts before
// and after the library does: each group says what they need it for.
//
// Types have Win32's widths on every platform: LONG, DWORD, COLORREF and BOOL are 32 bits wide. WCHAR is wchar_t, so
// strings are UTF-32 here and UTF-16 on Windows. Handles are checked: a call that is given a null, deleted or wrong
// handle fails with the value that its Win32 documentation names and changes nothing; no call crashes on a handle.
//
// Functions whose name starts with Zol are this subset's own: what takes the place of a window system and a printer
// driver. Everything else behaves as documented for Win32; comments say only what Win32 leaves open.
#pragma once

#include "platform/compiler.h"

#include <cstddef>
#include <cstdint>

#if defined(ZOLGDI_BUILDING)
#define ZOLGDI_API ZOL_EXPORT
#else
#define ZOLGDI_API ZOL_IMPORT
#endif

// ---------------------------------------------------------------------------------------------------- basic types

using BOOL = int;
using INT = int;
using UINT = unsigned int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using SHORT = std::int16_t;
using LONG = std::int32_t;
using DWORD = std::uint32_t;
using ULONG = std::uint32_t;
using FLOAT = float;
using SIZE_T = std::size_t;
using LONG_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using WCHAR = wchar_t;
using LPWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;
using LPVOID = void*;
using LPCVOID = const void*;
using COLORREF = DWORD;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

// ---------------------------------------------------------------------------------------------------- handles

// NOLINTBEGIN(bugprone-reserved-identifier): Win32's own names.
struct HDC__;
struct HBITMAP__;
struct HPEN__;
struct HBRUSH__;
struct HFONT__;
struct HRGN__;
struct HWND__;
// NOLINTEND(bugprone-reserved-identifier)

using HANDLE = void*;
using HGDIOBJ = void*;
using HDC = HDC__*;
using HBITMAP = HBITMAP__*;
using HPEN = HPEN__*;
using HBRUSH = HBRUSH__*;
using HFONT = HFONT__*;
using HRGN = HRGN__*;
using HWND = HWND__*;

// NOLINTBEGIN(performance-no-int-to-ptr,misc-misplaced-const): values that stand for no object.
/// What file-mapping calls take for "no file: memory only".
inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1));
/// What SelectObject returns when it fails for a region.
inline const HGDIOBJ HGDI_ERROR = reinterpret_cast<HGDIOBJ>(static_cast<LONG_PTR>(-1));
// NOLINTEND(performance-no-int-to-ptr,misc-misplaced-const)

// ---------------------------------------------------------------------------------------------------- records

struct tagPOINT {
    LONG x;
    LONG y;
};
using POINT = tagPOINT;
using LPPOINT = POINT*;

struct tagSIZE {
    LONG cx;
    LONG cy;
};
using SIZE = tagSIZE;
using LPSIZE = SIZE*;

struct tagRECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};
using RECT = tagRECT;
using LPRECT = RECT*;
using LPCRECT = const RECT*;

struct tagRGBQUAD {
    BYTE rgbBlue;
    BYTE rgbGreen;
    BYTE rgbRed;
    BYTE rgbReserved;
};
using RGBQUAD = tagRGBQUAD;

struct tagBITMAPINFOHEADER {
    DWORD biSize;
    LONG biWidth;
    LONG biHeight;  ///< positive: bottom line first in memory; negative: top line first
    WORD biPlanes;
    WORD biBitCount;
    DWORD biCompression;
    DWORD biSizeImage;
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
};
using BITMAPINFOHEADER = tagBITMAPINFOHEADER;

struct tagBITMAPINFO {
    BITMAPINFOHEADER bmiHeader;
    RGBQUAD bmiColors[1];
};
using BITMAPINFO = tagBITMAPINFO;

struct tagBITMAP {
    LONG bmType;
    LONG bmWidth;
    LONG bmHeight;
    LONG bmWidthBytes;
    WORD bmPlanes;
    WORD bmBitsPixel;
    LPVOID bmBits;
};
using BITMAP = tagBITMAP;

struct tagDIBSECTION {
    BITMAP dsBm;
    BITMAPINFOHEADER dsBmih;
    DWORD dsBitfields[3];
    HANDLE dshSection;
    DWORD dsOffset;
};
using DIBSECTION = tagDIBSECTION;

struct tagLOGPEN {
    UINT lopnStyle;
    POINT lopnWidth;
    COLORREF lopnColor;
};
using LOGPEN = tagLOGPEN;

struct tagLOGBRUSH {
    UINT lbStyle;
    COLORREF lbColor;
    UINT_PTR lbHatch;
};
using LOGBRUSH = tagLOGBRUSH;

inline constexpr int LF_FACESIZE = 32;

struct tagLOGFONTW {
    LONG lfHeight;
    LONG lfWidth;
    LONG lfEscapement;
    LONG lfOrientation;
    LONG lfWeight;
    BYTE lfItalic;
    BYTE lfUnderline;
    BYTE lfStrikeOut;
    BYTE lfCharSet;
    BYTE lfOutPrecision;
    BYTE lfClipPrecision;
    BYTE lfQuality;
    BYTE lfPitchAndFamily;
    WCHAR lfFaceName[LF_FACESIZE];
};
using LOGFONTW = tagLOGFONTW;
using LOGFONT = LOGFONTW;

struct tagTEXTMETRICW {
    LONG tmHeight;
    LONG tmAscent;
    LONG tmDescent;
    LONG tmInternalLeading;
    LONG tmExternalLeading;
    LONG tmAveCharWidth;
    LONG tmMaxCharWidth;
    LONG tmWeight;
    LONG tmOverhang;
    LONG tmDigitizedAspectX;
    LONG tmDigitizedAspectY;
    WCHAR tmFirstChar;
    WCHAR tmLastChar;
    WCHAR tmDefaultChar;
    WCHAR tmBreakChar;
    BYTE tmItalic;
    BYTE tmUnderlined;
    BYTE tmStruckOut;
    BYTE tmPitchAndFamily;
    BYTE tmCharSet;
};
using TEXTMETRICW = tagTEXTMETRICW;
using TEXTMETRIC = TEXTMETRICW;

struct tagXFORM {
    FLOAT eM11;
    FLOAT eM12;
    FLOAT eM21;
    FLOAT eM22;
    FLOAT eDx;
    FLOAT eDy;
};
using XFORM = tagXFORM;

struct DOCINFOW {
    int cbSize;
    LPCWSTR lpszDocName;
    LPCWSTR lpszOutput;
    LPCWSTR lpszDatatype;
    DWORD fwType;
};
using DOCINFO = DOCINFOW;

struct SECURITY_ATTRIBUTES;
using LPSECURITY_ATTRIBUTES = SECURITY_ATTRIBUTES*;

// ---------------------------------------------------------------------------------------------------- colours

/// Values beyond a byte are cut to their lowest one.
template <typename Red, typename Green, typename Blue>
constexpr COLORREF RGB(Red red, Green green, Blue blue) {
    return static_cast<DWORD>(static_cast<BYTE>(red)) | (static_cast<DWORD>(static_cast<BYTE>(green)) << 8U) |
           (static_cast<DWORD>(static_cast<BYTE>(blue)) << 16U);
}
constexpr BYTE GetRValue(COLORREF color) { return static_cast<BYTE>(color & 0xFFU); }
constexpr BYTE GetGValue(COLORREF color) { return static_cast<BYTE>((color >> 8U) & 0xFFU); }
constexpr BYTE GetBValue(COLORREF color) { return static_cast<BYTE>((color >> 16U) & 0xFFU); }
inline constexpr COLORREF CLR_INVALID = 0xFFFFFFFFU;

// ---------------------------------------------------------------------------------------------------- constants

inline constexpr DWORD GDI_ERROR = 0xFFFFFFFFU;
inline constexpr int SP_ERROR = -1;

inline constexpr DWORD PAGE_READONLY = 0x02;
inline constexpr DWORD PAGE_READWRITE = 0x04;
inline constexpr DWORD SEC_COMMIT = 0x08000000;
inline constexpr DWORD FILE_MAP_WRITE = 0x0002;
inline constexpr DWORD FILE_MAP_READ = 0x0004;
inline constexpr DWORD FILE_MAP_ALL_ACCESS = 0x000F001F;

inline constexpr DWORD BI_RGB = 0;
inline constexpr DWORD BI_BITFIELDS = 3;
inline constexpr UINT DIB_RGB_COLORS = 0;
inline constexpr UINT DIB_PAL_COLORS = 1;

// Kinds of objects that GetCurrentObject takes.
inline constexpr UINT OBJ_PEN = 1;
inline constexpr UINT OBJ_BRUSH = 2;
inline constexpr UINT OBJ_FONT = 6;
inline constexpr UINT OBJ_BITMAP = 7;

inline constexpr int WHITE_BRUSH = 0;
inline constexpr int LTGRAY_BRUSH = 1;
inline constexpr int GRAY_BRUSH = 2;
inline constexpr int DKGRAY_BRUSH = 3;
inline constexpr int BLACK_BRUSH = 4;
inline constexpr int NULL_BRUSH = 5;
inline constexpr int HOLLOW_BRUSH = NULL_BRUSH;
inline constexpr int WHITE_PEN = 6;
inline constexpr int BLACK_PEN = 7;
inline constexpr int NULL_PEN = 8;
inline constexpr int OEM_FIXED_FONT = 10;
inline constexpr int ANSI_FIXED_FONT = 11;
inline constexpr int ANSI_VAR_FONT = 12;
inline constexpr int SYSTEM_FONT = 13;
inline constexpr int DEVICE_DEFAULT_FONT = 14;
inline constexpr int SYSTEM_FIXED_FONT = 16;
inline constexpr int DEFAULT_GUI_FONT = 17;

inline constexpr int PS_SOLID = 0;
inline constexpr int PS_DASH = 1;
inline constexpr int PS_DOT = 2;
inline constexpr int PS_DASHDOT = 3;
inline constexpr int PS_DASHDOTDOT = 4;
inline constexpr int PS_NULL = 5;
inline constexpr int PS_INSIDEFRAME = 6;

inline constexpr UINT BS_SOLID = 0;
inline constexpr UINT BS_NULL = 1;
inline constexpr UINT BS_HOLLOW = BS_NULL;

inline constexpr int ALTERNATE = 1;
inline constexpr int WINDING = 2;

inline constexpr int TRANSPARENT = 1;
inline constexpr int OPAQUE = 2;

inline constexpr DWORD SRCCOPY = 0x00CC0020;
inline constexpr DWORD SRCPAINT = 0x00EE0086;
inline constexpr DWORD SRCAND = 0x008800C6;
inline constexpr DWORD SRCINVERT = 0x00660046;
inline constexpr DWORD SRCERASE = 0x00440328;
inline constexpr DWORD NOTSRCCOPY = 0x00330008;
inline constexpr DWORD NOTSRCERASE = 0x001100A6;
inline constexpr DWORD MERGECOPY = 0x00C000CA;
inline constexpr DWORD MERGEPAINT = 0x00BB0226;
inline constexpr DWORD PATCOPY = 0x00F00021;
inline constexpr DWORD PATPAINT = 0x00FB0A09;
inline constexpr DWORD PATINVERT = 0x005A0049;
inline constexpr DWORD DSTINVERT = 0x00550009;
inline constexpr DWORD BLACKNESS = 0x00000042;
inline constexpr DWORD WHITENESS = 0x00FF0062;

inline constexpr int BLACKONWHITE = 1;
inline constexpr int WHITEONBLACK = 2;
inline constexpr int COLORONCOLOR = 3;
inline constexpr int HALFTONE = 4;

inline constexpr int ERROR = 0;  ///< result of a region call that failed
inline constexpr int NULLREGION = 1;
inline constexpr int SIMPLEREGION = 2;
inline constexpr int COMPLEXREGION = 3;
inline constexpr int RGN_ERROR = ERROR;
inline constexpr int RGN_AND = 1;
inline constexpr int RGN_OR = 2;
inline constexpr int RGN_XOR = 3;
inline constexpr int RGN_DIFF = 4;
inline constexpr int RGN_COPY = 5;

inline constexpr int GM_COMPATIBLE = 1;
inline constexpr int GM_ADVANCED = 2;
inline constexpr int MM_TEXT = 1;
inline constexpr int MM_LOMETRIC = 2;
inline constexpr int MM_HIMETRIC = 3;
inline constexpr int MM_LOENGLISH = 4;
inline constexpr int MM_HIENGLISH = 5;
inline constexpr int MM_TWIPS = 6;
inline constexpr int MM_ISOTROPIC = 7;
inline constexpr int MM_ANISOTROPIC = 8;
inline constexpr DWORD MWT_IDENTITY = 1;
inline constexpr DWORD MWT_LEFTMULTIPLY = 2;
inline constexpr DWORD MWT_RIGHTMULTIPLY = 3;

inline constexpr int FW_DONTCARE = 0;
inline constexpr int FW_NORMAL = 400;
inline constexpr int FW_BOLD = 700;
inline constexpr DWORD ANSI_CHARSET = 0;
inline constexpr DWORD DEFAULT_CHARSET = 1;
inline constexpr DWORD SYMBOL_CHARSET = 2;
inline constexpr DWORD SHIFTJIS_CHARSET = 128;
inline constexpr DWORD HANGUL_CHARSET = 129;
inline constexpr DWORD GB2312_CHARSET = 134;
inline constexpr DWORD CHINESEBIG5_CHARSET = 136;
inline constexpr DWORD GREEK_CHARSET = 161;
inline constexpr DWORD TURKISH_CHARSET = 162;
inline constexpr DWORD HEBREW_CHARSET = 177;
inline constexpr DWORD ARABIC_CHARSET = 178;
inline constexpr DWORD BALTIC_CHARSET = 186;
inline constexpr DWORD RUSSIAN_CHARSET = 204;
inline constexpr DWORD THAI_CHARSET = 222;
inline constexpr DWORD EASTEUROPE_CHARSET = 238;
inline constexpr DWORD OUT_DEFAULT_PRECIS = 0;
inline constexpr DWORD CLIP_DEFAULT_PRECIS = 0;
inline constexpr DWORD DEFAULT_QUALITY = 0;
inline constexpr DWORD DRAFT_QUALITY = 1;
inline constexpr DWORD PROOF_QUALITY = 2;
inline constexpr DWORD NONANTIALIASED_QUALITY = 3;
inline constexpr DWORD ANTIALIASED_QUALITY = 4;
inline constexpr DWORD CLEARTYPE_QUALITY = 5;
inline constexpr DWORD DEFAULT_PITCH = 0;
inline constexpr DWORD FIXED_PITCH = 1;
inline constexpr DWORD VARIABLE_PITCH = 2;
inline constexpr DWORD FF_DONTCARE = 0 << 4;
inline constexpr DWORD FF_ROMAN = 1 << 4;
inline constexpr DWORD FF_SWISS = 2 << 4;
inline constexpr DWORD FF_MODERN = 3 << 4;
inline constexpr BYTE TMPF_FIXED_PITCH = 0x01;  ///< set when the pitch is variable, misleading as the name is
inline constexpr BYTE TMPF_VECTOR = 0x02;
inline constexpr BYTE TMPF_TRUETYPE = 0x04;

// Indices of GetDeviceCaps.
inline constexpr int DRIVERVERSION = 0;
inline constexpr int TECHNOLOGY = 2;
inline constexpr int HORZSIZE = 4;
inline constexpr int VERTSIZE = 6;
inline constexpr int HORZRES = 8;
inline constexpr int VERTRES = 10;
inline constexpr int BITSPIXEL = 12;
inline constexpr int PLANES = 14;
inline constexpr int NUMCOLORS = 24;
inline constexpr int RASTERCAPS = 38;
inline constexpr int ASPECTX = 40;
inline constexpr int ASPECTY = 42;
inline constexpr int ASPECTXY = 44;
inline constexpr int LOGPIXELSX = 88;
inline constexpr int LOGPIXELSY = 90;
inline constexpr int PHYSICALWIDTH = 110;
inline constexpr int PHYSICALHEIGHT = 111;
inline constexpr int PHYSICALOFFSETX = 112;
inline constexpr int PHYSICALOFFSETY = 113;
inline constexpr int SCALINGFACTORX = 114;
inline constexpr int SCALINGFACTORY = 115;
inline constexpr int DT_RASDISPLAY = 1;
inline constexpr int DT_RASPRINTER = 2;
inline constexpr int RC_BITBLT = 0x0001;
inline constexpr int RC_DI_BITMAP = 0x0080;
inline constexpr int RC_DIBTODEV = 0x0200;
inline constexpr int RC_STRETCHBLT = 0x0800;
inline constexpr int RC_STRETCHDIB = 0x2000;

// ---------------------------------------------------------------------------------------------------- file mappings

/// A memory mapping of maximumSizeHigh * 2^32 + maximumSizeLow bytes, zeroed. Only memory mappings are supported:
/// `file` must be INVALID_HANDLE_VALUE, `protect` PAGE_READWRITE (SEC_COMMIT may be added), `name` and `security` null.
/// Null on failure, also for a size of 0 and when memory is exhausted.
ZOLGDI_API HANDLE CreateFileMappingW(HANDLE file, LPSECURITY_ATTRIBUTES security, DWORD protect, DWORD maximumSizeHigh,
                                     DWORD maximumSizeLow, LPCWSTR name);
/// The view stays good until UnmapViewOfFile, also when the mapping's handle is closed before. `offset` must be a
/// multiple of 65536; `byteCount` 0 means up to the end.
ZOLGDI_API LPVOID MapViewOfFile(HANDLE mapping, DWORD access, DWORD offsetHigh, DWORD offsetLow, SIZE_T byteCount);
ZOLGDI_API BOOL UnmapViewOfFile(LPCVOID address);
ZOLGDI_API BOOL CloseHandle(HANDLE handle);

// ---------------------------------------------------------------------------------------------------- objects

/// A bitmap of 24 or 32 bits a pixel (BI_RGB) whose pixels the caller can reach. With `section` the pixels live in that
/// mapping from `offset` (a multiple of 4) on; otherwise they are the bitmap's own, zeroed. Rows start at multiples of
/// four bytes. Null, with *bits null, for sizes that are zero, negative (a negative biHeight is a top-down bitmap) or
/// do not fit the mapping or memory, and for other formats. `dc` is used by palettes only and may be null.
ZOLGDI_API HBITMAP CreateDIBSection(HDC dc, const BITMAPINFO* info, UINT usage, LPVOID* bits, HANDLE section,
                                    DWORD offset);
/// Fails for a bitmap that is selected into a device context; succeeds without effect for a stock object. A pen, brush
/// or font that is still selected goes when it is deselected.
ZOLGDI_API BOOL DeleteObject(HGDIOBJ object);
ZOLGDI_API int GetObjectW(HGDIOBJ object, int byteCount, LPVOID record);
inline int GetObject(HGDIOBJ object, int byteCount, LPVOID record) { return GetObjectW(object, byteCount, record); }
ZOLGDI_API HGDIOBJ GetStockObject(int index);
ZOLGDI_API HFONT CreateFontIndirectW(const LOGFONTW* logFont);
ZOLGDI_API HFONT CreateFontW(int height, int width, int escapement, int orientation, int weight, DWORD italic,
                             DWORD underline, DWORD strikeOut, DWORD charSet, DWORD outPrecision, DWORD clipPrecision,
                             DWORD quality, DWORD pitchAndFamily, LPCWSTR faceName);
/// Living objects made by Create calls, device contexts included and stock objects not: 0 when nothing leaks.
ZOLGDI_API unsigned int ZolGdiObjectCount();

// ---------------------------------------------------------------------------------------------------- device contexts

// Overlays are drawn on the host's own device context, and texts leave their colour and background mode there: hosts
// read what is in force with the Get calls and put it back. World transformations, mapping modes and origins let a host
// that prints lay out several images on one page.

/// A device context in memory with the metrics of `dc` (null: of the screen) and a bitmap of one pixel, on which
/// nothing can be drawn.
ZOLGDI_API HDC CreateCompatibleDC(HDC dc);
/// Fails for a window's device context: release that.
ZOLGDI_API BOOL DeleteDC(HDC dc);
ZOLGDI_API int GetDeviceCaps(HDC dc, int index);
/// For a pen, brush, font or bitmap: the object that was selected before. For a region: its complexity after it became
/// the clip region. Null on failure. A bitmap can be selected into one memory device context at a time.
ZOLGDI_API HGDIOBJ SelectObject(HDC dc, HGDIOBJ object);
ZOLGDI_API HGDIOBJ GetCurrentObject(HDC dc, UINT kind);
ZOLGDI_API int SaveDC(HDC dc);
ZOLGDI_API BOOL RestoreDC(HDC dc, int saved);
ZOLGDI_API BOOL GdiFlush();

ZOLGDI_API COLORREF SetTextColor(HDC dc, COLORREF color);
ZOLGDI_API COLORREF GetTextColor(HDC dc);
ZOLGDI_API COLORREF SetBkColor(HDC dc, COLORREF color);
ZOLGDI_API COLORREF GetBkColor(HDC dc);
ZOLGDI_API int SetBkMode(HDC dc, int mode);
ZOLGDI_API int GetBkMode(HDC dc);
ZOLGDI_API int SetPolyFillMode(HDC dc, int mode);
ZOLGDI_API int GetPolyFillMode(HDC dc);
/// Stretched copies take the nearest pixel in every mode (that of COLORONCOLOR).
ZOLGDI_API int SetStretchBltMode(HDC dc, int mode);
ZOLGDI_API int GetStretchBltMode(HDC dc);

ZOLGDI_API int SetGraphicsMode(HDC dc, int mode);
ZOLGDI_API int GetGraphicsMode(HDC dc);
ZOLGDI_API BOOL SetWorldTransform(HDC dc, const XFORM* transform);
ZOLGDI_API BOOL GetWorldTransform(HDC dc, XFORM* transform);
ZOLGDI_API BOOL ModifyWorldTransform(HDC dc, const XFORM* transform, DWORD mode);
ZOLGDI_API int SetMapMode(HDC dc, int mode);
ZOLGDI_API int GetMapMode(HDC dc);
ZOLGDI_API BOOL SetViewportOrgEx(HDC dc, int x, int y, LPPOINT previous);
ZOLGDI_API BOOL GetViewportOrgEx(HDC dc, LPPOINT origin);
ZOLGDI_API BOOL SetWindowOrgEx(HDC dc, int x, int y, LPPOINT previous);
ZOLGDI_API BOOL GetWindowOrgEx(HDC dc, LPPOINT origin);
ZOLGDI_API BOOL SetViewportExtEx(HDC dc, int x, int y, LPSIZE previous);
ZOLGDI_API BOOL SetWindowExtEx(HDC dc, int x, int y, LPSIZE previous);

// Clipping keeps a host's drawing within the area to be painted again, and away from other parts of its window.

ZOLGDI_API int SelectClipRgn(HDC dc, HRGN region);
ZOLGDI_API int IntersectClipRect(HDC dc, int left, int top, int right, int bottom);
ZOLGDI_API int GetClipBox(HDC dc, LPRECT box);  ///< in logical coordinates; its top is the upper edge's

// ---------------------------------------------------------------------------------------------------- copies of pixels

// Between DIBs of 32 bits, SRCCOPY copies all four bytes of a pixel. A pixel of 24 bits that is copied to one of 32
// bits brings 0 as the fourth byte, and so does everything that draws with a pen, a brush or a text colour; BLACKNESS
// writes 0 to all four bytes and WHITENESS 255. StretchBlt is for hosts that show a frame's bitmap enlarged.

ZOLGDI_API BOOL BitBlt(HDC dc, int x, int y, int width, int height, HDC source, int sourceX, int sourceY, DWORD rop);
ZOLGDI_API BOOL StretchBlt(HDC dc, int x, int y, int width, int height, HDC source, int sourceX, int sourceY,
                           int sourceWidth, int sourceHeight, DWORD rop);
ZOLGDI_API BOOL PatBlt(HDC dc, int x, int y, int width, int height, DWORD rop);
/// Extents of opposite sign mirror the copy. `sourceY` counts from the bottom row upward, but from the top row downward
/// in a top-down DIB copied unstretched from its origin, or not just copied. The DIB's number of rows, 0 on failure.
ZOLGDI_API int StretchDIBits(HDC dc, int x, int y, int width, int height, int sourceX, int sourceY, int sourceWidth,
                             int sourceHeight, const void* bits, const BITMAPINFO* info, UINT usage, DWORD rop);

// ---------------------------------------------------------------------------------------------------- shapes

/// Pens of width 0 or 1 draw one pixel, and only they have dashes; wider ones have round ends and joins.
ZOLGDI_API HPEN CreatePen(int style, int width, COLORREF color);
ZOLGDI_API HPEN CreatePenIndirect(const LOGPEN* pen);
ZOLGDI_API HBRUSH CreateSolidBrush(COLORREF color);

ZOLGDI_API BOOL MoveToEx(HDC dc, int x, int y, LPPOINT previous);
ZOLGDI_API BOOL GetCurrentPositionEx(HDC dc, LPPOINT position);
ZOLGDI_API BOOL LineTo(HDC dc, int x, int y);
ZOLGDI_API BOOL Polyline(HDC dc, const POINT* points, int count);
ZOLGDI_API BOOL Polygon(HDC dc, const POINT* points, int count);
ZOLGDI_API BOOL PolyBezier(HDC dc, const POINT* points, DWORD count);
ZOLGDI_API BOOL Rectangle(HDC dc, int left, int top, int right, int bottom);
ZOLGDI_API BOOL Ellipse(HDC dc, int left, int top, int right, int bottom);

// Between BeginPath and EndPath the calls above and TextOutW draw nothing: their outlines become the device context's
// path, in the transformation of the time of the call. What draws the path consumes it and fails where there is none.
// Copies of pixels and painted regions take no part: they are drawn at once. SaveDC does not keep a path.
//
// The library fills smooth outlines as paths, zolview draws the halos of letters with them, and hosts draw their own
// overlays in the same way, with closed figures and without an outline, too.

/// Discards a complete path; within a bracket it changes nothing.
ZOLGDI_API BOOL BeginPath(HDC dc);
ZOLGDI_API BOOL EndPath(HDC dc);
ZOLGDI_API BOOL AbortPath(HDC dc);
ZOLGDI_API BOOL CloseFigure(HDC dc);
ZOLGDI_API BOOL StrokePath(HDC dc);
/// Open figures are closed for filling.
ZOLGDI_API BOOL FillPath(HDC dc);
/// Open figures are closed, the outline included.
ZOLGDI_API BOOL StrokeAndFillPath(HDC dc);

// ---------------------------------------------------------------------------------------------------- regions

// The library paints handles as regions. Hosts collect the areas to be painted again in them (see CCsRegion), ask which
// part of a window a pointer is in, and fill the rest of a window, where no image is, with a brush of their own.

ZOLGDI_API HRGN CreateRectRgn(int left, int top, int right, int bottom);
ZOLGDI_API HRGN CreateRectRgnIndirect(const RECT* rect);
ZOLGDI_API int CombineRgn(HRGN destination, HRGN first, HRGN second, int mode);
ZOLGDI_API int OffsetRgn(HRGN region, int dx, int dy);
ZOLGDI_API int GetRgnBox(HRGN region, LPRECT box);
ZOLGDI_API BOOL PtInRegion(HRGN region, int x, int y);
ZOLGDI_API BOOL EqualRgn(HRGN first, HRGN second);
ZOLGDI_API BOOL PaintRgn(HDC dc, HRGN region);
ZOLGDI_API BOOL FillRgn(HDC dc, HRGN region, HBRUSH brush);
ZOLGDI_API int FillRect(HDC dc, const RECT* rect, HBRUSH brush);

ZOLGDI_API BOOL SetRect(LPRECT rect, int left, int top, int right, int bottom);
ZOLGDI_API BOOL SetRectEmpty(LPRECT rect);
ZOLGDI_API BOOL IsRectEmpty(const RECT* rect);
ZOLGDI_API BOOL PtInRect(const RECT* rect, POINT point);
ZOLGDI_API BOOL IntersectRect(LPRECT out, const RECT* first, const RECT* second);

// ---------------------------------------------------------------------------------------------------- text

/// Text is drawn from its upper left corner. Pixels are covered wholly or not at all unless the font asks for
/// ANTIALIASED_QUALITY or CLEARTYPE_QUALITY: what is burnt into an image must have exactly the colour asked for.
ZOLGDI_API BOOL TextOutW(HDC dc, int x, int y, LPCWSTR text, int length);
ZOLGDI_API BOOL GetTextExtentPoint32W(HDC dc, LPCWSTR text, int length, LPSIZE size);
ZOLGDI_API BOOL GetTextMetricsW(HDC dc, TEXTMETRICW* metrics);

// ---------------------------------------------------------------------------------------------------- windows

/// What a window shows: pixels of 32 bits (blue, green, red, unused), `stride` bytes from each row to the one below.
struct ZolPixelSurface {
    void* pixels = nullptr;  ///< the uppermost row
    int width = 0;
    int height = 0;
    std::ptrdiff_t stride = 0;
};

/// A window of the host's toolkit. The calls come on the threads that use the window's handle.
class ZOLGDI_API ZolHostWindow {
public:
    virtual ~ZolHostWindow();

    /// Width and height of what can be drawn on, in pixels.
    virtual SIZE clientSize() = 0;
    /// The pixels to draw on, good until the device context that asked for them is released. Null pixels: draw nothing.
    virtual ZolPixelSurface surface() = 0;
    /// Drawing has ended: show the surface.
    virtual void present() = 0;
    /// An area of the client must be painted again, some time; the host then paints as it likes.
    virtual void invalidate(const RECT& area) = 0;

    /// The window on its screen, frame included. By default the client area at the origin.
    virtual RECT windowRect();
    /// Pixels per inch.
    virtual int dpi() { return 96; }
};

// Handles of windows come from the host here. It asks with IsWindow whether one that it has kept is still good.

/// The handle by which calls know the host's window, which must live until the handle is destroyed. Null on failure.
ZOLGDI_API HWND ZolCreateHostWindow(ZolHostWindow* window);
/// Device contexts of the window draw nothing from now on; they are still to be released. FALSE for a wrong handle.
ZOLGDI_API BOOL ZolDestroyHostWindow(HWND window);

/// A device context for the window's client area (null: the screen's, on which nothing can be drawn).
ZOLGDI_API HDC GetDC(HWND window);
/// Gives the device context back, which presents what was drawn. 1, or 0 when it is not this window's.
ZOLGDI_API int ReleaseDC(HWND window, HDC dc);
/// A null rectangle means the whole client area. `erase` is not interpreted: hosts paint everything. Nothing happens
/// for an empty area.
ZOLGDI_API BOOL InvalidateRect(HWND window, const RECT* area, BOOL erase);
ZOLGDI_API BOOL GetClientRect(HWND window, LPRECT rect);
ZOLGDI_API BOOL GetWindowRect(HWND window, LPRECT rect);
ZOLGDI_API BOOL IsWindow(HWND window);

// ---------------------------------------------------------------------------------------------------- printing

/// A printer that writes a PDF file. The page has the given size; one device unit is one dot at `dpi` dots per inch.
/// `path` is UTF-8 and is opened by StartDocW. Null for sizes of less than a dot or beyond 32767 dots or for a dpi
/// that is not from 36 to 9600.
ZOLGDI_API HDC ZolCreatePdfPrinterDC(const char* path, double pageWidthMillimetres, double pageHeightMillimetres,
                                     int dpi);
/// Begins the document (one for each device context): a positive number, or SP_ERROR when the file cannot be opened.
/// The document's name becomes the title; lpszOutput, if given, replaces the path.
ZOLGDI_API int StartDocW(HDC dc, const DOCINFOW* info);
/// Drawing is possible between StartPage and EndPage only. Positive, or not positive on failure.
ZOLGDI_API int StartPage(HDC dc);
ZOLGDI_API int EndPage(HDC dc);
/// Completes the file; SP_ERROR when it could not be written in full.
ZOLGDI_API int EndDoc(HDC dc);
/// For hosts whose user cancels: ends the document and removes the file. A device context that is deleted before EndDoc
/// does the same.
ZOLGDI_API int AbortDoc(HDC dc);
