// Images for the primitives' tests: at any address, with any step, and with marked bytes around every row.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "support/test_data.h"
#include "zolipp/zolipp.h"

namespace zoltest {

/// An image inside a larger buffer. `Sample` is what a channel holds.
template <typename Sample>
class PrimitiveImage {
public:
    /// `slack` bytes follow each row but the last one, whose end only the sentinels behind the buffer guard.
    PrimitiveImage(int width, int height, int channels, int slack = 0, std::size_t offset = 0)
        : width_(width),
          height_(height),
          channels_(channels),
          rowBytes_(width * channels * static_cast<int>(sizeof(Sample))),
          step_(rowBytes_ + slack),
          start_(guard + offset),
          bytes_(start_ + static_cast<std::size_t>(step_) * static_cast<std::size_t>(height - 1) +
                     static_cast<std::size_t>(rowBytes_) + guard,
                 sentinel) {}

    void fillRandom(Random& random) {
        for (int y = 0; y < height_; ++y) {
            for (int x = 0; x < width_ * channels_; ++x) set(x, y, static_cast<Sample>(random.bits()));
        }
    }

    /// `x` counts samples, not pixels.
    void set(int x, int y, Sample value) { std::memcpy(&bytes_[position(x, y)], &value, sizeof value); }
    [[nodiscard]] Sample at(int x, int y) const {
        Sample value{};
        std::memcpy(&value, &bytes_[position(x, y)], sizeof value);
        return value;
    }
    [[nodiscard]] Sample at(int x, int y, int channel) const { return at(x * channels_ + channel, y); }

    /// As the primitives take it, whatever the address.
    Sample* data() { return static_cast<Sample*>(static_cast<void*>(&bytes_[start_])); }
    [[nodiscard]] const Sample* data() const {
        return static_cast<const Sample*>(static_cast<const void*>(&bytes_[start_]));
    }
    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }
    [[nodiscard]] int channels() const { return channels_; }
    [[nodiscard]] int step() const { return step_; }
    [[nodiscard]] IppiSize size() const { return {width_, height_}; }
    [[nodiscard]] IppiRect whole() const { return {0, 0, width_, height_}; }

    /// True while no byte beside the rows has changed.
    [[nodiscard]] bool isIntactAround() const {
        std::vector<std::uint8_t> copy(bytes_);
        for (int y = 0; y < height_; ++y) {
            std::memset(&copy[position(0, y)], sentinel, static_cast<std::size_t>(rowBytes_));
        }
        return copy == std::vector<std::uint8_t>(copy.size(), sentinel);
    }

    friend bool operator==(const PrimitiveImage& a, const PrimitiveImage& b) { return a.bytes_ == b.bytes_; }

private:
    static constexpr std::size_t guard = 80;
    static constexpr std::uint8_t sentinel = 0xA5;

    [[nodiscard]] std::size_t position(int x, int y) const {
        return start_ + static_cast<std::size_t>(y) * static_cast<std::size_t>(step_) +
               static_cast<std::size_t>(x) * sizeof(Sample);
    }

    int width_;
    int height_;
    int channels_;
    int rowBytes_;
    int step_;
    std::size_t start_;
    std::vector<std::uint8_t> bytes_;
};

using GreyImage = PrimitiveImage<Ipp16u>;
using ColourImage = PrimitiveImage<Ipp8u>;

}  // namespace zoltest
