// Typed access to the pixels of a locked image.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zolcs {

/// The bytes of a CCS_RGB24 pixel in memory order.
struct Rgb24 {
    std::uint8_t bytes[3] = {};
    bool operator==(const Rgb24&) const = default;
};
static_assert(sizeof(Rgb24) == 3 && alignof(Rgb24) == 1);

/// Rows of pixels of one type; `pitch` counts pixels.
template <typename Pixel>
class ImageView {
public:
    template <typename Byte>
    ImageView(Byte* origin, int pitch) : origin_(reinterpret_cast<Pixel*>(origin)), pitch_(pitch) {}

    [[nodiscard]] Pixel* row(std::int64_t y) const { return origin_ + static_cast<std::ptrdiff_t>(y) * pitch_; }
    [[nodiscard]] std::ptrdiff_t pitch() const { return pitch_; }

private:
    Pixel* origin_;
    std::ptrdiff_t pitch_;
};

}  // namespace zolcs
