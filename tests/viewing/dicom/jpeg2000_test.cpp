#include "viewing/dicom/jpeg2000.h"

#include "support/jpeg2000_codestream.h"
#include "support/peak_memory.h"
#include "viewing/image/stored_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>

namespace {

using namespace viewing;
using zoltest::encodeJpeg2000;
using Words = std::vector<std::uint16_t>;

constexpr const char* broken = "has Pixel Data that cannot be decoded (a broken JPEG 2000 codestream)";
constexpr const char* unlike = "has a JPEG 2000 codestream with components of different sizes or of more than 16 bits";
constexpr const char* tooFine =
    "has a JPEG 2000 codestream cut into so small parts that decoding it would take far more memory or time than the "
    "image is worth";
using Bytes = std::vector<std::uint8_t>;

std::string refusal(const Bytes& codestream) {
    try {
        decodeJpeg2000(codestream);
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
        EXPECT_EQ(decodeJpeg2000(encodeJpeg2000({5, 4, 1, bits}, values)), words(values)) << bits;
    }
    const auto values = ramp(1, -32768, 3449);
    EXPECT_EQ(decodeJpeg2000(encodeJpeg2000({5, 4, 1, 16, true}, values)), words(values));
}

TEST(Jpeg2000, ColoursComeOutAsTheyWentIn) {
    for (const bool transformed : {false, true}) {
        const auto values = ramp(3, 5, 4);
        EXPECT_EQ(decodeJpeg2000(encodeJpeg2000({5, 4, 3, 8, false, transformed}, values)), words(values));
    }
}

TEST(Jpeg2000, WhatIsNoWholeCodestreamIsRefused) {
    EXPECT_EQ(refusal({}), broken);
    EXPECT_EQ(refusal({1, 2, 3, 4, 5, 6, 7, 8}), broken);
    const auto whole = encodeJpeg2000({5, 4, 1, 12}, ramp(1, 0, 200));
    // The marker of the end alone may be missing.
    for (std::size_t length = 0; length + 3 < whole.size(); ++length) {
        const std::string words = refusal({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)});
        EXPECT_TRUE(words == broken || words == "is truncated: its JPEG 2000 codestream has 0 of 1 tiles")
            << length << " of " << whole.size() << ": " << words;
    }
}

TEST(Jpeg2000, DeeperSamplesAreRefused) { EXPECT_EQ(refusal(encodeJpeg2000({5, 4, 1, 20}, ramp(1, 0, 1))), unlike); }

/// 32 x 32 pixels of which none is like its neighbours.
std::vector<int> scattered() {
    std::vector<int> out;
    for (int i = 0; i < 32 * 32; ++i) out.push_back(i * 7919 % 251);
    return out;
}

/// Where a marker stands, searched for from `from`.
std::size_t find(const Bytes& bytes, std::uint8_t marker, std::size_t from = 0) {
    const std::array<std::uint8_t, 2> both{0xFF, marker};
    return static_cast<std::size_t>(
        std::search(bytes.begin() + static_cast<std::ptrdiff_t>(from), bytes.end(), both.begin(), both.end()) -
        bytes.begin());
}

void put32(Bytes& bytes, std::size_t at, std::size_t value) {
    for (std::size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
}

constexpr std::uint8_t tilePart = 0x90;
constexpr std::size_t partLength = 6;  ///< of a tile-part's length from its marker

TEST(Jpeg2000, EveryTileMustBeThere) {
    const Bytes whole = encodeJpeg2000({32, 32, 1, 8, false, false, 8}, scattered());
    EXPECT_EQ(decodeJpeg2000(whole), words(scattered()));
    // Without the last ones.
    for (std::size_t kept = 0; kept < 16; ++kept) {
        std::size_t at = find(whole, tilePart);
        for (std::size_t i = 0; i < kept; ++i) at = find(whole, tilePart, at + 2);
        Bytes part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(at));
        part.insert(part.end(), {0xFF, 0xD9});
        EXPECT_EQ(
            refusal(part),
            kept == 0 ? broken : "is truncated: its JPEG 2000 codestream has " + std::to_string(kept) + " of 16 tiles");
    }
    // Twice the first one in place of the second one.
    Bytes twice = whole;
    twice[find(whole, tilePart, find(whole, tilePart) + 2) + 5] = 0;
    EXPECT_NE(refusal(twice), "");
}

/// Takes bytes from the end of the only tile and says so in its length.
Bytes shortened(const Bytes& whole, std::size_t missing) {
    Bytes out(whole.begin(), whole.end() - 2 - static_cast<std::ptrdiff_t>(missing));
    const std::size_t at = find(whole, tilePart);
    put32(out, at + partLength, out.size() - at);
    out.insert(out.end(), {0xFF, 0xD9});
    return out;
}

