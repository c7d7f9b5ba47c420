#include "zolcs/ccsedgeenhancement.h"

#include "zolcs/ccsraster.h"
#include "zolcs/pixels/imagelock.h"
#include "zolcs/pixels/imageview.h"
#include "zolcs/sharpen/boxunsharp.h"
#include "zolcs/support/conversion.h"
#include "zolcs/support/report.h"
#include "zollog/zollog.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>

namespace {

using zolcs::ImageView;
using zolcs::ReportSite;
using zolcs::Rgb24;
using zolcs::UnsharpSettings;
using zolcs::UnsharpWorkspace;

constexpr ReportSite siteOf(const wchar_t* message, int line) {
    return {message, L"source\\zolcs\\ccsedgeenhancement", line};
}

/// The report sites of one member.
struct MemberSites {
    ReportSite sourceType;
    ReportSite destinationType;
    ReportSite size;
    ReportSite box;
    ReportSite memory;
};

constexpr const wchar_t* otherSize = L"Destination raster must have the same size";
constexpr const wchar_t* noBox = L"Size of the box must be at least 1, is";
constexpr const wchar_t* noMemory = L"Out of memory";

constexpr MemberSites greySites{siteOf(L"Source type must be CCS_GREY12, is", 61),
                                siteOf(L"Destination type must be CCS_GREY12, is", 67), siteOf(otherSize, 74),
                                siteOf(noBox, 80), siteOf(noMemory, 94)};
constexpr ReportSite greyBits = siteOf(L"Highest bit must be at least 0, is", 86);
constexpr MemberSites colourSites{siteOf(L"Source type must be CCS_RGB8, is", 203),
                                  siteOf(L"Destination type must be CCS_RGB8, is", 209), siteOf(otherSize, 216),
                                  siteOf(noBox, 222), siteOf(noMemory, 236)};

struct TypeChecks {
    bool source;
    bool destination;
};

/// True when a member may begin; otherwise it has been said why not.
bool mayBegin(const MemberSites& sites, const TypeChecks& fits, const CCsRaster& src, const CCsRaster& dst, long size) {
    if (!fits.source) return zolcs::refuse(sites.sourceType, src.getType());
    if (!fits.destination) return zolcs::refuse(sites.destinationType, dst.getType());
    if (src.getWidth() != dst.getWidth() || src.getHeight() != dst.getHeight()) return zolcs::refuse(sites.size, 0);
    if (size < 1) return zolcs::refuse(sites.box, size);
    return true;
}

/// Allocates, locks and filters; `filter(source, destination, workspace)` gets the first pixels.
template <typename Sample, typename Filter>
int runFilter(const MemberSites& sites, CCsRaster& src, CCsRaster& dst, const Filter& filter) {
    const UnsharpWorkspace<Sample> workspace(src.getWidth());
    if (!workspace.isAllocated()) return zolcs::fail(sites.memory, 0, CCS_FAILED);
    try {
        const zolcs::ImagePairLock lock(src, dst);
        if (lock.source() == nullptr || lock.destination() == nullptr) return zolcs::fail(sites.memory, 0, CCS_FAILED);
        filter(lock.source(), lock.destination(), workspace);
    } catch (...) {
        // Deliberately a success: the host has always shown what was filtered so far.
        MorvaLog(L"zolcs - E", L"Exception: unknown");
    }
    return CCS_DONE;
}

struct GreyImages {
    int width;
    int height;
    ImageView<const std::uint16_t> source;
    ImageView<std::uint16_t> destination;

    [[nodiscard]] const std::uint16_t* row(std::int64_t y, std::uint16_t* /*room*/) const { return source.row(y); }
    void put(std::int64_t y, const std::uint16_t* samples) const { std::copy_n(samples, width, destination.row(y)); }
};

/// Four bytes a pixel. The fourth one is sharpened with the others, which costs less than to leave it out.
const std::uint8_t* bytesOf(const std::uint32_t* pixels, int /*width*/, std::uint8_t* /*room*/) {
    return reinterpret_cast<const std::uint8_t*>(pixels);
}

/// Three bytes a pixel, which are in the display's order the other way round.
const std::uint8_t* bytesOf(const Rgb24* pixels, int width, std::uint8_t* room) {
    for (int x = 0; x < width; ++x) {
        const auto& bytes = pixels[x].bytes;
        const std::uint8_t turned[] = {bytes[2], bytes[1], bytes[0], 0};
        std::copy(std::begin(turned), std::end(turned), room + std::ptrdiff_t{x} * 4);
    }
    return room;
}

template <typename SourcePixel>
struct ColourImages {
    int width;
    int height;
    ImageView<const SourcePixel> source;
    ImageView<std::uint32_t> destination;

