#include "viewing/dicom/dicom_palette.h"

#include "viewing/dicom/dicom_luts.h"

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

}  // namespace viewing
