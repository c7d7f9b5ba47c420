// One bit per pixel.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace viewing {

/// Whether a bit of packed bits is set, of which each byte has its lowest first (DICOM PS3.5 8.1.2); false beyond the
/// last byte.
inline bool packedBit(std::span<const unsigned char> bytes, std::size_t bit) {
    return bit / 8 < bytes.size() && ((bytes[bit / 8] >> (bit % 8)) & 1) != 0;
}

/// A plane of width * height packed bits, row by row without padding, as the drawing library takes it.
class BitPlane {
public:
    /// A plane without pixels.
    BitPlane() = default;
    /// A plane without a set bit. Neither side is negative.
    BitPlane(int width, int height)
        : width_(width),
          height_(height),
          bytes_((static_cast<std::size_t>(width) * static_cast<std::size_t>(height) + 7) / 8) {}

    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }
    [[nodiscard]] bool empty() const { return bytes_.empty(); }
    /// The bit of a pixel of the plane.
    [[nodiscard]] bool get(int x, int y) const { return packedBit(bytes_, index(x, y)); }
    void set(int x, int y) { setBit(index(x, y)); }
    /// Sets the bit of pixel `bit`, counted from 0 row by row.
    void setBit(std::size_t bit) { bytes_[bit / 8] = static_cast<std::uint8_t>(bytes_[bit / 8] | (1U << (bit % 8))); }

    /// The packed bits. They stay at their address while the plane lives and is not assigned to.
    [[nodiscard]] unsigned char* data() { return bytes_.data(); }

private:
    [[nodiscard]] std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
    }

    int width_ = 0;
    int height_ = 0;
    std::vector<std::uint8_t> bytes_;
};

/// Bit `bit` of each of width * height words, row by row, as a plane.
inline BitPlane planeOfBit(std::span<const std::uint16_t> words, int bit, int width, int height) {
    BitPlane plane(width, height);
    for (std::size_t i = 0; i < words.size(); ++i)
        if (((words[i] >> bit) & 1) != 0) plane.setBit(i);
    return plane;
}

}  // namespace viewing
