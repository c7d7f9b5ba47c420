#include "support/gdi_recorder.h"

#include "zolwebmlang/zolwebmlang.h"

#if defined(_WIN32)
#include "support/import_table.h"
#else
#include <dlfcn.h>
#endif

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <map>
#include <utility>

namespace zoltest {

/// Puts the doubles where the library finds them, once.
void takePlaces();

namespace {

GdiRecorder* active = nullptr;
std::string lines;
std::map<HANDLE, std::string> names;

template <typename... Numbers>
std::string format(const char* pattern, Numbers... numbers) {
    std::array<char, 256> buffer{};
    std::snprintf(buffer.data(), buffer.size(), pattern, numbers...);
    return buffer.data();
}

void write(const std::string& call) {
    if (active != nullptr) lines += call + '\n';
}

std::string nameOf(HANDLE handle) {
    if (handle == nullptr) return "nothing";
    const auto found = names.find(handle);
    return found != names.end() ? found->second : "unknown object";
}

std::string narrow(const wchar_t* text, int length) {
    std::string out;
    for (int i = 0; i < length; ++i) out += text[i] >= 32 && text[i] < 127 ? static_cast<char>(text[i]) : '?';
    return out;
}

std::string colored(COLORREF color) { return format("0x%06x", color); }

std::string styled(int style) {
    static constexpr std::array<const char*, 7> styles{"solid",        "dash", "dot",        "dash-dot",
                                                       "dash-dot-dot", "null", "insideframe"};
    return style >= 0 && style < 7 ? styles[static_cast<std::size_t>(style)] : format("style-%d", style);
}

std::string listed(const POINT* points, unsigned int count) {
    std::string out;
    for (unsigned int i = 0; i < count; ++i)
        out += format(" (%d %d)", static_cast<int>(points[i].x), static_cast<int>(points[i].y));
    return out;
}

#if !defined(_WIN32)
/// The function of this signature that would be called without the double: the next one of the same name.
template <typename Function>
Function realOf(Function own) {
    void* address = nullptr;
    static_assert(sizeof own >= sizeof address);
    std::memcpy(&address, &own, sizeof address);
    Dl_info info{};
    void* const real = dladdr(address, &info) != 0 ? dlsym(RTLD_NEXT, info.dli_sname) : nullptr;
    if (real == nullptr) std::abort();
    Function out = own;
    std::memcpy(&out, &real, sizeof real);
    return out;
}
#endif

/// Records a call and makes it; where it is meant to fail it gives `failure` instead.
template <typename Result, typename Call>
Result made(const std::string& line, Result failure, const Call& call) {
    const bool fails = active != nullptr && !active->failing.empty() && line.rfind(active->failing, 0) == 0;
    write(fails ? "fail to " + line : line);
    return fails ? failure : call();
}

/// Creates an object under a name and records that.
template <typename Handle, typename Create>
Handle created(const std::string& name, const Create& create) {
    if (active == nullptr) return create();
    if (active->objectsFail) write("fail to create " + name);
    const Handle handle = active->objectsFail ? nullptr : made<Handle>("create " + name, nullptr, create);
    if (handle != nullptr) names[handle] = name;
    return handle;
}

}  // namespace

GdiRecorder::GdiRecorder(HDC dc) {
    takePlaces();
    names.clear();
    lines.clear();
    names[GetCurrentObject(dc, OBJ_PEN)] = "caller's pen";
    names[GetCurrentObject(dc, OBJ_BRUSH)] = "caller's brush";
    names[GetCurrentObject(dc, OBJ_FONT)] = "caller's font";
    names[GetStockObject(HOLLOW_BRUSH)] = "hollow brush";
    active = this;
}

GdiRecorder::~GdiRecorder() { active = nullptr; }

std::string GdiRecorder::take() { return std::exchange(lines, std::string()); }

}  // namespace zoltest

using zoltest::active;
using zoltest::colored;
using zoltest::created;
using zoltest::format;
using zoltest::listed;
using zoltest::made;
using zoltest::nameOf;
using zoltest::narrow;
using zoltest::styled;
using zoltest::write;

// A double has the name of the function whose place it takes where that is enough, and a name of its own on Windows,
// where takePlaces() puts it there.
#if defined(_WIN32)
#define ZOL_NAME(name) recorded##name
#define ZOL_DOUBLE(name) WINAPI ZOL_NAME(name)
#define ZOL_REAL(name) (&::name)

