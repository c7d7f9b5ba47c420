#include "support/gdi_recorder.h"

#include "zolwebmlang/zolwebmlang.h"

#include <dlfcn.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <map>
#include <utility>

namespace zoltest {

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
    for (unsigned int i = 0; i < count; ++i) out += format(" (%d %d)", points[i].x, points[i].y);
    return out;
}

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

/// Creates an object under a name and records that.
template <typename Handle, typename Create>
Handle created(const std::string& name, const Create& create) {
    if (active == nullptr) return create();
    const bool fails = active->objectsFail;
    write((fails ? "fail to create " : "create ") + name);
    const Handle handle = fails ? nullptr : create();
    if (handle != nullptr) names[handle] = name;
    return handle;
}

}  // namespace

GdiRecorder::GdiRecorder(HDC dc) {
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
using zoltest::nameOf;
using zoltest::narrow;
using zoltest::realOf;
using zoltest::styled;
using zoltest::write;

// ---------------------------------------------------------------------------------------------------- objects

HPEN CreatePen(int style, int width, COLORREF color) {
    static const auto real = realOf(&CreatePen);
    return created<HPEN>("pen " + styled(style) + format(" %d ", width) + colored(color),
                         [&] { return real(style, width, color); });
}

HBRUSH CreateSolidBrush(COLORREF color) {
    static const auto real = realOf(&CreateSolidBrush);
    return created<HBRUSH>("brush " + colored(color), [&] { return real(color); });
}

HRGN CreateRectRgn(int left, int top, int right, int bottom) {
    static const auto real = realOf(&CreateRectRgn);
    return created<HRGN>(format("region %d %d %d %d", left, top, right, bottom),
                         [&] { return real(left, top, right, bottom); });
}

HFONT CreateFontIndirectW(const LOGFONTW* font) {
    static const auto real = realOf(&CreateFontIndirectW);
    return created<HFONT>(format("font %d %d", font->lfHeight, font->lfWeight), [&] { return real(font); });
}

BOOL DeleteObject(HGDIOBJ object) {
    static const auto real = realOf(&DeleteObject);
    write("delete " + nameOf(object));
    zoltest::names.erase(object);
    return real(object);
}

HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) {
    static const auto real = realOf(&SelectObject);
    write("select " + nameOf(object));
    return real(dc, object);
}

// ---------------------------------------------------------------------------------------------------- state

int GetDeviceCaps(HDC dc, int index) {
    static const auto real = realOf(&GetDeviceCaps);
    const bool dots = index == LOGPIXELSX || index == LOGPIXELSY;
    return dots && active != nullptr && active->dotsPerInch ? *active->dotsPerInch : real(dc, index);
}

BOOL GetTextMetricsW(HDC dc, TEXTMETRICW* metrics) {
    static const auto real = realOf(&GetTextMetricsW);
    const BOOL result = real(dc, metrics);
    if (active != nullptr && active->textHeight) metrics->tmHeight = *active->textHeight;
    return result;
}

BOOL GetTextExtentPoint32W(HDC dc, LPCWSTR text, int length, LPSIZE size) {
    static const auto real = realOf(&GetTextExtentPoint32W);
    write("measure \"" + narrow(text, length) + '"');
    const BOOL result = real(dc, text, length, size);
    if (active != nullptr && active->textExtent) *size = *active->textExtent;
    return result;
}

int SetBkMode(HDC dc, int mode) {
    static const auto real = realOf(&SetBkMode);
    write(mode == TRANSPARENT ? "background transparent" : mode == OPAQUE ? "background opaque" : "background ?");
    return real(dc, mode);
}

int SetPolyFillMode(HDC dc, int mode) {
    static const auto real = realOf(&SetPolyFillMode);
    write(mode == ALTERNATE ? "fill alternate" : mode == WINDING ? "fill winding" : "fill ?");
    return real(dc, mode);
}

COLORREF SetTextColor(HDC dc, COLORREF color) {
    static const auto real = realOf(&SetTextColor);
    write("text colour " + colored(color));
    return real(dc, color);
}

int SaveDC(HDC dc) {
    static const auto real = realOf(&SaveDC);
    write("save");
    return real(dc);
}

