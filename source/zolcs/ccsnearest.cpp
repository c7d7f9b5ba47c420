#include "zolcs/ccsnearest.h"

#include "zolcs/ccsmap.h"
#include "zolcs/ccsraster.h"
#include "zolcs/resample/accelerated.h"
#include "zolcs/resample/draw.h"

namespace {

using zolcs::AcceleratedMember;
using zolcs::areGreyToDisplay;
using zolcs::ByteTable;
using zolcs::Colour12Table;
using zolcs::ColourTables;
using zolcs::Copy;
using zolcs::GreyTable;
using zolcs::MemberCall;
using zolcs::MemberChecks;
using zolcs::MemberReports;
using zolcs::NearestKernel;
using zolcs::PixelRules;
using zolcs::pixelSizesAre;
using zolcs::ReversedRgb24;
using zolcs::Rgb24;
using zolcs::RuledFiller;
using zolcs::runMember;
using zolcs::Stepping;

/// Channels of a 32-bit display pixel; the fourth byte is 0.
constexpr std::uint32_t displayPixel(unsigned char red, unsigned char green, unsigned char blue) {
    return blue | std::uint32_t{green} << 8U | std::uint32_t{red} << 16U;
}

constexpr const wchar_t* module = L"source\\zolcs\\ccsnearest";

constexpr MemberReports reportsOf(const wchar_t* member, MemberReports::Lines lines) { return {module, member, lines}; }

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

template <typename Pixel>
NearestKernel<Pixel> sourceOf(const MemberCall& call) {
    return {{call.lock.source(), call.src.getPitch()}};
}

/// Fills the destination with nearest source pixels, each through `convert`.
template <typename SourcePixel, typename Pixel, typename Convert>
bool drawNearest(const MemberCall& call, Pixel background, const Convert& convert) {
    return zolcs::draw(call, background, sourceOf<SourcePixel>(call), convert, zolcs::Polling::never());
}

constexpr AcceleratedMember<Ipp16u> acceleratedGrey{
    {module, L"nearestIPPGrey12Grey12", {1603, 1621, 1702, 1706, 1718}}, zolcs::greyPrimitives, IPPI_INTER_NN};
constexpr AcceleratedMember<Ipp8u> acceleratedRgb8{
    {module, L"nearestIPPRgb8Rgb8", {1741, 1759, 1840, 1844, 1856}}, zolcs::threeColourPrimitives, IPPI_INTER_NN};

}  // namespace

CCsNearest::CCsNearest() : SteppingFields(-1) {}

CCsNearest::~CCsNearest() = default;

Stepping CCsNearest::adaptTransformation_(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo) {
    return zolcs::prepareStepping(src, dst, trafo, *this);
}

int CCsNearest::nearestGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned short background,
                                    bool /*unused*/) {
    const bool typesFit = src.getType() == CCS_GREY12 && dst.getType() == CCS_GREY12;
    return runMember(*this, grey12Grey12Reports, {src, dst, trafo}, {typesFit}, [&](const MemberCall& call) {
        return drawNearest<std::uint16_t, std::uint16_t>(call, background, Copy<std::uint16_t>{});
    });
}

void CCsNearest::nearestGrey12IndexMap(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, IMap* map,
                                       unsigned char* pixelPadding, unsigned char background) {
    runMember(*this, grey12IndexMapReports, {src, dst, trafo}, {areGreyToDisplay(src, dst)},
              [&](const MemberCall& call) {
                  auto* greyMap = dynamic_cast<IGreyMap*>(map);
                  const auto rules = PixelRules::forResampling(src, greyMap, pixelPadding, background, call.stepping);
                  const auto table = zolcs::greyTable(greyMap, src.getType() == CCS_GREY12, rules.embedded());
                  const GreyTable convert{table.data()};
                  const auto source = sourceOf<std::uint16_t>(call);

                  auto filler = zolcs::makeFiller(call.stepping, source, convert, zolcs::StopFlag());
                  if (!rules.empty()) filler = std::make_unique<RuledFiller>(std::move(filler), rules, source);
                  return zolcs::fillDisplay(call.stepping, zolcs::displayOf<std::uint32_t>(call, background), *filler);
              });
}

void CCsNearest::nearestGrey8Grey8(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background) {
    const bool typesFit = src.getType() == CCS_GREY8 || dst.getType() == CCS_GREY8;
    const MemberChecks checks{typesFit && pixelSizesAre(src, dst, 1, 1)};
    runMember(*this, grey8Grey8Reports, {src, dst, trafo}, checks, [&](const MemberCall& call) {
        return drawNearest<std::uint8_t, std::uint8_t>(call, background, Copy<std::uint8_t>{});
    });
}