struct RecordedCharsetSupport {
    bool CreateFontForStr(const wchar_t* text, CFont& font, int charsetType, const wchar_t* faceName, int width);
};
using FontMaker = RecordedCharsetSupport;
#else
#define ZOL_NAME(name) name
#define ZOL_DOUBLE(name) ZOL_NAME(name)
#define ZOL_REAL(name) realOf(&name)

using zoltest::realOf;
using FontMaker = ZolCharsetSupport;
#endif

// ---------------------------------------------------------------------------------------------------- objects

HPEN ZOL_DOUBLE(CreatePen)(int style, int width, COLORREF color) {
    static const auto real = ZOL_REAL(CreatePen);
    return created<HPEN>("pen " + styled(style) + format(" %d ", width) + colored(color),
                         // Lines as wide as a continent take Wine minutes; that they were asked for is written down.
                         [&] { return real(style, std::min(width, 1000), color); });
}

HBRUSH ZOL_DOUBLE(CreateSolidBrush)(COLORREF color) {
    static const auto real = ZOL_REAL(CreateSolidBrush);
    return created<HBRUSH>("brush " + colored(color), [&] { return real(color); });
}

HRGN ZOL_DOUBLE(CreateRectRgn)(int left, int top, int right, int bottom) {
    static const auto real = ZOL_REAL(CreateRectRgn);
    return created<HRGN>(format("region %d %d %d %d", left, top, right, bottom),
                         [&] { return real(left, top, right, bottom); });
}

HFONT ZOL_DOUBLE(CreateFontIndirectW)(const LOGFONTW* font) {
    static const auto real = ZOL_REAL(CreateFontIndirectW);
    return created<HFONT>(format("font %d %d", static_cast<int>(font->lfHeight), static_cast<int>(font->lfWeight)),
                          [&] { return real(font); });
}

HBITMAP ZOL_DOUBLE(CreateDIBSection)(HDC dc, const BITMAPINFO* info, UINT usage, LPVOID* bits, HANDLE section,
                                     DWORD offset) {
    static const auto real = ZOL_REAL(CreateDIBSection);
    const BITMAPINFOHEADER& header = info->bmiHeader;
    return created<HBITMAP>(format("bitmap %d %d %d", static_cast<int>(header.biWidth),
                                   static_cast<int>(header.biHeight), static_cast<int>(header.biBitCount)),
                            [&] { return real(dc, info, usage, bits, section, offset); });
}

HDC ZOL_DOUBLE(CreateCompatibleDC)(HDC dc) {
    static const auto real = ZOL_REAL(CreateCompatibleDC);
    const HDC context = created<HDC>("device context", [&] { return real(dc); });
    if (context != nullptr) {
        zoltest::names.emplace(GetCurrentObject(context, OBJ_BITMAP), "first bitmap");
        zoltest::names.emplace(GetCurrentObject(context, OBJ_FONT), "first font");
    }
    return context;
}

BOOL ZOL_DOUBLE(DeleteDC)(HDC dc) {
    static const auto real = ZOL_REAL(DeleteDC);
    write("delete " + nameOf(dc));
    zoltest::names.erase(dc);
    return real(dc);
}

BOOL ZOL_DOUBLE(DeleteObject)(HGDIOBJ object) {
    static const auto real = ZOL_REAL(DeleteObject);
    write("delete " + nameOf(object));
    zoltest::names.erase(object);
    return real(object);
}

HGDIOBJ ZOL_DOUBLE(SelectObject)(HDC dc, HGDIOBJ object) {
    static const auto real = ZOL_REAL(SelectObject);
    return made<HGDIOBJ>("select " + nameOf(object), nullptr, [&] { return real(dc, object); });
}

// ---------------------------------------------------------------------------------------------------- state

int ZOL_DOUBLE(GetDeviceCaps)(HDC dc, int index) {
    static const auto real = ZOL_REAL(GetDeviceCaps);
    return index == LOGPIXELSY && active != nullptr && active->dotsPerInch ? *active->dotsPerInch : real(dc, index);
}

