#include "viewing/dicom/dicom_palette.h"

#include "viewing/dicom/dicom_luts.h"
#include "viewing/image/limits.h"
#include "zolipp/zolipp.h"

#include <algorithm>

namespace viewing {

namespace {

std::uint32_t eightBits(const LookupTable& table, int stored) {
    const unsigned int entry = table.at(stored);
    return table.bits >= 8 ? entry >> (table.bits - 8) : entry << (8 - table.bits);
}

}  // namespace

std::uint32_t PaletteTables::colour(int stored) const {
    return (eightBits(red, stored) << 16U) | (eightBits(green, stored) << 8U) | eightBits(blue, stored);
}

PaletteTables readPaletteTables(const Attributes& attributes, bool signedInputs) {
    const auto read = [&](const DcmTagKey& descriptor, const DcmTagKey& data, const DcmTagKey& segmented,
                          const char* colour) {
        return readTable(attributes, {descriptor, data, segmented}, colour + std::string(" palette"), signedInputs);
    };
    PaletteTables tables{read(DCM_RedPaletteColorLookupTableDescriptor, DCM_RedPaletteColorLookupTableData,
                              DCM_SegmentedRedPaletteColorLookupTableData, "red"),
                         read(DCM_GreenPaletteColorLookupTableDescriptor, DCM_GreenPaletteColorLookupTableData,
                              DCM_SegmentedGreenPaletteColorLookupTableData, "green"),
                         read(DCM_BluePaletteColorLookupTableDescriptor, DCM_BluePaletteColorLookupTableData,
                              DCM_SegmentedBluePaletteColorLookupTableData, "blue")};
    // Colours keep their balance when one table alone uses more bits than it declares.
    tables.red.bits = tables.green.bits = tables.blue.bits =
        std::max({tables.red.bits, tables.green.bits, tables.blue.bits});
    return tables;
}

Palette toPalette(const PaletteTables& tables) {
    Palette palette{};
    const int steps = static_cast<int>(tables.red.entries.size()) - 1;
    const int last = static_cast<int>(palette.size()) - 1;
    for (int i = 0; i <= last; ++i)
        palette[static_cast<std::size_t>(i)] = tables.colour(tables.red.first + (2 * i * steps + last) / (2 * last));
    return palette;
}

Rgb8Pixels toColours(const PaletteTables& tables, const std::vector<std::uint16_t>& words, int width,
                     const PixelFormat& format, const std::optional<PaddingRange>& padding) {
    std::vector<std::uint32_t> colours(levels16);
    for (std::size_t word = 0; word < colours.size(); ++word) {
        const int stored = format.value(static_cast<std::uint16_t>(word));
        colours[word] = padding && padding->contains(stored) ? 0 : tables.colour(stored);
    }
    Rgb8Pixels pixels(words.size());
    // A grey map's palette would do for 256 colours; an image's may have 65536.
    const IppiSize size{width, static_cast<int>(words.size()) / width};
    ZOLippiLUTPalette_16u32u_C1R(words.data(), width * 2, pixels.data(), width * 4, size, colours.data(), 16);
    return pixels;
}

}  // namespace viewing
