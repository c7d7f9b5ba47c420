// Something to draw on, through Win32 calls alone: the tests that use it hold on the system's own GDI as well.
#pragma once

#include "platform/platform.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace zoltest {

/// GDI objects of this process.
inline unsigned int livingObjects() {
#if defined(_WIN32)
    return GetGuiResources(GetCurrentProcess(), 0);
#else
    return ZolGdiObjectCount();
#endif
}

/// Fails when a test leaves GDI objects behind.
class GdiTest : public ::testing::Test {
protected:
    GdiTest() : before_(warmedUp()) {}
    ~GdiTest() override { EXPECT_EQ(livingObjects(), before_); }

private:
    static unsigned int warmedUp() {
        // Whatever the system makes once for itself must be there before counting.
        HDC dc = CreateCompatibleDC(nullptr);
        DeleteDC(dc);
        return livingObjects();
    }
    unsigned int before_;
};

inline BITMAPINFO dibInfo(LONG width, LONG height, WORD bits = 32) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = bits;
    return info;
}

enum class Rows { topDown, bottomUp };

/// The layouts that the library uses.
struct Layout {
    WORD bits = 32;
    Rows rows = Rows::topDown;
};

inline std::ostream& operator<<(std::ostream& out, const Layout& layout) {
    return out << layout.bits << (layout.rows == Rows::topDown ? " top-down" : " bottom-up");
}

inline constexpr Layout layouts[] = {
    {32, Rows::topDown}, {32, Rows::bottomUp}, {24, Rows::topDown}, {24, Rows::bottomUp}};

/// A DIB section selected into a memory device context; pixels are addressed as they are seen, top row first.
class Device {
public:
    Device(int width, int height, Layout layout = {})
        : width_(width),
          height_(height),
          layout_(layout),
          stride_((static_cast<std::size_t>(width) * layout.bits / 8 + 3) / 4 * 4),
          info_(dibInfo(width, layout.rows == Rows::topDown ? -height : height, layout.bits)),
          dc_(CreateCompatibleDC(nullptr)),
          bitmap_(CreateDIBSection(nullptr, &info_, DIB_RGB_COLORS, &bits_, nullptr, 0)),
          before_(SelectObject(dc_, bitmap_)) {}
    ~Device() {
        SelectObject(dc_, before_);
        DeleteDC(dc_);
        DeleteObject(bitmap_);
    }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    operator HDC() const { return dc_; }
    [[nodiscard]] HBITMAP bitmap() const { return bitmap_; }
    [[nodiscard]] const BITMAPINFO& info() const { return info_; }
    [[nodiscard]] unsigned char* bits() const { return static_cast<unsigned char*>(bits_); }
    [[nodiscard]] std::size_t stride() const { return stride_; }
    [[nodiscard]] std::size_t size() const { return stride_ * static_cast<std::size_t>(height_); }
    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }
    [[nodiscard]] Layout layout() const { return layout_; }

    /// All bytes of the pixel: 0x00RRGGBB for what GDI drew.
    [[nodiscard]] std::uint32_t pixel(int x, int y) const {
        GdiFlush();
        std::uint32_t value = 0;
        std::memcpy(&value, address(x, y), bytes());
        return value;
    }
    void setPixel(int x, int y, std::uint32_t value) { std::memcpy(address(x, y), &value, bytes()); }

    /// The pixel values of a picture drawn in characters, row by row.
    [[nodiscard]] std::vector<std::string> picture() const {
        std::vector<std::string> rows;
        for (int y = 0; y < height_; ++y) {
            std::string row;
            for (int x = 0; x < width_; ++x) row += pixel(x, y) != 0 ? '#' : '.';
            rows.push_back(row);
        }
        return rows;
    }

    /// A whole-pixel value, without the byte that 24 bits do not have.
    [[nodiscard]] std::uint32_t trimmed(std::uint32_t value) const {
        return layout_.bits == 24 ? value & 0xFFFFFFU : value;
    }

private:
    [[nodiscard]] std::size_t bytes() const { return layout_.bits / 8U; }
    [[nodiscard]] unsigned char* address(int x, int y) const {
        const int row = layout_.rows == Rows::topDown ? y : height_ - 1 - y;
        return bits() + static_cast<std::size_t>(row) * stride_ + static_cast<std::size_t>(x) * bytes();
    }

    int width_;
    int height_;
    Layout layout_;
    std::size_t stride_;
    BITMAPINFO info_;
    void* bits_ = nullptr;
    HDC dc_;
    HBITMAP bitmap_;
    HGDIOBJ before_;
};

/// An object selected for the guard's life, and then deleted.
class Using {
public:
    Using(HDC dc, HGDIOBJ object) : dc_(dc), object_(object), before_(SelectObject(dc, object)) {}
    ~Using() {
        SelectObject(dc_, before_);
        DeleteObject(object_);
    }
    Using(const Using&) = delete;
    Using& operator=(const Using&) = delete;

private:
    HDC dc_;
    HGDIOBJ object_;
    HGDIOBJ before_;
};

/// Expected pixels of a whole device, as a slow reference computes them.
class Expected {
public:
    explicit Expected(const Device& device) : width_(device.width()) {
        for (int y = 0; y < device.height(); ++y) {
            for (int x = 0; x < device.width(); ++x) values_.push_back(device.pixel(x, y));
        }
    }
    std::uint32_t& at(int x, int y) {
        return values_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x)];
    }
    /// Compares every pixel and reports the first that differs.
    [[nodiscard]] ::testing::AssertionResult holds(const Device& device) {
        for (int y = 0; y < device.height(); ++y) {
            for (int x = 0; x < device.width(); ++x) {
                if (device.pixel(x, y) != at(x, y)) {
                    return ::testing::AssertionFailure()
                           << "pixel (" << x << ", " << y << ") is " << std::hex << device.pixel(x, y) << ", expected "
                           << at(x, y) << std::dec << " on " << device.layout();
                }
            }
        }
        return ::testing::AssertionSuccess();
    }

private:
    int width_;
    std::vector<std::uint32_t> values_;
};

inline void fillPattern(Device& device, std::uint32_t seed = 1) {
    std::uint32_t value = seed;
    for (int y = 0; y < device.height(); ++y) {
        for (int x = 0; x < device.width(); ++x) {
            value = value * 1664525U + 1013904223U;
            device.setPixel(x, y, value);
        }
    }
}

}  // namespace zoltest
