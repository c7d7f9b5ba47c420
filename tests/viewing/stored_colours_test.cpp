// Colour images of every kind, from the file to the picture: each pixel as DICOM defines it.
#include "support/dicom_writer.h"
#include "viewing/open.h"
#include "viewing/render.h"

#include <dcmtk/dcmdata/dcrleerg.h>
#include <dcmtk/dcmdata/dcrlerp.h>
#include <dcmtk/dcmjpeg/djencode.h>
#include <dcmtk/dcmjpeg/djrplol.h>
#include <dcmtk/dcmjpls/djencode.h>
#include <dcmtk/dcmjpls/djrparam.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

namespace {

using namespace viewing;
using zoltest::DicomWriter;
using zoltest::TableDescriptor;
using zoltest::TemporaryFolder;
using Words = std::vector<std::uint16_t>;
using Pixels = std::vector<std::uint32_t>;

Picture show(DicomWriter& writer, const DisplaySettings& settings = {},
             E_TransferSyntax syntax = EXS_LittleEndianExplicit, int frame = 1) {
    const TemporaryFolder folder;
    std::vector<std::string> notes;
    OpenSettings load;
    load.frame = frame;
    Picture picture = render(openImage(writer.save(folder, syntax), load), settings, notes);
    EXPECT_TRUE(notes.empty());
    return picture;
}

std::string refusal(DicomWriter& writer) {
    try {
        show(writer);
    } catch (const Refusal& refused) {
        return refused.what();
    }
    return {};
}

/// Samples of a picture of 3 x 2 pixels, pixel after pixel.
const Words samples{255, 0, 1, 10, 200, 30, 0, 0, 255, 128, 128, 128, 255, 255, 254, 3, 2, 1};
const Pixels picture3x2{0xFF0001, 0x0AC81E, 0x0000FF, 0x808080, 0xFFFFFE, 0x030201};

Words toPlanes(const Words& interleaved) {
    Words out;
    for (std::size_t sample = 0; sample < 3; ++sample)
        for (std::size_t i = sample; i < interleaved.size(); i += 3) out.push_back(interleaved[i]);
    return out;
}

TEST(StoredColours, RgbInBothPlanarConfigurations) {
    for (const E_TransferSyntax syntax : {EXS_LittleEndianExplicit, EXS_LittleEndianImplicit, EXS_BigEndianExplicit}) {
        DicomWriter pixels(3, 2);
        EXPECT_EQ(show(pixels.colours("RGB", 8, 0, samples), {}, syntax).pixels, picture3x2);
        DicomWriter planes(3, 2);
        EXPECT_EQ(show(planes.colours("RGB", 8, 1, toPlanes(samples)), {}, syntax).pixels, picture3x2);
    }
}

TEST(StoredColours, OddNumbersOfBytes) {
    DicomWriter writer(1, 3);
    writer.colours("RGB", 8, 0, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    EXPECT_EQ(show(writer).pixels, (Pixels{0x010203, 0x040506, 0x070809}));
}

TEST(StoredColours, DeepSamplesShowTheirUpperEightBits) {
    Words words;
    Pixels expected;
    for (int i = 0; i < 64; ++i) {
        const std::array<int, 3> rgb{i * 1023 % 65536, 65535 - i * 777, i == 63 ? 65535 : i};
        std::uint32_t pixel = 0;
        for (const int value : rgb) {
            words.push_back(static_cast<std::uint16_t>(value));
            pixel = (pixel << 8U) | static_cast<std::uint32_t>(value >> 8);
        }
        expected.push_back(pixel);
    }
    for (const int planar : {0, 1}) {
        DicomWriter writer(8, 8);
        EXPECT_EQ(show(writer.colours("RGB", 16, planar, planar == 0 ? words : toPlanes(words))).pixels, expected);
    }
    DicomWriter twelve(2, 1);
    EXPECT_EQ(show(twelve.colours("RGB", 12, 0, {4095, 0, 16, 15, 2048, 4080})).pixels, (Pixels{0xFF0001, 0x0080FF}));
    DicomWriter ten(2, 1);
    EXPECT_EQ(show(ten.colours("RGB", 10, 0, {1023, 0, 4, 3, 512, 1020})).pixels, (Pixels{0xFF0001, 0x0080FF}));
}

/// DICOM's full range luminance and colour differences.
std::uint32_t fromYbr(double y, double b, double r) {
    const auto level = [](double value) {
        return static_cast<std::uint32_t>(std::clamp(std::floor(value + 0.5), 0.0, 255.0));
    };
    return (level(y + 1.402 * (r - 128.0)) << 16U) |
           (level(y - 0.344136 * (b - 128.0) - 0.714136 * (r - 128.0)) << 8U) | level(y + 1.772 * (b - 128.0));
}

TEST(StoredColours, YbrFull) {
    Words words;
    Pixels expected;
    for (int i = 0; i < 4096; ++i) {
        const int y = (i & 15) * 17, b = ((i >> 4) & 15) * 17, r = (i >> 8) * 17;
        for (const int value : {y, b, r}) words.push_back(static_cast<std::uint16_t>(value));
        expected.push_back(fromYbr(y, b, r));
    }
    for (const int planar : {0, 1}) {
        DicomWriter writer(64, 64);
        EXPECT_EQ(show(writer.colours("YBR_FULL", 8, planar, planar == 0 ? words : toPlanes(words))).pixels, expected);
    }
    DicomWriter primary(3, 1);
    primary.colours("YBR_FULL", 8, 0, {76, 85, 255, 150, 44, 21, 29, 255, 107});
    EXPECT_EQ(show(primary).pixels, (Pixels{0xFE0000, 0x00FF01, 0x0000FE}));
}

TEST(StoredColours, YbrFull422SharesColourBetweenTwoPixels) {
    DicomWriter writer(4, 2);
    writer.colours("YBR_FULL_422", 8, 0, {50, 200, 90, 240, 0, 255, 128, 128, 10, 20, 30, 40, 250, 240, 230, 220});
    EXPECT_EQ(show(writer).pixels,
              (Pixels{fromYbr(50, 90, 240), fromYbr(200, 90, 240), 0x000000, 0xFFFFFF, fromYbr(10, 30, 40),
                      fromYbr(20, 30, 40), fromYbr(250, 230, 220), fromYbr(240, 230, 220)}));
    DicomWriter odd(3, 2);
    odd.colours("YBR_FULL_422", 8, 0, Words(12));
    EXPECT_EQ(refusal(odd), "has YBR_FULL_422 pixels in rows of an odd length, which cannot be");
}

/// The file in a compressed form that loses nothing.
void compress(DicomWriter& writer, E_TransferSyntax syntax) {
    DcmRLEEncoderRegistration::registerCodecs();
    // The samples as they are, without the toolkit's picture processing.
    constexpr bool processed = false;
    DJLSEncoderRegistration::registerCodecs(0, 0, 0, 0, processed);
    DJEncoderRegistration::registerCodecs();
    const DJLSRepresentationParameter lossless(0, OFTrue);
    const DJ_RPLossless predicted;
    const DcmRLERepresentationParameter runs;
    const DcmRepresentationParameter* parameter = &lossless;
    if (syntax == EXS_RLELossless) parameter = &runs;
    if (syntax == EXS_JPEGProcess14SV1) parameter = &predicted;
    const OFCondition done = writer.dataset().chooseRepresentation(syntax, parameter);
    EXPECT_TRUE(done.good()) << done.text() << syntax;
    EXPECT_TRUE(writer.dataset().canWriteXfer(syntax));
    DJEncoderRegistration::cleanup();
    DJLSEncoderRegistration::cleanup();
    DcmRLEEncoderRegistration::cleanup();
}

TEST(StoredColours, CompressedPlanesAndPixelsAgree) {
    for (const E_TransferSyntax syntax : {EXS_RLELossless, EXS_JPEGLSLossless, EXS_JPEGProcess14SV1}) {
        for (const int planar : {0, 1}) {
            DicomWriter writer(3, 2);
            writer.colours("RGB", 8, planar, planar == 0 ? samples : toPlanes(samples));
            compress(writer, syntax);
            EXPECT_EQ(show(writer, {}, syntax).pixels, picture3x2) << syntax << ' ' << planar;
        }
        DicomWriter ybr(1, 1);
        ybr.colours("YBR_FULL", 8, 0, {50, 90, 240});
        compress(ybr, syntax);
        const std::uint32_t shown = show(ybr, {}, syntax).pixels.front();
        const std::uint32_t defined = fromYbr(50, 90, 240);
        // JPEG's decoder converts the colours itself, with a rounding of its own.
        const int tolerance = syntax == EXS_JPEGProcess14SV1 ? 1 : 0;
        for (const int shift : {0, 8, 16})
            EXPECT_NEAR((shown >> shift) & 0xFFU, (defined >> shift) & 0xFFU, tolerance) << syntax;
    }
}

TEST(StoredColours, PalettesOfEightAndSixteenBits) {
    DicomWriter eight(5, 1);
    eight.format(8, 8, 7, 0).remove(DCM_PixelData).bytes({0, 9, 10, 11, 255});
    // Two entries in each word, the first one low.
    eight.palette({4, 9, 8}, {0x2010, 0x4030}, {0xFF00, 0x0102}, {0x0000, 0x00FF});
    EXPECT_EQ(show(eight).pixels, (Pixels{0x100000, 0x100000, 0x20FF00, 0x3002FF, 0x400100}));

    DicomWriter sixteen(3, 1);
    sixteen.format(8, 8, 7, 0).remove(DCM_PixelData).bytes({0, 1, 2});
    sixteen.palette({3, 0, 16}, {0x00FF, 0x80FF, 0xFF00}, {0, 0x0100, 0xFFFF}, {0x7F80, 0, 1});
    EXPECT_EQ(show(sixteen).pixels, (Pixels{0x00007F, 0x800100, 0xFFFF00}));

    // One entry in each word, though it has eight bits only.
    DicomWriter wide(2, 1);
    wide.format(8, 8, 7, 0).remove(DCM_PixelData).bytes({0, 1}).palette({2, 0, 8}, {1, 2}, {3, 4}, {5, 6});
    EXPECT_EQ(show(wide).pixels, (Pixels{0x010305, 0x020406}));
}

TEST(StoredColours, PalettesOfOtherBitsKeepTheirBalance) {
    // Four bits come up to eight.
    DicomWriter narrow(2, 1);
    narrow.format(8, 8, 7, 0).remove(DCM_PixelData).bytes({0, 1}).palette({2, 0, 4}, {1, 15}, {2, 0}, {3, 8});
    EXPECT_EQ(show(narrow).pixels, (Pixels{0x102030, 0xF00080}));
    // Red uses ten bits where eight are declared: all three are taken for ten.
    DicomWriter more(2, 1);
    more.format(8, 8, 7, 0).remove(DCM_PixelData).bytes({0, 1}).palette({2, 0, 8}, {4, 1023}, {8, 255}, {12, 128});
    EXPECT_EQ(show(more).pixels, (Pixels{0x010203, 0xFF3F20}));
}

TEST(StoredColours, PalettesOf65536EntriesAndSignedIndices) {
    Words red(65536), green(65536), blue(65536);
    for (std::size_t i = 0; i < red.size(); ++i) {
        red[i] = static_cast<std::uint16_t>(i);
        green[i] = static_cast<std::uint16_t>(65535 - i);
        blue[i] = static_cast<std::uint16_t>(i << 8U);
    }
    const auto colour = [&](std::size_t i) {
        return static_cast<std::uint32_t>(((red[i] >> 8) << 16) | ((green[i] >> 8) << 8) | (blue[i] >> 8));
    };
    DicomWriter plain(3, 1);
    plain.format(16, 16, 15, 0).pixels({0, 0x8001, 0xFFFF}).palette({0, 0, 16}, red, green, blue);
    EXPECT_EQ(show(plain).pixels, (Pixels{colour(0), colour(0x8001), colour(0xFFFF)}));
    DicomWriter lifted(3, 1);
    lifted.format(16, 16, 15, 1).pixels({0x8000, 0, 0x7FFF}).palette({0, -32768, 16, true}, red, green, blue);
    EXPECT_EQ(show(lifted).pixels, (Pixels{colour(0), colour(0x8000), colour(0xFFFF)}));
}

TEST(StoredColours, SegmentedPalettes) {
    DicomWriter writer(4, 1);
    writer.format(8, 8, 7, 0).remove(DCM_PixelData).bytes({0, 1, 128, 255});
    writer.palette({256, 0, 16}, {}, {}, {});
    for (const DcmTagKey& tag : {DCM_RedPaletteColorLookupTableData, DCM_GreenPaletteColorLookupTableData,
                                 DCM_BluePaletteColorLookupTableData})
        writer.remove(tag);
    zoltest::putWords(writer.dataset(), DCM_SegmentedRedPaletteColorLookupTableData, {0, 1, 0, 1, 255, 0xFF00});
    zoltest::putWords(writer.dataset(), DCM_SegmentedGreenPaletteColorLookupTableData,
                      {0, 1, 0xFF00, 1, 127, 0xFF00, 0, 1, 0, 1, 127, 0});
    zoltest::putWords(writer.dataset(), DCM_SegmentedBluePaletteColorLookupTableData,
                      {0, 2, 0x1000, 0x2000, 1, 254, 0x2000});
    EXPECT_EQ(show(writer).pixels, (Pixels{0x00FF10, 0x01FF20, 0x800020, 0xFF0020}));
}

TEST(StoredColours, PaddingOfPalettesIsBlack) {
    DicomWriter writer(2, 1);
    writer.format(8, 8, 7, 0).remove(DCM_PixelData).bytes({0, 1}).palette({2, 0, 8}, {9, 9}, {9, 9}, {9, 9});
    writer.word(DCM_PixelPaddingValue, 0);
    EXPECT_EQ(show(writer).pixels, (Pixels{0x000000, 0x090909}));
}

TEST(StoredColours, ShuttersAndPlanesLieOnColours) {
    DicomWriter writer(4, 1);
    writer.colours("RGB", 8, 0, Words(12, 200));
    writer.put(DCM_ShutterShape, "RECTANGULAR").word(DCM_ShutterPresentationValue, 0x4000);
    writer.put(DCM_ShutterLeftVerticalEdge, "1").put(DCM_ShutterRightVerticalEdge, "2");
    writer.put(DCM_ShutterUpperHorizontalEdge, "1").put(DCM_ShutterLowerHorizontalEdge, "1");
    writer.overlay(0x6000, 1, 4, 1, 1, {0x0008});
    writer.overlay(0x6002, 1, 4, 1, 1, {0x000A}, "R");
    EXPECT_EQ(show(writer).pixels, (Pixels{0xC8C8C8, 0x00D0FF, 0x404040, 0xFFC000}));
    DisplaySettings bare;
    bare.shutters = false;
    bare.overlays = false;
    EXPECT_EQ(show(writer, bare).pixels, Pixels(4, 0xC8C8C8));
}

TEST(StoredColours, InversionWindowAndBackground) {
    DicomWriter writer(2, 1);
    writer.colours("RGB", 8, 0, {100, 150, 200, 0, 125, 255});
    DisplaySettings settings;
    settings.invert = true;
    EXPECT_EQ(show(writer, settings).pixels, (Pixels{0x9B6937, 0xFF8200}));
    settings.invert = false;
    settings.window = Window{150.5, 101.0};
    EXPECT_EQ(show(writer, settings).pixels, (Pixels{0x0080FF, 0x0040FF}));
    settings.window.reset();
    settings.size = Size{4, 1};
    settings.background = 9;
    EXPECT_EQ(show(writer, settings).pixels, (Pixels{0x090909, 0x6496C8, 0x007DFF, 0x090909}));
    DicomWriter deep(2, 1);
    deep.colours("RGB", 16, 0, {0, 0x8000, 0xFFFF, 0x4000, 0x2000, 0x1000});
    settings = {};
    settings.window = Window{1024.5, 2049.0};
    EXPECT_EQ(show(deep, settings).pixels, (Pixels{0x00FFFF, 0x804020}));
}

TEST(StoredColours, BurntInLinesAreBrightWithADarkShadow) {
    DicomWriter writer(64, 64);
    writer.colours("RGB", 8, 0, Words(64 * 64 * 3, 90));
    DisplaySettings settings;
    settings.annotations = parseAnnotations(R"({"annotations": [{"figure": "line", "points": [[5, 30], [60, 30]]}]})");
    settings.burnIn = true;
    const Picture picture = show(writer, settings);
    // The library's ink for lines is added to what lies below.
    for (int x = 8; x < 57; ++x) EXPECT_EQ(picture.at(x, 30), 0xFFFF5AU) << x;
    EXPECT_GT(std::count(picture.pixels.begin(), picture.pixels.end(), 0U), 40);
    EXPECT_EQ(picture.at(30, 10), 0x5A5A5AU);
}

TEST(StoredColours, FramesInColour) {
    DicomWriter writer(1, 1);
    writer.colours("RGB", 8, 0, {1, 2, 3, 4, 5, 6, 7, 8, 9}).put(DCM_NumberOfFrames, "3");
    EXPECT_EQ(show(writer).pixels, (Pixels{0x010203}));
    EXPECT_EQ(show(writer, {}, EXS_LittleEndianExplicit, 2).pixels, (Pixels{0x040506}));
    EXPECT_EQ(show(writer, {}, EXS_LittleEndianExplicit, 3).pixels, (Pixels{0x070809}));
}

TEST(StoredColours, PalettesForGreyAreNotUsedAndSaid) {
    const TemporaryFolder folder;
    DicomWriter writer(1, 1);
    writer.colours("RGB", 8, 0, {1, 2, 3});
    DisplaySettings settings;
    settings.palette.emplace();
    std::vector<std::string> notes;
    EXPECT_EQ(render(openImage(writer.save(folder), {}), settings, notes).pixels, (Pixels{0x010203}));
    EXPECT_EQ(notes, (std::vector<std::string>{"has its own colours; the palette is not used"}));
}

TEST(StoredColours, WhatCannotBeIsRefused) {
    DicomWriter signedColours(1, 1);
    signedColours.colours("RGB", 8, 0, {1, 2, 3}).word(DCM_PixelRepresentation, 1);
    EXPECT_EQ(refusal(signedColours), "has signed colours, which cannot be");
    DicomWriter samplesMissing(2, 2);
    samplesMissing.put(DCM_PhotometricInterpretation, "RGB");
    EXPECT_EQ(refusal(samplesMissing), "has 1 samples a pixel, which does not go with RGB");
    DicomWriter four(1, 1);
    four.colours("RGB", 8, 0, {1, 2, 3, 4}).word(DCM_SamplesPerPixel, 4);
    EXPECT_EQ(refusal(four), "has 4 samples a pixel, which does not go with RGB");
    DicomWriter grey(1, 1);
    grey.colours("MONOCHROME2", 8, 0, {1, 2, 3});
    EXPECT_EQ(refusal(grey), "has 3 samples a pixel, which does not go with MONOCHROME2");
    DicomWriter partial(2, 1);
    partial.colours("YBR_PARTIAL_422", 8, 0, {1, 2, 3, 4});
    EXPECT_EQ(refusal(partial), "has the photometric interpretation 'YBR_PARTIAL_422', which zolview cannot show");
    DicomWriter shortData(2, 2);
    shortData.colours("RGB", 8, 0, Words(10));
    EXPECT_EQ(refusal(shortData), "is truncated: its Pixel Data has 10 of 12 bytes");
}

TEST(StoredColours, BrokenPalettesAreRefused) {
    const auto words = [](const std::function<void(DicomWriter&)>& spoil) {
        DicomWriter writer(2, 1);
        writer.palette({2, 0, 16}, {1, 2}, {3, 4}, {5, 6});
        spoil(writer);
        return refusal(writer);
    };
    EXPECT_EQ(words([](DicomWriter& w) { w.remove(DCM_GreenPaletteColorLookupTableData); }),
              "has a green palette with 0 of 2 entries");
    EXPECT_EQ(words([](DicomWriter& w) { w.remove(DCM_BluePaletteColorLookupTableDescriptor); }),
              "has a blue palette without a descriptor of three numbers");
    EXPECT_EQ(words([](DicomWriter& w) {
                  zoltest::putDescriptor(w.dataset(), DCM_RedPaletteColorLookupTableDescriptor, {3, 0, 16});
              }),
              "has a red palette with 2 of 3 entries");
    EXPECT_EQ(words([](DicomWriter& w) {
                  zoltest::putDescriptor(w.dataset(), DCM_RedPaletteColorLookupTableDescriptor, {2, 0, 17});
              }),
              "has a red palette with entries of 17 bits");
    EXPECT_EQ(words([](DicomWriter& w) {
                  w.remove(DCM_RedPaletteColorLookupTableData);
                  zoltest::putWords(w.dataset(), DCM_SegmentedRedPaletteColorLookupTableData, {1, 2, 3});
              }),
              "has a red palette whose segments cannot be read");
}

}  // namespace
