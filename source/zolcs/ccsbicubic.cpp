#include "zolcs/ccsbicubic.h"

#include "zolcs/resample/accelerated.h"
#include "zolcs/resample/bicubic/bicubic.h"
#include "zolcs/resample/draw.h"

namespace {

using zolcs::AcceleratedMember;
using zolcs::ColourTables;
using zolcs::Copy;
using zolcs::CubicGrey;
using zolcs::CubicRgb;
using zolcs::MemberCall;
using zolcs::MemberChecks;
using zolcs::MemberReports;
using zolcs::Polling;
using zolcs::runMember;
using zolcs::Stepping;

constexpr const wchar_t* module = L"source\\zolcs\\ccsbicubic";

constexpr MemberReports reportsOf(const wchar_t* member, MemberReports::Lines lines) { return {module, member, lines}; }

constexpr MemberReports grey12Grey12Reports = reportsOf(L"bicubicGrey12Grey12", {273, 324, 327, 462});
constexpr MemberReports magicGlassReports = reportsOf(L"bicubicGrey12Grey12_ForMagicGlass", {485, 520, 523, 641});
constexpr MemberReports grey12IndexMapReports = reportsOf(L"bicubicGrey12IndexMap", {668, 761, 764, 1002});
constexpr MemberReports rgb8Rgb8Reports = reportsOf(L"bicubicRgb8Rgb8", {1025, 1061, 1064, 1189});
constexpr MemberReports rgb8Rgb8MapReports = reportsOf(L"bicubicRgb8Rgb8Map", {1212, 1250, 1253, 1384, 1221});

CubicGrey greyOf(const MemberCall& call, bool keepOverlayBits) {
    const bool twelveBits = call.src.getType() == CCS_GREY12;
    const std::uint16_t mask = twelveBits ? 0x0FFF : 0xFFFF;
    const std::uint16_t keptBits = twelveBits && keepOverlayBits ? 0xF000 : 0;
    return {{{call.lock.source(), call.src.getPitch()}, call.stepping, zolcs::fineCubicWeights()}, mask, keptBits};
}

CubicRgb rgbOf(const MemberCall& call) {
    return CubicRgb({{call.lock.source(), call.src.getPitch()}, call.stepping, zolcs::coarseCubicWeights()});
}

constexpr AcceleratedMember<Ipp16u> acceleratedGrey{
    {module, L"bicubicIPPGrey12Grey12", {1603, 1621, 1702, 1706, 1718}}, zolcs::greyPrimitives, IPPI_INTER_CUBIC};
constexpr AcceleratedMember<Ipp8u> acceleratedRgb8{
    {module, L"bicubicIPPRgb8Rgb8", {1741, 1759, 1840, 1844, 1856}}, zolcs::colourPrimitives, IPPI_INTER_CUBIC};

}  // namespace

CCsBicubic::CCsBicubic() { zolcs::buildCubicWeights(); }

CCsBicubic::~CCsBicubic() = default;

void CCsBicubic::deleteWeightageArray() { zolcs::freeCubicWeights(); }

void CCsBicubic::setAbortFlag(int flag) { zolcs::setFlag(abortFlag, flag); }

void CCsBicubic::Get_RgbL(long& r, long& g, long& b, unsigned char* pixel, long& weight) {
    const auto add = [&](long& sum, unsigned char level) {
        sum = static_cast<long>(static_cast<unsigned long>(sum) + level * static_cast<unsigned long>(weight));
    };
    add(r, pixel[0]);
    add(g, pixel[1]);
    add(b, pixel[2]);
}

Stepping CCsBicubic::adaptTransformation_(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo) {
    srcWidth = src.getWidth();
    srcHeight = src.getHeight();
    return zolcs::prepareStepping(src, dst, trafo, *this);
}

int CCsBicubic::bicubicGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned short background,
                                    bool ignoreAbort, bool keepOverlayBits) {
    const auto isGrey = [](int type) { return type == CCS_GREY12 || type == CCS_GREY16; };
    const bool typesFit = isGrey(src.getType()) || isGrey(dst.getType());
    const MemberChecks checks{typesFit && zolcs::pixelSizesAre(src, dst, 2, 2), true,
                              !ignoreAbort && zolcs::isRaised(abortFlag)};
    return runMember(*this, grey12Grey12Reports, {src, dst, trafo}, checks, [&](const MemberCall& call) {
        return zolcs::draw(call, background, greyOf(call, keepOverlayBits), Copy<std::uint16_t>{},
                           ignoreAbort ? Polling::never() : Polling::everyPixel(abortFlag));
    });
}

int CCsBicubic::bicubicGrey12Grey12_ForMagicGlass(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo,
                                                  unsigned short background) {
    const bool typesFit = src.getType() == CCS_GREY12 && dst.getType() == CCS_GREY12;
    const MemberChecks checks{typesFit, true, zolcs::isRaised(abortFlag)};
    return runMember(*this, magicGlassReports, {src, dst, trafo}, checks, [&](const MemberCall& call) {
        return zolcs::draw(call, background, greyOf(call, false), Copy<std::uint16_t>{},
                           Polling::everyPixel(abortFlag));
    });
}

int CCsBicubic::bicubicGrey12IndexMap(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, IMap* map,
                                      unsigned char* pixelPadding, unsigned char background) {
    const MemberChecks checks{zolcs::areGreyToDisplay(src, dst), true, zolcs::isRaised(abortFlag)};
    return runMember(*this, grey12IndexMapReports, {src, dst, trafo}, checks, [&](const MemberCall& call) {
        return zolcs::drawMapped(call, {src, map, pixelPadding, background}, greyOf(call, false),
                                 Polling::everyPixel(abortFlag));
    });
}

int CCsBicubic::bicubicRgb8Rgb8(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned long background) {
    return zolcs::resampleColours(*this, rgb8Rgb8Reports, {{src, dst, trafo}, true, background},
                                  Polling::everyPixel(abortFlag), rgbOf, [] { return Copy<std::uint32_t>{}; });
}

int CCsBicubic::bicubicRgb8Rgb8Map(CCsImage& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char* const table,
                                   unsigned long background) {
    return zolcs::resampleColours(*this, rgb8Rgb8MapReports, {{src, dst, trafo}, table != nullptr, background},
                                  Polling::everyPixel(abortFlag), rgbOf,
                                  [&] { return ColourTables(table, table, table); });
}

int CCsBicubic::bicubicIPPGrey12Grey12(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background) {
    return zolcs::runAccelerated(*this, acceleratedGrey, {src, dst, trafo, background});
}

int CCsBicubic::bicubicIPPRgb8Rgb8(CCsRaster& src, CCsImage& dst, CCs2dTrafo& trafo, unsigned char background) {
    return zolcs::runAccelerated(*this, acceleratedRgb8, {src, dst, trafo, background});
}
