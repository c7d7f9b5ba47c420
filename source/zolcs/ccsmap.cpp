#include "zolcs/ccsmap.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <new>

#include "zolcs/ccsraster.h"
#include "zolcs/clone.h"
#include "zolcs/imagelock.h"
#include "zolcs/mapping/greymap.h"

namespace {

constexpr const wchar_t* module = L"source\\zolcs\\ccsmap";

constexpr zolcs::ReportSite mergeTypeRefused = {L"Raster type must be CCS_GREY12 or CCS_GREY16, is", module, 112};
constexpr zolcs::ReportSite mergeWithoutBitmap = {L"No bitmap to merge", module, 117};
constexpr zolcs::ReportSite mergeWithoutMemory = {L"Raster to merge into has no memory", module, 122};

constexpr zolcs::mapping::GreyMapKind grey12 = {
    .sourceType = CCS_GREY12,
    .entries = 4096,
    .sigmoidEntries = 4096,
    .presentsStoredValues = false,
    .presentationMissing = {L"Memory not allocated for origNonLinearPreLut12_", module, 417},
    .nonLinearMissing = {L"Memory not allocated for origNonLinearLut12_", module, 461},
    .windowedMissing = {nullptr, module, 0},
    .sourceTypeRefused = {L"Source type must be CCS_GREY12, is", module, 602},
    .reports = zolcs::mapping::greyMapReports(module),
};

/// The colour that a rendered bitmap marks blanked pixels with, and the one that overlay graphics are drawn in.
constexpr std::uint32_t blankMark = 0x00010101;
constexpr std::uint32_t inkMark = 0x00FFFF00;

/// What the marks of a bitmap turn stored values into.
struct Burn {
    std::uint16_t mask;
    std::uint16_t blank;
    std::uint16_t ink;
    bool masked;

    [[nodiscard]] std::uint16_t operator()(std::uint32_t mark, std::uint16_t stored) const {
        if (mark == blankMark) return blank;
        // A value that already carries overlay bits is inked whatever the bitmap says.
        if (masked && (stored & ~mask) != 0) return ink;
        if (mark == inkMark) return ink;
        // The smoothed edges of lines and letters come out at half level, deliberately.
        return mark != 0 ? ink / 2 : stored;
    }
};

/// (2 << bits) - 1 in 16 bits; no bit for a negative count.
std::uint16_t maskOf(int bits) {
    return bits < 0 ? std::uint16_t{0} : static_cast<std::uint16_t>((std::uint32_t{2} << std::min(bits, 15)) - 1U);
}

Burn burnOf(unsigned int depth, int bits, bool blankToMax) {
    const std::uint16_t mask = maskOf(bits);
    std::uint16_t maximum = bits != 0 ? mask : std::uint16_t{0};
    if (depth == 8) maximum = 255;
    const std::uint16_t zero = 0;
    return {mask, blankToMax ? maximum : zero, blankToMax ? zero : maximum, bits != 0};
}

}  // namespace

IMap::~IMap() = default;

int IGreyMap::mergeDIBtoData(CCsRaster& raster, BITMAPINFO* dib, unsigned int depth, int bits, bool blankToMax) {
    if (raster.getType() != CCS_GREY12 && raster.getType() != CCS_GREY16) {
        return zolcs::fail(mergeTypeRefused, raster.getType(), 0);
    }
    if (dib == nullptr) return zolcs::fail(mergeWithoutBitmap, 0, 0);
    const zolcs::ImageLock lock(raster);
    if (lock.origin() == nullptr) return zolcs::fail(mergeWithoutMemory, 0, 0);

    const Burn burn = burnOf(depth, bits, blankToMax);
    const BITMAPINFOHEADER& header = dib->bmiHeader;
    const std::int64_t rowLength = std::max<std::int64_t>(header.biWidth, 0);
    const std::int64_t columns = std::clamp<std::int64_t>(raster.getWidth(), 0, rowLength);
    const std::int64_t rows = std::min<std::int64_t>(raster.getHeight(), std::abs(std::int64_t{header.biHeight}));
    const auto* marks = reinterpret_cast<const std::uint32_t*>(&header + 1);
    auto* stored = reinterpret_cast<std::uint16_t*>(lock.origin());
    for (std::int64_t y = 0; y < rows; ++y, marks += rowLength, stored += raster.getPitch()) {
        std::transform(marks, marks + columns, stored, stored, burn);
    }
    return 255;
}

CCsGrey12Map::CCsGrey12Map() : GreyMap(grey12) {}

IMap* CCsGrey12Map::clone() { return zolcs::cloneOf(*this); }

IMap* MapFactory::CreateMap(MapType type) {
    switch (static_cast<unsigned int>(type)) {
        case Grey12:
            return new (std::nothrow) CCsGrey12Map;
        case Grey16:
            return new (std::nothrow) CCsGrey16Map;
        default:
            return nullptr;
    }
}
