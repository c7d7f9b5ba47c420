// One bit per pixel, as the library takes it: rows without padding, lowest bit of each byte first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace viewing {

class BitPlane {
public:
    BitPlane() = default;
    BitPlane(int width, int height)
        : width_(width),
          height_(height),
          bytes_((static_cast<std::size_t>(width) * static_cast<std::size_t>(height) + 7) / 8) {}

    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }
    [[nodiscard]] bool empty() const { return bytes_.empty(); }
    [[nodiscard]] bool get(int x, int y) const { return ((bytes_[index(x, y) / 8] >> (index(x, y) % 8)) & 1) != 0; }
    void set(int x, int y) { setBit(index(x, y)); }
    void setBit(std::size_t bit) { bytes_[bit / 8] = static_cast<std::uint8_t>(bytes_[bit / 8] | (1U << (bit % 8))); }

    /// Stays at its address while the plane lives and is not assigned to.
    [[nodiscard]] unsigned char* data() { return bytes_.data(); }

private:
    [[nodiscard]] std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
    }

    int width_ = 0;
    int height_ = 0;
    std::vector<std::uint8_t> bytes_;
};

}  // namespace viewing
