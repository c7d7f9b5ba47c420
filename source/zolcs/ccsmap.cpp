#include "zolcs/ccsmap.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <new>

#include "zolcs/ccsraster.h"
#include "zolcs/mapping/burnin.h"
#include "zolcs/mapping/colourmap.h"
#include "zolcs/mapping/greymap.h"
#include "zolcs/pixels/imagelock.h"
#include "zolcs/support/clone.h"

namespace {

constexpr const wchar_t* module = L"source\\zolcs\\ccsmap";

constexpr zolcs::mapping::BurnInReports greyBurnIn =
    zolcs::mapping::burnInReports(L"Raster type must be CCS_GREY12 or CCS_GREY16, is", module, 112);
constexpr zolcs::mapping::BurnInReports colourBurnIn =
    zolcs::mapping::burnInReports(L"Raster type must be CCS_RGB8, is", module, 152);

constexpr zolcs::mapping::GreyMapKind grey12 = {
    .entries = 4096,
    .sigmoidEntries = 4096,
    .presentsStoredValues = false,
    .presentationMissing = {L"Memory not allocated for origNonLinearPreLut12_", module, 417},
    .nonLinearMissing = {L"Memory not allocated for origNonLinearLut12_", module, 461},
    .windowedMissing = {nullptr, module, 0},
    .images = zolcs::mapping::mapRasterRules(CCS_GREY12, L"Source type must be CCS_GREY12, is", module, 602),
    .reports = zolcs::mapping::greyMapReports(module),
};

constexpr zolcs::ReportSite colourWidthRefused = {L"Window width = negativ or zero", module, 702};

constexpr zolcs::mapping::ColourMapKind rgb12 = {
    // Deliberate: a window shows when the table is first built, and in clones.
    .windowIsSeenAtOnce = false,
    .widthRefused = colourWidthRefused,
    .images = zolcs::mapping::mapRasterRules(CCS_RGB12, L"Source type must be CCS_RGB12, is", module, 731),
};

constexpr zolcs::mapping::ColourMapKind rgb8 = {
    .windowIsSeenAtOnce = true,
    .widthRefused = colourWidthRefused,
    .images = zolcs::mapping::mapRasterRules(CCS_RGB8, L"Source type must be CCS_RGB8, is", module, 771),
};

constexpr zolcs::mapping::ImagePairRules separateImages = {
    .sourceType = CCS_RGB8,
    .sourceTypeRefused = {L"Source type must be CCS_RGB8, is", module, 811},
    .destinationTypeRefused = {L"Destination type must be CCS_RGB8, is", module, 817},
    .sizeRefused = {L"Destination raster must have the same size", module, 824},
    .sourceWithoutMemory = {L"get origin for source raster returned NULL in method mapRasterSeparate", module, 832},
    .destinationWithoutMemory = {L"get origin for dst raster returned NULL in method mapRasterSeparate", module, 835},
};

/// Deliberate: the second channel reports in the words of the first.
constexpr std::array<zolcs::ReportSite, 3> channelWidthRefused = {{
    {L"Window width (Red) = negativ or zero", module, 851},
    {L"Window width (Red) = negativ or zero", module, 867},
    {L"Window width (Blue) = negativ or zero", module, 883},
}};

/// The colour that overlay graphics are drawn in.
constexpr std::uint32_t inkMark = 0x00FFFF00;

/// What the marks of a bitmap turn stored values into.
struct Burn {
    std::uint16_t mask;
    std::uint16_t blank;
    std::uint16_t ink;
    bool masked;

    [[nodiscard]] std::uint16_t operator()(std::uint32_t mark, std::uint16_t stored) const {
        if (mark == zolcs::mapping::blankMark) return blank;
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
    const bool accepted = raster.getType() == CCS_GREY12 || raster.getType() == CCS_GREY16;
    return zolcs::mapping::burnIn<std::uint16_t>(raster, dib, accepted, greyBurnIn, burnOf(depth, bits, blankToMax));
}

int zolcs::mapping::burnIntoColours(CCsRaster& raster, const BITMAPINFO* dib) {
    const auto burn = [](std::uint32_t mark, std::uint32_t stored) { return mark == blankMark ? 0U : stored | mark; };
    return burnIn<std::uint32_t>(raster, dib, raster.getType() == CCS_RGB8, colourBurnIn, burn);
}

CCsGrey12Map::CCsGrey12Map() : GreyMap(grey12) {}

IMap* CCsGrey12Map::clone() { return zolcs::cloneOf(*this); }

CCsRgb12Map::CCsRgb12Map() : ColourMap(rgb12) {}

CCsRgb12Map::CCsRgb12Map(const CCsRgb12Map& other) : ColourMap(other) { makeStale(); }

IMap* CCsRgb12Map::clone() { return zolcs::cloneOf(*this); }

int CCsRgb12Map::mapRasterSeparate(CCsImage& /*src*/, CCsImage& /*dst*/) { return CCS_DONE; }

CCsRgb8Map::CCsRgb8Map() : ColourMap(rgb8) {}

CCsRgb8Map::CCsRgb8Map(const CCsRgb8Map& other) : ColourMap(other), channels_(other.channels_) {}

IMap* CCsRgb8Map::clone() { return zolcs::cloneOf(*this); }

bool CCsRgb8Map::buildChannels() {
    for (std::size_t i = 0; i < channels_.size(); ++i) {
        ChannelTable& channel = channels_[i];
        if (!channel.valid) {
            channel.valid = zolcs::mapping::buildLevels(channel.levels, channel.window, channelWidthRefused[i]);
        }
        if (!channel.valid) return false;
    }
    return true;
}

int CCsRgb8Map::mapRasterSeparate(CCsImage& src, CCsImage& dst) {
    CSingleLock lock(&channelLock_, TRUE);
    if (!acceptImages(src, dst, separateImages) || !buildChannels()) return CCS_FAILED;
    const zolcs::ImagePairLock images(src, dst);
    if (!acceptMemory(images, separateImages)) return CCS_FAILED;
    for (LONG y = 0; y < src.getHeight(); ++y) {
        // The channels are red, green and blue; the pixels' bytes are the other way round.
        zolcs::mapping::mapSpan(zolcs::mapping::channelsAt<Channel>(images.source(), src, 0, y),
                                zolcs::mapping::channelsAt<Channel>(images.destination(), dst, 0, y), src.getWidth(),
                                channels_[2].levels, channels_[1].levels, channels_[0].levels);
    }
    return CCS_DONE;
}

IMap* MapFactory::CreateMap(MapType type) {
    switch (static_cast<unsigned int>(type)) {
        case Grey12:
            return new (std::nothrow) CCsGrey12Map;
        case Grey16:
            return new (std::nothrow) CCsGrey16Map;
        case Rgb12:
            return new (std::nothrow) CCsRgb12Map;
        case Rgb8:
            return new (std::nothrow) CCsRgb8Map;
        default:
            return nullptr;
    }
}