BOOL ZOL_DOUBLE(GetTextMetricsW)(HDC dc, TEXTMETRICW* metrics) {
    static const auto real = ZOL_REAL(GetTextMetricsW);
    const BOOL result = real(dc, metrics);
    if (active != nullptr && active->textHeight) metrics->tmHeight = *active->textHeight;
    return result;
}

BOOL ZOL_DOUBLE(GetTextExtentPoint32W)(HDC dc, LPCWSTR text, int length, LPSIZE size) {
    static const auto real = ZOL_REAL(GetTextExtentPoint32W);
    return made<BOOL>("measure \"" + narrow(text, length) + '"', FALSE, [&] {
        const BOOL result = real(dc, text, length, size);
        if (active != nullptr && active->textExtent) *size = *active->textExtent;
        return result;
    });
}

int ZOL_DOUBLE(SetBkMode)(HDC dc, int mode) {
    static const auto real = ZOL_REAL(SetBkMode);
    write(mode == TRANSPARENT ? "background transparent" : mode == OPAQUE ? "background opaque" : "background ?");
    return real(dc, mode);
}

int ZOL_DOUBLE(SetPolyFillMode)(HDC dc, int mode) {
    static const auto real = ZOL_REAL(SetPolyFillMode);
    write(mode == ALTERNATE ? "fill alternate" : mode == WINDING ? "fill winding" : "fill ?");
    return real(dc, mode);
}

COLORREF ZOL_DOUBLE(SetTextColor)(HDC dc, COLORREF color) {
    static const auto real = ZOL_REAL(SetTextColor);
    write("text colour " + colored(color));
    return real(dc, color);
}

int ZOL_DOUBLE(SaveDC)(HDC dc) {
    static const auto real = ZOL_REAL(SaveDC);
    return made<int>("save", 0, [&] { return real(dc); });
}

BOOL ZOL_DOUBLE(RestoreDC)(HDC dc, int saved) {
    static const auto real = ZOL_REAL(RestoreDC);
    write("restore");
    return real(dc, saved);
}

int ZOL_DOUBLE(SetGraphicsMode)(HDC dc, int mode) {
    static const auto real = ZOL_REAL(SetGraphicsMode);
    write(mode == GM_ADVANCED ? "graphics advanced" : "graphics compatible");
    return real(dc, mode);
}

int ZOL_DOUBLE(SetMapMode)(HDC dc, int mode) {
    static const auto real = ZOL_REAL(SetMapMode);
    write(format("map mode %d", mode));
    return real(dc, mode);
}

BOOL ZOL_DOUBLE(SetViewportOrgEx)(HDC dc, int x, int y, LPPOINT previous) {
    static const auto real = ZOL_REAL(SetViewportOrgEx);
    write(format("viewport origin %d %d", x, y));
    return real(dc, x, y, previous);
}

BOOL ZOL_DOUBLE(SetWorldTransform)(HDC dc, const XFORM* world) {
    static const auto real = ZOL_REAL(SetWorldTransform);
    const auto number = [](FLOAT value) { return static_cast<double>(value) + 0.0; };  // no negative zeros in the text
    write(format("world %.9g %.9g %.9g %.9g %.9g %.9g", number(world->eM11), number(world->eM12), number(world->eM21),
                 number(world->eM22), number(world->eDx), number(world->eDy)));
    return real(dc, world);
}

int ZOL_DOUBLE(SetStretchBltMode)(HDC dc, int mode) {
    static const auto real = ZOL_REAL(SetStretchBltMode);
    return made<int>(format("stretch mode %d", mode), 0, [&] { return real(dc, mode); });
}

// ---------------------------------------------------------------------------------------------------- pixels

BOOL ZOL_DOUBLE(PatBlt)(HDC dc, int x, int y, int width, int height, DWORD operation) {
    static const auto real = ZOL_REAL(PatBlt);
    write(format("pattern %d %d %d %d ", x, y, width, height) +
          (operation == BLACKNESS ? "black" : format("0x%lx", static_cast<unsigned long>(operation))));
    return real(dc, x, y, width, height, operation);
}

BOOL ZOL_DOUBLE(BitBlt)(HDC dc, int x, int y, int width, int height, HDC source, int sourceX, int sourceY,
                        DWORD operation) {
    static const auto real = ZOL_REAL(BitBlt);
    return made<BOOL>(format("copy %d %d %d %d from %d %d", x, y, width, height, sourceX, sourceY), FALSE,
                      [&] { return real(dc, x, y, width, height, source, sourceX, sourceY, operation); });
}