void CCsNearest::nearestGrey8IndexMap(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                                      unsigned char background) {
    const bool typesFit = src.getType() == CCS_GREY8 || dst.getType() == CCS_INDEX8;
    const MemberChecks checks{typesFit && pixelSizesAre(src, dst, 1, 1), table != nullptr};
    runMember(*this, grey8IndexMapReports, {src, dst, trafo}, checks, [&](const MemberCall& call) {
        return drawNearest<std::uint8_t, std::uint8_t>(call, table[background], ByteTable{table});
    });
}

void CCsNearest::nearestIndexIndex(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background) {
    const bool typesFit = src.getType() == CCS_INDEX8 && dst.getType() == CCS_INDEX8;
    runMember(*this, indexIndexReports, {src, dst, trafo}, {typesFit}, [&](const MemberCall& call) {
        return drawNearest<std::uint8_t, std::uint8_t>(call, background, Copy<std::uint8_t>{});
    });
}

void CCsNearest::nearestRgb12Rgb12(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, std::uint64_t background) {
    const bool typesFit = src.getType() == CCS_RGB12 || dst.getType() == CCS_RGB12;
    const MemberChecks checks{typesFit && pixelSizesAre(src, dst, 8, 8)};
    runMember(*this, rgb12Rgb12Reports, {src, dst, trafo}, checks, [&](const MemberCall& call) {
        return drawNearest<std::uint64_t, std::uint64_t>(call, background, Copy<std::uint64_t>{});
    });
}

void CCsNearest::nearestRgb12Rgb8Map(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                                     unsigned long background) {
    const bool typesFit = src.getType() == CCS_RGB12 || dst.getType() == CCS_RGB8;
    const MemberChecks checks{typesFit && pixelSizesAre(src, dst, 8, 4), table != nullptr};
    runMember(*this, rgb12Rgb8MapReports, {src, dst, trafo}, checks, [&](const MemberCall& call) {
        return drawNearest<std::uint64_t, std::uint32_t>(call, static_cast<std::uint32_t>(background),
                                                         Colour12Table{table});
    });
}

void CCsNearest::nearestRgb8Rgb24Save(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background) {
    const bool typesFit = src.getType() == CCS_RGB8 && dst.getType() == CCS_RGB24;
    runMember(*this, rgb8Rgb24SaveReports, {src, dst, trafo}, {typesFit}, [&](const MemberCall& call) {
        return drawNearest<std::uint32_t, Rgb24>(call, {{background, background, background}}, ReversedRgb24{});
    });
}

int CCsNearest::nearestRgb8Rgb8(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned long background) {
    const bool typesFit = src.getType() == CCS_RGB8 && dst.getType() == CCS_RGB8;
    return runMember(*this, rgb8Rgb8Reports, {src, dst, trafo}, {typesFit}, [&](const MemberCall& call) {
        return drawNearest<std::uint32_t, std::uint32_t>(call, static_cast<std::uint32_t>(background),
                                                         Copy<std::uint32_t>{});
    });
}

void CCsNearest::nearestRgb8Rgb8Map(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                                    unsigned long background) {
    const bool typesFit = src.getType() == CCS_RGB8 && dst.getType() == CCS_RGB8;
    runMember(*this, rgb8Rgb8MapReports, {src, dst, trafo}, {typesFit, table != nullptr}, [&](const MemberCall& call) {
        return drawNearest<std::uint32_t, std::uint32_t>(call, static_cast<std::uint32_t>(background),
                                                         ColourTables(table, table, table));
    });
}

void CCsNearest::nearestRgb8Rgb8MapSeperate(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo,
                                            unsigned char* const redTable, unsigned char* const greenTable,
                                            unsigned char* const blueTable, unsigned char redBackground,
                                            unsigned char greenBackground, unsigned char blueBackground) {
    const bool typesFit = src.getType() == CCS_RGB8 && dst.getType() == CCS_RGB8;
    const bool tablesGiven = redTable != nullptr && greenTable != nullptr && blueTable != nullptr;
    runMember(*this, rgb8Rgb8MapSeperateReports, {src, dst, trafo}, {typesFit, tablesGiven},
              [&](const MemberCall& call) {
                  return drawNearest<std::uint32_t, std::uint32_t>(
                      call, displayPixel(redBackground, greenBackground, blueBackground),
                      ColourTables(blueTable, greenTable, redTable));
              });
}

int CCsNearest::nearestIPPGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background) {
    return zolcs::runAccelerated(*this, acceleratedGrey, {src, dst, trafo, background});
}

int CCsNearest::nearestIPPRgb8Rgb8(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background) {
    return zolcs::runAccelerated(*this, acceleratedRgb8, {src, dst, trafo, background});
}
