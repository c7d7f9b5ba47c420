#include "platform/gdi/objects.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <cwchar>
#include <limits>

namespace zolgdi {

bool DibLayout::of(const BITMAPINFOHEADER* header, DibLayout& layout) {
    if (header == nullptr || header->biSize < sizeof(BITMAPINFOHEADER)) return false;
    if (header->biCompression != BI_RGB || (header->biBitCount != 24 && header->biBitCount != 32)) return false;
    const std::int64_t height = header->biHeight < 0 ? -std::int64_t{header->biHeight} : header->biHeight;
    if (header->biWidth <= 0 || height == 0) return false;
    const std::int64_t bytes = header->biBitCount / 8;
    const std::int64_t stride = (header->biWidth * bytes + 3) / 4 * 4;
    if (stride > std::numeric_limits<std::int32_t>::max() / height) return false;
    layout.width = header->biWidth;
    layout.height = static_cast<LONG>(height);
    layout.topDown = header->biHeight < 0;
    layout.bytes = static_cast<int>(bytes);
    layout.stride = static_cast<std::size_t>(stride);
    return true;
}

Pixels DibLayout::pixels(BYTE* bits) const {
    Pixels pixels;
    const auto step = static_cast<std::ptrdiff_t>(stride);
    pixels.top = topDown ? bits : bits + step * (height - 1);
    pixels.stride = topDown ? step : -step;
    pixels.width = width;
    pixels.height = height;
    pixels.bytes = bytes;
    return pixels;
}

Bitmap::Bitmap(const BITMAPINFOHEADER& header, const DibLayout& layout, std::unique_ptr<BYTE, Free> memory)
    : memory_(std::move(memory)) {
    describe(header, layout, memory_.get());
}

Bitmap::Bitmap(const BITMAPINFOHEADER& header, const DibLayout& layout, std::unique_ptr<View> view, HANDLE section,
               DWORD offset)
    : view_(std::move(view)) {
    describe(header, layout, view_->data());
    description_.dshSection = section;
    description_.dsOffset = offset;
}

void Bitmap::describe(const BITMAPINFOHEADER& header, const DibLayout& layout, BYTE* bits) {
    pixels_ = layout.pixels(bits);
    BITMAP& bitmap = description_.dsBm;
    bitmap.bmWidth = layout.width;
    bitmap.bmHeight = layout.height;
    bitmap.bmWidthBytes = static_cast<LONG>(layout.stride);
    bitmap.bmBitsPixel = static_cast<WORD>(layout.bytes * 8);
    bitmap.bmBits = bits;
    description_.dsBmih = header;
    description_.dsBmih.biSizeImage = static_cast<DWORD>(layout.byteCount());
}

namespace {

LOGFONTW stockFont(const wchar_t* face, LONG height, DWORD pitchAndFamily) {
    LOGFONTW font{};
    font.lfHeight = height;
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = static_cast<BYTE>(DEFAULT_CHARSET);
    font.lfPitchAndFamily = static_cast<BYTE>(pitchAndFamily);
    std::wcsncpy(font.lfFaceName, face, LF_FACESIZE - 1);
    return font;
}

std::shared_ptr<Object> makeStock(int index) {
    const auto brush = [](BYTE grey) { return std::make_shared<Brush>(LOGBRUSH{BS_SOLID, RGB(grey, grey, grey), 0}); };
    const auto pen = [](UINT style, COLORREF color) { return std::make_shared<Pen>(LOGPEN{style, {0, 0}, color}); };
    switch (index) {
        case WHITE_BRUSH:
            return brush(255);
        case LTGRAY_BRUSH:
            return brush(192);
        case GRAY_BRUSH:
            return brush(128);
        case DKGRAY_BRUSH:
            return brush(64);
        case BLACK_BRUSH:
            return brush(0);
        case NULL_BRUSH:
            return std::make_shared<Brush>(LOGBRUSH{BS_NULL, 0, 0});
        case WHITE_PEN:
            return pen(PS_SOLID, RGB(255, 255, 255));
        case BLACK_PEN:
            return pen(PS_SOLID, 0);
        case NULL_PEN:
            return pen(PS_NULL, 0);
        case OEM_FIXED_FONT:
        case ANSI_FIXED_FONT:
        case SYSTEM_FIXED_FONT:
            return std::make_shared<Font>(stockFont(L"Courier New", 16, FIXED_PITCH | FF_MODERN));
        case ANSI_VAR_FONT:
        case SYSTEM_FONT:
        case DEVICE_DEFAULT_FONT:
            return std::make_shared<Font>(stockFont(L"Arial", 16, VARIABLE_PITCH | FF_SWISS));
        case DEFAULT_GUI_FONT:
            return std::make_shared<Font>(stockFont(L"Tahoma", -11, VARIABLE_PITCH | FF_SWISS));
        case STOCK_BITMAP:
            return std::make_shared<Bitmap>();
        default:
            return nullptr;
    }
}

}  // namespace

HGDIOBJ stockObject(int index) {
    using Stock = std::array<HGDIOBJ, STOCK_BITMAP + 1>;
    static const Stock stock = [] {
        Stock handles{};
        for (int i = 0; i <= STOCK_BITMAP; ++i) {
            if (auto object = makeStock(i)) {
                handles[static_cast<std::size_t>(i)] = HandleTable::instance().add(std::move(object), true);
            }
        }
        return handles;
    }();
    return index >= 0 && index <= STOCK_BITMAP ? stock[static_cast<std::size_t>(index)] : nullptr;
}

namespace {

/// Copies a description as GetObject does for pens and brushes: whole or not at all, its size for a null record.
template <typename Record>
int giveRecord(const Record& from, int byteCount, void* record) {
    constexpr auto size = static_cast<int>(sizeof(Record));
    if (record == nullptr) return size;
    if (byteCount < size) return 0;
    std::memcpy(record, &from, sizeof(Record));
    return size;
}

int giveBitmap(const Bitmap& bitmap, int byteCount, void* record) {
    if (record != nullptr && byteCount >= static_cast<int>(sizeof(DIBSECTION)) && bitmap.pixels().top != nullptr) {
        return giveRecord(bitmap.description(), byteCount, record);
    }
    return giveRecord(bitmap.description().dsBm, byteCount, record);
}

int giveFont(const Font& font, int byteCount, void* record) {
    constexpr auto size = static_cast<int>(sizeof(LOGFONTW));
    if (record == nullptr) return size;
    const int count = std::clamp(byteCount, 0, size);
    std::memcpy(record, &font.description(), static_cast<std::size_t>(count));
    return count;
}

}  // namespace

}  // namespace zolgdi

