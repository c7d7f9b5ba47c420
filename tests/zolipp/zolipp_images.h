// Images for the primitives' tests: at any address, with any step, and with marked bytes around every row.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "reference/primitive_reference.h"
#include "support/test_data.h"
#include "zolipp/rowoperations.h"
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

/// The primitives of one pixel format, for tests that hold for all of them.
struct Grey16Primitives {
    using Sample = Ipp16u;
    using Image = GreyImage;
    static constexpr int channels = 1;
    static constexpr int written = 1;
    static constexpr auto resizeCenter = ZOLippiResizeCenter_16u_C1R;
    static constexpr auto mirror = ZOLippiMirror_16u_C1IR;
    static constexpr auto transpose = ZOLippiTranspose_16u_C1R;
    static constexpr auto warpAffine = ZOLippiWarpAffine_16u_C1R;
};
struct FourBytePrimitives {
    using Sample = Ipp8u;
    using Image = ColourImage;
    static constexpr int channels = 4;
    static constexpr int written = 4;
    static constexpr auto resizeCenter = ZOLippiResizeCenter_8u_C4R;
    static constexpr auto mirror = ZOLippiMirror_8u_C4IR;
    static constexpr auto transpose = ZOLippiTranspose_8u_C4R;
    static constexpr auto warpAffine = ZOLippiWarpAffine_8u_C4R;
};
struct ThreeBytePrimitives {
    using Sample = Ipp8u;
    using Image = ColourImage;
    static constexpr int channels = 4;
    static constexpr int written = 3;
    static constexpr auto resizeCenter = ZOLippiResizeCenter_8u_AC4R;
    static constexpr auto mirror = ZOLippiMirror_8u_AC4IR;
    static constexpr auto warpAffine = ZOLippiWarpAffine_8u_AC4R;
};
using AllFormats = ::testing::Types<Grey16Primitives, FourBytePrimitives, ThreeBytePrimitives>;

/// An image for the primitives, of random pixels or of one value.
template <typename Primitives>
typename Primitives::Image randomImage(Random& random, int width, int height, int slack = 0, std::size_t offset = 0) {
    typename Primitives::Image image(width, height, Primitives::channels, slack, offset);
    image.fillRandom(random);
    return image;
}
template <typename Primitives>
typename Primitives::Image flatImage(int width, int height, int value) {
    typename Primitives::Image image(width, height, Primitives::channels);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width * Primitives::channels; ++x) {
            image.set(x, y, static_cast<typename Primitives::Sample>(value));
        }
    }
    return image;
}

inline constexpr int allInterpolations[] = {IPPI_INTER_NN, IPPI_INTER_LINEAR, IPPI_INTER_CUBIC};

/// Makes the primitives run in one variant until its end.
class ChosenVariant {
public:
    explicit ChosenVariant(const std::string& name) { EXPECT_TRUE(zolipp::RowOperations::choose(name)) << name; }
    ~ChosenVariant() { zolipp::RowOperations::choose(""); }
    ChosenVariant(const ChosenVariant&) = delete;
    ChosenVariant& operator=(const ChosenVariant&) = delete;
};

/// Runs `make`, which gives an image, in the plain variant, holds the other variants to the same bytes, and gives the
/// plain image.
template <typename Make>
auto sameInEveryVariant(Make make) {
    const auto inVariant = [&](const std::string& name) {
        const ChosenVariant chosen(name);
        return make();
    };
    const auto plain = inVariant("plain");
    for (const std::string& name : zolipp::RowOperations::variants()) {
        EXPECT_EQ(inVariant(name) == plain, true) << "variant " << name;
    }
    EXPECT_TRUE(plain.isIntactAround());
    return plain;
}

/// What a destination pixel shows.
struct Shown {
    enum class Kind : std::uint8_t { Nothing, Point, WithinRounding } kind;
    double x;
    double y;
};

