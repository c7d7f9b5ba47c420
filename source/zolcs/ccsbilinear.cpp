#include "zolcs/ccsbilinear.h"

#include "zolcs/resample/accelerated.h"
#include "zolcs/resample/bilinear/bilinear.h"
#include "zolcs/resample/bilinear/packedrows.h"
#include "zolcs/resample/draw.h"
#include "zolcs/simd/capability.h"

namespace {

using zolcs::AcceleratedMember;
using zolcs::BilinearGrey;
using zolcs::BilinearPackedGrey;
using zolcs::BilinearRgb;
using zolcs::BilinearSource;
using zolcs::ColourTables;
using zolcs::Copy;
using zolcs::MemberCall;
using zolcs::MemberChecks;
using zolcs::MemberReports;
using zolcs::Polling;
using zolcs::runMember;
using zolcs::Stepping;

constexpr const wchar_t* module = L"source\\zolcs\\ccsbilinear";

constexpr MemberReports reportsOf(const wchar_t* member, MemberReports::Lines lines) { return {module, member, lines}; }

constexpr MemberReports grey12Grey12Reports = reportsOf(L"bilinearGrey12Grey12", {208, 237, 240, 394});
constexpr MemberReports grey12IndexMapReports = reportsOf(L"bilinearGrey12IndexMap", {431, 512, 515, 688});
constexpr MemberReports rgb8Rgb8Reports = reportsOf(L"bilinearRgb8Rgb8", {711, 735, 738, 826});
constexpr MemberReports rgb8Rgb8MapReports = reportsOf(L"bilinearRgb8Rgb8Map", {849, 875, 878, 967, 858});
constexpr MemberReports magicGlassReports = reportsOf(L"bilinearRgb8Rgb8_ForMagicGlass", {990, 1014, 1017, 1105});

template <typename Pixel>
BilinearSource<Pixel> sourceOf(const MemberCall& call) {
    return {{call.lock.source(), call.src.getPitch()}, call.stepping};
}

BilinearGrey plainGrey(const MemberCall& call, bool keepOverlayBits) {
    const bool twelveBits = call.src.getType() == CCS_GREY12;
    const std::uint16_t mask = twelveBits ? 0x0FFF : 0xFFFF;
    const std::uint16_t keptBits = twelveBits && keepOverlayBits ? 0xF000 : 0;
    return {sourceOf<std::uint16_t>(call), mask, keptBits};
}

constexpr AcceleratedMember<Ipp16u> acceleratedGrey{
    {module, L"bilinearIPPGrey12Grey12", {1128, 1146, 1227, 1231, 1243}}, zolcs::greyPrimitives, IPPI_INTER_LINEAR};
constexpr AcceleratedMember<Ipp8u> acceleratedRgb8{
    {module, L"bilinearIPPRgb8Rgb8", {1266, 1284, 1365, 1369, 1381}}, zolcs::colourPrimitives, IPPI_INTER_LINEAR};

BilinearRgb rgbOf(const MemberCall& call) { return BilinearRgb(sourceOf<std::uint32_t>(call)); }

}  // namespace

CCsBilinear::~CCsBilinear() = default;

void CCsBilinear::setAbortFlag(int flag) { zolcs::setFlag(abortFlag, flag); }

Stepping CCsBilinear::adaptTransformation_(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo) {
    return zolcs::prepareStepping(src, dst, trafo, *this);
}

int CCsBilinear::bilinearGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned short background,
                                      bool keepOverlayBits) {
    const auto isGrey = [](int type) { return type == CCS_GREY12 || type == CCS_GREY16; };
    const bool typesFit = isGrey(src.getType()) || isGrey(dst.getType());
    const MemberChecks checks{typesFit && zolcs::pixelSizesAre(src, dst, 2, 2)};
    return runMember(*this, grey12Grey12Reports, {src, dst, trafo}, checks, [&](const MemberCall& call) {
        const bool keepsBits = keepOverlayBits && src.isEmbeddedOverlayPresent();
        const Copy<std::uint16_t> convert;
        if (zolcs::processorCapability() == 0 || keepsBits) {
            return zolcs::draw(call, background, plainGrey(call, keepsBits), convert, Polling::never());
        }
        const BilinearPackedGrey packed(sourceOf<std::uint16_t>(call));
        const auto filler = zolcs::makeFiller(call.stepping, packed, convert, zolcs::StopFlag());
        return zolcs::fillRowsPacked(call.stepping, zolcs::displayOf(call, background), *filler);
    });
}

int CCsBilinear::bilinearGrey12IndexMap(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, IMap* map, bool /*unused*/,
                                        unsigned char* pixelPadding, unsigned char background) {
    const MemberChecks checks{zolcs::areGreyToDisplay(src, dst), true, zolcs::isRaised(abortFlag)};
    return runMember(*this, grey12IndexMapReports, {src, dst, trafo}, checks, [&](const MemberCall& call) {
        return zolcs::drawMapped(call, {src, map, pixelPadding, background}, plainGrey(call, false),
                                 Polling::everyRow(abortFlag));
    });
}

int CCsBilinear::bilinearRgb8Rgb8(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned long background,
                                  bool /*unused*/) {
    return zolcs::resampleColours(*this, rgb8Rgb8Reports, {{src, dst, trafo}, true, background},
                                  Polling::everyRow(abortFlag), rgbOf, [] { return Copy<std::uint32_t>{}; });
}

int CCsBilinear::bilinearRgb8Rgb8Map(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                                     unsigned long background) {
    return zolcs::resampleColours(*this, rgb8Rgb8MapReports, {{src, dst, trafo}, table != nullptr, background},
                                  Polling::everyRow(abortFlag), rgbOf,
                                  [&] { return ColourTables(table, table, table); });
}

int CCsBilinear::bilinearRgb8Rgb8_ForMagicGlass(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo,
                                                unsigned long background) {
    return zolcs::resampleColours(*this, magicGlassReports, {{src, dst, trafo}, true, background},
                                  Polling::everyRow(abortFlag), rgbOf, [] { return Copy<std::uint32_t>{}; });
}

int CCsBilinear::bilinearIPPGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background) {
    return zolcs::runAccelerated(*this, acceleratedGrey, {src, dst, trafo, background});
}

int CCsBilinear::bilinearIPPRgb8Rgb8(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background) {
    return zolcs::runAccelerated(*this, acceleratedRgb8, {src, dst, trafo, background});
}
