#include "zolcs/ccsnearest.h"

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsraster.h"
#include "zolcs/imagelock.h"
#include "zolcs/resample/memberreports.h"
#include "zolcs/resample/nearestfiller.h"
#include "zolcs/resample/resample.h"

#include <algorithm>
#include <vector>

namespace {

using zolcs::bytesPerPixel;
using zolcs::ByteTable;
using zolcs::ColourTables;
using zolcs::Copy;
using zolcs::DeepColourTable;
using zolcs::GreyTable;
using zolcs::ImagePairLock;
using zolcs::MemberReports;
using zolcs::PixelRules;
using zolcs::ReversedRgb24;
using zolcs::Rgb24;
using zolcs::Stepping;

constexpr int done = 255;

/// Channels of a 32-bit display pixel; the fourth byte is 0.
constexpr std::uint32_t displayPixel(unsigned char red, unsigned char green, unsigned char blue) {
    return blue | std::uint32_t{green} << 8U | std::uint32_t{red} << 16U;
}

constexpr MemberReports reportsOf(const wchar_t* member, MemberReports::Lines lines) {
    return {L"source\\zolcs\\ccsnearest", member, lines};
}

constexpr MemberReports grey12Grey12Reports = reportsOf(L"nearestGrey12Grey12", {212, 241, 244, 305});
constexpr MemberReports grey8Grey8Reports = reportsOf(L"nearestGrey8Grey8", {331, 352, 355, 398});
constexpr MemberReports grey8IndexMapReports = reportsOf(L"nearestGrey8IndexMap", {421, 443, 446, 492, 430});
constexpr MemberReports indexIndexReports = reportsOf(L"nearestIndexIndex", {515, 536, 539, 581});
constexpr MemberReports rgb12Rgb12Reports = reportsOf(L"nearestRgb12Rgb12", {604, 625, 628, 668});
constexpr MemberReports rgb12Rgb8MapReports = reportsOf(L"nearestRgb12Rgb8Map", {691, 713, 716, 764, 700});
constexpr MemberReports rgb8Rgb24SaveReports = reportsOf(L"nearestRgb8Rgb24Save", {787, 808, 811, 859});
constexpr MemberReports grey12IndexMapReports = reportsOf(L"nearestGrey12IndexMap", {937, 1058, 1061, 1290});
constexpr MemberReports rgb8Rgb8Reports = reportsOf(L"nearestRgb8Rgb8", {1313, 1334, 1337, 1379});
constexpr MemberReports rgb8Rgb8MapReports = reportsOf(L"nearestRgb8Rgb8Map", {1402, 1424, 1427, 1475, 1411});
constexpr MemberReports rgb8Rgb8MapSeperateReports =
    reportsOf(L"nearestRgb8Rgb8MapSeperate", {1498, 1521, 1524, 1580, 1507});

/// True when source and destination have pixels of these sizes.
bool pixelSizesAre(const CCsImage& src, const CCsImage& dst, int sourceBytes, int destinationBytes) {
    return bytesPerPixel(src.getType()) == sourceBytes && bytesPerPixel(dst.getType()) == destinationBytes;
}

/// A call whose images are locked and whose stepping is prepared.
struct Call {
    const Stepping& stepping;
    const ImagePairLock& lock;
    const CCsImage& src;
    const CCsImage& dst;
};

/// Fills the destination with nearest source pixels, each through `convert`; `rules` go first where there are any.
template <typename SourcePixel, typename Pixel, typename Convert>
void drawNearest(const Call& call, Pixel background, const Convert& convert, const PixelRules& rules = {}) {
    const zolcs::ImageView<const SourcePixel> source(call.lock.source(), call.src.getPitch());
    const zolcs::Display<Pixel> display{{call.lock.destination(), call.dst.getPitch()}, background};
    const auto fill = [&](auto filler) {
        if constexpr (std::is_same_v<SourcePixel, std::uint16_t> && std::is_same_v<Pixel, std::uint32_t>) {
            if (!rules.positionsAreFree()) {
                zolcs::RuledFiller ruled(filler, rules, {source});
                zolcs::fillDisplay(call.stepping, display, ruled);
                return;
            }
        }
        zolcs::fillDisplay(call.stepping, display, filler);
    };
    using Fast = zolcs::NearestFiller<SourcePixel, Pixel, Convert>;
    if (!zolcs::SpanOperations::isPlain() && Fast::isUsableFor(call.stepping, source.pitch())) {
        fill(Fast(source, convert));
    } else {
        fill(zolcs::PlainFiller(zolcs::NearestKernel<SourcePixel>{source}, convert));
    }
}

/// The table of a call for every stored value: the map's own, zeroes for a map without one. Values with bits beyond the
/// source's take the entry of the bits that count, or the colour of their embedded overlay bits where those are shown.
std::vector<std::uint32_t> greyTable(IGreyMap* map, bool twelveBits, const std::uint32_t* embeddedColours) {
    constexpr std::size_t twelveBitEntries = 0x1000;
    std::vector<std::uint32_t> table(0x10000);
    unsigned int* entries = table.data();
    if (map != nullptr) map->copyLut(&entries);
    for (std::size_t top = 1; top < 16; ++top) {
        const auto first = table.begin() + static_cast<std::ptrdiff_t>(top * twelveBitEntries);
        if (embeddedColours != nullptr) {
            std::fill_n(first, twelveBitEntries, embeddedColours[top]);
        } else if (twelveBits) {
            std::copy_n(table.begin(), twelveBitEntries, first);
        }
    }
    return table;
}

}  // namespace

