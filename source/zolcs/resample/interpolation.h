// How the interpolating resamplers draw: stopping on request, and the order of precedence above interpolated values.
#pragma once

#include "zolcs/ccsmap.h"
#include "zolcs/ccsraster.h"
#include "zolcs/resample/member.h"
#include "zolcs/resample/resample.h"

#include <atomic>
#include <cstdint>
#include <limits>

namespace zolcs {

/// A request to stop that another thread may set while a call runs. The pixels do not depend on when it is seen.
inline bool isRaised(std::int32_t& flag) {
    return std::atomic_ref<std::int32_t>(flag).load(std::memory_order_relaxed) != 0;
}

inline void setFlag(std::int32_t& flag, std::int32_t value) {
    std::atomic_ref<std::int32_t>(flag).store(value, std::memory_order_relaxed);
}

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

/// Gives `draw` the filler, or one that looks at the flag.
template <typename F, typename Draw>
bool drawPolled(Polling polling, std::int32_t& flag, F& filler, const Draw& draw) {
    if (polling == Polling::EveryPixel) {
        AbortableFiller<1, F> polled(filler, flag);
        return draw(polled);
    }
    if (polling == Polling::EveryRow) {
        AbortableFiller<std::numeric_limits<int>::max(), F> polled(filler, flag);
        return draw(polled);
    }
    return draw(filler);
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

/// Fills the destination with what a kernel interpolates, through `convert`; false when stopped. Always row by row, so
/// that a stopped call has written whole rows from the top.
template <typename Pixel, typename Kernel, typename Convert>
bool drawInterpolated(const MemberCall& call, Pixel background, const Kernel& kernel, const Convert& convert,
                      Polling polling, std::int32_t& flag) {
    const Display<Pixel> display{{call.lock.destination(), call.dst.getPitch()}, background};
    PlainFiller plain(kernel, convert);
    return drawPolled(polling, flag, plain, [&](auto& filler) { return fillRows(call.stepping, display, filler); });
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
    const auto drawRuled = [&](auto& image) {
        RuledFiller ruled(image, rules, raw);
        return drawPolled(Polling::EveryRow, flag, ruled,
                          [&](auto& filler) { return fillRows(call.stepping, display, filler); });
    };
    PlainFiller plain(kernel, convert);
    // Rows are looked at outside the rules, pixels inside them, where the work is.
    const Polling inside = polling == Polling::EveryPixel ? polling : Polling::Never;
    return drawPolled(inside, flag, plain, [&](auto& image) {
        if (rules.embeddedColours() == nullptr) return drawRuled(image);
        EmbeddedFiller embedded(image, rules.embeddedColours(), raw);
        return drawRuled(embedded);
    });
}

}  // namespace zolcs