    [[nodiscard]] const std::uint8_t* row(std::int64_t y, std::uint8_t* room) const {
        return bytesOf(source.row(y), width, room);
    }
    /// Leaves the fourth byte of a pixel.
    void put(std::int64_t y, const std::uint8_t* bytes) const {
        constexpr std::uint32_t fourth = 0xFF000000U;
        std::uint32_t* const pixels = destination.row(y);
        for (int x = 0; x < width; ++x) {
            std::uint32_t colour = 0;
            std::memcpy(&colour, bytes + std::ptrdiff_t{x} * 4, sizeof colour);
            pixels[x] = (pixels[x] & fourth) | (colour & ~fourth);
        }
    }
};

template <typename SourcePixel>
ColourImages<SourcePixel> colourImages(const CCsRaster& src, const unsigned char* from, const CCsRaster& dst,
                                       unsigned char* to) {
    return {src.getWidth(), src.getHeight(), {from, src.getPitch()}, {to, dst.getPitch()}};
}

}  // namespace

CCsEdgeEnhancement::~CCsEdgeEnhancement() = default;

int CCsEdgeEnhancement::edgeEnhancementGrey12(CCsRaster& src, CCsRaster& dst, long size, long strength, int bits) {
    const auto isGrey = [](const CCsRaster& raster) {
        return raster.getType() == CCS_GREY12 || raster.getType() == CCS_GREY16;
    };
    if (!mayBegin(greySites, {isGrey(src), isGrey(dst)}, src, dst, size)) return CCS_FAILED;
    if (bits < 0) return zolcs::fail(greyBits, bits, CCS_FAILED);
    constexpr int mostBits = 30;  // the mask is a positive number of 32 bits
    const auto mask =
        static_cast<std::int32_t>((std::uint32_t{2} << static_cast<unsigned>(std::min(bits, mostBits))) - 1);
    // A box beyond any image and a strength beyond 32 bits are as good as the nearest that fit.
    const UnsharpSettings settings{zolcs::saturated(size), zolcs::saturated(strength),
                                   src.getType() == CCS_GREY12 ? 10 : 6, mask,
                                   std::numeric_limits<std::uint32_t>::max()};
    return runFilter<std::uint16_t>(
        greySites, src, dst, [&](unsigned char* from, unsigned char* to, const auto& space) {
            const GreyImages images{src.getWidth(), src.getHeight(), {from, src.getPitch()}, {to, dst.getPitch()}};
            zolcs::sharpenImage(images, settings, space);
        });
}

int CCsEdgeEnhancement::edgeEnhancementRGB8(CCsRaster& src, CCsRaster& dst, long size, long strength) {
    const bool threeBytes = src.getType() == CCS_RGB24;
    const TypeChecks fits{threeBytes || src.getType() == CCS_RGB8, dst.getType() == CCS_RGB8};
    if (!mayBegin(colourSites, fits, src, dst, size)) return CCS_FAILED;
    const UnsharpSettings settings{zolcs::saturated(size), zolcs::saturated(strength), 10,
                                   std::numeric_limits<std::uint8_t>::max(), std::numeric_limits<std::uint16_t>::max()};
    return runFilter<std::uint8_t>(
        colourSites, src, dst, [&](unsigned char* from, unsigned char* to, const auto& space) {
            if (threeBytes) {
                zolcs::sharpenImage(colourImages<Rgb24>(src, from, dst, to), settings, space);
            } else {
                zolcs::sharpenImage(colourImages<std::uint32_t>(src, from, dst, to), settings, space);
            }
        });
}