/// What must hold before a member begins.
struct CCsNearest::Checks {
    bool types;
    bool tables = true;
};

CCsNearest::CCsNearest() = default;

CCsNearest::~CCsNearest() = default;

Stepping CCsNearest::adaptTransformation_(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo) {
    trafo.setSizes(src, dst);
    zolcs::DisplayToImage m{};
    trafo.getTransformation(m[0], m[1], m[2], m[3], m[4], m[5]);
    stepXu = zolcs::saturated32(m[0] * 65536.0);
    stepXv = zolcs::saturated32(m[1] * 65536.0);
    stepYu = zolcs::saturated32(m[2] * 65536.0);
    stepYv = zolcs::saturated32(m[3] * 65536.0);
    originU = zolcs::saturated32(m[4] * 65536.0);
    originV = zolcs::saturated32(m[5] * 65536.0);
    srcLimitU = zolcs::saturated32(src.getWidth() * zolcs::fixed16One);
    srcLimitV = zolcs::saturated32(src.getHeight() * zolcs::fixed16One);
    srcPitch = src.getPitch();
    dstWidth = dst.getWidth();
    dstHeight = dst.getHeight();
    dstPitch = dst.getPitch();
    return zolcs::makeStepping(m, src.getWidth(), src.getHeight(), dstWidth, dstHeight);
}

template <typename Draw>
int CCsNearest::resample_(const MemberReports& reports, const Checks& checks, CCsImage& src, CCsImage& dst,
                          CCs2dTrafo& trafo, const Draw& draw) {
    if (!checks.types) return reports.wrongType();
    if (!checks.tables) return reports.noTable();
    try {
        const Stepping stepping = adaptTransformation_(src, dst, trafo);
        const ImagePairLock lock(src, dst);
        if (lock.source() == nullptr) return reports.noSource();
        if (lock.destination() == nullptr) return reports.noDestination();
        draw(Call{stepping, lock, src, dst});
        return done;
    } catch (...) {
        return reports.exception();
    }
}

int CCsNearest::nearestGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned short background,
                                    bool /*unused*/) {
    const bool typesFit = src.getType() == CCS_GREY12 && dst.getType() == CCS_GREY12;
    return resample_(grey12Grey12Reports, {typesFit}, src, dst, trafo, [&](const Call& call) {
        drawNearest<std::uint16_t, std::uint16_t>(call, background, Copy<std::uint16_t>{});
    });
}

void CCsNearest::nearestGrey12IndexMap(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, IMap* map,
                                       unsigned char* pixelPadding, unsigned char background) {
    const bool typesFit = src.getType() == CCS_GREY12 || dst.getType() == CCS_INDEX8 || src.getType() == CCS_GREY16 ||
                          dst.getType() == CCS_GREY16;
    const Checks checks{typesFit && pixelSizesAre(src, dst, 2, 4)};
    resample_(grey12IndexMapReports, checks, src, dst, trafo, [&](const Call& call) {
        auto* greyMap = dynamic_cast<IGreyMap*>(map);
        const auto rules = PixelRules::forResampling(src, greyMap, pixelPadding, background, call.stepping);
        const auto table = greyTable(greyMap, src.getType() == CCS_GREY12, rules.embeddedColours());
        drawNearest<std::uint16_t, std::uint32_t>(call, background, GreyTable{table.data()}, rules);
    });
}