int ZOL_DOUBLE(StretchDIBits)(HDC dc, int x, int y, int width, int height, int sourceX, int sourceY, int sourceWidth,
                              int sourceHeight, const void* bits, const BITMAPINFO* info, UINT usage, DWORD operation) {
    static const auto real = ZOL_REAL(StretchDIBits);
    const std::string line = format("stretch %d %d %d %d from %d %d %d %d", x, y, width, height, sourceX, sourceY,
                                    sourceWidth, sourceHeight) +
                             format(" of %d bits", static_cast<int>(info->bmiHeader.biBitCount));
    return made<int>(line, static_cast<int>(GDI_ERROR), [&] {
        if (active != nullptr && active->linesDone) return *active->linesDone;
        return real(dc, x, y, width, height, sourceX, sourceY, sourceWidth, sourceHeight, bits, info, usage, operation);
    });
}

// ---------------------------------------------------------------------------------------------------- drawing

BOOL ZOL_DOUBLE(MoveToEx)(HDC dc, int x, int y, LPPOINT previous) {
    static const auto real = ZOL_REAL(MoveToEx);
    write(format("move to %d %d", x, y));
    return real(dc, x, y, previous);
}

BOOL ZOL_DOUBLE(LineTo)(HDC dc, int x, int y) {
    static const auto real = ZOL_REAL(LineTo);
    write(format("line to %d %d", x, y));
    return real(dc, x, y);
}

BOOL ZOL_DOUBLE(Polygon)(HDC dc, const POINT* points, int count) {
    static const auto real = ZOL_REAL(Polygon);
    write("polygon" + listed(points, static_cast<unsigned int>(count)));
    return real(dc, points, count);
}

BOOL ZOL_DOUBLE(PolyBezier)(HDC dc, const POINT* points, DWORD count) {
    static const auto real = ZOL_REAL(PolyBezier);
    write("bezier" + listed(points, count));
    return real(dc, points, count);
}

BOOL ZOL_DOUBLE(BeginPath)(HDC dc) {
    static const auto real = ZOL_REAL(BeginPath);
    write("begin path");
    return real(dc);
}

BOOL ZOL_DOUBLE(EndPath)(HDC dc) {
    static const auto real = ZOL_REAL(EndPath);
    write("end path");
    return real(dc);
}

BOOL ZOL_DOUBLE(StrokeAndFillPath)(HDC dc) {
    static const auto real = ZOL_REAL(StrokeAndFillPath);
    write("stroke and fill path");
    return real(dc);
}

BOOL ZOL_DOUBLE(Ellipse)(HDC dc, int left, int top, int right, int bottom) {
    static const auto real = ZOL_REAL(Ellipse);
    write(format("ellipse %d %d %d %d", left, top, right, bottom));
    // Wine writes beyond its buffers for ellipses of millions of pixels.
    constexpr std::int64_t harmless = 100000;
    if (std::int64_t{right} - left > harmless || std::int64_t{bottom} - top > harmless) return TRUE;
    return real(dc, left, top, right, bottom);
}

BOOL ZOL_DOUBLE(PaintRgn)(HDC dc, HRGN region) {
    static const auto real = ZOL_REAL(PaintRgn);
    write("paint " + nameOf(region));
    return real(dc, region);
}

BOOL ZOL_DOUBLE(TextOutW)(HDC dc, int x, int y, LPCWSTR text, int length) {
    static const auto real = ZOL_REAL(TextOutW);
    write(format("text %d %d \"", x, y) + narrow(text, length) + '"');
    return real(dc, x, y, text, length);
}

// ---------------------------------------------------------------------------------------------------- fonts

