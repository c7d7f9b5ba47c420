// Something to draw on whose pixels a test can read.
#pragma once

#include "support/gdi_count.h"

#include "platform/platform.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace zoltest {

/// A memory device context with a top-down bitmap of 32 bits a pixel selected into it, all pixels at a start value.
class Canvas {
public:
    Canvas(int width, int height, std::uint32_t start = 0xCDCDCDCD) : width_(width), height_(height) {
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
        info.bmiHeader.biWidth = width;
        info.bmiHeader.biHeight = -height;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        info.bmiHeader.biCompression = BI_RGB;
        bitmap_ = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits_, nullptr, 0);
        dc_ = CreateCompatibleDC(nullptr);
        previous_ = SelectObject(dc_, bitmap_);
        auto* const pixels = static_cast<std::uint32_t*>(bits_);
        for (int i = 0; i < width * height; ++i) pixels[i] = start;
    }
    ~Canvas() {
        SelectObject(dc_, previous_);
        DeleteDC(dc_);
        DeleteObject(bitmap_);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    [[nodiscard]] HDC dc() const { return dc_; }

    /// The pixel as it lies in memory, 0x00RRGGBB with whatever the fourth byte holds on top.
    [[nodiscard]] std::uint32_t pixel(int x, int y) const {
        GdiFlush();
        std::uint32_t value = 0;
        std::memcpy(&value, static_cast<const unsigned char*>(bits_) + 4 * (y * width_ + x), sizeof value);
        return value;
    }

    /// All pixels, top line first.
    [[nodiscard]] std::vector<std::uint32_t> pixels() const {
        GdiFlush();
        std::vector<std::uint32_t> all(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
        std::memcpy(all.data(), bits_, all.size() * sizeof all.front());
        return all;
    }

private:
    int width_;
    int height_;
    void* bits_ = nullptr;
    HBITMAP bitmap_ = nullptr;
    HDC dc_ = nullptr;
    HGDIOBJ previous_ = nullptr;
};

/// A font of a face that every platform resolves somehow, deleted with this object.
class TestFont {
public:
    explicit TestFont(int height) {
        LOGFONTW description{};
        description.lfHeight = height;
        description.lfWeight = FW_NORMAL;
        handle_ = CreateFontIndirectW(&description);
    }
    ~TestFont() { DeleteObject(handle_); }
    TestFont(const TestFont&) = delete;
    TestFont& operator=(const TestFont&) = delete;

    [[nodiscard]] HFONT get() const { return handle_; }

private:
    HFONT handle_;
};

}  // namespace zoltest
