// Small files of every kind, from the file to the picture: each pixel as DICOM defines it.
#include "support/dicom_writer.h"
#include "viewing/dicom/dicom_file.h"
#include "viewing/open.h"
#include "viewing/render.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <numeric>

namespace {

using namespace viewing;
using zoltest::DicomWriter;
using zoltest::TableDescriptor;
using zoltest::TemporaryFolder;
using Words = std::vector<std::uint16_t>;

Picture show(DicomWriter& writer, const DisplaySettings& settings = {}, const OpenSettings& load = {},
             E_TransferSyntax syntax = EXS_LittleEndianExplicit) {
    const TemporaryFolder folder;
    std::vector<std::string> notes;
    Picture picture = render(openImage(writer.save(folder, syntax), load), settings, notes);
    EXPECT_TRUE(notes.empty());
    return picture;
}

Words counted(int count) {
    Words out(static_cast<std::size_t>(count));
    std::iota(out.begin(), out.end(), std::uint16_t{0});
    return out;
}

/// An image with every word of so many bits (an even number) once, in rising order.
DicomWriter everyWord(int bits, bool isSigned = false) {
    const int side = 1 << (bits / 2);
    DicomWriter writer(side, side);
    writer.format(bits == 8 ? 8 : 16, bits, bits - 1, isSigned ? 1 : 0).remove(DCM_PixelData);
    const Words words = counted(side * side);
    if (bits == 8) return std::move(writer.bytes({words.begin(), words.end()}));
    return std::move(writer.pixels(words));
}

int storedValue(std::size_t word, int bits, bool isSigned) {
    const int value = static_cast<int>(word);
    return isSigned && value >= 1 << (bits - 1) ? value - (1 << bits) : value;
}

/// The grey, 0 to 255, that a stored value is to have.
using Definition = std::function<double(int)>;

/// Compares the picture of everyWord. `tolerance` 0 asks for the nearest grey.
void expectGreys(const Picture& picture, int bits, bool isSigned, const Definition& grey, double tolerance = 0.0) {
    for (std::size_t word = 0; word < picture.pixels.size(); ++word) {
        const std::uint32_t pixel = picture.pixels[word];
        const double expected = grey(storedValue(word, bits, isSigned));
        ASSERT_EQ(pixel, (pixel & 0xFFU) * 0x010101U);
        if (tolerance == 0.0) {
            ASSERT_EQ(pixel & 0xFFU, static_cast<std::uint32_t>(std::floor(expected + 0.5))) << word;
        } else {
            ASSERT_NEAR(pixel & 0xFFU, expected, tolerance) << word;
        }
    }
}

double linear(double value, double centre, double width) {
    if (value <= centre - 0.5 - (width - 1.0) / 2.0) return 0.0;
    if (value > centre - 0.5 + (width - 1.0) / 2.0) return 255.0;
    return ((value - (centre - 0.5)) / (width - 1.0) + 0.5) * 255.0;
}

double linearExact(double value, double centre, double width) {
    if (value <= centre - width / 2.0) return 0.0;
    if (value > centre + width / 2.0) return 255.0;
    return ((value - centre) / width + 0.5) * 255.0;
}

double sigmoid(double value, double centre, double width) {
    return 255.0 / (1.0 + std::exp(-4.0 * (value - centre) / width));
}

/// In full, so that what is read is what was meant.
std::string decimal(double value) {
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

DicomWriter& setWindow(DicomWriter& writer, double centre, double width, const std::string& function = "") {
    writer.put(DCM_WindowCenter, decimal(centre)).put(DCM_WindowWidth, decimal(width));
    return function.empty() ? writer : writer.put(DCM_VOILUTFunction, function);
}

TEST(StoredValues, LinearWindowsAreWithinOneGreyForEveryValueOfEveryDepth) {
    for (const int bits : {8, 12, 16}) {
        for (const bool isSigned : {false, true}) {
            const double span = 1 << bits;
            const double zero = isSigned ? -span / 2.0 : 0.0;
            for (const double width : {1.0, 2.0, 3.0, 5.0, 60.5, 101.0, 256.0, span - 1.0, span, 3.0 * span}) {
                for (const double centre :
                     {zero + 0.1 * span, zero + span / 2.0, zero + 0.7 * span + 0.3, zero - 9.0}) {
                    DicomWriter writer = everyWord(bits, isSigned);
                    expectGreys(
                        show(setWindow(writer, centre, width)), bits, isSigned,
                        [&](int value) { return linear(value, centre, width); }, 1.0);
                    if (HasFatalFailure()) FAIL() << bits << ' ' << isSigned << ' ' << centre << '/' << width;
                }
            }
        }
    }
}

TEST(StoredValues, ExactAndSigmoidWindowsAreWithinOneGreyForEveryValue) {
    for (const int bits : {8, 12, 16}) {
        const double span = 1 << bits;
        for (const double width : {0.25, 3.0, 100.25, span}) {
            for (const double centre : {span / 2.0 + 0.5, 1.5 * span}) {
                DicomWriter exact = everyWord(bits);
                expectGreys(
                    show(setWindow(exact, centre, width, "LINEAR_EXACT")), bits, false,
                    [&](int value) { return linearExact(value, centre, width); }, 1.0);
                DicomWriter curved = everyWord(bits);
                expectGreys(
                    show(setWindow(curved, centre, width, "SIGMOID")), bits, false,
                    [&](int value) { return sigmoid(value, centre, width); }, 1.0);
                if (HasFatalFailure()) FAIL() << bits << ' ' << centre << '/' << width;
            }
        }
    }
}

TEST(StoredValues, RescaledWindowsAreWithinOneGreyForRisingAndFallingSlopes) {
    for (const int bits : {12, 16}) {
        for (const double slope : {0.1, 2.5, -1.0}) {
            const double intercept = slope < 0.0 ? 4000.0 : -1024.0;
            for (const double width : {7.0, 3000.0}) {
                DicomWriter writer = everyWord(bits, true);
                writer.put(DCM_RescaleSlope, decimal(slope)).put(DCM_RescaleIntercept, decimal(intercept));
                expectGreys(
                    show(setWindow(writer, 40.0, width)), bits, true,
                    [&](int value) { return linear(slope * value + intercept, 40.0, width); }, 1.0);
                if (HasFatalFailure()) FAIL() << bits << ' ' << slope << ' ' << width;
            }
        }
    }
}

TEST(StoredValues, WithoutAWindowAllValuesInUseSpreadFromBlackToWhite) {
    for (const int bits : {8, 12, 16}) {
        DicomWriter writer = everyWord(bits);
        expectGreys(
            show(writer), bits, false, [&](int value) { return 255.0 * value / ((1 << bits) - 1); }, 1.0);
    }
    DicomWriter narrow(3, 1);
    narrow.format(16, 16, 15, 1).pixels({0xFFF6, 0, 10});
    const Picture picture = show(narrow);
    EXPECT_EQ(picture.at(0, 0), 0x000000U);
    EXPECT_EQ(picture.at(1, 0) & 0xFFU, 128U);
    EXPECT_EQ(picture.at(2, 0), 0xFFFFFFU);
}

TEST(StoredValues, HighBitsAnywhere) {
    // The same values at the bottom, in the middle and at the top of the word, with rubbish around them.
    for (const auto& [stored, high] :
         {std::pair(9, 8), {9, 12}, {9, 15}, {12, 13}, {10, 9}, {1, 0}, {1, 15}, {15, 15}}) {
        for (const int representation : {0, 1}) {
            DicomWriter writer(16, 16);
            Words words;
            for (int i = 0; i < 256; ++i) {
                const int value = i * ((1 << stored) - 1) / 255;
                const int shift = high + 1 - stored;
                const int mask = ((1 << stored) - 1) << shift;
                words.push_back(static_cast<std::uint16_t>(((value << shift) & mask) | (0xA5A5 & ~mask)));
            }
            writer.format(16, stored, high, representation).pixels(words);
            setWindow(writer, representation == 0 ? (1 << stored) / 2.0 : 0.0, 1 << stored, "LINEAR_EXACT");
            const Picture picture = show(writer);
            for (int i = 0; i < 256; ++i) {
                const double span = 1 << stored;
                const int value =
                    storedValue(static_cast<std::size_t>(i * ((1 << stored) - 1) / 255), stored, representation == 1);
                const double expected = linearExact(value, representation == 0 ? span / 2.0 : 0.0, span);
                ASSERT_NEAR(picture.pixels[static_cast<std::size_t>(i)] & 0xFFU, expected, 1.0)
                    << stored << ' ' << high << ' ' << representation << ' ' << i;
            }
        }
    }
}

TEST(StoredValues, VoiTablesStandForWindows) {
    // 100 entries from 50, falling: values before and behind take the ends.
    Words entries;
    for (int i = 0; i < 100; ++i) entries.push_back(static_cast<std::uint16_t>(4000 - 30 * i));
    for (const int bits : {8, 12, 16}) {
        DicomWriter writer = everyWord(bits);
        writer.lut(DCM_VOILUTSequence, {100, 50, 12}, entries);
        expectGreys(show(writer), bits, false,
                    [&](int value) { return 255.0 * (4000 - 30 * std::clamp(value - 50, 0, 99)) / 4095.0; });
    }
}

TEST(StoredValues, VoiTablesTakeOutputValues) {
    // Inputs -1000 to -901 after a fractional slope: the nearest entry.
    Words entries;
    for (int i = 0; i < 100; ++i) entries.push_back(static_cast<std::uint16_t>(i * 600));
    for (const bool declaredSigned : {true, false}) {
        for (const int bits : {12, 16}) {
            DicomWriter writer = everyWord(bits, true);
            writer.put(DCM_RescaleSlope, "0.25").put(DCM_RescaleIntercept, "-950");
            writer.lut(DCM_VOILUTSequence, {100, -1000, 16, declaredSigned}, entries);
            expectGreys(show(writer), bits, true, [&](int value) {
                const double output = 0.25 * value - 950.0;
                const int index = std::clamp(static_cast<int>(std::floor(output + 0.5)) + 1000, 0, 99);
                return 255.0 * index * 600 / 65535.0;
            });
        }
    }
}

TEST(StoredValues, DescriptorZeroMeans65536Entries) {
    Words entries(65536);
    for (std::size_t i = 0; i < entries.size(); ++i) entries[i] = static_cast<std::uint16_t>(65535 - i);
    DicomWriter writer = everyWord(16);
    writer.lut(DCM_VOILUTSequence, {0, 0, 16}, entries);
    expectGreys(show(writer), 16, false, [](int value) { return 255.0 * (65535 - value) / 65535.0; });
    DicomWriter modality = everyWord(16, true);
    modality.lut(DCM_ModalityLUTSequence, {0, -32768, 16, true}, entries);
    setWindow(modality, 32768.5, 65536);
    // Some values lie half-way between two greys.
    expectGreys(
        show(modality), 16, true, [](int value) { return linear(32767 - value, 32768.5, 65536); }, 0.5000001);
}

TEST(StoredValues, ModalityTablesComeBeforeTheWindow) {
    Words entries;
    for (int i = 0; i < 256; ++i) entries.push_back(static_cast<std::uint16_t>((i * 77) % 256 * 4));
    for (const bool declaredSigned : {true, false}) {
        DicomWriter writer = everyWord(12, true);
        writer.lut(DCM_ModalityLUTSequence, {256, -100, 10, declaredSigned}, entries);
        setWindow(writer, 500.0, 900.0);
        expectGreys(show(writer), 12, true, [&](int value) {
            const int index = std::clamp(value + 100, 0, 255);
            return linear((index * 77) % 256 * 4, 500.0, 900.0);
        });
    }
}

TEST(StoredValues, PresentationTablesComeLast) {
    // The output of the window spreads over all entries, whatever their number.
    for (const int count : {2, 256, 1000, 4096, 65536}) {
        Words entries;
        for (int i = 0; i < count; ++i)
            entries.push_back(static_cast<std::uint16_t>(std::lround(1023.0 * std::sqrt(double(i) / (count - 1)))));
        for (const int bits : {8, 12, 16}) {
            DicomWriter writer = everyWord(bits);
            writer.lut(DCM_PresentationLUTSequence, {count % 65536, 0, 10}, entries);
            const double span = 1 << bits;
            setWindow(writer, span / 2.0 + 0.5, span / 2.0, "SIGMOID");
            expectGreys(
                show(writer), bits, false,
                [&](int value) {
                    const double shown = sigmoid(value, span / 2.0 + 0.5, span / 2.0) / 255.0;
                    return 255.0 * entries[static_cast<std::size_t>(std::floor(shown * (count - 1) + 0.5))] / 1023.0;
                },
                0.5000001);
            if (HasFatalFailure()) FAIL() << count << ' ' << bits;
        }
    }
}

TEST(StoredValues, AllThreeTablesTogether) {
    Words scrambled;
    for (int i = 0; i < 256; ++i) scrambled.push_back(static_cast<std::uint16_t>((i * 101 + 7) % 256));
    for (const int bits : {8, 12, 16}) {
        DicomWriter writer = everyWord(bits);
        for (const DcmTagKey& sequence : {DCM_ModalityLUTSequence, DCM_VOILUTSequence, DCM_PresentationLUTSequence})
            writer.lut(sequence, {256, 0, 8}, scrambled);
        expectGreys(show(writer), bits, false, [](int value) {
            for (int i = 0; i < 3; ++i) value = (std::min(value, 255) * 101 + 7) % 256;
            return value;
        });
    }
}

TEST(StoredValues, LowValuesAreWhiteOnceWhateverSaysSo) {
    for (const int bits : {8, 12, 16}) {
        for (const char* photometric : {"MONOCHROME1", "MONOCHROME2"}) {
            for (const char* shape : {"", "IDENTITY", "INVERSE"}) {
                for (const bool invert : {false, true}) {
                    DicomWriter writer = everyWord(bits);
                    writer.put(DCM_PhotometricInterpretation, photometric);
                    if (*shape != 0) writer.put(DCM_PresentationLUTShape, shape);
                    const bool white =
                        (photometric == std::string("MONOCHROME1") || shape == std::string("INVERSE")) != invert;
                    DisplaySettings settings;
                    settings.invert = invert;
                    const double top = (1 << bits) - 1;
                    expectGreys(
                        show(writer, settings), bits, false,
                        [&](int value) { return 255.0 * (white ? top - value : value) / top; }, 1.0);
                }
            }
        }
    }
}

TEST(StoredValues, OverlayPlanesLieAbovePaddingOnTheFirstPixel) {
    // Sixteen bits are mapped as a whole, which takes care of the first pixel by itself.
    for (const int highest : {4095, 65535}) {
        DicomWriter writer(3, 1);
        writer.format(16, 16, 15, 0).pixels({7, 0, static_cast<std::uint16_t>(highest)});
        writer.word(DCM_PixelPaddingValue, 7);
        EXPECT_EQ(show(writer).at(0, 0), 0U) << highest;
        writer.overlay(0x6000, 1, 1, 1, 1, {1});
        EXPECT_EQ(show(writer).at(0, 0), 0xFFC000U) << highest;
        writer.overlay(0x6000, 1, 1, 1, 2, {1});
        EXPECT_EQ(show(writer).at(0, 0), 0U) << highest;
    }
}

TEST(StoredValues, PaddingIsBlackWhateverTheRest) {
    for (const int bits : {12, 16}) {
        for (const char* photometric : {"MONOCHROME1", "MONOCHROME2"}) {
            for (const bool invert : {false, true}) {
                DicomWriter writer = everyWord(bits, true);
                writer.put(DCM_PhotometricInterpretation, photometric);
                writer.dataset().putAndInsertSint16(DCM_PixelPaddingValue, 5);
                writer.dataset().putAndInsertSint16(DCM_PixelPaddingRangeLimit, -20);
                setWindow(writer, 0.5, 2);
                DisplaySettings settings;
                settings.invert = invert;
                settings.background = 99;
                const bool white = (photometric == std::string("MONOCHROME1")) != invert;
                const Picture picture = show(writer, settings);
                // Words in rising order begin with the value 0, which is padding: the first pixel, too.
                expectGreys(picture, bits, true, [&](int value) {
                    if (value >= -20 && value <= 5) return 0.0;
                    return (value > 0) != white ? 255.0 : 0.0;
                });
            }
        }
    }
}

TEST(StoredValues, SixteenBitImagesKeepTheirShuttersPlanesAndViews) {
    DicomWriter writer = everyWord(16);
    writer.put(DCM_ShutterShape, "RECTANGULAR").word(DCM_ShutterPresentationValue, 0x8000);
    writer.put(DCM_ShutterLeftVerticalEdge, "11").put(DCM_ShutterRightVerticalEdge, "200");
    writer.put(DCM_ShutterUpperHorizontalEdge, "1").put(DCM_ShutterLowerHorizontalEdge, "256");
    writer.overlay(0x6000, 1, 2, 1, 20, {0x0003});
    const Picture picture = show(writer);
    EXPECT_EQ(picture.at(9, 100), 0x808080U);
    EXPECT_EQ(picture.at(10, 100), 0x646464U);
    EXPECT_EQ(picture.at(199, 100), 0x646464U);
    EXPECT_EQ(picture.at(200, 100), 0x808080U);
    EXPECT_EQ(picture.at(19, 0), 0xFFC000U);
    EXPECT_EQ(picture.at(21, 0), 0x000000U);
    DisplaySettings settings;
    settings.shutters = false;
    settings.overlays = false;
    settings.flip = Flip::Vertical;
    settings.size = Size{300, 256};
    settings.background = 7;
    const Picture flipped = show(writer, settings);
    EXPECT_EQ(flipped.at(0, 0), 0x070707U);
    EXPECT_EQ(flipped.at(22, 0), 0xFFFFFFU);
    EXPECT_EQ(flipped.at(22 + 19, 255), 0x000000U);
}

TEST(StoredValues, DeepRampsNeverFallUnderAnyWindow) {
    for (const char* function : {"LINEAR", "LINEAR_EXACT", "SIGMOID"}) {
        for (double width = 1.0; width < 3e5; width *= 60.0) {
            for (double centre = -5000.0; centre < 80000.0; centre += 42123.4) {
                DicomWriter writer = everyWord(16);
                const Picture picture = show(setWindow(writer, centre, width, function));
                ASSERT_TRUE(std::is_sorted(picture.pixels.begin(), picture.pixels.end()))
                    << function << ' ' << centre << '/' << width;
            }
        }
    }
}

TEST(StoredValues, ByteOrdersAndRunLengthsAgreeForSixteenBits) {
    DicomWriter plain = everyWord(16, true);
    const Picture expected = show(plain);
    for (const E_TransferSyntax syntax : {EXS_LittleEndianImplicit, EXS_BigEndianExplicit}) {
        DicomWriter writer = everyWord(16, true);
        EXPECT_EQ(show(writer, {}, {}, syntax).pixels, expected.pixels);
    }
}

TEST(StoredValues, PalettesShowGreysInColours) {
    DisplaySettings settings;
    settings.palette.emplace();
    for (std::size_t i = 0; i < 256; ++i)
        (*settings.palette)[i] = static_cast<std::uint32_t>((i << 16U) | ((255U - i) << 8U) | (i / 2U));
    const auto colour = [](unsigned int i) { return (i << 16U) | ((255U - i) << 8U) | (i / 2U); };
    for (const int bits : {12, 16}) {
        for (const bool inverted : {false, true}) {
            DicomWriter writer = everyWord(bits);
            if (inverted) writer.put(DCM_PhotometricInterpretation, "MONOCHROME1");
            const double span = 1 << bits;
            const Picture picture = show(setWindow(writer, span / 2.0, span, "LINEAR_EXACT"), settings);
            for (std::size_t word = 0; word < picture.pixels.size(); ++word) {
                const auto level = static_cast<unsigned int>(word >> (bits - 8));
                ASSERT_EQ(picture.pixels[word], colour(inverted ? 255U - level : level)) << word;
            }
        }
    }
}

TEST(StoredValues, PaddingIsBlackUnderPalettesToo) {
    DisplaySettings settings;
    settings.palette.emplace();
    settings.palette->fill(0x123456);
    DicomWriter writer(2, 1);
    writer.pixels({7, 9}).word(DCM_PixelPaddingValue, 7);
    const Picture picture = show(writer, settings);
    EXPECT_EQ(picture.at(0, 0), 0U);
    EXPECT_EQ(picture.at(1, 0), 0x123456U);
}

}  // namespace
