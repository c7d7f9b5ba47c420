// Typed access to the pixels of a locked image.
#pragma once

#include "zolcs/ccsimage.h"

#include <cstddef>
#include <cstdint>

namespace zolcs {

/// Bytes of a pixel, 16-bit grey included; 0 for an unknown type. Reports nothing.
constexpr int bytesPerPixel(int type) {
    switch (type) {
        case CCS_INDEX8:
        case CCS_GREY8:
            return 1;
        case CCS_GREY12:
        case CCS_GREY16:
            return 2;
        case CCS_RGB24:
            return 3;
        case CCS_RGB8:
            return 4;
        case CCS_RGB12:
            return 8;
        default:
            return 0;
    }
}

/// The bytes of a CCS_RGB24 pixel in memory order.
struct Rgb24 {
    std::uint8_t bytes[3] = {};
    bool operator==(const Rgb24&) const = default;
};
static_assert(sizeof(Rgb24) == 3 && alignof(Rgb24) == 1);

/// Lines of pixels of one type; `pitch` counts pixels.
template <typename Pixel>
class ImageView {
public:
    template <typename Byte>
    ImageView(Byte* origin, int pitch) : origin_(reinterpret_cast<Pixel*>(origin)), pitch_(pitch) {}

    [[nodiscard]] Pixel* line(std::int64_t y) const { return origin_ + static_cast<std::ptrdiff_t>(y) * pitch_; }
    [[nodiscard]] std::ptrdiff_t pitch() const { return pitch_; }

private:
    Pixel* origin_;
    std::ptrdiff_t pitch_;
};

}  // namespace zolcs
