// Bitmaps, pens, brushes and fonts.
#pragma once

#include "platform/gdi/filemapping.h"

#include <cstdlib>

namespace zolgdi {

/// Pixels in memory that calls draw on or copy from: 3 or 4 bytes each, blue, green, red (and one more).
struct Pixels {
    [[nodiscard]] BYTE* row(LONG y) const { return top + static_cast<std::ptrdiff_t>(y) * stride; }
    [[nodiscard]] BYTE* at(LONG x, LONG y) const { return row(y) + static_cast<std::ptrdiff_t>(x) * bytes; }

    BYTE* top = nullptr;        ///< the uppermost row
    std::ptrdiff_t stride = 0;  ///< from a row to the one below it; negative where the bottom row comes first
    LONG width = 0;
    LONG height = 0;
    int bytes = 4;  ///< per pixel
};

/// Layout of an uncompressed DIB of 24 or 32 bits a pixel.
struct DibLayout {
    /// False for other formats and for sizes that are zero, negative or beyond 2^31 - 1 bytes.
    static bool of(const BITMAPINFOHEADER* header, DibLayout& layout);

    [[nodiscard]] Pixels pixels(BYTE* bits) const;
    [[nodiscard]] std::size_t byteCount() const { return stride * static_cast<std::size_t>(height); }

    LONG width = 0;
    LONG height = 0;
    bool topDown = false;
    int bytes = 4;
    std::size_t stride = 0;  ///< of a row in memory, a multiple of 4
};

class Bitmap : public DrawingObject {
public:
    struct Free {
        void operator()(BYTE* memory) const { std::free(memory); }
    };

    /// The one-pixel bitmap that a new memory device context starts with; it has no memory to draw on.
    Bitmap() = default;
    Bitmap(const BITMAPINFOHEADER& header, const DibLayout& layout, std::unique_ptr<BYTE, Free> memory);
    Bitmap(const BITMAPINFOHEADER& header, const DibLayout& layout, std::unique_ptr<View> view, HANDLE section,
           DWORD offset);

    [[nodiscard]] const Pixels& pixels() const { return pixels_; }
    [[nodiscard]] const DIBSECTION& description() const { return description_; }

private:
    void describe(const BITMAPINFOHEADER& header, const DibLayout& layout, BYTE* bits);

    std::unique_ptr<BYTE, Free> memory_;
    std::unique_ptr<View> view_;
    Pixels pixels_;
    DIBSECTION description_{{0, 1, 1, 2, 1, 1, nullptr}, {}, {}, nullptr, 0};
};

class Pen : public DrawingObject {
public:
    explicit Pen(const LOGPEN& pen) : pen_(pen) {}
    [[nodiscard]] const LOGPEN& description() const { return pen_; }

private:
    LOGPEN pen_;
};

class Brush : public DrawingObject {
public:
    explicit Brush(const LOGBRUSH& brush) : brush_(brush) {}
    [[nodiscard]] const LOGBRUSH& description() const { return brush_; }
    [[nodiscard]] bool hollow() const { return brush_.lbStyle == BS_NULL; }
    [[nodiscard]] COLORREF color() const { return brush_.lbColor; }

private:
    LOGBRUSH brush_;
};

class Font : public DrawingObject {
public:
    explicit Font(const LOGFONTW& font) : font_(font) {}
    [[nodiscard]] const LOGFONTW& description() const { return font_; }

private:
    LOGFONTW font_;
};

/// The stock object of an index that GetStockObject takes, or the handle of a new memory device context's bitmap.
inline constexpr int STOCK_BITMAP = 21;
HGDIOBJ stockObject(int index);

}  // namespace zolgdi