TEST(Jpeg2000, TilesThatEndEarlyAreRefused) {
    for (const OPJ_PROG_ORDER order : {OPJ_LRCP, OPJ_RLCP, OPJ_RPCL, OPJ_PCRL, OPJ_CPRL}) {
        for (const int layers : {1, 3}) {
            const Bytes whole = encodeJpeg2000({32, 32, 1, 8, false, false, 0, 3, layers, 16, order}, scattered());
            ASSERT_EQ(decodeJpeg2000(whole), words(scattered()));
            const std::size_t data = find(whole, 0x93) + 2;
            for (std::size_t missing = 1; missing + 2 <= whole.size() - data; ++missing)
                EXPECT_NE(refusal(shortened(whole, missing)), "") << order << ' ' << layers << ' ' << missing;
        }
    }
}

/// Declares a square of the given side, with tiles as large, and precincts of one sample.
Bytes hugeAndFine(std::size_t side, std::size_t tile, int levels, std::size_t layers) {
    Bytes out{0xFF, 0x4F, 0xFF, 0x51, 0, 41, 0, 0};
    const auto put = [&out](std::size_t value) {
        out.resize(out.size() + 4);
        put32(out, out.size() - 4, value);
    };
    for (const std::size_t number :
         {side, side, std::size_t{0}, std::size_t{0}, tile, tile, std::size_t{0}, std::size_t{0}})
        put(number);
    out.insert(out.end(), {0, 1, 7, 1, 1});
    out.insert(out.end(),
               {0xFF, 0x52, 0, static_cast<std::uint8_t>(13 + levels), 1, 0, static_cast<std::uint8_t>(layers >> 8U),
                static_cast<std::uint8_t>(layers), 0, static_cast<std::uint8_t>(levels), 4, 4, 0, 1});
    for (int i = 0; i <= levels; ++i) out.push_back(i == 0 ? 0x00 : 0x11);
    out.insert(out.end(), {0xFF, 0x5C, 0, static_cast<std::uint8_t>(4 + 3 * levels), 0x40});
    for (int i = 0; i <= 3 * levels; ++i) out.push_back(0x48);
    for (std::size_t i = 0; i < (side / tile) * (side / tile) && i < 65535; ++i) {
        out.insert(out.end(), {0xFF, 0x90, 0, 10, static_cast<std::uint8_t>(i >> 8U), static_cast<std::uint8_t>(i)});
        put(15);
        out.insert(out.end(), {0, 1, 0xFF, 0x93, 0});
    }
    out.insert(out.end(), {0xFF, 0xD9});
    return out;
}

TEST(Jpeg2000, SmallPartsThatAreUsualAreDecoded) {
    std::vector<int> values;
    for (int i = 0; i < 256 * 256; ++i) values.push_back(i * 7919 % 251);
    EXPECT_EQ(decodeJpeg2000(encodeJpeg2000({256, 256, 1, 8, false, false, 8}, values)), words(values));
    EXPECT_EQ(decodeJpeg2000(encodeJpeg2000({256, 256, 1, 8, false, false, 0, 6, 12, 64}, values)), words(values));
}

TEST(Jpeg2000, PartsFarSmallerThanTheImageAreRefusedBeforeDecoding) {
    const zoltest::PeakMemory memory;
    EXPECT_EQ(refusal(hugeAndFine(4096, 4096, 5, 1)), tooFine);
    EXPECT_EQ(refusal(hugeAndFine(4096, 1024, 5, 1)), tooFine);
    EXPECT_EQ(refusal(hugeAndFine(1024, 1024, 0, 65535)), tooFine);
    EXPECT_EQ(refusal(hugeAndFine(32000, 128, 0, 1)), tooFine);
    EXPECT_EQ(refusal(hugeAndFine(32000, 100, 0, 1)), broken);
    EXPECT_LT(memory.grown(), 64U << 20U);
}

TEST(Jpeg2000, ChangedBytesNeverDoHarm) {
    const auto whole = encodeJpeg2000({5, 4, 3, 8}, ramp(3, 0, 4));
    for (std::size_t i = 0; i < whole.size(); ++i) {
        for (const int flip : {1, 0x80, 0xFF}) {
            auto changed = whole;
            changed[i] = static_cast<std::uint8_t>(changed[i] ^ flip);
            const std::string words = refusal(changed);
            EXPECT_TRUE(words.empty() || words == broken || words == unlike || words == tooFine ||
                        words.starts_with("is truncated: "))
                << words;
        }
    }
}

}  // namespace