using zolgdi::find;
using zolgdi::guarded;

HBITMAP CreateDIBSection(HDC /*dc*/, const BITMAPINFO* info, UINT usage, LPVOID* bits, HANDLE section, DWORD offset) {
    using zolgdi::Bitmap;
    if (bits != nullptr) *bits = nullptr;
    return guarded(nullptr, [&]() -> HBITMAP {
        zolgdi::DibLayout layout;
        if (info == nullptr || usage != DIB_RGB_COLORS) return nullptr;
        if (!zolgdi::DibLayout::of(&info->bmiHeader, layout)) return nullptr;
        std::shared_ptr<Bitmap> bitmap;
        if (section == nullptr) {
            std::unique_ptr<BYTE, Bitmap::Free> memory(static_cast<BYTE*>(std::calloc(layout.byteCount(), 1)));
            if (!memory) return nullptr;
            bitmap = std::make_shared<Bitmap>(info->bmiHeader, layout, std::move(memory));
        } else {
            const auto mapping = find<zolgdi::Mapping>(section);
            if (!mapping || offset % 4 != 0) return nullptr;
            auto view = mapping->view(offset, layout.byteCount());
            if (!view) return nullptr;
            bitmap = std::make_shared<Bitmap>(info->bmiHeader, layout, std::move(view), section, offset);
        }
        auto* const handle = zolgdi::publish<HBITMAP>(bitmap);
        if (handle != nullptr && bits != nullptr) *bits = bitmap->description().dsBm.bmBits;
        return handle;
    });
}

BOOL DeleteObject(HGDIOBJ object) {
    using zolgdi::HandleTable;
    auto& table = HandleTable::instance();
    if (!table.find<zolgdi::DrawingObject>(object)) return FALSE;
    if (table.find<zolgdi::Bitmap>(object) && table.isSelected(object)) return FALSE;
    return table.removeUnlessSelected(object) != HandleTable::Deletion::invalid ? TRUE : FALSE;
}

HFONT CreateFontIndirectW(const LOGFONTW* logFont) {
    return guarded(nullptr, [&]() -> HFONT {
        if (logFont == nullptr) return nullptr;
        LOGFONTW font = *logFont;
        font.lfFaceName[LF_FACESIZE - 1] = L'\0';
        return zolgdi::publish<HFONT>(std::make_shared<zolgdi::Font>(font));
    });
}

HFONT CreateFontW(int height, int width, int escapement, int orientation, int weight, DWORD italic, DWORD underline,
                  DWORD strikeOut, DWORD charSet, DWORD outPrecision, DWORD clipPrecision, DWORD quality,
                  DWORD pitchAndFamily, LPCWSTR faceName) {
    LOGFONTW font{};
    font.lfHeight = height;
    font.lfWidth = width;
    font.lfEscapement = escapement;
    font.lfOrientation = orientation;
    font.lfWeight = weight;
    font.lfItalic = italic != 0 ? 1 : 0;
    font.lfUnderline = underline != 0 ? 1 : 0;
    font.lfStrikeOut = strikeOut != 0 ? 1 : 0;
    font.lfCharSet = static_cast<BYTE>(charSet);
    font.lfOutPrecision = static_cast<BYTE>(outPrecision);
    font.lfClipPrecision = static_cast<BYTE>(clipPrecision);
    font.lfQuality = static_cast<BYTE>(quality);
    font.lfPitchAndFamily = static_cast<BYTE>(pitchAndFamily);
    if (faceName != nullptr) std::wcsncpy(font.lfFaceName, faceName, LF_FACESIZE - 1);
    return CreateFontIndirectW(&font);
}

int GetObjectW(HGDIOBJ object, int byteCount, LPVOID record) {
    if (const auto bitmap = find<zolgdi::Bitmap>(object)) return zolgdi::giveBitmap(*bitmap, byteCount, record);
    if (const auto pen = find<zolgdi::Pen>(object)) return zolgdi::giveRecord(pen->description(), byteCount, record);
    if (const auto brush = find<zolgdi::Brush>(object)) {
        return zolgdi::giveRecord(brush->description(), byteCount, record);
    }
    if (const auto font = find<zolgdi::Font>(object)) return zolgdi::giveFont(*font, byteCount, record);
    return 0;
}

HGDIOBJ GetStockObject(int index) {
    return guarded(nullptr, [&] { return index != zolgdi::STOCK_BITMAP ? zolgdi::stockObject(index) : nullptr; });
}

unsigned int ZolGdiObjectCount() { return zolgdi::HandleTable::instance().count(); }
