#include "viewing/dicom/jpeg2000.h"

#include "support/jpeg2000_codestream.h"
#include "viewing/image/stored_image.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace viewing;
using zoltest::encodeJpeg2000;
using Words = std::vector<std::uint16_t>;

constexpr const char* broken = "has Pixel Data that cannot be decoded (a broken JPEG 2000 codestream)";
constexpr const char* misfit = "has a JPEG 2000 codestream that does not fit what the file says of it";

std::string refusal(const std::vector<std::uint8_t>& codestream, const ImageExtent& extent) {
    try {
        decodeJpeg2000(codestream, extent);
    } catch (const Refusal& refused) {
        return refused.what();
    }
    return {};
}

/// 5 x 4 pixels.
std::vector<int> ramp(int samples, int low, int step) {
    std::vector<int> out;
    for (int i = 0; i < 20 * samples; ++i) out.push_back(low + i * step);
    return out;
}

Words words(const std::vector<int>& values) {
    Words out;
    for (const int value : values) out.push_back(static_cast<std::uint16_t>(value));
    return out;
}

TEST(Jpeg2000, GreyOfEveryDepth) {
    for (const int bits : {1, 8, 12, 16}) {
        const int step = ((1 << bits) - 1) / 19;
        const auto values = ramp(1, 0, step);
        EXPECT_EQ(decodeJpeg2000(encodeJpeg2000({5, 4, 1, bits}, values), {5, 4, 1}), words(values)) << bits;
    }
    const auto values = ramp(1, -32768, 3449);
    EXPECT_EQ(decodeJpeg2000(encodeJpeg2000({5, 4, 1, 16, true}, values), {5, 4, 1}), words(values));
}

TEST(Jpeg2000, ColoursComeOutAsTheyWentIn) {
    for (const bool transformed : {false, true}) {
        const auto values = ramp(3, 5, 4);
        EXPECT_EQ(decodeJpeg2000(encodeJpeg2000({5, 4, 3, 8, false, transformed}, values), {5, 4, 3}), words(values));
    }
}

TEST(Jpeg2000, OtherSizesAndDepthsAreRefused) {
    const auto grey = encodeJpeg2000({5, 4, 1, 12}, ramp(1, 0, 1));
    EXPECT_EQ(refusal(grey, {4, 5, 1}), misfit);
    EXPECT_EQ(refusal(grey, {5, 4, 3}), misfit);
    EXPECT_EQ(refusal(encodeJpeg2000({5, 4, 3, 8}, ramp(3, 0, 1)), {5, 4, 1}), misfit);
    EXPECT_EQ(refusal(encodeJpeg2000({5, 4, 1, 20}, ramp(1, 0, 1)), {5, 4, 1}), misfit);
}

TEST(Jpeg2000, WhatIsNoWholeCodestreamIsRefused) {
    EXPECT_EQ(refusal({}, {5, 4, 1}), broken);
    EXPECT_EQ(refusal({1, 2, 3, 4, 5, 6, 7, 8}, {5, 4, 1}), broken);
    const auto whole = encodeJpeg2000({5, 4, 1, 12}, ramp(1, 0, 200));
    // The marker of the end alone may be missing.
    for (std::size_t length = 0; length + 3 < whole.size(); ++length)
        EXPECT_EQ(refusal({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)}, {5, 4, 1}), broken)
            << length << " of " << whole.size();
}

TEST(Jpeg2000, ChangedBytesNeverDoHarm) {
    const auto whole = encodeJpeg2000({5, 4, 3, 8}, ramp(3, 0, 4));
    for (std::size_t i = 0; i < whole.size(); ++i) {
        for (const int flip : {1, 0x80, 0xFF}) {
            auto changed = whole;
            changed[i] = static_cast<std::uint8_t>(changed[i] ^ flip);
            const std::string words = refusal(changed, {5, 4, 3});
            EXPECT_TRUE(words.empty() || words == broken || words == misfit) << words;
        }
    }
}

}  // namespace