BOOL RestoreDC(HDC dc, int saved) {
    static const auto real = realOf(&RestoreDC);
    write("restore");
    return real(dc, saved);
}

int SetGraphicsMode(HDC dc, int mode) {
    static const auto real = realOf(&SetGraphicsMode);
    write(mode == GM_ADVANCED ? "graphics advanced" : "graphics compatible");
    return real(dc, mode);
}

int SetMapMode(HDC dc, int mode) {
    static const auto real = realOf(&SetMapMode);
    write(format("map mode %d", mode));
    return real(dc, mode);
}

BOOL SetViewportOrgEx(HDC dc, int x, int y, LPPOINT previous) {
    static const auto real = realOf(&SetViewportOrgEx);
    write(format("viewport origin %d %d", x, y));
    return real(dc, x, y, previous);
}

BOOL SetWorldTransform(HDC dc, const XFORM* world) {
    static const auto real = realOf(&SetWorldTransform);
    const auto number = [](FLOAT value) { return static_cast<double>(value) + 0.0; };  // no negative zeros in the text
    write(format("world %.9g %.9g %.9g %.9g %.9g %.9g", number(world->eM11), number(world->eM12), number(world->eM21),
                 number(world->eM22), number(world->eDx), number(world->eDy)));
    return real(dc, world);
}

// ---------------------------------------------------------------------------------------------------- drawing

BOOL MoveToEx(HDC dc, int x, int y, LPPOINT previous) {
    static const auto real = realOf(&MoveToEx);
    write(format("move to %d %d", x, y));
    return real(dc, x, y, previous);
}

BOOL LineTo(HDC dc, int x, int y) {
    static const auto real = realOf(&LineTo);
    write(format("line to %d %d", x, y));
    return real(dc, x, y);
}

BOOL Polygon(HDC dc, const POINT* points, int count) {
    static const auto real = realOf(&Polygon);
    write("polygon" + listed(points, static_cast<unsigned int>(count)));
    return real(dc, points, count);
}

BOOL PolyBezier(HDC dc, const POINT* points, DWORD count) {
    static const auto real = realOf(&PolyBezier);
    write("bezier" + listed(points, count));
    return real(dc, points, count);
}

BOOL BeginPath(HDC dc) {
    static const auto real = realOf(&BeginPath);
    write("begin path");
    return real(dc);
}

BOOL EndPath(HDC dc) {
    static const auto real = realOf(&EndPath);
    write("end path");
    return real(dc);
}

BOOL StrokeAndFillPath(HDC dc) {
    static const auto real = realOf(&StrokeAndFillPath);
    write("stroke and fill path");
    return real(dc);
}

BOOL Ellipse(HDC dc, int left, int top, int right, int bottom) {
    static const auto real = realOf(&Ellipse);
    write(format("ellipse %d %d %d %d", left, top, right, bottom));
    return real(dc, left, top, right, bottom);
}

BOOL PaintRgn(HDC dc, HRGN region) {
    static const auto real = realOf(&PaintRgn);
    write("paint " + nameOf(region));
    return real(dc, region);
}

BOOL TextOutW(HDC dc, int x, int y, LPCWSTR text, int length) {
    static const auto real = realOf(&TextOutW);
    write(format("text %d %d \"", x, y) + narrow(text, length) + '"');
    return real(dc, x, y, text, length);
}

// ---------------------------------------------------------------------------------------------------- fonts

bool ZolCharsetSupport::CreateFontForStr(const wchar_t* text, CFont& font, int charsetType, const wchar_t* faceName,
                                         int width) {
    static const auto real = realOf(&ZolCharsetSupport::CreateFontForStr);
    write("font for \"" + narrow(text, static_cast<int>(std::wcslen(text))) + format("\" type %d face ", charsetType) +
          narrow(faceName, static_cast<int>(std::wcslen(faceName))) + format(" width %d", width));
    if (active == nullptr || !active->hostFont) return (this->*real)(text, font, charsetType, faceName, width);
    font.DeleteObject();
    if (*active->hostFont == 0) return false;
    LOGFONTW description{};
    description.lfHeight = *active->hostFont;
    description.lfWeight = FW_NORMAL;
    return font.CreateFontIndirectW(&description) != FALSE;
}