void CCsNearest::nearestGrey8Grey8(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background) {
    const bool typesFit = src.getType() == CCS_GREY8 || dst.getType() == CCS_GREY8;
    const Checks checks{typesFit && pixelSizesAre(src, dst, 1, 1)};
    resample_(grey8Grey8Reports, checks, src, dst, trafo, [&](const Call& call) {
        drawNearest<std::uint8_t, std::uint8_t>(call, background, Copy<std::uint8_t>{});
    });
}

void CCsNearest::nearestGrey8IndexMap(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                                      unsigned char background) {
    const bool typesFit = src.getType() == CCS_GREY8 || dst.getType() == CCS_INDEX8;
    const Checks checks{typesFit && pixelSizesAre(src, dst, 1, 1), table != nullptr};
    resample_(grey8IndexMapReports, checks, src, dst, trafo, [&](const Call& call) {
        drawNearest<std::uint8_t, std::uint8_t>(call, table[background], ByteTable{table});
    });
}

void CCsNearest::nearestIndexIndex(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background) {
    const bool typesFit = src.getType() == CCS_INDEX8 && dst.getType() == CCS_INDEX8;
    resample_(indexIndexReports, {typesFit}, src, dst, trafo, [&](const Call& call) {
        drawNearest<std::uint8_t, std::uint8_t>(call, background, Copy<std::uint8_t>{});
    });
}

void CCsNearest::nearestRgb12Rgb12(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, std::uint64_t background) {
    const bool typesFit = src.getType() == CCS_RGB12 || dst.getType() == CCS_RGB12;
    const Checks checks{typesFit && pixelSizesAre(src, dst, 8, 8)};
    resample_(rgb12Rgb12Reports, checks, src, dst, trafo, [&](const Call& call) {
        drawNearest<std::uint64_t, std::uint64_t>(call, background, Copy<std::uint64_t>{});
    });
}

void CCsNearest::nearestRgb12Rgb8Map(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                                     unsigned long background) {
    const bool typesFit = src.getType() == CCS_RGB12 || dst.getType() == CCS_RGB8;
    const Checks checks{typesFit && pixelSizesAre(src, dst, 8, 4), table != nullptr};
    resample_(rgb12Rgb8MapReports, checks, src, dst, trafo, [&](const Call& call) {
        drawNearest<std::uint64_t, std::uint32_t>(call, static_cast<std::uint32_t>(background), DeepColourTable{table});
    });
}

void CCsNearest::nearestRgb8Rgb24Save(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background) {
    const bool typesFit = src.getType() == CCS_RGB8 && dst.getType() == CCS_RGB24;
    resample_(rgb8Rgb24SaveReports, {typesFit}, src, dst, trafo, [&](const Call& call) {
        drawNearest<std::uint32_t, Rgb24>(call, {{background, background, background}}, ReversedRgb24{});
    });
}

int CCsNearest::nearestRgb8Rgb8(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned long background) {
    const bool typesFit = src.getType() == CCS_RGB8 && dst.getType() == CCS_RGB8;
    return resample_(rgb8Rgb8Reports, {typesFit}, src, dst, trafo, [&](const Call& call) {
        drawNearest<std::uint32_t, std::uint32_t>(call, static_cast<std::uint32_t>(background), Copy<std::uint32_t>{});
    });
}

void CCsNearest::nearestRgb8Rgb8Map(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                                    unsigned long background) {
    const bool typesFit = src.getType() == CCS_RGB8 && dst.getType() == CCS_RGB8;
    resample_(rgb8Rgb8MapReports, {typesFit, table != nullptr}, src, dst, trafo, [&](const Call& call) {
        drawNearest<std::uint32_t, std::uint32_t>(call, static_cast<std::uint32_t>(background),
                                                  ColourTables(table, table, table));
    });
}

void CCsNearest::nearestRgb8Rgb8MapSeperate(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo,
                                            unsigned char* const redTable, unsigned char* const greenTable,
                                            unsigned char* const blueTable, unsigned char redBackground,
                                            unsigned char greenBackground, unsigned char blueBackground) {
    const bool typesFit = src.getType() == CCS_RGB8 && dst.getType() == CCS_RGB8;
    const bool tablesGiven = redTable != nullptr && greenTable != nullptr && blueTable != nullptr;
    resample_(rgb8Rgb8MapSeperateReports, {typesFit, tablesGiven}, src, dst, trafo, [&](const Call& call) {
        drawNearest<std::uint32_t, std::uint32_t>(call, displayPixel(redBackground, greenBackground, blueBackground),
                                                  ColourTables(blueTable, greenTable, redTable));
    });
}
