// How the members of the resamplers draw: which layers of fillers make their pictures.
#pragma once

#include "zolcs/ccsmap.h"
#include "zolcs/ccsraster.h"
#include "zolcs/resample/display.h"
#include "zolcs/resample/fillers.h"
#include "zolcs/resample/member.h"
#include "zolcs/resample/pollingfiller.h"
#include "zolcs/resample/ruledfiller.h"
#include "zolcs/rules/pixelrules.h"

#include <cstdint>
#include <utility>

namespace zolcs {

template <typename Pixel>
Display<Pixel> displayOf(const MemberCall& call, Pixel background) {
    return {{call.lock.destination(), call.dst.getPitch()}, background};
}

/// Fills the destination with what a kernel gives, through `convert`; false when stopped.
template <typename Kernel, typename Convert>
bool draw(const MemberCall& call, DisplayPixel<Kernel, Convert> background, const Kernel& kernel,
          const Convert& convert, const Polling& polling) {
    auto filler = makeFiller(call.stepping, kernel, convert, polling.pixels);
    filler = polled(std::move(filler), polling.rows);
    return fillDisplay(call.stepping, displayOf(call, background), *filler);
}

/// What a member that shows stored grey values as display pixels was given.
struct GreyDisplayArguments {
    CCsRaster& source;
    IMap* map;
    const unsigned char* padding;
    std::uint32_t background;
};

/// Fills the destination with interpolated grey values through the map's table, below planes, embedded bits, shutters
/// and padding, which are decided at the position itself; false when stopped.
template <typename Kernel>
bool drawMapped(const MemberCall& call, const GreyDisplayArguments& arguments, const Kernel& kernel,
                const Polling& polling) {
    auto* greyMap = dynamic_cast<IGreyMap*>(arguments.map);
    const auto rules =
        PixelRules::forResampling(arguments.source, greyMap, arguments.padding, arguments.background, call.stepping);
    const auto table = greyTable(greyMap, false, EmbeddedOverlay());
    const GreyTable convert{table.data()};
    const NearestKernel<std::uint16_t> raw{{call.lock.source(), call.src.getPitch()}};

    SpanFillerPtr<std::uint32_t> filler = makeFiller(call.stepping, kernel, convert, polling.pixels);
    if (rules.embedded().isShown()) {
        filler = std::make_unique<EmbeddedFiller>(std::move(filler), rules.embedded(), raw);
    }
    if (!rules.empty()) filler = std::make_unique<RuledFiller>(std::move(filler), rules, raw);
    filler = polled(std::move(filler), polling.rows);
    return fillDisplay(call.stepping, displayOf(call, arguments.background), *filler);
}

/// What a member that interpolates colours was given.
struct ColourArguments {
    MemberArguments images;
    bool tablesGiven;
    unsigned long background;
};

/// Such a member's whole call: `kernelOf(call)` gives its kernel, `convertOf()` what makes display pixels of its
/// values.
template <typename Resampler, typename KernelOf, typename ConvertOf>
int resampleColours(Resampler& resampler, const MemberReports& reports, const ColourArguments& arguments,
                    const Polling& polling, const KernelOf& kernelOf, const ConvertOf& convertOf) {
    const auto& [src, dst, trafo] = arguments.images;
    const bool typesFit = src.getType() == CCS_RGB8 && dst.getType() == CCS_RGB8;
    const MemberChecks checks{typesFit, arguments.tablesGiven, polling.rows.isRaised()};
    return runMember(resampler, reports, arguments.images, checks, [&](const MemberCall& call) {
        return draw(call, static_cast<std::uint32_t>(arguments.background), kernelOf(call), convertOf(), polling);
    });
}

}  // namespace zolcs
