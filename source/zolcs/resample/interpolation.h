// How the interpolating resamplers draw: stopping on request, and the order of precedence above interpolated values.
#pragma once

#include "zolcs/ccsmap.h"
#include "zolcs/ccsraster.h"
#include "zolcs/resample/member.h"
#include "zolcs/resample/oblique/oblique.h"
#include "zolcs/resample/resample.h"
#include "zolcs/resample/stopflag.h"
#include "zolcs/resample/upright/separable.h"

#include <cstdint>
#include <limits>

namespace zolcs {

/// How often a call looks at a request to stop.
enum class Polling : std::uint8_t { Never, EveryRow, EveryPixel };

/// Stops another filler when the flag is raised: looks at it before each `Columns` pixels.
template <int Columns, typename Inner>
class AbortableFiller {
public:
    AbortableFiller(Inner& inner, std::int32_t& flag) : inner_(inner), flag_(flag) {}

    void prepare(const Stepping& stepping) { inner_.prepare(stepping); }
    void expect(ColumnRange columns) { inner_.expect(columns); }

    template <typename Pixel>
    bool fill(const SourceLine& line, ColumnRange columns, Pixel* out) {
        for (ColumnRange block = columns; !block.empty(); block.begin = block.end, block.end = columns.end) {
            if (block.end - block.begin > Columns) block.end = block.begin + Columns;
            if (isRaised(flag_)) return false;
            if (!inner_.fill(line, block, out + (block.begin - columns.begin))) return false;
        }
        return true;
    }

private:
    Inner& inner_;
    std::int32_t& flag_;
};

/// Gives `draw` a filler of what a kernel interpolates, through `convert`: the fastest one for the view. Where every
/// pixel is polled, it is the filler that looks at the flag.
template <typename Kernel, typename Convert, typename Draw>
bool withInterpolator(const Stepping& stepping, const Kernel& kernel, const Convert& convert, Polling polling,
                      std::int32_t& flag, const Draw& draw) {
    if (!SpanOperations::isPlain()) {
        const StopFlag stop = polling == Polling::EveryPixel ? StopFlag(flag) : StopFlag();
        if (isSeparable(stepping)) return withSeparable(kernel, convert, stop, draw);
        if constexpr (hasObliqueFiller<Kernel>) {
            using Oblique = ObliqueFiller<Kernel, Convert>;
            if (Oblique::isUsableFor(kernel, stepping)) {
                Oblique oblique(kernel, convert, stop);
                return draw(oblique);
            }
        }
    }
    PlainFiller plain(kernel, convert);
    if (polling != Polling::EveryPixel) return draw(plain);
    AbortableFiller<1, decltype(plain)> polled(plain, flag);
    return draw(polled);
}

/// Fills the display along the source's rows as far as the view allows; looks at the flag once a row when asked to.
template <typename Pixel, typename F>
bool drawPolled(const Stepping& stepping, const Display<Pixel>& display, F& filler, bool everyRow, std::int32_t& flag) {
    if (!everyRow) return fillDisplay(stepping, display, filler);
    AbortableFiller<std::numeric_limits<int>::max(), F> polled(filler, flag);
    return fillDisplay(stepping, display, polled);
}

/// Shows the embedded overlay bits of the pixel on which a position falls above what another filler shows.
template <typename Inner>
class EmbeddedFiller {
public:
    EmbeddedFiller(Inner& inner, const std::uint32_t* colours, NearestKernel<std::uint16_t> raw)
        : inner_(inner), colours_(colours), raw_(raw) {}

    void prepare(const Stepping& stepping) { inner_.prepare(stepping); }
    void expect(ColumnRange columns) { inner_.expect(columns); }

    bool fill(const SourceLine& line, ColumnRange columns, std::uint32_t* out) {
        if (!inner_.fill(line, columns, out)) return false;
        for (int x = columns.begin; x < columns.end; ++x, ++out) {
            const unsigned bits = raw_(line.uAt(x), line.vAt(x)) >> 12U;
            if (bits != 0) *out = colours_[bits];
        }
        return true;
    }

private:
    Inner& inner_;
    const std::uint32_t* colours_;
    NearestKernel<std::uint16_t> raw_;
};

/// Fills the destination with what a kernel interpolates, through `convert`; false when stopped. A call that was
/// stopped leaves what it has written: whole rows from the top, or whole strips of columns from the left in a quarter
/// turn.
template <typename Pixel, typename Kernel, typename Convert>
bool drawInterpolated(const MemberCall& call, Pixel background, const Kernel& kernel, const Convert& convert,
                      Polling polling, std::int32_t& flag) {
    const Display<Pixel> display{{call.lock.destination(), call.dst.getPitch()}, background};
    return withInterpolator(call.stepping, kernel, convert, polling, flag, [&](auto& filler) {
        return drawPolled(call.stepping, display, filler, polling == Polling::EveryRow, flag);
    });
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
bool drawMapped(const MemberCall& call, const GreyDisplayArguments& arguments, const Kernel& kernel, Polling polling,
                std::int32_t& flag) {
    auto* greyMap = dynamic_cast<IGreyMap*>(arguments.map);
    const auto rules =
        PixelRules::forResampling(arguments.source, greyMap, arguments.padding, arguments.background, call.stepping);
    const auto table = greyTable(greyMap, false, nullptr);
    const GreyTable convert{table.data()};
    if (rules.positionsAreFree() && rules.embeddedColours() == nullptr) {
        return drawInterpolated(call, arguments.background, kernel, convert, polling, flag);
    }

    const Display<std::uint32_t> display{{call.lock.destination(), call.dst.getPitch()}, arguments.background};
    const NearestKernel<std::uint16_t> raw{{call.lock.source(), call.src.getPitch()}};
    // Rows are looked at outside the rules, pixels inside them, where the work is.
    const auto drawRuled = [&](auto& image) {
        RuledFiller ruled(image, rules, raw);
        return drawPolled(call.stepping, display, ruled, polling != Polling::Never, flag);
    };
    return withInterpolator(call.stepping, kernel, convert, polling, flag, [&](auto& image) {
        if (rules.embeddedColours() == nullptr) return drawRuled(image);
        EmbeddedFiller embedded(image, rules.embeddedColours(), raw);
        return drawRuled(embedded);
    });
}

}  // namespace zolcs