/// Holds a drawn image to the definition: what shows nothing, or belongs to a byte that is left alone, is as it was
/// before; the rest is the nearest value but for what single precision loses. `shownAt(x, y)` tells what a pixel shows;
/// one that rounding may decide either way is passed over.
template <typename Primitives, typename Image, typename ShownAt>
void expectDefined(const Image& source, const Image& before, const Image& drawn, int interpolation, ShownAt shownAt) {
    constexpr double largest = std::numeric_limits<std::remove_cvref_t<decltype(drawn.at(0, 0))>>::max();
    for (int y = 0; y < drawn.height(); ++y) {
        for (int x = 0; x < drawn.width(); ++x) {
            const Shown shown = shownAt(x, y);
            if (shown.kind == Shown::Kind::WithinRounding) continue;
            for (int channel = 0; channel < Primitives::channels; ++channel) {
                if (shown.kind == Shown::Kind::Nothing || channel >= Primitives::written) {
                    ASSERT_EQ(drawn.at(x, y, channel), before.at(x, y, channel)) << x << ", " << y;
                    continue;
                }
                const double value = zolref::valueAt([&](int i, int j) { return source.at(i, j, channel); },
                                                     source.size(), shown.x, shown.y, interpolation);
                ASSERT_LE(std::fabs(drawn.at(x, y, channel) - std::clamp(value, 0.0, largest)), 0.53)
                    << x << ", " << y << " channel " << channel;
            }
        }
    }
}

/// Holds a drawn image to be the source itself but for bytes that are left alone.
template <typename Primitives, typename Image>
void expectCopied(const Image& source, const Image& before, const Image& drawn) {
    for (int y = 0; y < source.height(); ++y) {
        for (int x = 0; x < source.width() * Primitives::channels; ++x) {
            const bool written = x % Primitives::channels < Primitives::written;
            ASSERT_EQ(drawn.at(x, y), written ? source.at(x, y) : before.at(x, y)) << x << ", " << y;
        }
    }
}

/// One argument that a primitive refuses, and with which status.
template <typename Call>
struct Refusal {
    std::string name;
    IppStatus status;
    std::function<void(Call&)> spoil;
};

template <typename Call>
using Refusals = std::vector<Refusal<Call>>;

// The refusals that several primitives share.

template <typename Call, typename Pointer>
Refusals<Call> missing(const std::string& name, Pointer Call::*pointer) {
    return {{"no " + name, ippStsNullPtrErr, [=](Call& c) { c.*pointer = nullptr; }}};
}

/// Of a size or a rectangle.
template <typename Call, typename Extent>
Refusals<Call> withoutPixels(const std::string& name, Extent Call::*extent) {
    constexpr int least = std::numeric_limits<int>::min();
    return {{name + " width 0", ippStsSizeErr, [=](Call& c) { (c.*extent).width = 0; }},
            {name + " height 0", ippStsSizeErr, [=](Call& c) { (c.*extent).height = 0; }},
            {name + " width below 0", ippStsSizeErr, [=](Call& c) { (c.*extent).width = -5; }},
            {name + " height below 0", ippStsSizeErr, [=](Call& c) { (c.*extent).height = least; }}};
}

/// `step` is as long as a row.
template <typename Call>
Refusals<Call> wrongSteps(const std::string& name, int Call::*step) {
    return {{name + " step short", ippStsStepErr, [=](Call& c) { --(c.*step); }},
            {name + " step 0", ippStsStepErr, [=](Call& c) { c.*step = 0; }},
            {name + " step below 0", ippStsStepErr, [=](Call& c) { c.*step = -(c.*step); }}};
}

template <typename Call>
Refusals<Call> unknownInterpolations(int Call::*interpolation) {
    Refusals<Call> refusals;
    for (const int unknown : {0, 3, 5, 6, 7, 8, 16, -1, 1 << 30}) {
        refusals.push_back({"interpolation " + std::to_string(unknown), ippStsInterpolationErr,
                            [=](Call& c) { c.*interpolation = unknown; }});
    }
    return refusals;
}

template <typename Call>
Refusals<Call> joined(const std::vector<Refusals<Call>>& parts) {
    Refusals<Call> all;
    for (const Refusals<Call>& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

/// Holds a primitive to its statuses. `refusals` stand in the order of their precedence: each is returned alone, and
/// together with all that follow it.
template <typename Call, typename Run>
void expectRefusals(const Call& valid, const Refusals<Call>& refusals, Run run) {
    for (std::size_t i = 0; i < refusals.size(); ++i) {
        Call alone = valid;
        refusals[i].spoil(alone);
        EXPECT_EQ(run(alone), refusals[i].status) << refusals[i].name;
        Call together = valid;
        for (std::size_t k = i; k < refusals.size(); ++k) {
            // What has been spoilt by an earlier refusal stays: the later ones would repair it.
            if (refusals[k].status != refusals[i].status) refusals[k].spoil(together);
        }
        refusals[i].spoil(together);
        EXPECT_EQ(run(together), refusals[i].status) << refusals[i].name << " and what follows";
    }
}

}  // namespace zoltest