bool FontMaker::CreateFontForStr(const wchar_t* text, CFont& font, int charsetType, const wchar_t* faceName,
                                 int width) {
    static const auto real = ZOL_REAL(ZolCharsetSupport::CreateFontForStr);
    write("font for \"" + narrow(text, static_cast<int>(std::wcslen(text))) + format("\" type %d face ", charsetType) +
          narrow(faceName, static_cast<int>(std::wcslen(faceName))) + format(" width %d", width));
    if (active == nullptr || !active->hostFont)
        return (reinterpret_cast<ZolCharsetSupport*>(this)->*real)(text, font, charsetType, faceName, width);
    font.DeleteObject();
    if (*active->hostFont == 0) return false;
    LOGFONTW description{};
    description.lfHeight = *active->hostFont;
    description.lfWeight = FW_NORMAL;
    return font.Attach(ZOL_NAME(CreateFontIndirectW)(&description)) != FALSE;
}

// ---------------------------------------------------------------------------------------------------- places

void zoltest::takePlaces() {
#if defined(_WIN32)
    struct Place {
        void* real;
        void* recorded;
    };
    static const bool taken = [] {
        const Place places[] = {
            {addressOf(&::CreatePen), addressOf(&recordedCreatePen)},
            {addressOf(&::CreateSolidBrush), addressOf(&recordedCreateSolidBrush)},
            {addressOf(&::CreateRectRgn), addressOf(&recordedCreateRectRgn)},
            {addressOf(&::CreateFontIndirectW), addressOf(&recordedCreateFontIndirectW)},
            {addressOf(&::CreateDIBSection), addressOf(&recordedCreateDIBSection)},
            {addressOf(&::CreateCompatibleDC), addressOf(&recordedCreateCompatibleDC)},
            {addressOf(&::DeleteDC), addressOf(&recordedDeleteDC)},
            {addressOf(&::DeleteObject), addressOf(&recordedDeleteObject)},
            {addressOf(&::SelectObject), addressOf(&recordedSelectObject)},
            {addressOf(&::GetDeviceCaps), addressOf(&recordedGetDeviceCaps)},
            {addressOf(&::GetTextMetricsW), addressOf(&recordedGetTextMetricsW)},
            {addressOf(&::GetTextExtentPoint32W), addressOf(&recordedGetTextExtentPoint32W)},
            {addressOf(&::SetBkMode), addressOf(&recordedSetBkMode)},
            {addressOf(&::SetPolyFillMode), addressOf(&recordedSetPolyFillMode)},
            {addressOf(&::SetTextColor), addressOf(&recordedSetTextColor)},
            {addressOf(&::SaveDC), addressOf(&recordedSaveDC)},
            {addressOf(&::RestoreDC), addressOf(&recordedRestoreDC)},
            {addressOf(&::SetGraphicsMode), addressOf(&recordedSetGraphicsMode)},
            {addressOf(&::SetMapMode), addressOf(&recordedSetMapMode)},
            {addressOf(&::SetViewportOrgEx), addressOf(&recordedSetViewportOrgEx)},
            {addressOf(&::SetWorldTransform), addressOf(&recordedSetWorldTransform)},
            {addressOf(&::SetStretchBltMode), addressOf(&recordedSetStretchBltMode)},
            {addressOf(&::PatBlt), addressOf(&recordedPatBlt)},
            {addressOf(&::BitBlt), addressOf(&recordedBitBlt)},
            {addressOf(&::StretchDIBits), addressOf(&recordedStretchDIBits)},
            {addressOf(&::MoveToEx), addressOf(&recordedMoveToEx)},
            {addressOf(&::LineTo), addressOf(&recordedLineTo)},
            {addressOf(&::Polygon), addressOf(&recordedPolygon)},
            {addressOf(&::PolyBezier), addressOf(&recordedPolyBezier)},
            {addressOf(&::BeginPath), addressOf(&recordedBeginPath)},
            {addressOf(&::EndPath), addressOf(&recordedEndPath)},
            {addressOf(&::StrokeAndFillPath), addressOf(&recordedStrokeAndFillPath)},
            {addressOf(&::Ellipse), addressOf(&recordedEllipse)},
            {addressOf(&::PaintRgn), addressOf(&recordedPaintRgn)},
            {addressOf(&::TextOutW), addressOf(&recordedTextOutW)},
            {addressOf(&ZolCharsetSupport::CreateFontForStr), addressOf(&RecordedCharsetSupport::CreateFontForStr)}};
        for (const Place& place : places) {
            if (!redirectLibraryImport(place.real, place.recorded)) std::abort();
        }
        return true;
    }();
    static_cast<void>(taken);
#endif
}
